#pragma once

#include <gtest/gtest.h>

#include "support/manager_bench.h"

class ManagerFixture : public testing::Test, protected ManagerBench {};
