#include "fuzz/fuzz_targets.h"
#include "fuzz/table_check.h"
#include "variables/table_rules.h"

void FuzzTable(FuzzInput input) {
  FuzzFolder().Write("varID/Orca.csv", input.RestText());
  LoadedTable loaded = LoadModelTable(ConfigFolder(FuzzFolder().path()), "Orca");
  Require(loaded.faults.size() <= FaultList::kMost + 2, "what is told of a file is bounded");
  Require(loaded.rows.size() <= kMaxTableRows, "rows are bounded");
  ConfigParser table(std::move(loaded));
  CheckLoadedTable(table);
}
