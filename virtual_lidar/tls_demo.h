#pragma once

#include <string>

/// Makes what TLS can be tried with: a CA (ca.pem), a certificate by it for a lidar at 127.0.0.1
/// (lidar.pem, lidar-key.pem) and one for a client (client.pem, client-key.pem), as PEM files that
/// hold for a year. Keys are fresh, on the curve P-256, and in files that only their owner can
/// read; the CA's is kept nowhere. The folder is made where it is missing. Returns false with a
/// sentence in *error when one of the files is there already, or cannot be written.
bool WriteTlsFiles(const std::string& folder, std::string* error);
