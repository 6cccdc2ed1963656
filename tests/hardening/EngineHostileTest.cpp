// Formulas far beyond what anyone types: long chains must compile and evaluate, deep
// nesting must end in the engine's "Out of stack space" error instead of overflowing
// the program's own stack.

#include <cmath>
#include <functional>
#include <string>
#include <vector>

#include "engine/EngineCheck.h"

namespace orvane {
namespace {

using Window = test::Engine;  // an engine as a window holds one

std::string repeat(const std::string& piece, int count) {
  std::string out;
  out.reserve(piece.size() * static_cast<size_t>(count));
  for (int i = 0; i < count; ++i) out += piece;
  return out;
}

constexpr int kTerms = 100000;

double sumOfSinesAt(double x) {  // added up term by term, as the engine does
  double sum = 0;
  for (int i = 0; i < kTerms; ++i) sum += std::sin(x);
  return sum;
}

TEST(EngineHostile, HundredThousandTermsCompileAndEvaluate) {
  const struct { const char* what; std::string text; double x, expected; } rows[] = {
      {"sum of x", "x" + repeat("+x", kTerms - 1), 0.5, kTerms * 0.5},
      {"alternating sum", "x" + repeat("-x+x", (kTerms - 1) / 2), 3.0, 3.0},
      {"product of ones", "x" + repeat("*1", kTerms - 1), 7.25, 7.25},
      {"polynomial terms", "1" + repeat("+x*2-x", kTerms / 2), 1.0, 1.0 + kTerms / 2},
      {"mixed operators", repeat("x^2/x\\1 Mod 3+", kTerms / 5) + "0", 2.0, 2.0 * (kTerms / 5)},
      {"calls", repeat("Abs(-x)+", kTerms / 2) + "0", 2.0, 2.0 * (kTerms / 2)},
      {"comparisons", repeat("(x=x)+", kTerms / 3) + "0", 1.0, -1.0 * (kTerms / 3)},
      {"sines", "Sin(x)" + repeat("+Sin(x)", kTerms - 1), 0.5, sumOfSinesAt(0.5)},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.what);
    for (bool optimize : {true, false}) {
      Window w(optimize);
      EXPECT_DOUBLE_EQ(EvaluateAt(w.engine, w.sh, row.text, row.x), row.expected);
      double again = 0;  // the cached program, through the non-throwing path
      ASSERT_EQ(TryEvaluateAt(w.engine, w.sh, row.text, row.x, again), 0);
      EXPECT_DOUBLE_EQ(again, row.expected);
    }
  }
}

// A few hundred levels, well inside the limit; 20,000 texts in a row and 300 nested to the
// right: a text stack far deeper than the fast loop's.
TEST(EngineHostile, NestingAFormulaCanNeedWorks) {
  Window w;
  const std::string row = "(\"a\"" + repeat("&x", 20000) + ")=\"a" + std::string(20000, '0') + "\"";
  EXPECT_EQ(w.engine.Eval(row), -1.0);
  const std::string nested = repeat("\"a\"&(", 300) + "\"b\"" + repeat(")", 300) + "=\"" + std::string(300, 'a') + "b\"";
  EXPECT_EQ(w.engine.Eval(nested), -1.0);
  w.sh.x = 2;
  EXPECT_EQ(w.engine.Eval(repeat("(", 300) + "x" + repeat(")", 300)), 2.0);
  EXPECT_EQ(w.engine.Eval(repeat("x+(", 300) + "x" + repeat(")", 300)), 602.0);
  EXPECT_EQ(w.engine.Eval(repeat("-", 300) + "x"), 2.0);
}

// Texts nested deeper than any formula needs: each must give the engine's error, with
// the number the user sees, and leave the engine usable.
TEST(EngineHostile, DeepNestingIsRefusedWithoutOverflowingTheStack) {
  constexpr int kDeep = 100000;
  const std::pair<const char*, std::string> rows[] = {
      {"parentheses", repeat("(", kDeep) + "x" + repeat(")", kDeep)},
      {"unclosed parentheses", repeat("(", kDeep)},
      {"unary minus", repeat("-", kDeep) + "x"},
      {"Not", repeat("Not ", kDeep) + "x"},
      {"function calls", repeat("Abs(", kDeep) + "x" + repeat(")", kDeep)},
      {"member functions", repeat("sh.Sinh(", kDeep) + "x" + repeat(")", kDeep)},
      {"right operands", repeat("x+(", kDeep) + "x" + repeat(")", kDeep)},
      {"powers", repeat("2^(", kDeep) + "1" + repeat(")", kDeep)},
  };
  for (const auto& [what, text] : rows) {
    SCOPED_TRACE(what);
    Window w;
    std::vector<int32_t> reported;
    w.engine.SetErrorHandler([&](const RuntimeError& e) { reported.push_back(e.number()); });
    EXPECT_EQ(test::evalOnce(w.engine, text).number, err::OutOfStack);
    double value = 0;
    EXPECT_EQ(w.engine.TryEval(text, value), err::OutOfStack);
    EXPECT_THROW(w.engine.ExecuteStatement("a = " + text), RuntimeError);
    EXPECT_EQ(reported, std::vector<int32_t>(3, err::OutOfStack));
    EXPECT_EQ(w.engine.Eval("x + 1"), 1.0);  // still usable
  }
}

TEST(EngineHostile, ArbitraryBytesAreErrorsNotCrashes) {
  // Control characters, high bytes, NUL and lone quotes in each of the engine's entries.
  std::string bytes;
  for (int c = 0; c < 256; ++c) bytes += static_cast<char>(c);
  const std::string texts[] = {bytes, std::string("x\0+1", 4), "\"", "&H", "&HFFFFFFFFFFFFFFFFFFFF",
                               "1E999999999", ".", "x..y", "sh.", "sh..x", ":", "a=:b=", "=",
                               std::string(1000, '9') + "E-99999"};
  for (const std::string& text : texts) {
    Window w;
    const std::function<void()> calls[] = {[&] { w.engine.Eval(text); }, [&] { w.engine.ExecuteStatement(text); },
                                           [&] { w.engine.AddCode(text); }};
    for (const std::function<void()>& call : calls) {
      try {
        call();
      } catch (const RuntimeError& e) {
        EXPECT_NE(e.number(), 0);
        EXPECT_FALSE(e.description().empty());
      }
    }
  }
}

}  // namespace
}  // namespace orvane
