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
  if (c == '&' && (d == 'h' || d == 'H' || d == 'o' || d == 'O')) return hexOrOctal(start);
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
    case '=': return one(Tok::Eq);
    case ':': return one(Tok::Colon);
    case '\n': return one(Tok::Newline);
    case '<':
      if (d == '>') return two(Tok::Ne);
      if (d == '=') return two(Tok::Le);
      return one(Tok::Lt);
    case '>':
      if (d == '=') return two(Tok::Ge);
      return one(Tok::Gt);
    default:
      advance(1);  // one whole character, even a multi-byte one
      while (pos_ < src_.size() && (static_cast<unsigned char>(src_[pos_]) & 0xC0) == 0x80) advance(1);
      return error(err::InvalidCharacter, start);
  }
}

Token Lexer::number(size_t start) {
  size_t digitsStart = pos_;
  while (pos_ < src_.size() && isDigit(src_[pos_])) advance(1);
  if (pos_ < src_.size() && src_[pos_] == '.') {
    advance(1);
    while (pos_ < src_.size() && isDigit(src_[pos_])) advance(1);
  }
  size_t mantissaEnd = pos_;
  long exponent = 0;
  if (pos_ < src_.size() && (src_[pos_] == 'e' || src_[pos_] == 'E')) {
    size_t k = pos_ + 1;
    if (k < src_.size() && (src_[k] == '+' || src_[k] == '-')) ++k;
    if (k < src_.size() && isDigit(src_[k])) {
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
  return t;
}

// &H1F (hexadecimal) and &O17 (octal). Up to four digits' worth of value is a 16-bit
// integer and up to eight a 32-bit one, so &HFFFF is -1 and &H10000 is 65536.
Token Lexer::hexOrOctal(size_t start) {
  bool hex = src_[pos_ + 1] == 'h' || src_[pos_ + 1] == 'H';
  advance(2);
  uint64_t value = 0;
  size_t digits = 0;
  while (pos_ < src_.size()) {
    char ch = src_[pos_];
    int v;
    if (hex && isHexDigit(ch)) {
      v = isDigit(ch) ? ch - '0' : lower(ch) - 'a' + 10;
    } else if (!hex && ch >= '0' && ch <= '7') {
      v = ch - '0';
    } else {
      break;
    }
    value = value * (hex ? 16 : 8) + static_cast<uint64_t>(v);
    if (value > 0xFFFFFFFFull) {
      while (pos_ < src_.size() && (isHexDigit(src_[pos_]))) advance(1);
      return error(err::Overflow, start);
    }
    ++digits;
    advance(1);
  }
  if (digits == 0) return error(err::InvalidNumber, start);
  Token t = make(Tok::Number, start);
  if (value <= 0xFFFF)
    t.number = static_cast<int16_t>(static_cast<uint16_t>(value));
  else
    t.number = static_cast<int32_t>(static_cast<uint32_t>(value));
  return t;
}

}  // namespace orvane
