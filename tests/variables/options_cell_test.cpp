#include "variables/options_cell.h"

#include <gtest/gtest.h>

#include "variables/input_hint.h"
#include "variables/input_problem.h"

namespace {

TextPool texts;

VarInfo Variable(const std::string& type, int32_t permission = 1) {
  VarInfo var;
  SetValueType(texts.Share(type), &var);
  var.permission = permission;
  var.set_cmd = texts.Share("0x12");
  return var;
}

// What the cells make of the variable: the kind of control, its range, what it depends on and its
// entries. Or the reason why they do not fit.
std::string Parsed(const std::string& options, const std::string& labels, const VarInfo& var) {
  const auto parsed = ParseControl(options, labels, var);
  if (const auto* reason = std::get_if<std::string>(&parsed)) {
    return *reason;
  }
  const Control& control = std::get<Control>(parsed);
  std::string text = std::to_string(control.type) + ' ' + std::to_string(control.range_min) + ".." +
                     std::to_string(control.range_max) + '@' + control.switch_var_id;
  for (const Option& option : control.options) {
    text += ' ' + std::to_string(option.value) + '=' + option.label;
  }
  return text + (control.hidden ? " hidden" : "");
}

TEST(OptionsCell, MakesControlsOfTheGrammarOrSaysWhatDoesNotFit) {
  const std::string cases[][4] = {
      {"uint8", "", "", "1 0..0@"},
      {"int8", "-40..85", "", "1 -40..85@"},
      {"int8", "-1|1", "Falling|Rising", "3 0..0@ -1=Falling 1=Rising"},
      {"uint8", "list:10|20", "", "5 0..0@ 10=10 20=20"},
      {"uint16", "switch", "", "2 0..0@"},
      {"uint16", "switch:10..5000@7-1", "Off|On", "2 10..5000@7-1 0=Off 1=On"},
      {"uint8", "1|2 @ 7-1", "", "3 0..0@7-1 1=1 2=2"},
      {"raw", "file", "", "a file is raw with VarLen 0 and neither Get nor Set"},
      {"raw", "monitor", "", "7 0..0@"},
      {"uint8", "yes", "", "Options \"yes\" is no range, choice, switch or known word"},
      {"uint8", "1..5000000000", "",
       "Options \"1..5000000000\" is no range of 32-bit whole numbers"},
      {"uint8", "9..1", "", "Options \"9..1\": the range ends before it begins"},
      {"uint8", "0..0", "", "Options \"0..0\" would not limit anything"},
      {"string", "1..5", "", "a range needs a numeric VarType"},
      {"uint8", "1|2|3", "One|Two", "Options has 3 values, OptionDescription 2 labels"},
      {"uint8", "1|two", "", "Options: \"two\" is no 32-bit whole number"},
      {"uint8", "1|1", "", "Options: the value \"1\" stands twice"},
      {"uint8", "1|256", "", "Options: \"256\" does not fit uint8"},
      {"uint64", "-1|0", "", "Options: \"-1\" does not fit uint64"},
      {"uint8", std::string(4096, '|'), "", "Options has 4097 values; write at most 4096"},
      {"float32", "1|2", "", "a choice needs an integer VarType"},
      {"uint8", "switch:5", "", "Options \":5\" after \"switch\" is no range"},
      {"uint8", "1..5@seven", "", "Options: \"@\" is not followed by a switch; write its GroupID"},
      {"uint8", "list:1", "", "Options \"1\" is a choice of one; write two"},
      {"uint8", "0..256", "", "Options \"0..256\": 256 does not fit uint8; write"},
      {"uint16", "-1..9", "", "Options \"-1..9\": -1 does not fit uint16; write"},
      {"int8", "switch:1..128", "", "Options \"1..128\": 128 does not fit int8; write"},
      {"uint8", "list:1|2@7-1", "", "Options \"list:1|2\" cannot depend on a switch"},
  };
  for (const auto& [type, options, labels, expected] : cases) {
    const std::string parsed = Parsed(options, labels, Variable(type));
    // What to write instead stands behind the reason.
    EXPECT_EQ(parsed.substr(0, expected.size()), expected);
    EXPECT_TRUE(parsed == expected || parsed.find("; write ") != std::string::npos ||
                parsed.find("; leave ") != std::string::npos)
        << parsed;
  }
  EXPECT_EQ(Parsed("hidden", "", Variable("uint8", 0)), "0 0..0@ hidden");
  VarInfo scaled = Variable("uint8");
  scaled.coefficient = 0.5F;
  EXPECT_EQ(Parsed("switch", "", scaled).rfind("a switch needs the coefficients 1", 0), 0U);
  // 51 / 0.2 is 255, 52 / 0.2 is beyond a byte; a negative coefficient turns the range round.
  scaled.set_coefficient = 0.2F;
  EXPECT_EQ(Parsed("0..51", "", scaled), "1 0..51@");
  EXPECT_NE(Parsed("0..52", "", scaled).find("52 does not fit uint8 when divided by 0.2"),
            std::string::npos);
  scaled.set_coefficient = -1;
  EXPECT_EQ(Parsed("-255..0", "", scaled), "1 -255..0@");
  VarInfo file = Variable("raw");
  file.set_cmd = SharedText();
  file.offset = 0;
  EXPECT_EQ(Parsed("file", "", file), "4 0..0@");
}

TEST(InputHint, TellsBeforeSavingWhatWouldBeRefused) {
  const auto hint = [](const std::string& type, const std::string& options = "",
                       float set_coefficient = 1) {
    VarInfo var = Variable(type);
    var.set_coefficient = set_coefficient;
    static_cast<Control&>(var) = std::get<Control>(ParseControl(options, "", var));
    return InputHint(var);
  };
  EXPECT_EQ(hint("uint32"), "Only 0 can be saved.");
  EXPECT_EQ(hint("uint32", "0|1"), hint("uint32"));
  EXPECT_EQ(hint("uint64", "", 0.1F),
            "Only values from 0 up to, not including, 0.1 can be saved, and are stored as 0.");
  EXPECT_EQ(hint("i32", "", 0.01F), "steps of 0.01");
  EXPECT_EQ(hint("DT"), "Cannot be changed: there is no way to enter the type \"DT\".");
  EXPECT_EQ(hint("int16", "-45..45@7-1", 0.25F), "-45 to 45, steps of 0.25");
  EXPECT_EQ(hint("uint8", "switch:10..100"), "10 to 100, or off");
  for (const char* options : {"switch", "1|2", ""}) {
    EXPECT_EQ(hint("uint8", options), "") << options;
  }
  EXPECT_EQ(InputHint(Variable("uint8", 0)), "");
}

TEST(InputProblem, TellsBeforeSavingWhatWouldBeStoredQuestionedOrRefused) {
  using Kind = InputProblem::Kind;
  const std::tuple<const char*, float, int32_t, const char*, Kind, const char*> cases[] = {
      {"int16", 0.25F, 100, "12.25", Kind::kNone, ""},
      {"int16", 0.1F, 100, "0.3", Kind::kNone, ""},
      {"int16", 0.25F, 100, "12.3", Kind::kRounded, "Would be stored as 12.25"},
      {"int32", 1, 0, "16777217", Kind::kRounded, "Would be stored as 16777216"},
      {"uint8", 1, 0, "7.9", Kind::kRounded, "Would be stored as 7"},
      {"uint8", 1, 100, "101", Kind::kUnwanted, "Outside 0 to 100"},
      {"uint8", 1, 100, "300", Kind::kImpossible, "Outside 0 to 100"},
      {"int8", 0.5F, 0, "64", Kind::kImpossible, "Outside -64 to 63.5"},
      {"uint8", 1, 100, "12,5", Kind::kImpossible, "A number from 0 to 100, point as decimal sign"},
      {"double", 1, 0, "nan", Kind::kImpossible, "A number is needed"},
      {"u32", 0.01F, 0, "0.005", Kind::kImpossible, "\"0.005\" is no multiple of 0.01"},
      {"uint32", 1, 0, "5", Kind::kImpossible, "Only 0 can be saved"},
      {"IP", 1, 0, "1.2.3.+4", Kind::kUnwanted, "An address like 192.168.1.201"},
      {"IP", 1, 0, "1.2.3", Kind::kImpossible, "An address like 192.168.1.201"},
      {"string", 1, 0, "whatever", Kind::kNone, ""},
  };
  for (const auto& [type, set_coefficient, range_max, text, kind, told] : cases) {
    const InputProblem problem =
        FindInputProblem({&ValueTypeOf(type), set_coefficient, 0, range_max}, text);
    EXPECT_EQ(problem.text, told) << type << ' ' << text;
    EXPECT_EQ(problem.kind, kind) << type << ' ' << text;
  }
  const InputRule filter{&ValueTypeOf("uint8"), 1, 1, 10, true};
  EXPECT_EQ(FindInputProblem(filter, "0").kind, Kind::kNone) << "off";
  EXPECT_EQ(FindInputProblem(filter, "11").kind, Kind::kUnwanted);
}

}  // namespace
