// The expression language: each row is checked with the optimizer on and off, first
// and cached, and after x has moved (see EngineCheck.h).

#include <cmath>
#include <string>
#include <vector>

#include "engine/EngineCheck.h"

namespace orvane::test {
namespace {

TEST(Language, PrecedenceAndAssociativity) {
  checkValues({
      // Negation binds tighter than ^, which is left-associative.
      {"-2^2", 4}, {"2*-3^2", 18}, {"-2^-2", 0.25}, {"2^3^2", 64}, {"2^-1^2", 0.25}, {"-x^2", 9, 3},
      {"-x^2+4", 13, 3}, {"1-x^2", -8, 3}, {"Exp(-x^2)", M_E, 1}, {"-(x^2)", -9, 3}, {"2^2*3", 12},
      {"1 - -1", 2}, {"--3", 3}, {"+3", 3}, {"2+3*4", 14}, {"(2+3)*4", 20}, {"10-4-3", 3}, {"64/4/2", 8},
      {"7\\2*3", 1}, {"10 \\ 3 Mod 2", 1}, {"7 Mod 4 * 2", 7},  // * above \ above Mod
      {"5 Mod 3 + 1", 3}, {"1 + 2 & 3", 33}, {"Not Not 5", 5}, {"Not 1 = 2", -1}, {"1 < 2 = True", -1},
      {"2 < 3 < 1", -1}, {"1 Or 2 And 0", 1}, {"2 => 2", -1}, {"3 =< 2", 0}, {"2><1", -1}, {"x=>3", -1, 3},
      {"True And False Or True", -1}, {"3 Xor 5 Eqv 6", -1}, {"0 Imp 0 Xor 1", -1},
      // Shapes the optimizer fuses into single instructions.
      {"x-1", 2, 3}, {"1-x", -2, 3}, {"6/x", 2, 3}, {"x^x", 27, 3}, {"2^x*x", 24, 3}, {"(x-1)*x*(x+1)", 24, 3},
      {"1.5+2*x-0.5*x", 6, 3}, {"x^3-2*x+1", 22, 3}, {"x-x", 0, 3}, {"x+x*x", 12, 3}, {"3*(x+2)", 15, 3},
      {"x*3+x^2", 18, 3}, {"(x-1)*(x-2)*(x-4)", -2, 3}, {"1/(x+1)", 0.25, 3}, {"x/4+8/x", 4.5, 2},
      // Names ignore case.
      {"SIN(0) + cos(0) + ExP(0)", 2}, {"X*2", 3, 1.5}, {"HALFPI*2 - Pi", 0}, {"3 MOD 2", 1}, {"true", -1},
      {"sh.X + SH.y", 1.5, 1.5}, {"asin(1) - HalfPi", 0},
  });
}

TEST(Language, LiteralsAndTexts) {
  checkValues({
      {"12", 12}, {"1.5", 1.5}, {".5", 0.5}, {"1.", 1}, {"1E-3", 0.001}, {"1.5e+20", 1.5e20}, {"1E-400", 0},
      {"  7  ", 7}, {"&hff", 255}, {"&H8000", -32768}, {"&H10000", 65536}, {"&HFFFFFFFF", -1}, {"&hffff&", 65535},
      {"&hffffffff&", -1}, {"&O17", 15}, {"&17", 15}, {"&177777", -1}, {"&177777&", 65535}, {"&37777777777", -1},
      {"&h01or&h02", 3}, {"True", -1}, {"False", 0}, {"1 ' a comment", 1},
      {"\"ab\" & \"cd\" = \"abcd\"", -1}, {"\"a\" + \"b\" = \"ab\"", -1}, {"\"a\"\"b\" <> \"ab\"", -1},
      {"\"abc\" < \"abd\"", -1}, {"\"B\" < \"a\"", -1}, {"1 & 2", 12}, {"2.5 & \"\"", 2.5},
      {"-x & \"\"", -0.5, 0.5}, {"\"12\" + 1", 13}, {"1 + \"2\"", 3}, {"\"3\" * \"4\"", 12},
      {"\"1.5\"", 1.5}, {"1 < \"a\"", -1}, {"\"a\" > 1", -1}, {"\"10\" = 10", -1}, {"Sqr(\"16\")", 4},
      // A Boolean becomes True or False, a Single seven digits.
      {"(1 = 1) & (1 = 2) = \"TrueFalse\"", -1}, {"CSng(0.1) & \"\" = \"0.1\"", -1}, {"CSng(x) & \"\"", 1.1, 1.1},
  });
}

TEST(Language, BuiltinsAtOrdinaryAndBoundaryArguments) {
  checkValues({
      {"Abs(-2.5)", 2.5}, {"Atn(1)*4", M_PI}, {"Cos(0)", 1}, {"Sin(0)", 0}, {"Tan(0)", 0},
      {"Sin(x)^2 + Cos(x)^2", 1, 0.3}, {"Exp(1)", M_E}, {"Exp(-1000)", 0}, {"Fix(-2.5)", -2}, {"Int(-2.5)", -3},
      {"Log(1)", 0}, {"Log(Exp(2))", 2}, {"Round(2.5)", 2}, {"Round(-2.5)", -2}, {"Round(1.2345, 2)", 1.23},
      {"Round(123.456, 0)", 123}, {"Round(x, 1)", 0.7, 0.66}, {"Sgn(-3)", -1}, {"Sgn(0)", 0}, {"Sgn(2)", 1},
      {"Sqr(16)", 4}, {"Sqr(0)", 0}, {"CDbl(\"2.5\")", 2.5}, {"CInt(2.5)", 2}, {"CInt(-32768)", -32768},
      {"CInt(32767.4)", 32767}, {"CLng(2.5)", 2}, {"CLng(2147483647)", 2147483647},
      {"CLng(-2147483648.4)", -2147483648.0}, {"CSng(0.1)", static_cast<double>(0.1f)}, {"CBool(5)", -1},
      {"CBool(0)", 0}, {"2^0.5", std::sqrt(2.0)}, {"(-2)^3", -8}, {"x^3", 0.125, 0.5}, {"0^0", 1},
      {"7 \\ 2", 3}, {"-7 \\ 2", -3}, {"7.5 \\ 2", 4}, {"6.5 \\ 2", 3},  // operands round half to even
      {"7 Mod 3", 1}, {"-7 Mod 3", -1}, {"7 Mod -3", 1}, {"5.5 Mod 2", 0}, {"-2147483648 \\ -1", 2147483648.0},
      {"-2147483648 Mod -1", 0}, {"2147483647 + 1", 2147483648.0}, {"3 And 5", 1}, {"3 Or 5", 7},
      {"3 Xor 5", 6}, {"0 Eqv 0", -1}, {"-1 Imp 0", 0},
  });
}

// A Single computes at single precision with Singles, Integers and Booleans, and at
// double precision once a Long or a Double joins in; comparisons with a Single are made
// at single precision. Which kind an integer result has depends on its size.
TEST(Language, NumbersKeepTheirKinds) {
  const auto single = [](double v) { return static_cast<double>(static_cast<float>(v)); };
  const double tenth = 0.1f;  // CSng(0.1)
  checkValues({
      {"CSng(0.001 * 0.001) = 0.000001", -1}, {"CSng(0.1) = 0.1", -1}, {"CDbl(CSng(0.1)) = 0.1", 0},
      {"CSng(16777217) = 16777217", -1}, {"CSng(x) < x", 0, 0.1}, {"CSng(x) = x", -1, 0.3},
      {"CSng(0.1) * 3", single(tenth * 3)}, {"CSng(0.1) * 3.0", tenth * 3}, {"CSng(0.1) + True", single(tenth - 1)},
      {"CSng(0.1) + 40000", tenth + 40000}, {"CSng(0.1) / 3", single(tenth / 3)}, {"CSng(0.1) / CLng(3)", tenth / 3},
      {"CSng(0.1) + (32767 + 1)", tenth + 32768},  // an Integer sum that outgrew the Integers is a Long
      {"CSng(0.1) + (32768 - 1)", tenth + 32767},  // and a Long stays one
      {"CSng(0.1) + CInt(x) * 1000", single(tenth + 20000), 20}, {"CSng(0.1) + CInt(x) * 1000", tenth + 40000, 40},
      {"CSng(0.1) + -CInt(x)", tenth + 32768, -32768}, {"CSng(0.1) + CLng(x)", tenth + 3, 3},
      {"CSng(0.1) + 7 \\ 2", single(tenth + 3)}, {"CSng(0.1) + 7.5 \\ 2", tenth + 4},
      {"CSng(0.1) + x Mod 4", tenth + 1, 5}, {"CSng(x) ^ 2", tenth * tenth, 0.1}, {"CSng(x) * x", tenth * 0.1, 0.1},
      {"-CSng(0.1)", -tenth}, {"Abs(CSng(-0.1)) + 1", single(tenth + 1)}, {"Int(CSng(x)) + 0.1", 2.1, 2.5},
      {"Sqr(CSng(0.1)) * 3", std::sqrt(tenth) * 3},
      {"CSng(3E38) * 10", 3e38f * 10.0},  // a Single too large for one is a Double, not an overflow
      {"True + True", -2}, {"Not CSng(1.5)", -3}, {"CSng(2) * (x + 1)", 2 * 1.1, 0.1}, {"CSng(2) * x + 1", 1.2, 0.1},
  });
}

TEST(Language, RunTimeErrorsCarryNumberAndPosition) {
  checkErrors({
      {"Sqr(-1)", 5, 1}, {"1 + Sqr(-1)", 5, 5}, {"Log(0)", 5, 1}, {"(-8)^(1/3)", 5, 5},
      {"0^-1", 5, 2}, {"Round(1, -1)", 5, 1}, {"Exp(1000)", 6, 1}, {"1E308*10", 6, 6}, {"-1E308-1E308", 6, 7},
      {"0/0", 6, 2}, {"(x+2)^2000", 6, 6}, {"1/0", 11, 2}, {"1\\0", 11, 2}, {"1 Mod 0", 11, 3},
      {"1 Mod 0.4", 11, 3}, {"CInt(32768)", 6, 1}, {"CInt(-32769)", 6, 1}, {"CLng(2147483648)", 6, 1},
      {"CSng(1E39)", 6, 1}, {"2147483648 And 1", 6, 12}, {"Not 1E10", 6, 1}, {"\"abc\" * 2", 13, 7},
      {"\"abc\"", 13, 1}, {"foo", 500, 1}, {"x + Foo", 500, 5}, {"1 + foo(2)", 13, 5}, {"x(1)", 13, 1},
      {"Sin", 450, 1}, {"Sin(1, 2)", 450, 1}, {"Round(1, 2, 3)", 450, 1}, {"Asin(1, 2)", 450, 1}, {"Asin", 450, 1},
      {"Sin()", 450, 1}, {"sh", 438, 1}, {"sh.foo", 438, 4}, {"zz.x", 424, 1}, {"1/0 + foo(1)", 11, 2},  // left to right
      // Fused instructions keep the position of the operator that failed, inner or outer.
      {"2*(x+1E308)", 6, 5, 1, 1E308}, {"1E308*(x+1)", 6, 6, 1, 1}, {"1+x*1E308", 6, 4, 1, 1E10},
      {"1E308+x*10", 6, 6, 1, 1E307}, {"-1E308-x*10", 6, 7, 1, 1E307}, {"x^2", 6, 2, 1, 1E200},
      {"1+x^3", 6, 4, 1, 1E200}, {"x*x", 6, 2, 1, 1E200}, {"x+x", 6, 2, 1, 1E308}, {"x-(-x)", 6, 2, 1, 1E308},
      {"1E308-(-x)", 6, 6, 1, 1E308}, {"5/x", 11, 2, 1, 0}, {"x/0", 11, 2, 1, 1}, {"x/0", 6, 2, 1, 0},
      {"1+x/1E-300", 6, 4, 1, 1E10}, {"Exp(x)", 6, 1, 1, 710}, {"1 + Exp(x)", 6, 5, 1, 1000}, {"Log(x)", 5, 1, 1, 0},
      {"2 * Log(x)", 5, 5, 1, -1}, {"Sqr(x)", 5, 1, 1, -1}, {"2*x-1", 6, 2, 1, 1E308}, {"x*1.5+1E308", 6, 6, 1, 1E308},
      {"x*x+1", 6, 2, 1, 1E200}, {"x*x+1E308", 6, 4, 1, 1.3E154},  // the product, then the sum
      {"Sin(x)+Cos(x)/0", 11, 14, 1, 1},
  });
}

TEST(Language, SyntaxErrorsCarryNumberAndPosition) {
  checkErrors({
      {"", 1023, 1}, {"   ", 1023, 4}, {"*", 1023, 1}, {"1+", 1023, 3}, {"-", 1023, 2}, {"Not", 1023, 4},
      {"1 = = 2", 1023, 5}, {"1 2", 1025, 3}, {"2a", 1025, 2}, {"1.5.5", 1025, 4}, {"(1+2))", 1025, 6},
      {"x = 1 : 2", 1025, 7}, {"(1", 1006, 3}, {"Sin(1", 1006, 6}, {"Round(1 2)", 1006, 9}, {"sh.", 1010, 4},
      {"1 $ 2", 1032, 3}, {"1 + \xC3\xA9", 1032, 5},
      {"\"\xC3\xA9\xC3\xA9\" & $", 1032, 8},  // columns count characters, not bytes
      {"\"abc", 1033, 1}, {"1E999", 6, 1}, {"1000000000000000000000000000000000000000e300", 6, 1},
      {"&HFFFFFFFFF", 6, 1}, {"&H", 1023, 1}, {"&O8", 1023, 1}, {"\"a\" &hx", 500, 6}, {"1 &1", 1025, 3},
      {"1 +\n 2", 1023, 4},
  });
  // A name too long to be one; deep nesting and long chains: EngineHostileTest.
  EXPECT_EQ(evalEveryWay(std::string(300, 'a'), 0).number, 1030);
}

// The fixed texts are tables of their own; a description that names the offending name
// is put together here.
TEST(Language, DescriptionsNameTheOffendingName) {
  const struct { const char *text, *description; } rows[] = {
      {"Foo", "Variable is undefined: 'Foo'"}, {"Foo(1)", "Type mismatch: 'Foo'"},
      {"Sin(1,2)", "Wrong number of arguments or invalid property assignment: 'Sin'"},
      {"sh.Foo", "Object doesn't support this property or method: 'sh.Foo'"},
  };
  for (const auto& row : rows) EXPECT_EQ(evalEveryWay(row.text, 0).description, row.description) << row.text;
}

// The instructions that read a field directly (Sin(x), Exp(x), Tanh(x)), share one
// Sin/Cos computation, or add a constant to a product (a*x+b, x*y+c) must give the
// plain code's bits and errors and leave the same number in ierr at every point: the
// ordinary ones, the edges of each function's domain, and fields no formula could have
// produced (a caller may store any double).
const std::vector<double> points = {-1E300, -800, -710, -3.5, -1,    -1E-310, -0.0,   0,
                                    1E-310, 0.5,  1,    2,    3,     709,     710,    1E22,
                                    1E154,  1.3E154, 1E200, 1E308, INFINITY, -INFINITY, NAN};

TEST(FieldForms, AgreeWithThePlainCodeEverywhere) {
  const char* formulas[] = {
      "Abs(x)", "Atn(x)", "Cos(x)", "Exp(x)", "Log(x)", "Sin(x)", "Sqr(x)", "Tan(x)",
      "1 - Exp(x) / 2", "Log(Abs(x)+1)*Atn(x)",
      // Sin and Cos of one field, in either order, once or twice; of different fields not.
      "Sin(x)^2+Cos(x)^2", "Cos(x)-Sin(x)", "Sin(x)-Cos(x)*2", "Sin(x)*Cos(x)+Sin(x)*Cos(x)", "Sin(x)+Sin(x)",
      "Sin(x)-Cos(pi)", "Cos(x)+Sin(halfpi)", "Sin(x)+Tanh(x)*Cos(x)", "Cos(-x)+Sin(x)",
      // A product plus a constant, and the older fused pairs.
      "2*(x+1)", "1+x*2", "1-x*2", "x*x+1", "x*x-1", "2*x+1", "x*2-1", "x*1.5+1E308", "x*x+1E308", "x*pi+x*x-3", "Sqr(x*x+1)/Exp(x)",
      // A math-object function of a field: its error reaches ierr as a computed argument's does.
      "Asin(x)", "Acos(x)+Asin(x/2)", "Tanh(x)*2", "Atanh(x)", "Sinh(x)-Cosh(x)", "Cosh(x)", "Acosh(x)", "Asinh(x)+1",
  };
  for (const char* text : formulas)
    for (double x : points) evalEveryWay(text, x);
}

}  // namespace
}  // namespace orvane::test
