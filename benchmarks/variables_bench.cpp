// What loading a variable table costs, beside the CSV library alone on the same file.
#include <benchmark/benchmark.h>
#include <csv.h>

#include <filesystem>
#include <fstream>
#include <map>
#include <memory>
#include <string>

#include "variables/config_parser.h"
#include "variables/csv_reader.h"
#include "variables/pages.h"

namespace {

// Rows like those of a shipped table, written once per size.
const std::string& TableWithRows(int64_t rows) {
  static std::map<int64_t, std::string> paths;
  std::string& path = paths[rows];
  if (!path.empty()) {
    return path;
  }
  path =
      (std::filesystem::temp_directory_path() / ("tevron-bench-" + std::to_string(rows) + ".csv"))
          .string();
  std::ofstream file(path);
  file << "GroupID,Index,Get,Set,SetIndex,VarName,Permission,VarType,DefaultValue,Options,Unit,"
          "Coefficient,OptionDescription,FunctionModule,VarLen,TimerUpdate,SetCoefficient,"
          "GetCmdPayload\n";
  for (int64_t i = 0; i < rows; ++i) {
    const std::string group = std::to_string(i / 50 + 1);
    file << group << ',' << i % 50 << ",0x" << std::hex << i / 1000 + 0x1000 << ",0x"
         << i / 1000 + 0x2000 << std::dec << ',' << i + 1 << ",Variable of the table " << i
         << ",1,uint16,2.50," << (i % 4 == 0 ? "1..900" : "") << ",mm,0.5,,Page " << i * 8 / rows
         << ",2,0,," << (i % 10 == 0 ? "0x0102" : "") << '\n';
  }
  return path;
}

void ReportRows(benchmark::State& state) {
  state.SetItemsProcessed(state.iterations() * state.range(0));
  state.SetBytesProcessed(state.iterations() * static_cast<int64_t>(std::filesystem::file_size(
                                                   TableWithRows(state.range(0)))));
}

void LibcsvAlone(benchmark::State& state) {
  const std::string& path = TableWithRows(state.range(0));
  const auto count_cell = [](void* /*data*/, size_t size, void* total) {
    *static_cast<size_t*>(total) += size;
  };
  const auto count_row = [](int /*terminator*/, void* total) { ++*static_cast<size_t*>(total); };
  for (auto _ : state) {
    std::string input(std::filesystem::file_size(path), '\0');
    std::ifstream(path, std::ios::binary)
        .read(input.data(), static_cast<std::streamsize>(input.size()));
    csv_parser parser;
    csv_init(&parser, CSV_STRICT | CSV_STRICT_FINI);
    size_t total = 0;
    csv_parse(&parser, input.data(), input.size(), count_cell, count_row, &total);
    csv_fini(&parser, count_cell, count_row, &total);
    csv_free(&parser);
    benchmark::DoNotOptimize(total);
  }
  ReportRows(state);
}

void CellsOfATable(benchmark::State& state) {
  const std::string& path = TableWithRows(state.range(0));
  for (auto _ : state) {
    CsvReader reader(path);
    size_t cells = 0;
    while (reader.Next() == CsvReader::Event::kRow) {
      cells += reader.cell_count();
    }
    benchmark::DoNotOptimize(cells);
  }
  ReportRows(state);
}

void LoadOfAModel(benchmark::State& state) {
  const std::string& path = TableWithRows(state.range(0));
  for (auto _ : state) {
    auto parser = std::make_unique<ConfigParser>();
    parser->ExtractConfigInfo(path);
    benchmark::DoNotOptimize(parser->InTableOrder().size());
    if (!parser->Faults().empty()) {
      state.SkipWithError(parser->Faults().front().text.c_str());
      break;
    }
    state.PauseTiming();  // nobody waits for a model that goes
    parser.reset();
    state.ResumeTiming();
  }
  ReportRows(state);
}

void PagesOfAModel(benchmark::State& state) {
  ConfigParser parser;
  parser.ExtractConfigInfo(TableWithRows(state.range(0)));
  for (auto _ : state) {
    benchmark::DoNotOptimize(PageModel(parser).page_count());
  }
  ReportRows(state);
}

BENCHMARK(LibcsvAlone)->Arg(1000)->Arg(10000)->Arg(100000)->Unit(benchmark::kMillisecond);
BENCHMARK(CellsOfATable)->Arg(1000)->Arg(10000)->Arg(100000)->Unit(benchmark::kMillisecond);
BENCHMARK(LoadOfAModel)->Arg(1000)->Arg(10000)->Arg(100000)->Unit(benchmark::kMillisecond);
BENCHMARK(PagesOfAModel)->Arg(1000)->Arg(10000)->Arg(100000)->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_MAIN();
