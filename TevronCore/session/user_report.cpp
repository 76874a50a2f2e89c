#include "session/user_report.h"

const char* LogTypeName(LogType type) {
  switch (type) {
    case LogType::kInfo:
      return "INFO";
    case LogType::kSuccess:
      return "SUCCESS";
    case LogType::kWarning:
      return "WARNING";
    case LogType::kError:
      return "ERROR";
    case LogType::kCmx:
      return "CMX";
    case LogType::kByteFlow:
      return "BYTESFLOW";
  }
  return "INFO";
}
