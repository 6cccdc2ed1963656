#pragma once
// Turns a text into a Program: a Pratt parser over the lexer's tokens that emits
// postfix instructions directly, binding names against the scope as it goes. The
// first mistake ends the compilation with a RuntimeError carrying the language's
// error number and the line and column of the offending token.

#include <memory>
#include <string_view>

#include "engine/Program.h"

namespace orvane {

struct CompileOptions {
  bool statements = false;  // "name = expression" lines instead of one expression
  bool optimize = true;     // fold constants and fuse operand loads into operators
};

std::unique_ptr<Program> compile(std::string_view text, const Scope& scope, CompileOptions options);

}  // namespace orvane
