#include "variables/feature_config.h"

#include <algorithm>
#include <filesystem>

#include "support/table_fixture.h"
#include "variables/model_list.h"

namespace {

using kavel::lidar::StaleInput;

constexpr char kHeader[] =
    "Model,EnableCmxClientHostPortUi,StaleInputWait,ConnectType,SerialKind,Link\n";
constexpr char kFile[] = "feature_config.csv";

/// A feature table's cells behind the model's name, what they mean, and the pieces of its faults.
struct Row {
  const char* model;
  const char* cells;
  ConnectType connect;
  int family;
  bool host_port;
  bool after_trouble;
  std::vector<std::string> faults;
  bool tls = false;
};

void ExpectFaults(const TableFaults& faults, const std::vector<std::string>& pieces) {
  EXPECT_EQ(faults.size(), pieces.size());
  for (size_t i = 0; i < std::min(faults.size(), pieces.size()); ++i) {
    EXPECT_NE(faults[i].text.find(pieces[i]), std::string::npos)
        << faults[i].text << "\n  says nothing of: " << pieces[i];
  }
}

TEST(FeatureConfig, TakesEachCellForWhatItSaysAndTellsWhatItShouldSay) {
  using Pieces = std::vector<std::string>;
  const Pieces all = {"line 2: EnableCmxClientHostPortUi \"yes\" is unknown; write 1 ",
                      "StaleInputWait \"troubel\"", "ConnectType \"7\"", "SerialKind \"x\""};
  const Pieces encoding = {"EnableCmxClientHostPortUi is no UTF-8 text", "is unknown"};
  const Pieces twice = {"line 4: model \"Heron\" has its row on line 2 already"};
  const Pieces link = {"Link \"TLS\" is unknown; write tcp or"};
  const Row rows[] = {
      {"Orca", "1,trouble,0,0", kNetworkLink, 0, true, true, {}},
      {"Orca\t", " 1 , always,,", kNetworkLink, 0, true, false, {}},
      {"Orca", "yes,troubel,7,x", kNetworkLink, 0, false, false, all},
      {"Orca", "11,,,", kNetworkLink, 0, false, false, {"EnableCmxClientHostPortUi \"11\""}},
      // Where a table says nothing, the name does.
      {"Lumo", "0,,,", kSerialPair, 1, false, false, {}},
      {"Lumo", "0", kSerialPair, 1, false, false, {}},
      {"Kiva-CMX", "0,,two,", kSerialCmx, 2, false, false, {"ConnectType \"two\""}},
      {"Lumo-CMX", "0,,0,0", kNetworkLink, 0, false, false, {}},
      {"Heron", "0,,1,1", kSerialPair, 1, false, false, {}},
      {"Heron", "0,,2,2", kSerialCmx, 2, false, false, {}},
      {"Heron", "0,,2,", kSerialCmx, 0, false, false, {"write 1 for a Lumo, 2 for a Kiva"}},
      {"Lumo", "0,,,0", kSerialPair, 0, false, false, {"does not say what kind of model"}},
      {"Heron", "\xE9,,,", kNetworkLink, 0, false, false, encoding},
      {"orca", "1,trouble,2,2\nOrca,0,,,", kSerialCmx, 2, true, true, {}},
      {"Heron", "1,,,\nOrca,0,,,\nHeron,0,,,", kNetworkLink, 0, true, false, twice},
      {"Orca", "0,trouble,,, tls ", kNetworkLink, 0, false, true, {}, true},
      {"Orca", "0,,,,tcp", kNetworkLink, 0, false, false, {}},
      {"Orca", "0,,,,TLS", kNetworkLink, 0, false, false, link},
      {"Lumo", "0,,,,tls", kSerialPair, 1, false, false, {"where Link cannot be tls"}},
      {"Heron", "1,,,\n\"broken", kNetworkLink, 0, true, false, {"line 3: "}},
  };
  for (const Row& row : rows) {
    const std::string text = std::string(row.model) + ',' + row.cells;
    SCOPED_TRACE(text);
    const TestFolder folder;
    folder.Write(kFile, kHeader + text + '\n');
    const std::string model(row.model, std::string(row.model).find_last_not_of('\t') + 1);
    TableFaults faults;
    const ModelFeatures got = LoadFeatures(ConfigFolder(folder.path()), model, &faults);
    EXPECT_EQ(got.connect_type, row.connect);
    EXPECT_EQ(static_cast<int>(got.family), row.family);
    EXPECT_EQ(got.host_port_enabled, row.host_port);
    EXPECT_EQ(got.stale_input == StaleInput::kAfterTrouble, row.after_trouble);
    EXPECT_EQ(got.link == NetworkLink::kTls, row.tls);
    ExpectFaults(faults, row.faults);
    EXPECT_EQ(IsHostPortUiEnabled(folder.path() + '/' + kFile, model), row.host_port);
  }
}

TEST(FeatureConfig, LetsTheSitesRowStandInThePlaceOfTheOneThatShips) {
  const TestFolder folder;
  const ConfigFolder config(folder.path());
  TableFaults faults;
  EXPECT_EQ(LoadFeatures(config, "Lumo", &faults).connect_type, kSerialPair);
  EXPECT_TRUE(faults.empty()) << "without any table";
  CheckFeatures(config, &faults);
  ExpectFaults(faults, {"feature_config.csv: there is no such file"});

  folder.Write(kFile, std::string(kHeader) + "Orca,1,trouble,,\nOsprey,1,,,\n");
  folder.Write(std::string("site/") + kFile, "Model,SerialKind,ConectType\nOrca,2,2\n,1,\n");
  folder.Write("varID/Osprey.csv", "");
  folder.Write("site/varID/Orca.csv", "");
  faults.clear();
  const ModelFeatures orca = LoadFeatures(config, "Orca", &faults);
  EXPECT_FALSE(orca.host_port_enabled);
  EXPECT_EQ(orca.stale_input, StaleInput::kAlways);
  EXPECT_EQ(orca.family, SerialFamily::kKiva);
  EXPECT_TRUE(LoadFeatures(config, "Osprey", &faults).host_port_enabled);
  faults.clear();
  CheckFeatures(config, &faults);
  ExpectFaults(
      faults, {"site/feature_config.csv: Can't find a column named EnableCmxClientHostPortUi",
               "the column \"ConectType\" is ignored", "line 3: model \"\" has no variable table"});
  EXPECT_THROW(IsHostPortUiEnabled(folder.path() + "/site/" + kFile, "Orca"), std::runtime_error);
  EXPECT_FALSE(IsHostPortUiEnabled("missing.csv", "Orca"));
}

TEST(ModelList, ListsTheTablesAndNothingElse) {
  const TestFolder folder;
  for (const char* name : {"Zeta.csv", "Alpha-CMX.csv", "notes.txt", "old.csv.bak"}) {
    folder.Write(name, "");
  }
  std::filesystem::create_directory(folder.path() + "/Folder.csv");
  EXPECT_EQ(ListModels(folder.path()), (std::vector<std::string>{"Alpha-CMX", "Zeta"}));
  EXPECT_TRUE(ListModels(folder.path() + "/none").empty());
}

}  // namespace
