#include "variables/options_cell.h"

#include <gtest/gtest.h>

#include "variables/input_hint.h"

namespace {

VarInfo Variable(const std::string& type, int32_t permission = 1) {
  VarInfo var;
  var.var_name = "Value";
  var.var_type = type;
  var.permission = permission;
  var.set_cmd = "0x12";
  return var;
}

TEST(OptionsCell, AnEmptyCellIsATextField) {
  VarInfo var = Variable("uint8", 0);
  EXPECT_EQ(ReadOptions("", "", &var), "");
  EXPECT_EQ(var.type, kReadOnlyText);
  var = Variable("uint8", 2);
  EXPECT_EQ(ReadOptions("", "", &var), "");
  EXPECT_EQ(var.type, kText);
}

TEST(OptionsCell, ReadsRangesOfEitherSign) {
  VarInfo var = Variable("int8");
  EXPECT_EQ(ReadOptions("-40..85", "", &var), "");
  EXPECT_EQ(var.type, kText);
  EXPECT_EQ(var.range_min, -40);
  EXPECT_EQ(var.range_max, 85);
}

TEST(OptionsCell, ReadsChoicesWithTheirLabels) {
  VarInfo var = Variable("int8");
  EXPECT_EQ(ReadOptions("-1|1", "Falling|Rising", &var), "");
  EXPECT_EQ(var.type, kChoice);
  EXPECT_EQ(var.options, (std::vector<int32_t>{-1, 1}));
  EXPECT_EQ(var.option_num, 2);
  EXPECT_EQ(var.varname_value_to_option.at("-1"), "Falling");

  var = Variable("uint8");
  EXPECT_EQ(ReadOptions("list:10|20|30", "", &var), "");
  EXPECT_EQ(var.type, kTallChoice);
  EXPECT_EQ(var.option_labels, (std::vector<std::string>{"10", "20", "30"}));
}

TEST(OptionsCell, ReadsSwitchesAndWhatDependsOnThem) {
  VarInfo var = Variable("uint16");
  EXPECT_EQ(ReadOptions("switch", "", &var), "");
  EXPECT_EQ(var.type, kSwitch);
  EXPECT_EQ(var.range_max, 0);

  var = Variable("uint16");
  EXPECT_EQ(ReadOptions("switch:10..5000@7-1", "Off|On", &var), "");
  EXPECT_EQ(var.type, kSwitch);
  EXPECT_EQ(var.range_min, 10);
  EXPECT_EQ(var.range_max, 5000);
  EXPECT_EQ(var.switch_var_id, "7-1");
  EXPECT_EQ(var.varname_value_to_option.at("0"), "Off");

  for (const char* options : {"@7-1", "0..7@7-1", "1|2 @ 7-1"}) {
    var = Variable("uint8");
    EXPECT_EQ(ReadOptions(options, "", &var), "") << options;
    EXPECT_EQ(var.switch_var_id, "7-1") << options;
  }
}

TEST(OptionsCell, ReadsTheSpecialWords) {
  VarInfo var = Variable("raw");
  EXPECT_EQ(ReadOptions("file", "", &var), "");
  EXPECT_EQ(var.type, kFile);
  EXPECT_EQ(ReadOptions("monitor", "", &var), "");
  EXPECT_EQ(var.type, kMonitor);
  EXPECT_EQ(ReadOptions("hidden", "", &var), "");
  EXPECT_TRUE(var.hidden);
  EXPECT_EQ(var.visible, 0);
}

TEST(OptionsCell, WhatDoesNotFitLeavesAPlainTextField) {
  struct Case {
    const char* type;
    const char* options;
    const char* labels;
    const char* reason;
  };
  const Case cases[] = {
      {"uint8", "yes", "", "is no range, choice, switch or known word"},
      {"uint8", "1..", "", "is no range of 32-bit whole numbers"},
      {"uint8", "1..5000000000", "", "is no range of 32-bit whole numbers"},
      {"uint8", "9..1", "", "the range ends before it begins"},
      {"uint8", "0..0", "", "would not limit anything"},
      {"string", "1..5", "", "needs a numeric VarType"},
      {"uint8", "1|2|3", "One|Two", "3 values, OptionDescription 2 labels"},
      {"uint8", "1|two", "", "\"two\" is no 32-bit whole number"},
      {"uint8", "1|1", "", "stands twice"},
      {"float32", "1|2", "", "a choice needs an integer VarType"},
      {"IP", "switch", "", "a switch needs an integer VarType"},
      {"uint8", "switch:5", "", "is no range"},
      {"uint8", "switches", "", "is no range"},
      {"uint8", "1..5@", "", "\"@\" is not followed by"},
      {"uint8", "1..5@seven", "", "\"@\" is not followed by"},
      {"uint8", "hidden@7-1", "", "cannot depend on a switch"},
      {"uint8", "list:1|2@7-1", "", "cannot depend on a switch"},
  };
  for (const Case& bad : cases) {
    SCOPED_TRACE(bad.options);
    VarInfo var = Variable(bad.type);
    const std::string reason = ReadOptions(bad.options, bad.labels, &var);
    EXPECT_NE(reason.find(bad.reason), std::string::npos) << reason;
    EXPECT_EQ(var.type, kText);
    EXPECT_EQ(var.range_max, 0);
    EXPECT_EQ(var.option_num, 0);
    EXPECT_TRUE(var.options.empty() && var.option_labels.empty() && var.switch_var_id.empty());
    EXPECT_FALSE(var.hidden);
  }
  VarInfo scaled = Variable("uint8");
  scaled.coefficient = 0.5F;
  EXPECT_NE(ReadOptions("switch", "", &scaled), "");
}

TEST(InputHint, TellsBeforeSavingWhatWouldBeRefused) {
  const auto hint = [](const VarInfo& var) { return InputHint(var); };
  VarInfo var = Variable("uint32");
  EXPECT_EQ(hint(var), "Only 0 can be saved: uint32 takes no other value.");
  var.set_coefficient = 0.1F;
  EXPECT_EQ(hint(var),
            "Only values from 0 up to, not including, 0.1 can be saved, and are stored as 0.");
  EXPECT_EQ(hint(Variable("string")),
            "Cannot be changed: there is no way to enter the type \"string\".");
  EXPECT_EQ(hint(Variable("DT")), "Cannot be changed: there is no way to enter the type \"DT\".");
  EXPECT_EQ(hint(Variable("uint8", 0)), "Read-only.");
  var = Variable("uint8");
  var.set_cmd.clear();
  EXPECT_EQ(hint(var), "Cannot be changed: the table gives no usable command that writes it.");
}

TEST(InputHint, NamesRangeFormatAndUnit) {
  VarInfo var = Variable("uint8");
  var.set_coefficient = 0.5F;
  var.unit = "V";
  EXPECT_EQ(InputHint(var), "Number from 0 to 127.5. Unit: V.");
  var = Variable("int16");
  EXPECT_EQ(ReadOptions("-45..45@7-1", "", &var), "");
  EXPECT_EQ(InputHint(var),
            "Whole number from -32768 to 32767. Allowed: -45 to 45, while the switch it depends on "
            "is on.");
  var = Variable("uint8");
  EXPECT_EQ(ReadOptions("switch:10..100", "", &var), "");
  EXPECT_EQ(InputHint(var), "Whole number from 0 to 255. Allowed: 10 to 100, or 0 for off.");
  EXPECT_EQ(InputHint(Variable("IP")), "IPv4 address, such as 192.168.1.201.");
}

}  // namespace
