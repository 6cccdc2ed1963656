// The engine's contract with the windows (statements and variables, the compiled-text
// cache, the error handler, AddCode, Reset and the non-throwing path), the user constants
// list and its registration, and the math object's functions and point evaluation.

#include <string>
#include <vector>

#include "engine/EngineCheck.h"
#include "engine/UserConstants.h"

namespace orvane::test {
namespace {

// An engine whose handler records each error, with the math object's shared error field.
struct Recorded : Engine {
  std::vector<RuntimeError> errors;
  int32_t shared = 0;
  explicit Recorded(bool optimize = true) : Engine(optimize) {
    sh.sharedError = &shared;
    engine.SetErrorHandler([this](const RuntimeError& e) { errors.push_back(e); });
  }
  std::vector<int32_t> numbers() const {
    std::vector<int32_t> out;
    for (const RuntimeError& e : errors) out.push_back(e.number());
    return out;
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
  EXPECT_EQ(t.numbers(), (std::vector<int32_t>{11, 1006, 500, 5}));

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

// What a typed entry may name, and where a redefinition and the 101st entry go.
TEST(UserConstants, NameRulesRedefinitionAndTheLimitOf101) {
  const std::pair<const char*, bool> rows[] = {
      {"Abc9=pi/2", true}, {"2a=1", false}, {"a_b=1", false}, {"=5", false}, {"abc", false}, {"\xC3\xA9=1", false},
      {"a=", true}};  // a bad value is the engine's to report
  for (const auto& [typed, accepted] : rows) {
    UserConstants list;
    EXPECT_EQ(list.Add(typed), accepted) << typed;
    EXPECT_EQ(list.numcon(), accepted ? 1 : 0) << typed;
  }
  UserConstants list;
  for (const char* typed : {"a=1", "b=2", "a=2"}) ASSERT_TRUE(list.Add(typed));
  EXPECT_EQ(list.entries(), (std::vector<std::string>{"b=2", "a=2"}));
  ASSERT_TRUE(list.Add("ab=3"));  // a longer name with the same start is another constant
  EXPECT_EQ(list.numcon(), 3);

  UserConstants full;
  for (int i = 0; i < 101; ++i) ASSERT_TRUE(full.Add("c" + std::to_string(i) + "=1"));
  EXPECT_FALSE(full.Add("z=1"));
  EXPECT_EQ(full.numcon(), 101);
  EXPECT_TRUE(full.Add("c5=2"));  // redefining frees its own place first
  EXPECT_EQ(full.entries().back(), "c5=2");
}

TEST(UserConstants, RegisteredInListOrderRemovedAsZeroStoppedByABadEntry) {
  Engine t;
  UserConstants list;
  for (const char* typed : {"a=2.37", "b=2*a", "h=Asin(1)*2", "k=1"}) list.Add(typed);
  list.RegisterAll(t.engine);
  EXPECT_DOUBLE_EQ(t.engine.Eval("b"), 4.74);
  EXPECT_EQ(t.engine.Eval("h"), t.sh.pi);
  EXPECT_DOUBLE_EQ(EvaluateAt(t.engine, t.sh, "x+a", 3), 5.37);
  list.Remove(0, t.engine);
  EXPECT_EQ(list.entries(), (std::vector<std::string>{"b=2*a", "h=Asin(1)*2", "k=1"}));
  EXPECT_EQ(EvaluateAt(t.engine, t.sh, "x+a", 3), 3);
  list.RegisterAll(t.engine);
  EXPECT_EQ(EvaluateAt(t.engine, t.sh, "x+a", 3), 3);
  EXPECT_THROW(list.Remove(3, t.engine), RuntimeError);
  EXPECT_THROW(list.Remove(-1, t.engine), RuntimeError);

  // A bad entry stops the registration, through the engine's handler, after the ones before it.
  Recorded fresh;
  UserConstants bad;
  for (const char* typed : {"a=1", "c=1+", "d=3"}) bad.Add(typed);
  EXPECT_THROW(bad.RegisterAll(fresh.engine), RuntimeError);
  EXPECT_EQ(fresh.numbers(), (std::vector<int32_t>{1023}));
  EXPECT_EQ(fresh.engine.Eval("a"), 1);
  EXPECT_THROW(fresh.engine.Eval("d"), RuntimeError);
}

const double halfpi = 1.5707963267948966;

// Which number each domain error gives is FunctionsFollowTheirFormulasExactly's; here
// where it goes: ierr and the shared field, never cleared by a later call.
TEST(MathObject, DomainErrorsAreTrappedIntoIerrAndTheSharedField) {
  Recorded t;
  EXPECT_EQ(t.sh.Tanh(800), 0);  // not 1: Exp(X) is computed too
  EXPECT_EQ(std::pair(t.sh.ierr, t.shared), std::pair(6, 6));
  EXPECT_NEAR(t.sh.Asin(0.5), 0.523598775598299, 1e-15);
  EXPECT_EQ(t.sh.ierr, 6);
  Class1 alone;  // works without a shared field
  alone.Atanh(1);
  EXPECT_EQ(alone.ierr, 11);
}

// Each function against its formula written in the script language and run by the
// engine: the same value to the last bit, or the same error. (Through the engine's member
// calls at every kind of point: LanguageTest's FieldForms.)
TEST(MathObject, FunctionsFollowTheirFormulasExactly) {
  const char* asin = "Atn(x / Sqr(x * (x * (Abs(x) <> 1)) + 1))";
  const struct {
    double (Class1::*function)(double);
    std::string formula;
  } rows[] = {
      {&Class1::Asin, "(-(Abs(x) <> 1)) * " + std::string(asin) + " - halfpi * ((x = 1) - (x = -1))"},
      {&Class1::Acos, "halfpi + (((x = 1) - (x = -1)) * halfpi + (Abs(x) <> 1) * " + std::string(asin) + ")"},
      {&Class1::Sinh, "(Exp(x) - Exp(-x)) * 0.5"},
      {&Class1::Cosh, "(Exp(x) + Exp(-x)) * 0.5"},
      {&Class1::Tanh, "(-2 * Exp(-x)) / (Exp(-x) + Exp(x)) + 1"},
      {&Class1::Asinh, "Log(x + Sqr(x * x + 1))"},
      {&Class1::Acosh, "Log(x + Sqr(x * x - 1))"},
      {&Class1::Atanh, "Log((1 + x) / (1 - x)) * 0.5"},
  };
  std::vector<double> points = {-1,  1,   0,    -0.0, 1E-300, 1.0000000000000002, 0.9999999999999999, 709,
                                710, -710, 800, -800, 1E154,  1E155, -1E200, 1E308};
  for (double x = -3; x <= 3; x += 0.0625) points.push_back(x);
  Engine t;
  EXPECT_EQ(std::tuple(t.sh.halfpi, t.sh.pi, t.sh.e), std::tuple(halfpi, 2 * halfpi, 2.718281828459045));  // registered
  for (const auto& row : rows) {
    for (double x : points) {
      t.sh.x = x;
      const Outcome script = evalOnce(t.engine, row.formula);
      Class1 object;
      object.halfpi = t.sh.halfpi;
      const double value = (object.*row.function)(x);
      EXPECT_EQ(object.ierr, script.number) << row.formula << " at " << x;
      EXPECT_TRUE(sameBits(value, script.number ? 0.0 : script.value)) << row.formula << " at " << x;
    }
  }
  ExpressionEngine bare;  // without the start-up statements halfpi is 0
  Class1 sh;
  bare.AddObject("sh", sh, true);
  EXPECT_EQ(bare.Eval("Asin(1)"), 0);
  EXPECT_EQ(bare.Eval("Acos(0)"), 0);
}

// x and y or u and v set before each evaluation; a variable not named keeps its value.
TEST(PointEvaluation, ValuesAtPoints) {
  Recorded t;
  EXPECT_EQ(EvaluateAt(t.engine, t.sh, "(x-1)*x*(x+1)*(y-1)*y*(y+1)*5", 2, 3), 720);
  EXPECT_EQ(EvaluateAt(t.engine, t.sh, "u*10+v+x", 1, 2, SurfaceVariables::UV), 14);
  double out = 0;
  EXPECT_EQ(TryEvaluateAt(t.engine, t.sh, "u-v", 4, 1.5, out, SurfaceVariables::UV), 0);
  EXPECT_EQ(out, 2.5);
}

TEST(PointEvaluation, ObjectErrorsRaiseWithoutTheHandlerEngineErrorsThroughIt) {
  Recorded t;
  try {
    EvaluateAt(t.engine, t.sh, "Asin(2) + 1", 0);
    ADD_FAILURE();
  } catch (const RuntimeError& e) {
    EXPECT_EQ(e.number(), 5);
    EXPECT_EQ(e.description(), "Invalid procedure call or argument");
  }
  EXPECT_EQ(t.shared, 5);
  double out = 0;
  EXPECT_EQ(TryEvaluateAt(t.engine, t.sh, "Atanh(x)", 1, out), 11);
  EXPECT_EQ(TryEvaluateAt(t.engine, t.sh, "Atanh(x)", 0.5, out), 0);  // ierr is cleared per point
  EXPECT_NEAR(out, 0.549306144334055, 1e-15);
  EXPECT_EQ(TryEvaluateAt(t.engine, t.sh, "Tanh(x)*y", 800, 1, out), 6);
  EXPECT_TRUE(t.errors.empty());

  EXPECT_THROW(EvaluateAt(t.engine, t.sh, "1/x", 0), RuntimeError);
  EXPECT_EQ(TryEvaluateAt(t.engine, t.sh, "x + nosuch", 1, out), 500);
  EXPECT_EQ(t.numbers(), (std::vector<int32_t>{11, 500}));
}

}  // namespace
}  // namespace orvane::test
