#include "variables/csv_reader.h"

#include <csv.h>

#include <algorithm>
#include <new>
#include <stdexcept>

#include "files/whole_file.h"
#include "variables/utf8_text.h"

namespace {

constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";

// Bytes that the parser gets at a time, so that a row which breaks a bound is noticed before all of
// a long line has been looked at.
constexpr size_t kBite = 4096;

constexpr char kMisplacedQuote[] =
    "a quotation mark stands where none may be; quote the whole cell and double the quotation "
    "marks inside";
constexpr char kOpenQuote[] =
    "the quotation mark that opens a cell is never closed; write one behind the cell";
constexpr char kTooManyCells[] =
    "more than 256 cells; a row has no more of them than the header, and a cell with a comma "
    "stands in quotation marks";
constexpr char kLongCell[] =
    "a cell is longer than 4 KiB; write less, or close the quotation mark that opens it";

std::string ReadTable(const std::string& path) {
  std::string text;
  if (const std::string reason = ReadWholeFile(path, CsvReader::kMaxFileBytes, &text);
      !reason.empty()) {
    throw std::runtime_error(PathText(path) + ": " + reason);
  }
  if (const std::string start = text.substr(0, 2); start == "\xFF\xFE" || start == "\xFE\xFF") {
    throw std::runtime_error(PathText(path) + ": is saved as UTF-16; save it as UTF-8");
  }
  return text;
}

// One row, with no cell in quotation marks. A carriage return inside would end a row.
bool IsPlain(std::string_view line) {
  const size_t carriage_return = line.find('\r');
  return line.find('"') == std::string_view::npos &&
         (carriage_return == std::string_view::npos || carriage_return + 2 >= line.size());
}

int NothingIsSpace(unsigned char /*character*/) { return 0; }

// Room for what comes, growing as push_back would.
template <typename Container>
void MakeRoom(Container* container, size_t more) {
  if (container->capacity() - container->size() < more) {
    container->reserve(std::max(2 * container->capacity(), container->size() + more));
  }
}

}  // namespace

