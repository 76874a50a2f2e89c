#include <QtQuickTest>

#include "app/components_setup.h"

QUICK_TEST_MAIN_WITH_SETUP(components, ComponentSetup)
