#include "platform/NumberText.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <limits>
#include <string>

#include "platform/RuntimeError.h"

namespace orvane {

namespace {

// The significant digits of `value` rounded to `digits` of them, trailing zeros
// dropped, and the decimal exponent of the first. The shortest text that reads back as
// the value is taken when it has no more digits: it lies within half a unit in the last
// place of the value, closer than half a step of `digits` digits (at most 15 for a
// normal double), so it is the rounding. Otherwise to_chars rounds exactly as printf does.
struct Significand {
  char text[24];
  int length = 0;
  int exponent = 0;
};

Significand roundedDigits(double value, int digits) {
  char buf[64];
  const char* const begin = buf;
  const char* end = std::to_chars(buf, buf + sizeof buf, value, std::chars_format::scientific).ptr;
  const char* e = std::find(begin, end, 'e');
  const bool subnormal = std::fabs(value) < std::numeric_limits<double>::min();  // coarser steps
  if (subnormal || std::count_if(begin, e, [](char c) { return c >= '0' && c <= '9'; }) > digits) {
    end = std::to_chars(buf, buf + sizeof buf, value, std::chars_format::scientific, digits - 1).ptr;
    e = std::find(begin, end, 'e');
  }
  Significand r;
  std::from_chars(e + (e[1] == '+' ? 2 : 1), end, r.exponent);
  for (const char* p = begin; p != e; ++p)
    if (*p >= '0' && *p <= '9') r.text[r.length++] = *p;
  while (r.length > 1 && r.text[r.length - 1] == '0') --r.length;
  return r;
}

// Shortest text of a value with at most `digits` significant digits: plain notation
// while the decimal exponent lies in [-4, digits - 1], else a mantissa with an "E",
// a sign and at least two exponent digits.
// Writes the text into `out` (room for kNumberTextRoom characters) and returns its length.
size_t formatInto(char* out, double value, int digits) {
  const auto whole = [out](std::string_view text) {
    text.copy(out, text.size());
    return text.size();
  };
  if (value == 0) return whole("0");
  if (std::isnan(value)) return whole("-1.#IND");
  if (std::isinf(value)) return whole(value < 0 ? "-1.#INF" : "1.#INF");

  // Round to the significant digits first: the rounded magnitude picks the notation.
  const Significand d = roundedDigits(value, digits);
  const std::string_view significand(d.text, static_cast<size_t>(d.length));
  const int exponent = d.exponent;
  size_t n = 0;
  const auto put = [&](std::string_view part) {
    part.copy(out + n, part.size());
    n += part.size();
  };
  const auto zeros = [&](size_t count) {
    std::fill_n(out + n, count, '0');
    n += count;
  };
  if (value < 0) put("-");
  if (exponent >= -4 && exponent < digits) {
    if (exponent < 0) {
      put("0.");
      zeros(static_cast<size_t>(-exponent - 1));
      put(significand);
    } else {
      const size_t intLen = static_cast<size_t>(exponent) + 1;
      if (significand.size() <= intLen) {
        put(significand);
        zeros(intLen - significand.size());
      } else {
        put(significand.substr(0, intLen));
        put(".");
        put(significand.substr(intLen));
      }
    }
    return n;
  }
  put(significand.substr(0, 1));
  if (significand.size() > 1) {
    put(".");
    put(significand.substr(1));
  }
  char expText[16];
  const int expLength =
      std::snprintf(expText, sizeof expText, "E%c%02d", exponent < 0 ? '-' : '+', std::abs(exponent));
  put(std::string_view(expText, static_cast<size_t>(expLength)));
  return n;
}

std::string formatWithDigits(double value, int digits) {
  char out[kNumberTextRoom];
  return std::string(out, formatInto(out, value, digits));
}

bool isDigit(char c) { return c >= '0' && c <= '9'; }
bool isBlank(char c) { return c == ' ' || c == '\t' || c == '\n' || c == '\r'; }

int hexDigit(char c) {
  if (c >= '0' && c <= '9') return c - '0';
  if (c >= 'a' && c <= 'f') return c - 'a' + 10;
  if (c >= 'A' && c <= 'F') return c - 'A' + 10;
  return -1;
}

// "&H1F" / "&O17" at the start of `text`: the value, or nullopt-like flag when the text
// is no such literal. Up to four digits' worth of bits is a 16-bit integer (so &HFFFF
// is -1), more is a 32-bit one.
bool radixLiteral(std::string_view text, double& value, size_t& used) {
  if (text.size() < 2 || text[0] != '&') return false;
  const char kind = static_cast<char>(text[1] | 0x20);
  if (kind != 'h' && kind != 'o') return false;
  const unsigned base = kind == 'h' ? 16 : 8;
  uint64_t n = 0;
  size_t i = 2;
  for (; i < text.size(); ++i) {
    const int d = hexDigit(text[i]);
    if (d < 0 || static_cast<unsigned>(d) >= base) break;
    n = n * base + static_cast<unsigned>(d);
    if (n > 0xFFFFFFFFull) throw RuntimeError(err::Overflow);
  }
  used = i;
  if (n <= 0xFFFF && (base == 16 ? i - 2 <= 4 : n <= 0177777))
    value = static_cast<int16_t>(static_cast<uint16_t>(n));
  else
    value = static_cast<int32_t>(static_cast<uint32_t>(n));
  return true;
}

// Collects the longest decimal number at the start of `text` (sign, digits, one point,
// an exponent only when digits follow its letter) into `out` in from_chars form.
size_t scanDecimal(std::string_view text, std::string& out, bool& hasDigits) {
  size_t i = 0;
  hasDigits = false;
  if (i < text.size() && (text[i] == '+' || text[i] == '-')) {
    if (text[i] == '-') out += '-';
    ++i;
  }
  for (; i < text.size() && isDigit(text[i]); ++i) out += text[i], hasDigits = true;
  if (i < text.size() && text[i] == '.') {
    out += '.';
    ++i;
    for (; i < text.size() && isDigit(text[i]); ++i) out += text[i], hasDigits = true;
  }
  if (hasDigits && i < text.size()) {
    const char c = static_cast<char>(text[i] | 0x20);
    if (c == 'e' || c == 'd') {
      size_t j = i + 1;
      std::string exponent = "e";
      if (j < text.size() && (text[j] == '+' || text[j] == '-')) exponent += text[j++];
      if (j < text.size() && isDigit(text[j])) {
        for (; j < text.size() && isDigit(text[j]); ++j) exponent += text[j];
        out += exponent;
        i = j;
      }
    }
  }
  return i;
}

// The power of ten of the first significant digit of a number in from_chars form (a
// non-zero mantissa): 2 for "123", -3 for "0.00123e0", 397 for "1.5e397". Saturates far
// beyond any double's range, so exponents of any length are safe.
int64_t decimalMagnitude(std::string_view number) {
  constexpr int64_t kFar = int64_t{1} << 40;
  size_t i = number.empty() || number[0] != '-' ? 0 : 1;
  int64_t magnitude = -1;
  bool significant = false, afterPoint = false;
  for (; i < number.size() && number[i] != 'e'; ++i) {
    const char c = number[i];
    if (c == '.') {
      afterPoint = true;
    } else if (!significant && c == '0') {
      if (afterPoint) --magnitude;
    } else if (!significant) {
      significant = true;
      if (!afterPoint) magnitude = 0;
    } else if (!afterPoint) {
      magnitude = std::min(magnitude + 1, kFar);
    }
  }
  int64_t exponent = 0;
  if (i < number.size()) {
    const bool negative = i + 1 < number.size() && number[i + 1] == '-';
    for (++i; i < number.size(); ++i)
      if (isDigit(number[i])) exponent = std::min(exponent * 10 + (number[i] - '0'), kFar);
    if (negative) exponent = -exponent;
  }
  return magnitude + exponent;
}

double toDouble(const std::string& number) {
  double value = 0;
  const char* first = number.data();
  const auto [ptr, ec] = std::from_chars(first, first + number.size(), value);
  (void)ptr;
  if (ec != std::errc::result_out_of_range) return value;
  // Magnitudes below the smallest double underflow to zero, however they are written
  // ("1e-999", or a point followed by 400 zeros); larger ones are an overflow.
  if (decimalMagnitude(number) < 0) return 0.0;
  throw RuntimeError(err::Overflow);
}

}  // namespace

std::string formatGeneral(double value) { return formatWithDigits(value, 15); }

size_t formatGeneralInto(char* out, double value) { return formatInto(out, value, 15); }

std::string formatSingle(float value) { return formatWithDigits(static_cast<double>(value), 7); }

std::string formatPrint(double value) {
  std::string text = formatGeneral(value);
  if (text[0] != '-') text.insert(text.begin(), ' ');
  return text + ' ';
}

double leadingNumber(std::string_view text) {
  // Blanks, tabs and line breaks are ignored wherever they stand.
  std::string packed;
  packed.reserve(text.size());
  for (char c : text)
    if (!isBlank(c)) packed += c;
  double value = 0;
  size_t used = 0;
  if (radixLiteral(packed, value, used)) return value;
  std::string number;
  bool hasDigits = false;
  scanDecimal(packed, number, hasDigits);
  if (!hasDigits) return 0.0;
  return toDouble(number);
}

double parseStrict(std::string_view text) {
  size_t first = 0, last = text.size();
  while (first < last && isBlank(text[first])) ++first;
  while (last > first && isBlank(text[last - 1])) --last;
  const std::string_view body = text.substr(first, last - first);
  double value = 0;
  // Plain decimal numbers, as files hold them by the million, read straight through;
  // anything else (a "+" or "D", a radix literal, an exponent out of range) takes the
  // full way below.
  if (!body.empty() && body.find_first_not_of("0123456789.eE-") == std::string_view::npos) {
    const auto [end, error] = std::from_chars(body.data(), body.data() + body.size(), value);
    if (error == std::errc() && end == body.data() + body.size()) return value;
  }
  size_t used = 0;
  if (radixLiteral(body, value, used)) {
    if (used == body.size() && used > 2) return value;
    throw RuntimeError(err::TypeMismatch);
  }
  std::string number;
  bool hasDigits = false;
  used = scanDecimal(body, number, hasDigits);
  if (!hasDigits || used != body.size()) throw RuntimeError(err::TypeMismatch);
  return toDouble(number);
}

double roundHalfEven(double value) {
  if (!std::isfinite(value)) return value;
  const double floor = std::floor(value);
  const double diff = value - floor;
  if (diff < 0.5) return floor;
  if (diff > 0.5) return floor + 1.0;
  return std::fmod(floor, 2.0) == 0.0 ? floor : floor + 1.0;
}

int32_t toInt32(double value) {
  const double r = roundHalfEven(value);
  if (!(r >= -2147483648.0 && r <= 2147483647.0)) throw RuntimeError(err::Overflow);
  return static_cast<int32_t>(r);
}

int16_t toInt16(double value) {
  const double r = roundHalfEven(value);
  if (!(r >= -32768.0 && r <= 32767.0)) throw RuntimeError(err::Overflow);
  return static_cast<int16_t>(r);
}

}  // namespace orvane
