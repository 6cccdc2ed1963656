#include "engine/Lexer.h"

#include <charconv>
#include <cmath>

#include "engine/Program.h"
#include "platform/RuntimeError.h"

namespace orvane {

namespace {

constexpr size_t MaxIdentifier = 255;

bool isDigit(char c) { return c >= '0' && c <= '9'; }
bool isLetter(char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z'); }
bool isHexDigit(char c) { return isDigit(c) || (c >= 'a' && c <= 'f') || (c >= 'A' && c <= 'F'); }
bool isOctalDigit(char c) { return c >= '0' && c <= '7'; }
char lower(char c) { return (c >= 'A' && c <= 'Z') ? static_cast<char>(c - 'A' + 'a') : c; }

bool sameWord(std::string_view word, std::string_view keyword) {
  if (word.size() != keyword.size()) return false;
  for (size_t i = 0; i < word.size(); ++i)
    if (lower(word[i]) != keyword[i]) return false;
  return true;
}

Tok keyword(std::string_view word) {
  struct Entry {
    std::string_view text;
    Tok kind;
  };
  static constexpr Entry table[] = {
      {"true", Tok::True}, {"false", Tok::False}, {"not", Tok::Not}, {"and", Tok::And},
      {"or", Tok::Or},     {"xor", Tok::Xor},     {"eqv", Tok::Eqv}, {"imp", Tok::Imp},
      {"mod", Tok::Mod},
  };
  for (const Entry& e : table)
    if (sameWord(word, e.text)) return e.kind;
  return Tok::Name;
}

}  // namespace

void Lexer::advance(size_t n) {
  for (size_t i = 0; i < n && pos_ < src_.size(); ++i, ++pos_) {
    unsigned char c = static_cast<unsigned char>(src_[pos_]);
    if (c == '\n') {
      ++line_;
      column_ = 1;
    } else if ((c & 0xC0) != 0x80) {  // continuation bytes do not start a character
      ++column_;
    }
  }
}

Token Lexer::make(Tok kind, size_t start) const {
  Token t;
  t.kind = kind;
  t.text = src_.substr(start, pos_ - start);
  t.line = startLine_;
  t.column = startColumn_;
  return t;
}

Token Lexer::error(int32_t number, size_t start) const {
  Token t = make(Tok::Error, start);
  t.error = number;
  return t;
}

Token Lexer::next() {
  // Blanks, carriage returns and comments ('...) separate tokens.
  while (pos_ < src_.size()) {
    char c = src_[pos_];
    if (c == ' ' || c == '\t' || c == '\r') {
      advance(1);
    } else if (c == '\'') {
      while (pos_ < src_.size() && src_[pos_] != '\n') advance(1);
    } else {
      break;
    }
  }
  startLine_ = line_;
  startColumn_ = column_;
  size_t start = pos_;
  if (pos_ >= src_.size()) return make(Tok::End, start);

  char c = src_[pos_];
  char d = pos_ + 1 < src_.size() ? src_[pos_ + 1] : '\0';
  if (isDigit(c) || (c == '.' && isDigit(d))) return number(start);
  if (isLetter(c)) {
    while (pos_ < src_.size() && (isLetter(src_[pos_]) || isDigit(src_[pos_]) || src_[pos_] == '_'))
      advance(1);
    if (pos_ - start > MaxIdentifier) return error(err::IdentifierTooLong, start);
    return make(keyword(src_.substr(start, pos_ - start)), start);
  }
  if (c == '&') {
    // &H1F and &O17 (or &17) are numbers only with a digit after the prefix; otherwise
    // "&" concatenates, so "x" &hi joins the text and the variable hi.
    char digit = pos_ + 2 < src_.size() ? src_[pos_ + 2] : '\0';
    if ((d == 'h' || d == 'H') && isHexDigit(digit)) return radixNumber(start, 16, 2);
    if ((d == 'o' || d == 'O') && isOctalDigit(digit)) return radixNumber(start, 8, 2);
    if (isOctalDigit(d)) return radixNumber(start, 8, 1);
  }
  if (c == '"') {
    advance(1);
    for (;;) {
      if (pos_ >= src_.size() || src_[pos_] == '\n') return error(err::UnterminatedText, start);
      if (src_[pos_] == '"') {
        if (pos_ + 1 < src_.size() && src_[pos_ + 1] == '"') {
          advance(2);  // "" stands for one quote
          continue;
        }
        advance(1);
        Token t = make(Tok::Text, start);
        t.text = t.text.substr(1, t.text.size() - 2);
        return t;
      }
      advance(1);
    }
  }

  auto one = [&](Tok kind) {
    advance(1);
    return make(kind, start);
  };
  auto two = [&](Tok kind) {
    advance(2);
    return make(kind, start);
  };
  switch (c) {
    case '(': return one(Tok::LParen);
    case ')': return one(Tok::RParen);
    case ',': return one(Tok::Comma);
    case '.': return one(Tok::Dot);
    case '+': return one(Tok::Plus);
    case '-': return one(Tok::Minus);
    case '*': return one(Tok::Star);
    case '/': return one(Tok::Slash);
    case '\\': return one(Tok::Backslash);
    case '^': return one(Tok::Caret);
    case '&': return one(Tok::Amp);
    case '=':  // => and =< are the same as >= and <=
      if (d == '>') return two(Tok::Ge);
      if (d == '<') return two(Tok::Le);
      return one(Tok::Eq);
    case ':': return one(Tok::Colon);
    case '\n': return one(Tok::Newline);
    case '<':
      if (d == '>') return two(Tok::Ne);
      if (d == '=') return two(Tok::Le);
      return one(Tok::Lt);
    case '>':
      if (d == '=') return two(Tok::Ge);
      if (d == '<') return two(Tok::Ne);
      return one(Tok::Gt);
    default:
      advance(1);  // one whole character, even a multi-byte one
      while (pos_ < src_.size() && (static_cast<unsigned char>(src_[pos_]) & 0xC0) == 0x80) advance(1);
      return error(err::InvalidCharacter, start);
  }
}

Token Lexer::number(size_t start) {
  size_t digitsStart = pos_;
  bool whole = true;  // digits only: an Integer or a Long when the value fits one
  while (pos_ < src_.size() && isDigit(src_[pos_])) advance(1);
  if (pos_ < src_.size() && src_[pos_] == '.') {
    whole = false;
    advance(1);
    while (pos_ < src_.size() && isDigit(src_[pos_])) advance(1);
  }
  size_t mantissaEnd = pos_;
  long exponent = 0;
  if (pos_ < src_.size() && (src_[pos_] == 'e' || src_[pos_] == 'E')) {
    size_t k = pos_ + 1;
    if (k < src_.size() && (src_[k] == '+' || src_[k] == '-')) ++k;
    if (k < src_.size() && isDigit(src_[k])) {
      whole = false;
      bool negative = src_[pos_ + 1] == '-';
      advance(k - pos_);
      while (pos_ < src_.size() && isDigit(src_[pos_])) {
        if (exponent < 100000) exponent = exponent * 10 + (src_[pos_] - '0');
        advance(1);
      }
      if (negative) exponent = -exponent;
    }
  }
  Token t = make(Tok::Number, start);
  const char* first = src_.data() + digitsStart;
  const char* last = src_.data() + pos_;
  auto [ptr, ec] = std::from_chars(first, last, t.number, std::chars_format::general);
  if (ec == std::errc::result_out_of_range) {
    // Out of range either way: decide by the position of the first significant digit.
    long magnitude = 0;
    bool seenPoint = false, seenDigit = false;
    for (size_t i = digitsStart; i < mantissaEnd; ++i) {
      char ch = src_[i];
      if (ch == '.') {
        seenPoint = true;
      } else if (!seenDigit && ch == '0') {
        if (seenPoint) --magnitude;
      } else {
        seenDigit = true;
        if (!seenPoint) ++magnitude;
      }
    }
    if (magnitude + exponent > 0) return error(err::Overflow, start);
    t.number = 0;  // too small to represent: zero
  } else if (ec != std::errc() || ptr != last) {
    return error(err::InvalidNumber, start);
  }
  t.type = !whole                      ? Subtype::Double
           : t.number <= 32767.0       ? Subtype::Integer
           : t.number <= 2147483647.0  ? Subtype::Long
                                       : Subtype::Double;
  return t;
}

// &H1F (hexadecimal), &O17 or &17 (octal), after a prefix of `prefix` characters. The
// digits are a 16-bit pattern while they fit one (&HFFFF is -1, &H10000 is 65536) and
// a 32-bit pattern beyond; a trailing & makes them a 32-bit pattern always (&HFFFF& is
// 65535, &HFFFFFFFF& is -1). The number is an Integer when its value fits one.
Token Lexer::radixNumber(size_t start, int radix, size_t prefix) {
  advance(prefix);
  uint64_t value = 0;
  for (;;) {
    char ch = pos_ < src_.size() ? src_[pos_] : '\0';
    int v;
    if (radix == 16 && isHexDigit(ch))
      v = isDigit(ch) ? ch - '0' : lower(ch) - 'a' + 10;
    else if (radix == 8 && isOctalDigit(ch))
      v = ch - '0';
    else
      break;
    value = value * static_cast<uint64_t>(radix) + static_cast<uint64_t>(v);
    if (value > 0xFFFFFFFFull) {
      while (pos_ < src_.size() && isHexDigit(src_[pos_])) advance(1);
      return error(err::Overflow, start);
    }
    advance(1);
  }
  bool longSuffix = pos_ < src_.size() && src_[pos_] == '&';
  if (longSuffix) advance(1);
  Token t = make(Tok::Number, start);
  if (value <= 0xFFFF && !longSuffix)
    t.number = static_cast<int16_t>(static_cast<uint16_t>(value));
  else
    t.number = static_cast<int32_t>(static_cast<uint32_t>(value));
  t.type = t.number >= -32768 && t.number <= 32767 ? Subtype::Integer : Subtype::Long;
  return t;
}

}  // namespace orvane
