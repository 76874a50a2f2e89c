#include "settings_files/settings_apply.h"

#include <algorithm>

#include "CmxClient/cmx_client.h"
#include "settings_bench.h"
#include "settings_files/settings_diff.h"
#include "settings_files/value_bytes.h"
#include "variables/command_code.h"

namespace {

using kavel::lidar::CmxClient;
using kavel::lidar::kNoReply;
using Lines = std::vector<std::string>;
using Outcome = ApplyResult::Outcome;

constexpr uint8_t kReset = 0x25;

/// A value that is not the default and that the lidar takes.
std::string OtherText(const VarInfo& var) {
  if (IsFovTable(var)) {
    return "02050000000043340000000000004334000000000000433400000000000043340000000000004334AAAB";
  }
  if (!var.options.empty()) {
    const std::string last = std::to_string(var.options.back().value);
    return var.default_val == last ? std::to_string(var.options.front().value) : last;
  }
  if (var.value_type->kind == ValueKind::kAddress) {
    return "10.1.2." + std::to_string(var.index);
  }
  if (var.value_type->kind == ValueKind::kReal) {
    return var.range_min > 1 ? "41.337" : "1.337";
  }
  return std::to_string(var.range_max == 0 ? 1 : var.range_max);
}

ApplyWish WithNetwork() {
  ApplyWish wish;
  wish.with_network = true;
  return wish;
}

/// "name outcome: reason" of each result that is not skipped for `unless`.
Lines Told(const ApplyReport& report, const std::string& unless = "the lidar holds it already") {
  Lines lines;
  for (const ApplyResult& result : report.results) {
    if (result.reason != unless && result.reason != "read-only") {
      lines.push_back(result.name + " " + TextOf(result.outcome) +
                      (result.reason.empty() ? "" : ": " + result.reason));
    }
  }
  return lines;
}

/// A lidar with other settings than its factory's, and its settings in a file.
class ChangedLidar : public SettingsBench {
 public:
  explicit ChangedLidar(const std::string& name) : SettingsBench(name) {
    for (const VarInfo* var : model->table->InTableOrder()) {
      if (CanBeApplied(*var) && var->offset > 0) {
        EXPECT_TRUE(device.Preset(var->var_name, OtherText(*var))) << var->var_name;
      }
    }
    std::string error;
    file = ParseSettings(SettingsJson(Read()), &error).value();
    held = device.Held();
    Reset();
  }

  void Reset() {
    Bytes unused;
    device.open = true;
    device.before = nullptr;
    EXPECT_EQ(device.QueryCommand({}, unused, kReset, false), 0);
    device.sent.clear();
  }
  ApplyReport Apply(const ApplyWish& wish, const WorkWatch& watch = {}) {
    const ApplyPlan plan = PlanApply(*model, Read(), file, wish);
    device.sent.clear();
    return RunApply(lidar(), plan, watch);
  }

  /// The variables of which it holds other bytes than when the file was read.
  Lines Differing() const {
    auto now = device.Held();
    Lines names;
    for (const auto& [name, bytes] : held) {
      if (now[name] != bytes) {
        names.push_back(name);
      }
    }
    return names;
  }

