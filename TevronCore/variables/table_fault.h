#pragma once

#include <cstddef>
#include <string>
#include <vector>

/// Something in a table that its author should look at.
struct TableFault {
  enum class Severity {
    kFault,    ///< against the rules: what depends on it is left out or out of use
    kWarning,  ///< within the rules, works as it stands, and is probably not meant
  };

  size_t line = 0;   ///< 1-based line of the file; 0 when it is the whole file's.
  std::string text;  ///< Complete: file, line, what is wrong and what to write instead.
  Severity severity = Severity::kFault;
  std::string file{};  ///< Empty when it is no single file's.

  /// The text without file and line, which it begins with.
  std::string Reason() const {
    size_t begin = 0;
    for (const std::string& head : {file, ", line " + std::to_string(line), std::string(": ")}) {
      begin += text.compare(begin, head.size(), head) == 0 ? head.size() : 0;
    }
    return text.substr(begin);
  }
};

using TableFaults = std::vector<TableFault>;
