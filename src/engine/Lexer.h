#pragma once
// Splits a script text into tokens. A token views into the text (nothing is copied);
// a character the language does not know, an unterminated text or a malformed number
// comes back as an Error token carrying the error number, so the parser reports it
// like any other mistake, at the token's line and column.

#include <cstdint>
#include <string_view>

#include "engine/Subtype.h"

namespace orvane {

enum class Tok : uint8_t {
  Number, Text, Name,
  True, False, Not, And, Or, Xor, Eqv, Imp, Mod,
  LParen, RParen, Comma, Dot,
  Plus, Minus, Star, Slash, Backslash, Caret, Amp,
  Eq, Ne, Lt, Gt, Le, Ge,
  Colon, Newline, End, Error,
};

struct Token {
  Tok kind = Tok::End;
  std::string_view text;  // the characters as typed (a text literal without its quotes)
  int32_t line = 1;
  int32_t column = 1;     // 1-based, counted in characters
  double number = 0;      // Number
  Subtype type = Subtype::Double;  // Number: an Integer, a Long or a Double
  int32_t error = 0;      // Error: the error number
};

class Lexer {
 public:
  explicit Lexer(std::string_view source) : src_(source) {}
  Token next();

 private:
  Token make(Tok kind, size_t start) const;
  Token error(int32_t number, size_t start) const;
  Token number(size_t start);
  Token radixNumber(size_t start, int radix, size_t prefix);
  void advance(size_t n);

  std::string_view src_;
  size_t pos_ = 0;
  int32_t line_ = 1;
  int32_t column_ = 1;
  int32_t startLine_ = 1;
  int32_t startColumn_ = 1;
};

}  // namespace orvane
