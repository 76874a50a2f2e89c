#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

/// The first row of a comma-separated file.
class CsvHeader {
 public:
  /// Position of the column with exactly this name, the first if several have it.
  std::optional<size_t> FindColumn(std::string_view name) const;
  /// The same; throws std::runtime_error "Can't find a column named " and the name.
  size_t Column(std::string_view name) const;

  std::vector<std::string> names;
};

/// Reads a comma-separated file row by row: one header row, then data rows, cells found by header
/// name.
///
/// Reading follows RFC 4180 with strict quoting: commas, line breaks and doubled quotes inside
/// quoted cells are content, CRLF and LF both end a row, blanks are content, empty lines are
/// skipped, and a UTF-8 byte-order mark before the header is dropped. A row that breaks the quoting
/// rules or the bounds below is told as broken, and reading goes on behind its first line.
///
/// Holds the file and the rows of one line. For one thread.
class CsvReader {
 public:
  /// Files above this size are refused before any memory is taken for them.
  static constexpr size_t kMaxFileBytes = size_t{64} * 1024 * 1024;
  /// Cells of a row, and bytes of a cell.
  static constexpr size_t kMaxColumns = 256;
  static constexpr size_t kMaxCellBytes = 4096;
  /// Reading stops after this many broken rows: the file is then no table at all.
  static constexpr size_t kMaxBrokenRows = 100;

  /// Of so many lines that are not UTF-8 the numbers are kept.
  static constexpr size_t kMaxForeignLines = 100;

  /// What becomes of bytes that are not UTF-8.
  enum class Foreign { kKept, kReplaced };

  enum class Event {
    kRow,
    kBrokenRow,  ///< reason() says why; the cells in front of the fault can be asked for
    kEnd,
  };

  /// Reads the file and its header. Throws std::runtime_error, whose text names the file and the
  /// reason, when it is missing, not a regular file, too large, unreadable or UTF-16. An empty file
  /// has no columns. A broken header leaves none either: it is then the one row that Next() tells.
  /// With `foreign` kReplaced, bytes that are not UTF-8 are read as replacement characters.
  explicit CsvReader(const std::string& path, Foreign foreign = Foreign::kKept);
  ~CsvReader();
  CsvReader(const CsvReader&) = delete;
  CsvReader& operator=(const CsvReader&) = delete;

  const CsvHeader& header() const { return header_; }

  /// The first lines where something was replaced, 1-based.
  const std::vector<size_t>& foreign_lines() const { return foreign_lines_; }

  /// Whether the rest of the file was left out because too many rows are broken. Known when kEnd
  /// was told.
  bool gave_up() const { return position_ < input_.size(); }

  /// Lines of the file: no more rows than this come.
  size_t MostRows() const;

  /// Goes to the next row.
  Event Next();

  /// 1-based line of the file where the row starts.
  size_t line() const { return line_; }
  /// Number of cells that the row really has: fewer or more than the header's are both possible.
  size_t cell_count() const { return row_end_ - row_begin_; }
  /// Content of a cell, empty when the row is too short. Valid until Next().
  std::string_view Cell(size_t column) const {
    if (column >= cell_count()) {
      return {};
    }
    const Place& cell = cells_[row_begin_ + column];
    return {(line_is_plain_ ? input_ : text_).data() + cell.begin, cell.size};
  }
  /// Why the row is broken.
  const std::string& reason() const { return reason_; }

 private:
  class Parser;

  void FeedLine();
  void SplitLine(std::string_view line);
  void Feed(std::string_view bytes);
  void Finish();
  Event TellRow();
  Event TellBrokenRow();
  void DropToldRows();

  static void OnCell(void* data, size_t size, void* self);
  static void OnRow(int terminator, void* self);

  std::string input_;
  std::vector<size_t> foreign_lines_;
  std::unique_ptr<Parser> parser_;
  CsvHeader header_;
  bool header_is_broken_ = false;

  // What the parser has given. A line may end in the middle of a row, where a quoted cell goes on,
  // and hold several rows, where a carriage return alone ends them.
  struct Place {
    size_t begin;
    size_t size;
  };
  std::vector<Place> cells_;
  std::string text_;  // what the parser made of the cells; cells of a plain line lie in input_
  bool line_is_plain_ = false;
  struct Row {
    size_t end;  // number of its last cell, and one
    size_t line;
  };
  std::vector<Row> rows_;  // the complete ones
  size_t told_rows_ = 0;
  const char* fault_ = nullptr;  // of the row behind the complete ones

  size_t position_ = 0;    // in input_
  size_t fed_lines_ = 0;   // up to there
  bool row_open_ = false;  // the parser is in the middle of a row
  size_t open_line_ = 0;   // where that row starts, and where its first line ends in input_
  size_t open_line_end_ = 0;
  size_t broken_rows_ = 0;

  // The row told last.
  size_t row_begin_ = 0;
  size_t row_end_ = 0;
  size_t line_ = 0;
  std::string reason_;
};
