#pragma once
// Differential checks for engine rows: every text is evaluated with the optimizer on and
// off, first and cached, after x has moved, and through TryEval; all of these must agree.

#include <gtest/gtest.h>

#include <bit>
#include <cstdint>
#include <optional>
#include <string>
#include <tuple>
#include <utility>

#include "engine/Class1.h"
#include "engine/ExpressionEngine.h"
#include "engine/PointEvaluation.h"

namespace orvane::test {

struct Engine {
  Class1 sh;
  ExpressionEngine engine;
  explicit Engine(bool optimize = true) {
    engine.SetOptimize(optimize);
    RegisterMathObject(engine, sh);
  }
};

struct Outcome { double value = 0; int32_t number = 0; int line = 0, column = 0; std::string description; };

inline Outcome evalOnce(ExpressionEngine& engine, const std::string& text) {
  Outcome o;
  try {
    o.value = engine.Eval(text);
  } catch (const RuntimeError& e) {
    o = {0, e.number(), e.line(), e.column(), e.description()};
  }
  return o;
}

inline bool sameBits(double a, double b) { return std::bit_cast<uint64_t>(a) == std::bit_cast<uint64_t>(b); }

// Same error number and, on success, the same bits.
inline void expectSame(const Outcome& o, const Outcome& ref) {
  EXPECT_EQ(o.number, ref.number);
  if (!ref.number) {
    EXPECT_TRUE(sameBits(o.value, ref.value)) << o.value << " vs " << ref.value;
  }
}

// The outcome of `text` at x, after checking that every way of getting it agrees.
inline Outcome evalEveryWay(const std::string& text, double x) {
  std::optional<Outcome> reference;
  for (bool optimize : {true, false}) {
    SCOPED_TRACE(text + (optimize ? " (optimized)" : " (plain)"));
    Engine t(optimize), fresh(optimize);
    t.sh.x = x;
    const Outcome first = evalOnce(t.engine, text);
    expectSame(evalOnce(t.engine, text), first);
    t.sh.x = fresh.sh.x = x + 0.75;
    expectSame(evalOnce(t.engine, text), evalOnce(fresh.engine, text));
    t.sh.x = x;
    const Outcome back = evalOnce(t.engine, text);
    expectSame(back, first);
    EXPECT_EQ(back.column, first.column);  // the cached form keeps positions
    Outcome tried;
    tried.number = t.engine.TryEval(text, tried.value);
    expectSame(tried, first);
    if (!reference) {
      reference = first;
      continue;
    }
    expectSame(first, *reference);
    EXPECT_EQ(std::tie(first.line, first.column, first.description),
              std::tie(reference->line, reference->column, reference->description));
  }
  return *reference;
}

// {text, value, x}: the text evaluates to value at x.
struct ValueRow { const char* text; double expected; double x = 0; };
// {text, error number, column, line, x}: the text fails there at x.
struct ErrorRow { const char* text; int32_t number; int column; int line = 1; double x = 0.5; };

inline void checkValues(std::initializer_list<ValueRow> rows) {
  for (const ValueRow& row : rows) {
    const Outcome o = evalEveryWay(row.text, row.x);
    EXPECT_EQ(o.number, 0) << row.text << ": " << o.description;
    EXPECT_DOUBLE_EQ(o.value, row.expected) << row.text;
  }
}

inline void checkErrors(std::initializer_list<ErrorRow> rows) {
  for (const ErrorRow& row : rows) {
    const Outcome o = evalEveryWay(row.text, row.x);
    EXPECT_EQ(o.number, row.number) << row.text << ": " << o.description;
    EXPECT_EQ(std::pair(o.line, o.column), std::pair(row.line, row.column)) << row.text;
  }
}

}  // namespace orvane::test
