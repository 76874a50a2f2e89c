#include <QtQuickTest>

#include "app/quick_setup.h"

QUICK_TEST_MAIN_WITH_SETUP(quick, QuickSetup)
