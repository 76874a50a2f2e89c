#pragma once

#include <cstddef>
#include <cstdint>
#include <set>
#include <stdexcept>
#include <string>
#include <utility>

#include "variables/config_folder.h"

/// The authentication tables of a folder, see ConfigFolder::FilesCalled.
inline constexpr char kAuthTableName[] = "auth_config.csv";

/// How one model authenticates: a row of the authentication table. The defaults are those of a
/// model without a row.
struct AuthConfig {
  bool enabled = false;
  int algorithm_id = 0;
  uint32_t probe_cmd = 0x000000DF;      ///< asks whether authentication is required
  uint32_t challenge_cmd = 0x00000066;  ///< fetches the random challenge
  uint32_t response_cmd = 0x000000E0;   ///< sends the computed response
  std::set<uint8_t> protected_cmds;
  int32_t probe_offset = 0;  ///< first byte of the "required" value in the probe's reply
  int32_t probe_len = 1;     ///< length of that value in bytes
  bool probe_little_endian = false;
};

/// A row of an authentication table that cannot be used. what() is the bare reason.
class AuthConfigError : public std::invalid_argument {
 public:
  /// `place` is file, line and column; `advice` is what to write.
  AuthConfigError(const std::string& reason, std::string place, const std::string& advice)
      : std::invalid_argument(reason),
        place_(std::move(place)),
        text_(place_ + ": " + reason + "; " + advice) {}
  const std::string& place() const noexcept { return place_; }
  /// The message to the user: place, reason and what to write.
  const std::string& text() const noexcept { return text_; }

 private:
  std::string place_;
  std::string text_;
};

/// Reads the row whose "Model" is `model`; the defaults when there is none. Of a row that is not
/// enabled ("Enable" is anything but "1") nothing else is read. Throws AuthConfigError with the
/// text "empty auth cmd" for a command cell without digits, "empty hex byte" for an item of
/// "ProtectedCmds" without digits, and a plain reason for a cell that is no number, for a protected
/// code beyond a byte, for two rows of the model and for a broken row that might have been the
/// model's; the exceptions of CsvReader for a missing file or column. Any thread.
AuthConfig LoadAuthConfig(const std::string& table, const std::string& model);

/// The same of a folder's tables: a row of a later table stands in the place of the one before. A
/// later table that may have such a row and cannot be read throws, so that nothing is sent
/// unguarded. The defaults when there is no table.
AuthConfig AuthConfigOf(const ConfigFolder& folder, const std::string& model);
