#include "variables/csv_table.h"

#include <csv.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <new>
#include <stdexcept>

namespace {

constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";

std::string ReadWholeFile(const std::string& path) {
  std::error_code error;
  if (!std::filesystem::is_regular_file(path, error)) {
    throw std::runtime_error(path + ": " + (error ? error.message() : "not a regular file"));
  }
  const uintmax_t size = std::filesystem::file_size(path, error);
  if (error) {
    throw std::runtime_error(path + ": " + error.message());
  }
  if (size > CsvTable::kMaxFileBytes) {
    throw std::runtime_error(path + ": larger than 64 MiB");
  }
  std::ifstream file(path, std::ios::binary);
  if (!file) {
    throw std::runtime_error(path + ": " + std::strerror(errno));
  }
  std::string text(static_cast<size_t>(size), '\0');
  file.read(text.data(), static_cast<std::streamsize>(text.size()));
  if (file.bad()) {
    throw std::runtime_error(path + ": cannot be read");
  }
  text.resize(static_cast<size_t>(file.gcount()));  // it may have shrunk meanwhile
  return text;
}

int NothingIsSpace(unsigned char /*character*/) { return 0; }

// Owns the state of one run of libcsv.
class ParserState {
 public:
  ParserState() { Init(); }
  ~ParserState() { csv_free(&parser_); }
  ParserState(const ParserState&) = delete;
  ParserState& operator=(const ParserState&) = delete;

  void Restart() {
    csv_free(&parser_);
    Init();
  }
  csv_parser* get() { return &parser_; }

 private:
  void Init() {
    if (csv_init(&parser_, CSV_STRICT | CSV_STRICT_FINI) != 0) {
      throw std::bad_alloc();
    }
    csv_set_space_func(&parser_, NothingIsSpace);  // blanks around a cell are content
  }

  csv_parser parser_;
};

}  // namespace

// Feeds libcsv one line at a time, so that the line of every row is known, and starts again behind
// the first line of a row that breaks the quoting rules.
class CsvReader {
 public:
  CsvReader(CsvTable* table, std::string_view input) : table_(table), input_(input) {
    // The callbacks must not throw through the C library, so everything they append to has its room
    // beforehand.
    const auto breaks = static_cast<size_t>(std::count(input.begin(), input.end(), '\n') +
                                            std::count(input.begin(), input.end(), '\r'));
    const auto commas = static_cast<size_t>(std::count(input.begin(), input.end(), ','));
    table_->text_.resize(input.size());
    table_->cell_ends_.reserve(breaks + commas + 1);
    table_->row_starts_.reserve(breaks + 2);
    table_->row_lines_.reserve(breaks + 1);
    table_->row_starts_.push_back(0);
  }

  void Read() {
    while (!Done()) {
      if (ReadLine()) {
        continue;
      }
      if (csv_error(parser_.get()) == CSV_ENOMEM) {
        throw std::bad_alloc();
      }
      LeaveRowOut(
          "a quotation mark stands where none may be; quote the whole cell and double the "
          "quotation marks inside");
    }
  }

 private:
  static void OnCell(void* data, size_t size, void* self) {
    auto* reader = static_cast<CsvReader*>(self);
    if (size > 0) {
      std::memcpy(reader->table_->text_.data() + reader->text_size_, data, size);
      reader->text_size_ += size;
    }
    reader->table_->cell_ends_.push_back(static_cast<uint32_t>(reader->text_size_));
  }

  static void OnRow(int /*terminator*/, void* self) {
    auto* reader = static_cast<CsvReader*>(self);
    reader->row_open_ = false;
    reader->table_->row_starts_.push_back(static_cast<uint32_t>(reader->table_->cell_ends_.size()));
    reader->table_->row_lines_.push_back(static_cast<uint32_t>(reader->row_line_));
  }

  // Whether the input is used up; the last row may then lack its line break.
  bool Done() {
    if (table_->faults_.size() >= CsvTable::kMaxFaults) {
      return true;
    }
    if (position_ < input_.size()) {
      return false;
    }
    // Asked for whatever row_open_ says: a carriage return alone ends a row in the middle of a
    // line.
    if (csv_fini(parser_.get(), OnCell, OnRow, this) != 0) {
      LeaveRowOut("the quotation mark that opens a cell is never closed");
      return false;
    }
    return true;
  }

  bool ReadLine() {
    const size_t end = EndOfLine(position_);
    const std::string_view line = input_.substr(position_, end - position_);
    position_ = end;
    ++line_;
    if (!row_open_) {
      if (line == "\n" || line == "\r\n") {
        return true;
      }
      row_open_ = true;
      row_line_ = line_;
      row_end_of_first_line_ = end;
    }
    return csv_parse(parser_.get(), line.data(), line.size(), OnCell, OnRow, this) == line.size();
  }

  size_t EndOfLine(size_t position) const {
    const size_t found = input_.find('\n', position);
    return found == std::string_view::npos ? input_.size() : found + 1;
  }

  void LeaveRowOut(const char* reason) {
    table_->faults_.push_back({row_line_, reason});
    table_->cell_ends_.resize(table_->row_starts_.back());
    text_size_ = table_->cell_ends_.empty() ? 0 : table_->cell_ends_.back();
    parser_.Restart();
    row_open_ = false;
    // Without its header no cell of the file has a meaning.
    position_ = table_->row_lines_.empty() ? input_.size() : row_end_of_first_line_;
    line_ = row_line_;
  }

  CsvTable* table_;
  std::string_view input_;
  ParserState parser_;
  size_t position_ = 0;
  size_t line_ = 0;
  size_t row_line_ = 0;
  size_t row_end_of_first_line_ = 0;
  bool row_open_ = false;
  size_t text_size_ = 0;
};

CsvTable::CsvTable(const std::string& path) {
  const std::string input = ReadWholeFile(path);
  std::string_view rows = input;
  if (rows.substr(0, kByteOrderMark.size()) == kByteOrderMark) {
    rows.remove_prefix(kByteOrderMark.size());
  }
  CsvReader(this, rows).Read();

  if (row_lines_.empty()) {
    return;
  }
  for (size_t column = 0; column < CellCount(0); ++column) {
    header_.emplace_back(Cell(0, column));
  }
  row_starts_.erase(row_starts_.begin());
  row_lines_.erase(row_lines_.begin());
}

std::optional<size_t> CsvTable::FindColumn(std::string_view name) const {
  const auto found = std::find(header_.begin(), header_.end(), name);
  if (found == header_.end()) {
    return std::nullopt;
  }
  return static_cast<size_t>(found - header_.begin());
}

size_t CsvTable::Column(std::string_view name) const {
  const std::optional<size_t> column = FindColumn(name);
  if (!column) {
    throw std::runtime_error("Can't find a column named " + std::string(name));
  }
  return *column;
}

std::string_view CsvTable::Cell(size_t row, size_t column) const {
  if (column >= CellCount(row)) {
    return {};
  }
  const size_t cell = row_starts_[row] + column;
  const size_t begin = cell == 0 ? 0 : cell_ends_[cell - 1];
  return std::string_view(text_).substr(begin, cell_ends_[cell] - begin);
}
