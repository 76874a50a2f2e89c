#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

// Every file that is read or written whole goes through here, and every line that is added to one.
// Nothing waits for another program: what is no regular file (a folder, a pipe, a device) is
// refused unopened. Symbolic links are followed, also by a writer. Paths are in UTF-8. All may be
// called on any thread; all wait for the disk.
//
// A reason is a part of a sentence, to stand behind PathText(path) and a colon; "" when it went
// well.

/// A path, or a part of one, as it can stand in the line of a message: control characters as
/// "\x0a", bytes that are no UTF-8 as U+FFFD.
std::string PathText(const std::string& path);

/// Bytes of any kind for those who take a text.
template <class Bytes>
std::string_view BytesOf(const Bytes& bytes) {
  return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
}

/// Why ReadWholeFile would not read the file, as far as that can be told without reading; the size
/// is in *size when the file could be opened.
std::string LookAtFile(const std::string& path, uint64_t most_bytes, std::optional<uint64_t>* size);

/// Asks `room` for as much memory as the file is large, and fills that. `room` is not called for a
/// file of more than `most_bytes`; it may throw std::bad_alloc. A file that lacks a part of what it
/// had when it was opened is not read.
std::string ReadWholeFile(const std::string& path, uint64_t most_bytes,
                          const std::function<void*(size_t size)>& room);

/// The same into anything with resize() and data(), which is empty unless the reason is "".
template <class Bytes>
std::string ReadWholeFile(const std::string& path, uint64_t most_bytes, Bytes* bytes) {
  std::string reason = ReadWholeFile(path, most_bytes, [bytes](size_t size) {
    bytes->resize(static_cast<decltype(bytes->size())>(size));
    return static_cast<void*>(bytes->data());
  });
  if (!reason.empty()) {
    bytes->resize(0);
  }
  return reason;
}

/// Makes a folder with all above it, unless it is there. Returns the reason.
std::string MakeFolder(const std::string& path);

/// How the writing of a file went.
struct FileOutcome {
  bool opened = false;  ///< a new file could be begun in the folder
  bool written = false;
  std::string reason;
};

/// Writes the bytes beside `path` and gives them its name once all of them are stored: whatever
/// happens, the name stands for the whole of them or for what it stood for before, and nothing is
/// left beside it. Where a link stands, the file that it leads to is replaced. Mode, group and, for
/// root, owner are as they were.
FileOutcome WriteWholeFile(const std::string& path, std::string_view bytes);

/// Adds the bytes to a file that is there, all of them or none. Returns the reason.
std::string AppendToFile(const std::string& path, std::string_view bytes);
