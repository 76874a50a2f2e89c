#include "support_bundle/zip_bytes.h"

#include <archive.h>
#include <archive_entry.h>

#include <ctime>
#include <memory>
#include <stdexcept>

namespace {

constexpr int kPermissions = 0644;

la_ssize_t Append(archive* /*zip*/, void* bytes, const void* more, size_t size) {
  const auto* const first = static_cast<const uint8_t*>(more);
  auto* const all = static_cast<std::vector<uint8_t>*>(bytes);
  all->insert(all->end(), first, first + size);
  return static_cast<la_ssize_t>(size);
}

void Check(bool is_done, archive* zip) {
  if (!is_done) {
    const char* const reason = archive_error_string(zip);
    throw std::runtime_error(reason == nullptr ? "the archive cannot be made" : reason);
  }
}

void Add(archive* zip, const ZipMember& member, time_t time) {
  const std::unique_ptr<archive_entry, decltype(&archive_entry_free)> entry(archive_entry_new(),
                                                                            &archive_entry_free);
  archive_entry_set_pathname(entry.get(), member.name.c_str());
  archive_entry_set_filetype(entry.get(), AE_IFREG);
  archive_entry_set_perm(entry.get(), kPermissions);
  archive_entry_set_size(entry.get(), static_cast<la_int64_t>(member.bytes.size()));
  archive_entry_set_mtime(entry.get(), time, 0);
  Check(archive_write_header(zip, entry.get()) == ARCHIVE_OK, zip);
  const la_ssize_t taken = archive_write_data(zip, member.bytes.data(), member.bytes.size());
  Check(taken == static_cast<la_ssize_t>(member.bytes.size()), zip);
}

}  // namespace

std::vector<uint8_t> ZipBytes(const std::vector<ZipMember>& members) {
  std::vector<uint8_t> bytes;
  const std::unique_ptr<archive, decltype(&archive_write_free)> zip(archive_write_new(),
                                                                    &archive_write_free);
  Check(archive_write_set_format_zip(zip.get()) == ARCHIVE_OK, zip.get());
  archive_write_set_bytes_in_last_block(zip.get(), 1);  // no zeros behind the archive
  Check(archive_write_open2(zip.get(), &bytes, nullptr, Append, nullptr, nullptr) == ARCHIVE_OK,
        zip.get());
  const time_t now = std::time(nullptr);
  for (const ZipMember& member : members) {
    Add(zip.get(), member, now);
  }
  Check(archive_write_close(zip.get()) == ARCHIVE_OK, zip.get());
  return bytes;
}
