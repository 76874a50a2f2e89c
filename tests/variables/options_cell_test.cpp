#include "variables/options_cell.h"

#include <gtest/gtest.h>

#include "variables/input_hint.h"

namespace {

VarInfo Variable(const std::string& type, int32_t permission = 1) {
  VarInfo var;
  SetValueType(type, &var);
  var.permission = permission;
  var.set_cmd = "0x12";
  return var;
}

// What the cells made of the variable: the kind of control, its range, what it depends on and its
// entries.
std::string Control(const VarInfo& var) {
  std::string text = std::to_string(var.type) + ' ' + std::to_string(var.range_min) + ".." +
                     std::to_string(var.range_max) + '@' + var.switch_var_id;
  for (const int32_t option : var.options) {
    const std::string value = std::to_string(option);
    text += ' ' + value + '=' + var.varname_value_to_option.at(value);
  }
  return text;
}

TEST(OptionsCell, MakesControlsOfTheGrammar) {
  const std::string cases[][4] = {
      {"uint8", "", "", "1 0..0@"},
      {"int8", "-40..85", "", "1 -40..85@"},
      {"int8", "-1|1", "Falling|Rising", "3 0..0@ -1=Falling 1=Rising"},
      {"uint8", "list:10|20", "", "5 0..0@ 10=10 20=20"},
      {"uint16", "switch", "", "2 0..0@"},
      {"uint16", "switch:10..5000@7-1", "Off|On", "2 10..5000@7-1 0=Off 1=On"},
      {"uint8", "1|2 @ 7-1", "", "3 0..0@7-1 1=1 2=2"},
      {"raw", "file", "", "4 0..0@"},
      {"raw", "monitor", "", "7 0..0@"},
  };
  for (const auto& [type, options, labels, control] : cases) {
    VarInfo var = Variable(type);
    EXPECT_EQ(ReadOptions(options, labels, &var), "") << options;
    EXPECT_EQ(Control(var), control) << options;
    EXPECT_EQ(var.option_num, static_cast<int32_t>(var.options.size())) << options;
  }
  VarInfo var = Variable("uint8", 0);
  EXPECT_EQ(ReadOptions("hidden", "", &var), "");
  EXPECT_EQ(var.type, kReadOnlyText);
  EXPECT_TRUE(var.hidden);
  EXPECT_EQ(var.visible, 0);
}

TEST(OptionsCell, WhatDoesNotFitLeavesAPlainTextField) {
  const std::string cases[][4] = {
      {"uint8", "yes", "", "is no range, choice, switch or known word"},
      {"uint8", "1..5000000000", "", "is no range of 32-bit whole numbers"},
      {"uint8", "9..1", "", "the range ends before it begins"},
      {"uint8", "0..0", "", "would not limit anything"},
      {"string", "1..5", "", "needs a numeric VarType"},
      {"uint8", "1|2|3", "One|Two", "3 values, OptionDescription 2 labels"},
      {"uint8", "1|two", "", "\"two\" is no 32-bit whole number"},
      {"uint8", "1|1", "", "stands twice"},
      {"uint8", "1|256", "", "\"256\" does not fit uint8"},
      {"uint64", "-1|0", "", "\"-1\" does not fit uint64"},
      {"float32", "1|2", "", "a choice needs an integer VarType"},
      {"uint8", "switch:5", "", "is no range"},
      {"uint8", "1..5@seven", "", "\"@\" is not followed by"},
      {"uint8", "list:1|2@7-1", "", "cannot depend on a switch"},
  };
  for (const auto& [type, options, labels, expected] : cases) {
    VarInfo var = Variable(type);
    const std::string reason = ReadOptions(options, labels, &var);
    EXPECT_NE(reason.find(expected), std::string::npos) << options << ": " << reason;
    EXPECT_EQ(Control(var), "1 0..0@") << options;
    EXPECT_EQ(var.option_num, 0) << options;
    EXPECT_FALSE(var.hidden) << options;
  }
  VarInfo scaled = Variable("uint8");
  scaled.coefficient = 0.5F;
  EXPECT_EQ(ReadOptions("switch", "", &scaled), "a switch needs the coefficients 1");
}

TEST(InputHint, TellsBeforeSavingWhatWouldBeRefused) {
  const auto hint = [](const std::string& type, const std::string& options = "",
                       float set_coefficient = 1) {
    VarInfo var = Variable(type);
    var.set_coefficient = set_coefficient;
    ReadOptions(options, "", &var);
    return InputHint(var);
  };
  EXPECT_EQ(hint("uint32"), "Only 0 can be saved: uint32 takes no other value.");
  EXPECT_EQ(hint("uint32", "0|1"), hint("uint32"));
  EXPECT_EQ(hint("uint64", "", 0.1F),
            "Only values from 0 up to, not including, 0.1 can be saved, and are stored as 0.");
  EXPECT_EQ(hint("DT"), "Cannot be changed: there is no way to enter the type \"DT\".");
  EXPECT_EQ(hint("uint8", "", 0.5F), "Number from 0 to 127.5.");
  EXPECT_EQ(hint("int16", "-45..45@7-1"),
            "Whole number from -32768 to 32767. Allowed: -45 to 45, while the switch it depends on "
            "is on.");
  EXPECT_EQ(hint("uint8", "switch:10..100"),
            "Whole number from 0 to 255. Allowed: 10 to 100, or 0 for off.");
  EXPECT_EQ(hint("uint8", "switch"), "Switch: 0 is off.");
  VarInfo var = Variable("uint8", 0);
  var.unit = "V";
  EXPECT_EQ(InputHint(var), "Read-only. Unit: V.");
}

}  // namespace
