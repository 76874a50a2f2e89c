#pragma once

#include <CLI/CLI.hpp>
#include <ostream>
#include <string>

/// Writes what a shell or a reader needs to know of the command line, made from its declaration:
/// the completion for "bash" or "zsh", or the manual page ("man"). False for anything else.
bool WriteShellHelp(const CLI::App& app, const std::string& kind, std::ostream& out);
