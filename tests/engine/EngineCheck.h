#pragma once
// Differential checks for engine rows: every text is evaluated with the optimizer on and
// off, first and cached, after x has moved, through TryEval and in a block of points;
// all of these must agree.

#include <gtest/gtest.h>

#include <bit>
#include <cstdint>
#include <iterator>
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

// `text` over one block of points around x, some of them failing for most formulas
// (0, -1, out of range), each lane against its own point evaluation in the same engine:
// the same bits or the same error, reported at the same place, with the same ierr.
// Returns the point evaluation at x, where the math object's errors count too.
inline Outcome expectBlockAgrees(Engine& t, const std::string& text, double x) {
  const double xs[] = {x, x + 0.75, 0, -1, -x, 1e300, 2.5, x};
  const double ys[] = {0.5, x, -1, 0, 1e300, x, -x, 3};
  constexpr int32_t n = static_cast<int32_t>(std::size(xs));
  Outcome atX;
  for (bool withY : {false, true}) {
    BlockOutcome block;
    TryEvaluateBlock(t.engine, t.sh, text, xs, withY ? ys : nullptr, n, block);
    std::optional<RuntimeError> reported;
    t.engine.SetErrorHandler([&](const RuntimeError& e) { reported = e; });
    for (int32_t i = 0; i < n; ++i) {
      SCOPED_TRACE(text + " in a block, lane " + std::to_string(i) + (withY ? " with y" : ""));
      reported.reset();
      t.sh.ierr = 0;
      ReportBlockPoint(t.engine, t.sh, block, i);
      const std::optional<RuntimeError> fromBlock = reported;
      const int32_t ierrFromBlock = t.sh.ierr;
      reported.reset();
      double value = 0;
      const int32_t number = withY ? TryEvaluateAt(t.engine, t.sh, text, xs[i], ys[i], value)
                                   : TryEvaluateAt(t.engine, t.sh, text, xs[i], value);
      EXPECT_EQ(BlockPointError(block, i), number);
      if (i == 0 && !withY) std::tie(atX.value, atX.number) = std::tie(value, number);
      if (!number) {
        EXPECT_TRUE(sameBits(block.value[i], value)) << block.value[i] << " vs " << value;
      }
      EXPECT_EQ(ierrFromBlock, t.sh.ierr);
      if (!block.program) continue;  // a text that does not compile: reported once per block
      EXPECT_EQ(fromBlock.has_value(), reported.has_value());
      if (reported && fromBlock) {
        EXPECT_EQ(std::tuple(fromBlock->line(), fromBlock->column(), fromBlock->description()),
                  std::tuple(reported->line(), reported->column(), reported->description()));
      }
    }
    t.engine.SetErrorHandler(nullptr);
  }
  return atX;
}

// The outcome of `text` at x, after checking that every way of getting it agrees, a block
// of points among them.
inline Outcome evalEveryWay(const std::string& text, double x) {
  Outcome firsts[2], atPoints[2];
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
    atPoints[optimize] = expectBlockAgrees(t, text, x);
    firsts[optimize] = first;
  }
  SCOPED_TRACE(text + " optimized against plain");
  expectSame(firsts[true], firsts[false]);
  expectSame(atPoints[true], atPoints[false]);
  EXPECT_EQ(std::tie(firsts[true].line, firsts[true].column, firsts[true].description),
            std::tie(firsts[false].line, firsts[false].column, firsts[false].description));
  return firsts[true];
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
