#include "files/whole_file.h"

#include <QFile>
#include <QSaveFile>
#include <QString>
#include <cerrno>
#include <filesystem>
#include <new>
#include <system_error>
#include <tuple>
#ifndef _WIN32
#include <sys/stat.h>
#include <unistd.h>
#endif

namespace {

namespace fs = std::filesystem;

constexpr char kNoFile[] = "there is no such file";
constexpr char kNotRegular[] = "this is there and is no regular file";
constexpr char kMakeRoom[] = "; make room on the disk, or choose another place";
constexpr char kHexDigits[] = "0123456789abcdef";

/// What a path leads to; none, with the reason, when that cannot be told.
fs::file_type TypeOf(const std::string& path, std::string* reason) {
  // Where the name is changed on its way to the system, another file would be meant.
  if (QString::fromStdString(path).toStdString() != path) {
    *reason = "the name is not in UTF-8";
    return fs::file_type::none;
  }
  std::error_code error;
  const fs::file_type type = fs::status(path, error).type();
  *reason = type == fs::file_type::none ? error.message() : "";
  return type;
}

/// Why a file cannot be opened that has to be there.
std::string ObstacleOf(const std::string& path) {
  std::string reason;
  const fs::file_type type = TypeOf(path, &reason);
  if (type == fs::file_type::not_found) {
    return kNoFile;
  }
  return type == fs::file_type::regular || !reason.empty() ? reason : kNotRegular;
}

std::string SizeText(uint64_t bytes) {
  constexpr uint64_t kKib = 1024;
  return bytes % (kKib * kKib) == 0 ? std::to_string(bytes / kKib / kKib) + " MiB"
                                    : std::to_string(bytes / kKib) + " KiB";
}

std::string OpenProblem(const QFileDevice& file, const char* remedy) {
  return file.errorString().toStdString() + "; " + remedy;
}

/// After a write that took `taken` of `size` bytes, without an error where the disk filled up.
std::string WriteProblem(const QFileDevice& file, qint64 taken, qint64 size) {
  const std::string reason =
      file.error() != QFileDevice::NoError
          ? file.errorString().toStdString()
          : "only " + std::to_string(taken) + " of " + std::to_string(size) + " bytes were taken";
  return reason + kMakeRoom;
}

/// Opens a file to be read; one that is too large is open then, too.
std::string Open(const std::string& path, uint64_t most_bytes, QFile* file) {
  if (std::string obstacle = ObstacleOf(path); !obstacle.empty()) {
    return obstacle;
  }
  // Without a buffer there is no second copy of a key.
  if (!file->open(QIODevice::ReadOnly | QIODevice::Unbuffered)) {
    return OpenProblem(*file, "let the user of this program read it");
  }
  return static_cast<uint64_t>(file->size()) > most_bytes
             ? "it is larger than " + SizeText(most_bytes)
             : "";
}

#ifdef _WIN32
void KeepOwner(const std::string& /*path*/, const QFileDevice& /*file*/) {}
std::string Store(const QFileDevice& /*file*/) { return ""; }
#else
/// What replaces a file belongs to whom that belonged to, as far as this user may give it away:
/// what root writes for a user stays the user's, and a group's stays the group's.
void KeepOwner(const std::string& path, const QFileDevice& file) {
  struct stat before = {};
  if (stat(path.c_str(), &before) == 0 &&
      fchown(file.handle(), before.st_uid, before.st_gid) != 0) {
    std::ignore = fchown(file.handle(), static_cast<uid_t>(-1), before.st_gid);
  }
}

/// A quota, or a disk elsewhere, may refuse only here what every write before was glad to take.
/// Returns the reason.
std::string Store(const QFileDevice& file) {
  const bool is_stored = fdatasync(file.handle()) == 0 || errno == EINVAL || errno == ENOSYS;
  return is_stored ? "" : std::generic_category().message(errno);
}
#endif

}  // namespace

std::string PathText(const std::string& path) {
  std::string text;
  for (const char c : QString::fromStdString(path).toStdString()) {
    const auto byte = static_cast<unsigned char>(c);
    if (byte < ' ' || byte == 0x7F) {
      text += std::string("\\x") + kHexDigits[byte >> 4] + kHexDigits[byte & 0x0F];
    } else {
      text += c;
    }
  }
  return text;
}

std::string LookAtFile(const std::string& path, uint64_t most_bytes,
                       std::optional<uint64_t>* size) {
  QFile file(QString::fromStdString(path));
  std::string reason = Open(path, most_bytes, &file);
  if (file.isOpen()) {
    *size = static_cast<uint64_t>(file.size());
  }
  return reason;
}

std::string ReadWholeFile(const std::string& path, uint64_t most_bytes,
                          const std::function<void*(size_t size)>& room) {
  QFile file(QString::fromStdString(path));
  if (std::string reason = Open(path, most_bytes, &file); !reason.empty()) {
    return reason;
  }
  const qint64 size = file.size();
  void* memory = nullptr;
  try {
    memory = room(static_cast<size_t>(size));
  } catch (const std::bad_alloc&) {
    return "there is no memory for its " + std::to_string(size) + " bytes";
  }
  if (size > 0 && file.read(static_cast<char*>(memory), size) != size) {
    return file.error() != QFileDevice::NoError ? file.errorString().toStdString()
                                                : "it became shorter while it was read";
  }
  return "";
}

std::string MakeFolder(const std::string& path) {
  std::error_code error;
  fs::create_directories(path, error);
  return error ? error.message() + "; choose another place" : "";
}

FileOutcome WriteWholeFile(const std::string& path, std::string_view bytes) {
  FileOutcome outcome;
  const fs::file_type type = TypeOf(path, &outcome.reason);
  if (type != fs::file_type::regular && type != fs::file_type::not_found) {
    outcome.reason = (outcome.reason.empty() ? kNotRegular : outcome.reason) +
                     std::string("; choose another name");
    return outcome;
  }
  QSaveFile file(QString::fromStdString(path));
  outcome.opened = file.open(QIODevice::WriteOnly);
  if (!outcome.opened) {
    outcome.reason = OpenProblem(file, "choose a folder that you may write to");
    return outcome;
  }
  KeepOwner(path, file);
  // A disk that fills up takes part of the bytes without an error, and a commit would then give the
  // final name to half a file.
  const auto size = static_cast<qint64>(bytes.size());
  const qint64 taken = file.write(bytes.data(), size);
  const bool is_taken = taken == size && file.flush() && file.size() == size;
  const std::string refusal = is_taken ? Store(file) : "";
  outcome.written = is_taken && refusal.empty() && file.commit();
  if (!outcome.written) {
    outcome.reason = refusal.empty() ? WriteProblem(file, taken, size) : refusal + kMakeRoom;
    file.cancelWriting();
  }
  return outcome;
}

std::string AppendToFile(const std::string& path, std::string_view bytes) {
  if (std::string obstacle = ObstacleOf(path); !obstacle.empty()) {
    return obstacle;
  }
  QFile file(QString::fromStdString(path));
  if (!file.open(QIODevice::Append | QIODevice::ExistingOnly | QIODevice::Unbuffered)) {
    return OpenProblem(file, "let the user of this program write it");
  }
  const qint64 before = file.size();
  const auto size = static_cast<qint64>(bytes.size());
  const qint64 taken = file.write(bytes.data(), size);
  if (taken == size) {
    return "";
  }
  std::string reason = WriteProblem(file, taken, size);
  file.resize(before);
  return reason;
}
