#pragma once
// Differential checks for engine rows: every text is evaluated with the optimizer on
// and off, on first use and from the cache, and again after x has moved, and all of
// these must agree.

#include <gtest/gtest.h>

#include <bit>
#include <cstdint>
#include <optional>
#include <string>

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

struct Outcome {
  double value = 0;
  int32_t number = 0;
  int line = 0;
  int column = 0;
  std::string description;
};

inline Outcome evalOnce(ExpressionEngine& engine, const std::string& text) {
  Outcome o;
  try {
    o.value = engine.Eval(text);
  } catch (const RuntimeError& e) {
    o.number = e.number();
    o.line = e.line();
    o.column = e.column();
    o.description = e.description();
  }
  return o;
}

inline bool sameBits(double a, double b) { return std::bit_cast<uint64_t>(a) == std::bit_cast<uint64_t>(b); }

// The outcome of `text` at x, after checking that every way of getting it agrees.
inline Outcome evalEveryWay(const std::string& text, double x) {
  std::optional<Outcome> reference;
  for (bool optimize : {true, false}) {
    Engine t(optimize);
    t.sh.x = x;
    Outcome first = evalOnce(t.engine, text);
    Outcome cached = evalOnce(t.engine, text);
    t.sh.x = x + 0.75;
    Outcome moved = evalOnce(t.engine, text);
    Engine fresh(optimize);
    fresh.sh.x = x + 0.75;
    Outcome movedFresh = evalOnce(fresh.engine, text);
    t.sh.x = x;
    Outcome back = evalOnce(t.engine, text);
    double tried = 0;
    int32_t tryNumber = t.engine.TryEval(text, tried);

    SCOPED_TRACE(text + (optimize ? " (optimized)" : " (plain)"));
    for (const Outcome* o : {&cached, &back}) {
      EXPECT_EQ(o->number, first.number);
      EXPECT_EQ(o->column, first.column);
      if (!first.number) {
      EXPECT_TRUE(sameBits(o->value, first.value)) << o->value << " vs " << first.value;
    }
    }
    EXPECT_EQ(tryNumber, first.number);
    if (!first.number) {
      EXPECT_TRUE(sameBits(tried, first.value));
    }
    EXPECT_EQ(moved.number, movedFresh.number);
    if (!moved.number) {
      EXPECT_TRUE(sameBits(moved.value, movedFresh.value)) << moved.value << " vs " << movedFresh.value;
    }
    if (!reference) {
      reference = first;
    } else {
      EXPECT_EQ(first.number, reference->number);
      EXPECT_EQ(first.line, reference->line);
      EXPECT_EQ(first.column, reference->column);
      EXPECT_EQ(first.description, reference->description);
      if (!first.number) {
      EXPECT_TRUE(sameBits(first.value, reference->value)) << first.value << " vs " << reference->value;
    }
    }
  }
  return *reference;
}

struct ValueRow {
  const char* text;
  double expected;
  double x = 0;
};

struct ErrorRow {
  const char* text;
  int32_t number;
  int column;
  int line = 1;
  double x = 0.5;
};

inline void checkValues(std::initializer_list<ValueRow> rows) {
  for (const ValueRow& row : rows) {
    Outcome o = evalEveryWay(row.text, row.x);
    EXPECT_EQ(o.number, 0) << row.text << ": " << o.description;
    EXPECT_DOUBLE_EQ(o.value, row.expected) << row.text;
  }
}

inline void checkErrors(std::initializer_list<ErrorRow> rows) {
  for (const ErrorRow& row : rows) {
    Outcome o = evalEveryWay(row.text, row.x);
    EXPECT_EQ(o.number, row.number) << row.text << ": " << o.description;
    EXPECT_EQ(o.column, row.column) << row.text;
    EXPECT_EQ(o.line, row.line) << row.text;
  }
}

}  // namespace orvane::test
