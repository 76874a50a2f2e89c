#pragma once

#include <cstdint>
#include <string>

/// Reads a port as the user types it: a decimal number from 1 to 65535; white space around it is
/// ignored. False, with *port untouched, for anything else.
bool ParsePort(const std::string& text, uint16_t* port);

/// Reads the local port of the command client as the user types it: "ANY" in any letter case gives
/// 0 (the system chooses), otherwise a decimal number from 1024 to 65535; white space around it is
/// ignored. Returns false with *error filled for anything else, *port then untouched. Either
/// pointer may be null; without a place for the port the call fails.
bool ParseHostPort(const std::string& text, uint16_t* port, std::string* error);
