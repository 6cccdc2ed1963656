#pragma once
// The one failure type of the program: a run-time error with the number and the
// description the user sees, and for script errors the line and column in the formula.

#include <cstdint>
#include <stdexcept>
#include <string>

namespace orvane {

namespace err {
constexpr int32_t InvalidCall = 5;       // "Invalid procedure call or argument"
constexpr int32_t Overflow = 6;          // "Overflow"
constexpr int32_t SubscriptOutOfRange = 9;
constexpr int32_t DivisionByZero = 11;   // "Division by zero"
constexpr int32_t TypeMismatch = 13;     // "Type mismatch"
constexpr int32_t FileNotFound = 53;
constexpr int32_t InputPastEnd = 62;
constexpr int32_t PathFileAccess = 75;
// The engine's code for an error that its error event has already reported.
constexpr int32_t AlreadyReported = -2147352319;  // 0x80020101
}  // namespace err

// The standard description of a run-time error number ("Overflow" for 6, ...), or
// "Application-defined or object-defined error" for a number without one.
std::string errorDescription(int32_t number);

// The numbers that numerical routines meet while sampling a function (poles, square
// roots of negatives, overflow) and treat as "no value at this point".
constexpr bool isSilencedError(int32_t number) {
  return number == err::InvalidCall || number == err::Overflow ||
         number == err::DivisionByZero || number == err::AlreadyReported;
}

class RuntimeError : public std::runtime_error {
 public:
  explicit RuntimeError(int32_t number);
  RuntimeError(int32_t number, std::string description, int line = 0, int column = 0);

  int32_t number() const { return number_; }
  const std::string& description() const { return description_; }
  int line() const { return line_; }      // 1-based; 0 when not a script error
  int column() const { return column_; }  // 1-based; 0 when not a script error

 private:
  int32_t number_;
  std::string description_;
  int line_;
  int column_;
};

}  // namespace orvane
