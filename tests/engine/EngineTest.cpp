// The engine's contract with the windows: statements and variables, the compiled-text
// cache, the error handler, AddCode, Reset and the non-throwing path.

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
  RuntimeError failure(const std::string& text, bool statement = true) {
    try {
      statement ? engine.ExecuteStatement(text) : engine.AddCode(text);
    } catch (const RuntimeError& e) {
      return e;
    }
    ADD_FAILURE() << text << " was accepted";
    return RuntimeError(0);
  }
};

TEST(Engine, RefusedStatementsReachTheHandlerOnce) {
  const ErrorRow rows[] = {{"Sin = 1", 501, 1},  {"Asin = 1", 501, 1},    {"sh = 1", 501, 1},     {"2a=1", 1024, 1},
                           {"a b=1", 1011, 3},   {"a", 1011, 2},         {"a = ", 1023, 5},      {"a = 1 2", 1025, 7},
                           {"zz.x = 1", 424, 1}, {"sh.zz = 1", 438, 4},  {"ierr = 1E10", 6, 1}, {"c = 1/0", 11, 6}};
  for (const ErrorRow& row : rows) {
    Recorded t;
    const RuntimeError e = t.failure(row.text);
    EXPECT_EQ(std::pair(e.number(), e.column()), std::pair(row.number, row.column)) << row.text;
    ASSERT_EQ(t.errors.size(), 1u) << row.text;
    EXPECT_EQ(t.errors[0].number(), row.number);
    if (row.number == 11) {
      EXPECT_EQ(evalOnce(t.engine, "c").number, 500);  // a failed assignment creates nothing
    }
  }
}

// A session at the engine: each row's statements run, then its text is evaluated, on one
// engine with the optimizer on and off. The texts compiled early must follow what later
// statements create and assign.
struct SessionRow {
  const char* statements;
  const char* text;
  double expected;
  int32_t error = 0;
};

void checkSession(std::initializer_list<SessionRow> rows) {
  for (bool optimize : {true, false}) {
    Recorded t(optimize);
    size_t errors = 0;
    for (const SessionRow& row : rows) {
      SCOPED_TRACE(std::string(row.statements) + " then " + row.text + (optimize ? " (optimized)" : " (plain)"));
      if (*row.statements) t.engine.ExecuteStatement(row.statements);
      const Outcome o = evalOnce(t.engine, row.text);
      EXPECT_EQ(o.number, row.error) << o.description;
      if (!row.error) {
        EXPECT_DOUBLE_EQ(o.value, row.expected);
      }
      errors += row.error != 0;
    }
    EXPECT_EQ(t.errors.size(), errors);
  }
}

TEST(Engine, StatementsAssignAndEvalCompares) {
  checkSession({
      {"x = 0.25: b = 1 = 1: a = 2.37: c = 2 * a: sh.y = 4: HalfPi = 3: ierr = 2.5", "x = 0.5", 0},
      {"", "x", 0.25},  // Eval compares: x is not touched
      {"", "b", -1},    // the second = compares
      {"", "c", 4.74},     {"", "sh.y", 4}, {"", "HalfPi", 3},
      {"", "ierr", 2},  // rounds half to even into the integer field
      {"x = 1", "x+q", 0, 500}, {"q=2", "x+q", 3},
      {"q=5", "x+q", 6},      // bound by address: sees every later value
      {"d = q + 1", "d", 6},  // compiled before d existed
      {"d = q + 1", "d", 6},
      {"n = 1: n = n + 1: m = n * 10", "m", 20},  // created earlier on the line
  });
}

// A variable holds the kind of number last assigned to it; formulas compiled for the
// kind it held before must follow the change.
TEST(Engine, VariablesHoldTheKindOfNumberAssigned) {
  const double tenth = 0.1f;
  const auto single = [](double v) { return static_cast<double>(static_cast<float>(v)); };
  checkSession({
      {"s = 0.1: k = 3", "s * k", 0.1 * 3}, {"s = CSng(0.1)", "s * k", single(tenth * 3)}, {"", "s = 0.1", -1},
      {"k = 40000", "s * k", tenth * 40000},
      // Within one line each statement sees the kinds the earlier ones left.
      {"n = 32767: n = n + 1: m = s + n: j = s + 7 \\ 2: k = s", "m", tenth + 32768},
      {"", "j", single(tenth + 3)}, {"", "k * 3", single(tenth * 3)},
      {"x = s", "x = 0.1", 0},  // a field of the math object is a Double whatever is assigned to it
  });
}

