#pragma once

#include <optional>
#include <string>
#include <vector>

#include "dissector/dissector_tables.h"
#include "variables/command_code.h"

/// A request of a model's table, and what its payload or that of its answer is made of.
struct Layout {
  const char* verb;        ///< "Read", "Write" or "Download"
  std::string name;        ///< what it is about, as the screens call it
  WireCommand command;     ///< of the request, with the fixed bytes
  size_t size = 0;         ///< bytes of all variables, those left out among them
  std::string version;     ///< hardware version that it is for; empty: all
  bool has_parts = false;  ///< of a download: the request ends with the number of a part
  std::vector<const VarInfo*> fields;
};

/// All requests that the model's tables describe and that can be sent, in the order of their first
/// rows: reads, writes, downloads. No two of one verb have the same name, unless their rows give
/// them no other.
std::vector<Layout> LayoutsOf(const DissectedModel& dissected);

/// The byte that a firmware image of this model travels under.
uint8_t FirmwareCodeOf(const ConfigParser& table);
