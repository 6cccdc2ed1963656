// The engine's contract with the windows: statements and variables, the compiled-text
// cache, the error handler, Reset and the non-throwing path.

#include <string>
#include <vector>

#include "engine/EngineCheck.h"

namespace orvane::test {
namespace {

struct Recorded : Engine {
  std::vector<RuntimeError> errors;
  explicit Recorded(bool optimize = true) : Engine(optimize) {
    engine.SetErrorHandler([this](const RuntimeError& e) { errors.push_back(e); });
  }
  int32_t statementError(const std::string& text) {
    try {
      engine.ExecuteStatement(text);
    } catch (const RuntimeError& e) {
      return e.number();
    }
    return 0;
  }
};

TEST(Engine, StatementsAssignAndEvalCompares) {
  for (bool optimize : {true, false}) {
    Recorded t(optimize);
    t.sh.x = 0.5;
    EXPECT_EQ(t.engine.Eval("x = 0.5"), -1);  // a comparison: x is not touched
    EXPECT_EQ(t.sh.x, 0.5);
    t.engine.ExecuteStatement("x = 0.25");
    EXPECT_EQ(t.sh.x, 0.25);
    t.engine.ExecuteStatement("b = 1 = 1");  // the second = compares
    EXPECT_EQ(t.engine.Eval("b"), -1);
    t.engine.ExecuteStatement("a = 2.37: c = 2 * a");
    EXPECT_DOUBLE_EQ(t.engine.Eval("c"), 4.74);
    t.engine.ExecuteStatement("sh.y = 4");
    EXPECT_EQ(t.sh.y, 4);
    t.engine.ExecuteStatement("HalfPi = 3");
    EXPECT_EQ(t.sh.halfpi, 3);
    t.engine.ExecuteStatement("ierr = 2.5");  // rounds half to even into the integer field
    EXPECT_EQ(t.sh.ierr, 2);
    t.engine.ExecuteStatement("");
    EXPECT_TRUE(t.errors.empty());
  }
}

TEST(Engine, RefusedStatements) {
  struct Row {
    const char* text;
    int32_t number;
    int column;
  };
  for (const Row& row : {
           Row{"Sin = 1", 501, 1},
           Row{"Asin = 1", 501, 1},
           Row{"sh = 1", 501, 1},
           Row{"2a=1", 1024, 1},
           Row{"a b=1", 1011, 3},
           Row{"a", 1011, 2},
           Row{"a = ", 1023, 5},
           Row{"a = 1 2", 1025, 7},
           Row{"zz.x = 1", 424, 1},
           Row{"sh.zz = 1", 438, 4},
           Row{"ierr = 1E10", 6, 1},
           Row{"c = 1/0", 11, 6},
       }) {
    Recorded t;
    try {
      t.engine.ExecuteStatement(row.text);
      ADD_FAILURE() << row.text << " was accepted";
    } catch (const RuntimeError& e) {
      EXPECT_EQ(e.number(), row.number) << row.text;
      EXPECT_EQ(e.column(), row.column) << row.text;
    }
    ASSERT_EQ(t.errors.size(), 1u) << row.text;
    EXPECT_EQ(t.errors[0].number(), row.number);
  }
}

TEST(Engine, FailedAssignmentCreatesNoVariable) {
  Recorded t;
  EXPECT_EQ(t.statementError("c = 1/0"), 11);
  EXPECT_EQ(evalOnce(t.engine, "c").number, 500);
}

TEST(Engine, NameDefinedAfterAFailedEvalBindsOnTheNextEval) {
  for (bool optimize : {true, false}) {
    Recorded t(optimize);
    t.sh.x = 1;
    EXPECT_EQ(evalOnce(t.engine, "x+a").number, 500);
    double out = 0;
    EXPECT_EQ(t.engine.TryEval("x+a", out), 500);
    t.engine.ExecuteStatement("a=2");
    EXPECT_EQ(t.engine.Eval("x+a"), 3);
    t.engine.ExecuteStatement("a=5");  // bound by address: sees every later value
    EXPECT_EQ(t.engine.Eval("x+a"), 6);
    t.engine.ExecuteStatement("d = a + 1");  // a statement compiled before d existed
    t.engine.ExecuteStatement("d = a + 1");
    EXPECT_EQ(t.engine.Eval("d"), 6);
    EXPECT_EQ(t.errors.size(), 2u);
  }
}

TEST(Engine, StatementSeesVariableItCreatesEarlierOnTheLine) {
  Recorded t;
  t.engine.ExecuteStatement("n = 1: n = n + 1: m = n * 10");
  EXPECT_EQ(t.engine.Eval("m"), 20);
}

TEST(Engine, CacheComparesTextNotBuffer) {
  Recorded t;
  t.sh.x = 2;
  std::string text = "x*2";
  EXPECT_EQ(t.engine.Eval(text), 4);
  text[2] = '3';
  EXPECT_EQ(t.engine.Eval(text), 6);
  EXPECT_EQ(t.engine.Eval("x*2"), 4);
}

TEST(Engine, HandlerSeesEveryErrorOnce) {
  Recorded t;
  double out = 0;
  EXPECT_EQ(t.engine.TryEval("1/0", out), 11);
  EXPECT_EQ(t.engine.TryEval("(1", out), 1006);
  EXPECT_EQ(evalOnce(t.engine, "nosuch").number, 500);
  EXPECT_EQ(t.statementError("q = Sqr(-1)"), 5);
  ASSERT_EQ(t.errors.size(), 4u);
  EXPECT_EQ(t.errors[0].number(), 11);
  EXPECT_EQ(t.errors[1].number(), 1006);
  EXPECT_EQ(t.errors[2].description(), "Variable is undefined: 'nosuch'");
  EXPECT_EQ(t.errors[3].number(), 5);
  EXPECT_EQ(t.engine.TryEval("x + 1", out), 0);
  EXPECT_EQ(t.errors.size(), 4u);
}

TEST(Engine, ThrowingHandlerDoesNotEscapeTryEval) {
  Engine t;
  t.engine.SetErrorHandler([](const RuntimeError&) { throw std::runtime_error("handler"); });
  double out = 0;
  EXPECT_EQ(t.engine.TryEval("1/0", out), 11);
  EXPECT_THROW(t.engine.Eval("1/0"), RuntimeError);
}

TEST(Engine, AddCodeChecksEveryLineBeforeRunningAny) {
  Recorded t;
  try {
    t.engine.AddCode("p = 1\nq = (2");
    ADD_FAILURE();
  } catch (const RuntimeError& e) {
    EXPECT_EQ(e.number(), 1006);
    EXPECT_EQ(e.line(), 2);
    EXPECT_EQ(e.column(), 7);
  }
  EXPECT_EQ(evalOnce(t.engine, "p").number, 500);

  t.engine.AddCode("p = 1\r\n' a comment\n\nq = p + 1\n");
  EXPECT_EQ(t.engine.Eval("q"), 2);
  try {
    t.engine.AddCode("r = 1\ns = 1/0");
    ADD_FAILURE();
  } catch (const RuntimeError& e) {
    EXPECT_EQ(e.number(), 11);
    EXPECT_EQ(e.line(), 2);
    EXPECT_EQ(e.column(), 6);
  }
  EXPECT_EQ(t.engine.Eval("r"), 1);  // lines before the failing one have run
}

TEST(Engine, ResetForgetsObjectsVariablesAndTexts) {
  Recorded t;
  t.engine.ExecuteStatement("a = 3");
  EXPECT_EQ(t.engine.Eval("a + x"), 3);
  t.engine.Reset();
  EXPECT_EQ(evalOnce(t.engine, "a + x").number, 500);
  EXPECT_EQ(evalOnce(t.engine, "Asin(1)").number, 13);
  RegisterMathObject(t.engine, t.sh);  // the name "sh" is free again
  t.sh.x = 2;
  EXPECT_EQ(evalOnce(t.engine, "a + x").number, 500);
  EXPECT_EQ(t.engine.Eval("x"), 2);
}

TEST(Engine, AddObjectRefusesDuplicateAndInvalidNames) {
  Recorded t;
  Class1 other;
  EXPECT_THROW(t.engine.AddObject("SH", other, true), RuntimeError);
  EXPECT_EQ(t.errors.back().number(), 457);
  EXPECT_THROW(t.engine.AddObject("1sh", other, false), RuntimeError);
  t.engine.AddObject("other", other, false);
  other.x = 7;
  t.sh.x = 1;
  EXPECT_EQ(t.engine.Eval("other.x + x"), 8);  // members of a non-global object need the prefix
}

TEST(Engine, AddObjectRebindsTextsCompiledBefore) {
  ExpressionEngine engine;
  EXPECT_THROW(engine.Eval("x"), RuntimeError);
  Class1 sh;
  sh.x = 4;
  engine.AddObject("sh", sh, true);
  EXPECT_EQ(engine.Eval("x"), 4);
}

TEST(Engine, ManyDistinctTextsStayCorrect) {
  Engine t;
  t.sh.x = 1;
  for (int round = 0; round < 2; ++round)
    for (int i = 0; i < 5000; ++i) ASSERT_EQ(t.engine.Eval("x+" + std::to_string(i)), 1 + i);
  t.engine.ExecuteStatement("late = 3");
  EXPECT_EQ(t.engine.Eval("x+late"), 4);
}

TEST(Engine, TryEvalAgreesWithEval) {
  Recorded t;
  for (double x : {-0.9, 0.0, 0.3, 2.0}) {
    t.sh.x = x;
    double out = 0;
    ASSERT_EQ(t.engine.TryEval("Sqr(x*x+1)/Exp(x)", out), 0);
    EXPECT_EQ(out, t.engine.Eval("Sqr(x*x+1)/Exp(x)"));
  }
}

}  // namespace
}  // namespace orvane::test
