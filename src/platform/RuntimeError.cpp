#include "platform/RuntimeError.h"

namespace orvane {

std::string errorDescription(int32_t number) {
  switch (number) {
    case 3: return "Return without GoSub";
    case 5: return "Invalid procedure call or argument";
    case 6: return "Overflow";
    case 7: return "Out of memory";
    case 9: return "Subscript out of range";
    case 11: return "Division by zero";
    case 13: return "Type mismatch";
    case 28: return "Out of stack space";
    case 52: return "Bad file name or number";
    case 53: return "File not found";
    case 57: return "Device I/O error";
    case 61: return "Disk full";
    case 62: return "Input past end of file";
    case 70: return "Permission denied";
    case 75: return "Path/File access error";
    case 76: return "Path not found";
    case 482: return "Printer error";
    default: return "Application-defined or object-defined error";
  }
}

RuntimeError::RuntimeError(int32_t number) : RuntimeError(number, errorDescription(number)) {}

RuntimeError::RuntimeError(int32_t number, std::string description, int line, int column)
    : std::runtime_error(description),
      number_(number),
      description_(std::move(description)),
      line_(line),
      column_(column) {}

}  // namespace orvane
