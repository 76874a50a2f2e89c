// Gives every seed to its target once, so that what a fuzzer has found stays found, with any
// compiler; or writes the seeds out for libFuzzer: run_seeds [--write FOLDER].
//
// The seeds of a target are the files of its folder below tests/fuzz/seeds and of what ships. In a
// file that ends in ".hex" stand hexadecimal digits, and remarks from "#" to the end of a line.

#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>
#include <vector>

#include "fuzz/fuzz_targets.h"

namespace {

namespace fs = std::filesystem;

Bytes ReadSeed(const fs::path& path) {
  std::ifstream file(path, std::ios::binary);
  if (path.extension() != ".hex") {
    return {std::istreambuf_iterator<char>(file), {}};
  }
  std::string digits;
  for (std::string line; std::getline(file, line);) {
    digits += line.substr(0, line.find('#'));
  }
  return FromHex(digits);
}

std::vector<fs::path> FilesOf(const fs::path& place) {
  std::vector<fs::path> files;
  if (fs::is_regular_file(place)) {
    files.push_back(place);
  } else if (fs::is_directory(place)) {
    for (const fs::directory_entry& entry : fs::recursive_directory_iterator(place)) {
      if (entry.is_regular_file()) {
        files.push_back(entry.path());
      }
    }
  }
  return files;
}

std::vector<fs::path> SeedsOf(const FuzzTarget& target) {
  const fs::path source = TEVRON_SOURCE;
  std::vector<fs::path> seeds = FilesOf(source / "tests/fuzz/seeds" / target.name);
  if (*target.shipped != '\0') {
    const std::vector<fs::path> shipped = FilesOf(source / target.shipped);
    seeds.insert(seeds.end(), shipped.begin(), shipped.end());
  }
  return seeds;
}

void WriteSeed(const fs::path& file, const Bytes& seed) {
  fs::create_directories(file.parent_path());
  std::ofstream(file, std::ios::binary)
      .write(reinterpret_cast<const char*>(seed.data()), static_cast<std::streamsize>(seed.size()));
}

}  // namespace

int main(int argc, char** argv) {
  const std::string folder = argc == 3 && std::string(argv[1]) == "--write" ? argv[2] : "";
  for (const FuzzTarget& target : kFuzzTargets) {
    const std::vector<fs::path> seeds = SeedsOf(target);
    for (size_t i = 0; i < seeds.size(); ++i) {
      const fs::path& path = seeds[i];
      const Bytes seed = ReadSeed(path);
      if (!folder.empty()) {
        WriteSeed(fs::path(folder) / target.name / (std::to_string(i) + path.stem().string()),
                  seed);
        continue;
      }
      std::cerr << target.name << ": " << path.string() << '\n';  // the last one is at fault
      target.run({seed.data(), seed.size()});
    }
    if (seeds.empty()) {
      std::cerr << target.name << " has no seed\n";
      return 1;
    }
  }
  return 0;
}
