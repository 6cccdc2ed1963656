#pragma once
// Numbers to text and back, always with "." as the decimal separator whatever the
// user's locale. Every number the program shows, prints or writes goes through here.

#include <cstdint>
#include <string>
#include <string_view>

namespace orvane {

// The general form: up to 15 significant digits, shortest text; plain notation for
// 1E-04 <= |v| < 1E+15, else exponent form "1E-05", "1.5E+20", "-2.5E-07"; -0 is "0".
// No leading zero is dropped: 0.5 is "0.5", not ".5".
std::string formatGeneral(double value);
// The same written into `out`, which has room for kNumberTextRoom characters; returns
// the length. For files of millions of numbers.
inline constexpr size_t kNumberTextRoom = 48;
size_t formatGeneralInto(char* out, double value);

// The same form for a single-precision value: up to 7 significant digits.
std::string formatSingle(float value);

// The print form: the general form with a leading blank when the value is not
// negative ("-" otherwise), followed by one blank: " 3 ", "-2.5 ".
std::string formatPrint(double value);

// The leading numeric part of a text (blanks before it skipped), 0 when there is none:
// "2abc" -> 2, "1e" -> 1, "e5" -> 0, "" -> 0, "  7" -> 7, ".5" -> 0.5, "&H1F" -> 31.
double leadingNumber(std::string_view text);

// Strict conversion: the whole text (surrounding blanks allowed) must be a number,
// else RuntimeError 13 "Type mismatch"; out of double range gives 6 "Overflow".
double parseStrict(std::string_view text);

// Rounds half to even ("banker's rounding"): 0.5 -> 0, 1.5 -> 2, 2.5 -> 2, -2.5 -> -2.
double roundHalfEven(double value);

// Round half to even into a 32-bit integer; RuntimeError 6 "Overflow" out of range.
int32_t toInt32(double value);
// Round half to even into a 16-bit integer; RuntimeError 6 "Overflow" out of range.
int16_t toInt16(double value);

}  // namespace orvane
