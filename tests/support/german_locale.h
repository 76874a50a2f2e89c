#pragma once

#include <stdlib.h>

#include <clocale>

#include "support/test_folder.h"

#ifdef _WIN32
/// A locale with a decimal comma, in force while this lives.
class GermanLocale {
 public:
  GermanLocale() : works_(std::setlocale(LC_ALL, "German_Germany") != nullptr) {}
  ~GermanLocale() { std::setlocale(LC_ALL, "C"); }
  GermanLocale(const GermanLocale&) = delete;
  GermanLocale& operator=(const GermanLocale&) = delete;

  bool works() const { return works_; }

 private:
  bool works_;
};
#else
/// A locale with a decimal comma, in force while this lives. It is made for the occasion, with
/// nothing else in it: a whole one takes seconds.
class GermanLocale {
 public:
  GermanLocale() {
    std::string source =
        "LC_NUMERIC\ndecimal_point \"<U002C>\"\nthousands_sep \"<U002E>\"\ngrouping 3;3\n"
        "END LC_NUMERIC\n";
    for (const std::string rest : {"CTYPE", "COLLATE", "MONETARY", "TIME", "MESSAGES"}) {
      source.append("LC_").append(rest).append("\ncopy \"POSIX\"\nEND LC_").append(rest) += '\n';
    }
    const std::string command = "localedef -c -f ANSI_X3.4-1968 -i '" +
                                folder_.Write("source", source) + "' '" + folder_.path() +
                                "/comma' >/dev/null 2>&1";
    // localedef warns with a non-zero result; whether the locale loads is what counts.
    (void)!std::system(command.c_str());  // NOLINT(bugprone-command-processor)
    setenv("LOCPATH", folder_.path().c_str(), 1);
    works_ = std::setlocale(LC_ALL, "comma") != nullptr;
  }
  ~GermanLocale() {
    std::setlocale(LC_ALL, "C");
    unsetenv("LOCPATH");
  }
  GermanLocale(const GermanLocale&) = delete;
  GermanLocale& operator=(const GermanLocale&) = delete;

  /// False where there is no localedef.
  bool works() const { return works_; }

 private:
  const TestFolder folder_;
  bool works_ = false;
};
#endif