TEST(Engine, CacheComparesTextNotBufferAndHoldsManyTexts) {
  Recorded t;
  t.sh.x = 2;
  std::string text = "x*2";
  EXPECT_EQ(t.engine.Eval(text), 4);
  text[2] = '3';
  EXPECT_EQ(t.engine.Eval(text), 6);
  EXPECT_EQ(t.engine.Eval("x*2"), 4);
  for (int round = 0; round < 2; ++round)
    for (int i = 0; i < 5000; ++i) ASSERT_EQ(t.engine.Eval("x+" + std::to_string(i)), 2 + i);
  t.engine.ExecuteStatement("late = 3");
  EXPECT_EQ(t.engine.Eval("x+late"), 5);
}

TEST(Engine, HandlerSeesEveryErrorOnceAndCannotEscapeTryEval) {
  Recorded t;
  double out = 0;
  EXPECT_EQ(t.engine.TryEval("1/0", out), 11);
  EXPECT_EQ(t.engine.TryEval("(1", out), 1006);
  EXPECT_EQ(evalOnce(t.engine, "nosuch").number, 500);
  EXPECT_EQ(t.failure("q = Sqr(-1)").number(), 5);
  EXPECT_EQ(t.engine.TryEval("x + 1", out), 0);
  ASSERT_EQ(t.errors.size(), 4u);
  EXPECT_EQ(t.errors[1].number(), 1006);
  EXPECT_EQ(t.errors[2].description(), "Variable is undefined: 'nosuch'");
  EXPECT_EQ(t.errors[3].number(), 5);

  t.engine.SetErrorHandler([](const RuntimeError&) { throw std::runtime_error("handler"); });
  EXPECT_EQ(t.engine.TryEval("1/0", out), 11);
  EXPECT_THROW(t.engine.Eval("1/0"), RuntimeError);
}

TEST(Engine, AddCodeChecksEveryLineBeforeRunningAny) {
  Recorded t;
  RuntimeError e = t.failure("p = 1\nq = (2", false);
  EXPECT_EQ(std::tuple(e.number(), e.line(), e.column()), std::tuple(1006, 2, 7));
  EXPECT_EQ(evalOnce(t.engine, "p").number, 500);

  t.engine.AddCode("p = 1\r\n' a comment\n\nq = p + 1\n");
  EXPECT_EQ(t.engine.Eval("q"), 2);
  e = t.failure("r = 1\ns = 1/0", false);
  EXPECT_EQ(std::tuple(e.number(), e.line(), e.column()), std::tuple(11, 2, 6));
  EXPECT_EQ(t.engine.Eval("r"), 1);  // lines before the failing one have run
}

TEST(Engine, ResetAndAddObject) {
  Recorded t;
  t.engine.ExecuteStatement("a = 3");
  t.engine.Reset();
  EXPECT_EQ(evalOnce(t.engine, "a + x").number, 500);
  EXPECT_EQ(evalOnce(t.engine, "Asin(1)").number, 13);
  EXPECT_EQ(evalOnce(t.engine, "x").number, 500);
  RegisterMathObject(t.engine, t.sh);  // the name "sh" is free again; texts compiled before rebind
  t.sh.x = 2;
  EXPECT_EQ(evalOnce(t.engine, "a + x").number, 500);
  EXPECT_EQ(t.engine.Eval("x"), 2);

  Class1 other;
  EXPECT_THROW(t.engine.AddObject("SH", other, true), RuntimeError);
  EXPECT_EQ(t.errors.back().number(), 457);
  EXPECT_THROW(t.engine.AddObject("1sh", other, false), RuntimeError);
  t.engine.AddObject("other", other, false);
  other.x = 7;
  EXPECT_EQ(t.engine.Eval("other.x + x"), 9);  // a non-global object's members need the prefix
}

}  // namespace
}  // namespace orvane::test
