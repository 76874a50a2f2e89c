#include "variables/monitor_tables.h"

#include "pages/edit_session.h"
#include "pages/page_reader.h"
#include "session/lidar_model.h"
#include "support/recorded_report.h"
#include "support/scripted_sender.h"
#include "support/table_fixture.h"

namespace {

constexpr char kOwnRows[] =
    "1,1,0x30,0x31,,Speed,1,uint8,5,,,,,Page,,0,,,\n"
    "2,1,0x32,,,Block,0,uint8,7,monitor,,,,Watch,,0,,,\n"
    "3,1,,0x10,,Last,0,raw,,,,,,,0,0,,,\n";
// Ids, names and a command are those of the model's own table.
constexpr char kMonitorRows[] =
    "1,1,0x32,,,Pressure,0,int16,1.00,,hPa,0.5,,Elsewhere,,0,,,\n"
    "1,2,0x32,,,Speed,0,uint8,1,,rpm,,,,,0,,,\n"
    "1,3,0x33,0x34,,Written,1,uint8,1,,,,,,,0,,,\n"
    "1,4,0x31,,,Trigger,0,uint8,1,,,,,,,0,,,\n"
    "1,5,0x35,,,Name,0,string,a,,,,,,4,0,,,\n"
    "1,6,0x35,,,Reserved,0,uint8,0,hidden,,,,,,0,,,\n";

TEST(MonitorTables, AreFoundByTheirNames) {
  const std::pair<const char*, const char*> names[] = {
      {"Monitor_A1.csv", "A1"}, {"Monitor_A1_rev 2.CSV", "A1_rev 2"},
      {"Monitor_.csv", ""},     {"monitor_A1.csv", ""},
      {"Monitor_A1.csv~", ""},  {"Monitor_A1", ""},
      {"xMonitor_A1.csv", ""},  {"Monitor_Monitor_.csv.csv", "Monitor_.csv"},
      {"Monitor.csv", ""},
  };
  const TestFolder folder;
  for (const auto& [name, version] : names) {
    EXPECT_EQ(MonitorVersionOf(name), version) << name;
    folder.Write(std::string("varID/Model/") + name, "");
  }
  folder.Write("varID/Monitor_E.csv", "");
  const ConfigFolder config(folder.path());
  EXPECT_EQ(ListMonitorVersions(config, "Model"),
            (std::vector<std::string>{"A1", "A1_rev 2", "Monitor_.csv"}));
  EXPECT_TRUE(ListMonitorVersions(config, "Nobody").empty());

  const std::string sites = folder.Write("site/varID/Model/Monitor_A1.csv", "");
  folder.Write("site/varID/Model/Monitor_S.csv", "");
  EXPECT_EQ(ListMonitorVersions(config, "Model"),
            (std::vector<std::string>{"A1", "A1_rev 2", "Monitor_.csv", "S"}));
  EXPECT_EQ(MonitorTablePath(config, "Model", "A1"), sites);
}

TEST(MonitorTables, AddRowsToTheMonitorPageAndLeaveEverythingElseAlone) {
  const TestFolder folder;
  folder.Write("varID/Model.csv", std::string(kTableHeader) + kOwnRows);
  folder.Write("varID/Model/Monitor_A.csv", std::string(kTableHeader) + kMonitorRows);
  const std::shared_ptr<LidarModel> own = LoadLidarModel(ConfigFolder(folder.path()), "Model");
  RecordedReport report;
  EditSession edits(*own->table);
  edits.SetText(EditSession::kTextInput, *own->table->FindByName("Speed"), "77", report);

  TableFaults faults;
  EXPECT_EQ(WithMonitorVersion(*own, "B", &faults), nullptr);
  EXPECT_TRUE(faults.empty());
  std::shared_ptr<LidarModel> model = WithMonitorVersion(*own, "A", &faults);
  ASSERT_NE(model, nullptr);
  EXPECT_EQ(faults.size(), 2U) << "what writes";
  // Of a model that has one already.
  model = WithMonitorVersion(*model, "A", &faults);
  ConfigParser& table = *model->table;
  ASSERT_EQ(model->pages.page_count(), 2);
  EXPECT_EQ(model->pages.VariablesOf(0), own->pages.VariablesOf(0));
  const std::vector<const VarInfo*> page = model->pages.VariablesOf(1);
  ASSERT_EQ(page.size(), 6U) << "the block and five";
  EXPECT_EQ(table.ValueOf(*page[2]).text, "1");
  EXPECT_EQ(table.FindByName("Speed"), own->table->FindByName("Speed"));
  EXPECT_EQ(table.ValueOf(*table.Find("1-1")).text, "77");
  for (const VarInfo* var : page) {
    EXPECT_EQ(model->pages.At(1, model->pages.PositionOf(*var).level2,
                              model->pages.PositionOf(*var).level3),
              var);
    EXPECT_FALSE(CanBeChanged(*var));
  }
  EXPECT_EQ(DrawableVariables(model->pages, 1),
            (std::vector<const VarInfo*>{page[0], page[1], page[2], page[3]}));

  ScriptedSender lidar;
  lidar.replies = {{0, {9}}, {0, {0xFF, 0xFE, 8}}, {0, {4}}, {0, {'n', 'e', 'w', 0, 0}}};
  LinkState state;
  state.connected = true;
  ReadFailures failures;
  PageReader reader(lidar, table, state, failures, report);
  EXPECT_TRUE(reader.Read(page, "test").failed.empty());
  const char* texts[] = {"9", "-1.00", "8", "4", "1", "new"};
  for (size_t i = 0; i < page.size(); ++i) {
    EXPECT_EQ(table.ValueOf(*page[i]).text, texts[i]) << page[i]->var_name;
  }
  EXPECT_EQ(own->table->ValueOf(*own->table->FindByName("Block")).text, "7");
}

}  // namespace
