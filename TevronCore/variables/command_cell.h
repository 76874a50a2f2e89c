#pragma once

#include <string>

/// What is wrong with a "Get" or "Set" cell that is not empty.
struct CommandCellProblem {
  std::string fault;    ///< Why its command must not be sent; empty: it can be.
  std::string warning;  ///< What to write so that nobody mistakes the code.
};

/// The text has to say without a doubt which bytes travel: a code from 0 to 255 and nothing else,
/// or a long command of whole bytes. Stricter than WireCommandOf, which sends what it can make of
/// a text.
CommandCellProblem ProblemOfCommand(const std::string& text);

/// The same for the command of a download, which travels as a long one however short it is.
CommandCellProblem ProblemOfDownload(const std::string& text);