// Owns the state of one run of libcsv.
class CsvReader::Parser {
 public:
  Parser() { Init(); }
  ~Parser() { csv_free(&parser_); }
  Parser(const Parser&) = delete;
  Parser& operator=(const Parser&) = delete;

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

CsvReader::CsvReader(const std::string& path, Foreign foreign)
    : input_(ReadTable(path)), parser_(std::make_unique<Parser>()) {
  if (foreign == Foreign::kReplaced && Utf8PrefixOf(input_) != input_.size()) {
    input_ = Utf8Of(input_, kMaxForeignLines, &foreign_lines_);
  }
  if (std::string_view(input_).substr(0, kByteOrderMark.size()) == kByteOrderMark) {
    position_ = kByteOrderMark.size();
  }
  const Event event = Next();
  header_is_broken_ = event == Event::kBrokenRow;
  if (event == Event::kRow) {
    for (size_t column = 0; column < cell_count(); ++column) {
      header_.names.emplace_back(Cell(column));
    }
  }
}

CsvReader::~CsvReader() = default;

std::optional<size_t> CsvHeader::FindColumn(std::string_view name) const {
  const auto found = std::find(names.begin(), names.end(), name);
  if (found == names.end()) {
    return std::nullopt;
  }
  return static_cast<size_t>(found - names.begin());
}

size_t CsvHeader::Column(std::string_view name) const {
  const std::optional<size_t> column = FindColumn(name);
  if (!column) {
    throw std::runtime_error("Can't find a column named " + std::string(name));
  }
  return *column;
}

size_t CsvReader::MostRows() const {
  return static_cast<size_t>(std::count(input_.begin(), input_.end(), '\n') +
                             std::count(input_.begin(), input_.end(), '\r') + 1);
}

CsvReader::Event CsvReader::Next() {
  if (header_is_broken_) {
    // Without its header no cell of the file has a meaning.
    header_is_broken_ = false;
    position_ = input_.size();
    return Event::kBrokenRow;
  }
  while (true) {
    if (told_rows_ < rows_.size()) {
      return TellRow();
    }
    if (fault_ != nullptr) {
      return TellBrokenRow();
    }
    DropToldRows();
    if (broken_rows_ >= kMaxBrokenRows) {
      return Event::kEnd;
    }
    if (position_ < input_.size()) {
      FeedLine();
      continue;
    }
    Finish();
    if (rows_.empty() && fault_ == nullptr) {
      return Event::kEnd;
    }
  }
}

CsvReader::Event CsvReader::TellRow() {
  row_begin_ = told_rows_ == 0 ? 0 : rows_[told_rows_ - 1].end;
  row_end_ = rows_[told_rows_].end;
  line_ = rows_[told_rows_].line;
  ++told_rows_;
  return Event::kRow;
}

CsvReader::Event CsvReader::TellBrokenRow() {
  row_begin_ = rows_.empty() ? 0 : rows_.back().end;
  row_end_ = cells_.size();
  line_ = open_line_;
  reason_ = fault_;
  fault_ = nullptr;
  // Nothing of it is left when the next row is asked for.
  rows_.push_back({row_end_, line_});
  told_rows_ = rows_.size();
  parser_->Restart();
  row_open_ = false;
  position_ = open_line_end_;
  fed_lines_ = open_line_;
  ++broken_rows_;
  return Event::kBrokenRow;
}

void CsvReader::DropToldRows() {
  if (rows_.empty()) {
    return;
  }
  const size_t told_cells = rows_.back().end;
  rows_.clear();
  told_rows_ = 0;
  if (told_cells == cells_.size()) {
    cells_.clear();
    text_.clear();
    return;
  }
  const size_t bytes = cells_[told_cells].begin;
  cells_.erase(cells_.begin(), cells_.begin() + static_cast<std::ptrdiff_t>(told_cells));
  text_.erase(0, bytes);
  for (Place& cell : cells_) {
    cell.begin -= bytes;
  }
}

void CsvReader::FeedLine() {
  const size_t found = input_.find('\n', position_);
  const size_t end = found == std::string::npos ? input_.size() : found + 1;
  const std::string_view line = std::string_view(input_).substr(position_, end - position_);
  position_ = end;
  ++fed_lines_;
  if (!row_open_) {
    if (line == "\n" || line == "\r\n") {
      return;
    }
    open_line_ = fed_lines_;
    open_line_end_ = end;
    line_is_plain_ = IsPlain(line) && cells_.empty();
    if (line_is_plain_) {
      SplitLine(line);
      return;
    }
  }
  for (size_t at = 0; at < line.size() && fault_ == nullptr; at += kBite) {
    Feed(line.substr(at, kBite));
  }
  row_open_ = parser_->get()->pstate != 0;  // 0 is between rows
}

// Without a quotation mark commas are all there is to know, which is several times faster.
void CsvReader::SplitLine(std::string_view line) {
  line = line.substr(0, line.find_last_not_of("\r\n") + 1);
  if (line.empty()) {
    return;
  }
  const auto start = static_cast<size_t>(line.data() - input_.data());
  for (size_t begin = 0; begin <= line.size();) {
    const size_t end = std::min(line.find(',', begin), line.size());
    if (end - begin > kMaxCellBytes || cells_.size() == kMaxColumns) {
      fault_ = cells_.size() == kMaxColumns ? kTooManyCells : kLongCell;
      return;
    }
    cells_.push_back({start + begin, end - begin});
    begin = end + 1;
  }
  rows_.push_back({cells_.size(), open_line_});
}

void CsvReader::Feed(std::string_view bytes) {
  // The callbacks must not throw through the C library, so everything they append to has its room
  // beforehand.
  MakeRoom(&text_, parser_->get()->entry_pos + bytes.size());
  MakeRoom(&cells_, bytes.size() + 1);
  MakeRoom(&rows_, bytes.size() + 1);
  const size_t done = csv_parse(parser_->get(), bytes.data(), bytes.size(), OnCell, OnRow, this);
  if (done == bytes.size()) {
    if (fault_ == nullptr && parser_->get()->entry_pos > kMaxCellBytes) {
      fault_ = kLongCell;
    }
    return;
  }
  if (csv_error(parser_->get()) == CSV_ENOMEM) {
    throw std::bad_alloc();
  }
  fault_ = fault_ == nullptr ? kMisplacedQuote : fault_;
}

// The last row may lack its line break.
void CsvReader::Finish() {
  MakeRoom(&text_, parser_->get()->entry_pos);
  MakeRoom(&cells_, 1);
  MakeRoom(&rows_, 1);
  if (csv_fini(parser_->get(), OnCell, OnRow, this) != 0 && fault_ == nullptr) {
    fault_ = kOpenQuote;
  }
}

void CsvReader::OnCell(void* data, size_t size, void* self) {
  auto* reader = static_cast<CsvReader*>(self);
  if (reader->fault_ != nullptr) {
    return;
  }
  const size_t row_begin = reader->rows_.empty() ? 0 : reader->rows_.back().end;
  if (size > kMaxCellBytes) {
    reader->fault_ = kLongCell;
  } else if (reader->cells_.size() - row_begin == kMaxColumns) {
    reader->fault_ = kTooManyCells;
  } else {
    reader->cells_.push_back({reader->text_.size(), size});
    if (size > 0) {
      reader->text_.append(static_cast<const char*>(data), size);
    }
  }
}

void CsvReader::OnRow(int /*terminator*/, void* self) {
  auto* reader = static_cast<CsvReader*>(self);
  if (reader->fault_ == nullptr) {
    reader->rows_.push_back({reader->cells_.size(), reader->open_line_});
  }
}