  SettingsFile file;
  std::map<std::string, Bytes> held;
};

TEST(SettingsApplyTest, PutsEveryByteBackOntoEveryNetworkModel) {
  for (const char* name : {"Orca", "Osprey"}) {
    SCOPED_TRACE(name);
    ChangedLidar bench(name);
    EXPECT_GT(bench.Differing().size(), 20U);
    const ApplyReport report = bench.Apply(WithNetwork());
    EXPECT_TRUE(report.succeeded()) << report.ended << testing::PrintToString(Told(report));
    EXPECT_EQ(bench.Differing(), Lines());
    ASSERT_FALSE(bench.device.sent.empty());
    EXPECT_EQ(bench.device.sent.back(), 0x21) << "and nothing after the network settings";
    EXPECT_EQ(report.next_address, "10.1.2.1");
    for (const ApplyResult& result : report.results) {
      const bool is_network = result.reason.find("dropped the link") != std::string::npos;
      EXPECT_TRUE(result.outcome != Outcome::kWritten || is_network || result.reason.empty())
          << result.name << result.reason;
    }
    bench.device.open = true;
    EXPECT_TRUE(CompareSettings(bench.file, bench.Read(), bench.model->table.get()).equal);
    EXPECT_EQ(bench.Apply(WithNetwork()).Count(Outcome::kWritten), 0U) << "nothing is left to do";
  }
}

TEST(SettingsApplyTest, EndsAtTheCommandAtWhichTheLinkIsLost) {
  ChangedLidar bench("Orca");
  const Bytes writing = {0x12, 0x22, 0x2E, 0x31, 0x35, 0x3B};
  for (const uint8_t lost : writing) {
    SCOPED_TRACE(static_cast<int>(lost));
    bench.Reset();
    const ApplyPlan plan = PlanApply(*bench.model, bench.Read(), bench.file, WithNetwork());
    auto factory = bench.device.Held();
    bench.device.before = [&](uint8_t code) {
      bench.device.open = code != lost;
      return code == lost ? kNoReply : 0;
    };
    const ApplyReport report = RunApply(bench.lidar(), plan);
    EXPECT_EQ(report.ended, "the link was lost");
    EXPECT_TRUE(report.lost);
    EXPECT_EQ(report.next_address, "");
    auto held = bench.device.Held();
    for (const ApplyResult& result : report.results) {
      const VarInfo& var = bench[result.name];
      if (result.outcome == Outcome::kSkipped && result.reason.empty()) {
        ADD_FAILURE() << result.name << " is skipped without a reason";
      }
      if (!CanBeApplied(var)) {
        continue;
      }
      const Bytes before = factory[result.name];
      const Bytes wanted = bench.held[result.name];
      EXPECT_EQ(held[result.name], result.outcome == Outcome::kWritten ? wanted : before)
          << result.name;
      if (before != wanted) {
        EXPECT_EQ(result.reason == "no answer from the lidar: whether it was taken is not known",
                  IsCommand(var.set_cmd, lost));
      }
    }
  }
}

TEST(SettingsApplyTest, SaysWhatBecameOfEachValue) {
  ChangedLidar bench("Orca");
  bool changed = false;
  bench.device.before = [&](uint8_t code) {
    if (code == 0x3A && changed) {
      EXPECT_TRUE(bench.device.Preset("IMU Rate", "50"));
    }
    changed = changed || code == 0x3B;
    return code == 0x12 ? 3 : 0;
  };
  ApplyWish wish;
  wish.only = {"Spin Rate", "Return Mode", "IMU Rate", "IMU Output", "Standby", "Laser Power"};
  const ApplyPlan plan = PlanApply(*bench.model, bench.Read(), bench.file, wish);
  bench.device.before = [&, before = bench.device.before](uint8_t code) {
    return code == 0x34 ? 5 : before(code);
  };
  ApplyReport report = RunApply(bench.lidar(), plan);
  const std::string unsent =
      "nothing was sent: Window Heater, which goes with it, could not be read (lidar return code "
      "5 (authentication required))";
  EXPECT_EQ(
      Told(report, "not asked for"),
      (Lines{"Spin Rate refused: lidar return code 3 (value out of range)",
             "Return Mode refused: lidar return code 3 (value out of range)",
             "Standby refused: " + unsent, "Laser Power refused: " + unsent, "IMU Output written",
             "IMU Rate differs: taken, and the lidar holds another value"}));
  EXPECT_EQ(report.ended, "");
  EXPECT_FALSE(report.succeeded());
  const ApplyResult& rate =
      *std::find_if(report.results.begin(), report.results.end(),
                    [](const ApplyResult& result) { return result.outcome == Outcome::kDiffers; });
  EXPECT_EQ(rate.wanted + " " + rate.holds, "400 50");
  EXPECT_EQ(std::count(bench.device.sent.begin(), bench.device.sent.end(), 0x35), 0);
}

TEST(SettingsApplyTest, SucceedsOnlyWithWhatWasReadBack) {
  ChangedLidar bench("Orca");
  ApplyWish wish;
  wish.only = {"Spin Rate"};
  const ApplyPlan plan = PlanApply(*bench.model, bench.Read(), bench.file, wish);
  bool written = false;
  bench.device.before = [&](uint8_t code) {
    written = written || code == 0x12;
    return written && code == 0x11 ? 5 : 0;
  };
  const ApplyReport report = RunApply(bench.lidar(), plan);
  EXPECT_EQ(Told(report, "not asked for"),
            Lines{"Spin Rate written: taken, and not read back: " + CmxClient::ErrorText(5)});
  EXPECT_EQ(report.ended, "");
  EXPECT_FALSE(report.succeeded());
}

TEST(SettingsApplyTest, WhatTheUserIsTypingStaysAndIsNotSent) {
  ChangedLidar bench("Orca");
  ConfigParser& table = *bench.model->table;
  table.Edit(bench["Return Mode"], "2");
  table.Edit(bench["Spin Rate"], "300");
  ApplyWish wish;
  wish.only = {"Spin Rate"};
  EXPECT_TRUE(bench.Apply(wish).succeeded());
  EXPECT_EQ(bench.device.Held("Spin Rate"), (Bytes{0x04, 0xB0}));
  EXPECT_EQ(bench.device.Held("Return Mode"), (Bytes{0}));
  EXPECT_EQ(table.ValueOf(bench["Spin Rate"]).text, "300");
  EXPECT_EQ(table.ValueOf(bench["Spin Rate"]).reading, "1200");
  EXPECT_EQ(table.ValueOf(bench["Return Mode"]).text, "2");
  EXPECT_FALSE(table.ValueOf(bench["Minimum Distance"]).edited);
}

TEST(SettingsApplyTest, SendsNothingWhenItMayNotOrIsStopped) {
  ChangedLidar bench("Orca");
  bench.file.values.push_back(Value("Wrong", "1"));
  for (SavedValue& value : bench.file.values) {
    if (value.name == "Minimum Distance") {
      value.text = "4";
    }
  }
  ApplyReport report = bench.Apply({});
  EXPECT_EQ(report.ended, "some values cannot be written");
  EXPECT_FALSE(report.lost);
  EXPECT_EQ(report.Count(Outcome::kRefused), 1U);
  EXPECT_TRUE(bench.device.sent.empty());

  ApplyWish wish;
  wish.only = {"Spin Rate", "IMU Rate"};
  report = bench.Apply(wish, {[&] { return bench.device.sent.size() >= 3; }, nullptr});
  EXPECT_EQ(Told(report, "not asked for"),
            (Lines{"Spin Rate written", "IMU Rate skipped: not reached: it was stopped"}));
  EXPECT_EQ(report.ended, "it was stopped");
}

}  // namespace
