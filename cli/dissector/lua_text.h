#pragma once

#include <cstdint>
#include <string>
#include <vector>

/// The bytes as a literal of Lua in double quotes. Whatever would end it or command a terminal is
/// escaped; other characters stand as they are.
std::string LuaString(const std::string& text);
std::string LuaString(const std::vector<uint8_t>& bytes);

/// A byte as it is written in the documents: "0x2a".
std::string LuaByte(uint8_t byte);
