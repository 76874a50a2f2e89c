#pragma once

#include <array>
#include <string>

#include "CmxClient/tls_identity.h"
#include "variables/config_folder.h"
#include "variables/table_fault.h"

// What stands in "tls/<model>" of a folder of tables for a model that is reached over TLS:
// "ca.pem", the authority that its lidars' certificates come from, "cert.pem", what the lidar is
// shown, and "key.pem", the key of that. Each may be missing.

inline constexpr char kTlsFolderName[] = "tls";
inline constexpr std::array<const char*, 3> kTlsFileNames = {"ca.pem", "cert.pem", "key.pem"};

/// The files of the model; each of a later layer stands in the place of the one before.
kavel::lidar::TlsIdentity TlsFilesOf(const ConfigFolder& folder, const std::string& model);

/// What is wrong with the files of a model that is reached over TLS: the first that is of no use,
/// as connecting would tell it, and a key that everybody can read. None of their content.
void CheckTlsFiles(const ConfigFolder& folder, const std::string& model, TableFaults* faults);
