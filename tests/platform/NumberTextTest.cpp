#include "platform/NumberText.h"

#include <gtest/gtest.h>

#include <functional>
#include <limits>
#include <string>

#include "platform/RuntimeError.h"

namespace orvane {
namespace {

int32_t errorOf(const std::function<void()>& call) {
  try {
    call();
  } catch (const RuntimeError& e) {
    return e.number();
  }
  return 0;
}

TEST(NumberText, GeneralSingleAndPrintForms) {
  const std::pair<double, const char*> general[] = {
      {0.0, "0"}, {-0.0, "0"}, {-0.5, "-0.5"}, {-2.0 / 3.0, "-0.666666666666667"}, {0.1 + 0.2, "0.3"},
      {0.00012345, "0.00012345"}, {1E-05, "1E-05"}, {-2.5E-07, "-2.5E-07"}, {123456789012345.0, "123456789012345"},
      {1E+15, "1E+15"}, {999999999999999.9, "1E+15"},  // rounding to 15 digits moves it to exponent form
      {1.5E+20, "1.5E+20"}, {1E+100, "1E+100"}, {100.0, "100"}};
  for (const auto& [value, text] : general) EXPECT_EQ(formatGeneral(value), text) << value;

  const std::pair<float, const char*> single[] = {
      {0.1f, "0.1"}, {1.0f / 3.0f, "0.3333333"}, {16777216.0f, "1.677722E+07"}, {1234567.0f, "1234567"}};
  for (const auto& [value, text] : single) EXPECT_EQ(formatSingle(value), text) << value;

  const std::pair<double, const char*> print[] = {{3, " 3 "}, {-2.5, "-2.5 "}, {-0.0, " 0 "}, {1E-05, " 1E-05 "}};
  for (const auto& [value, text] : print) EXPECT_EQ(formatPrint(value), text) << value;
}

TEST(NumberText, LeadingNumberTakesTheNumericPrefix) {
  const std::pair<const char*, double> cases[] = {
      {"2abc", 2},  {"1e", 1},      {"e5", 0},         {"-", 0},        {".5", 0.5},     {"", 0},          {"  7", 7},
      {"&H1F", 31}, {"&HFFFF", -1}, {"&H10000", 65536}, {"-3.5x", -3.5}, {"1.5E3", 1500}, {"1e-2z", 0.01},
      {"1 2", 12},  {"+4", 4},      {"..5", 0},        {"5.", 5}};
  for (const auto& [text, value] : cases) EXPECT_DOUBLE_EQ(leadingNumber(text), value) << text;
}

// Beyond the largest double is an overflow however the number is written; below the
// smallest it is 0, also when written without an exponent.
TEST(NumberText, OutOfRangeNumbersOverflowOnlyWhenTooLarge) {
  const std::string tinyPlain = "0." + std::string(400, '0') + "1";
  const std::string hugePlain(10000, '7');
  const std::pair<std::string, int32_t> cases[] = {
      {"1e999", err::Overflow}, {"-1e400", err::Overflow}, {"1e309", err::Overflow}, {"0.001e310", 0}, {"1e-999", 0},
      {"-1e-400", 0},           {tinyPlain, 0},            {hugePlain, err::Overflow}, {tinyPlain + "e400", 0},
      {"1e99999999999999999999", err::Overflow},           {"1e-99999999999999999999", 0}};
  for (const auto& [text, error] : cases) {
    EXPECT_EQ(errorOf([&] { (void)leadingNumber(text); }), error) << text.substr(0, 40);
    EXPECT_EQ(errorOf([&] { (void)parseStrict(text); }), error) << text.substr(0, 40);
  }
}

TEST(NumberText, ParseStrictAcceptsOnlyWholeNumbers) {
  for (const auto& [text, value] : {std::pair(" 12 ", 12.0), {"-1.25E+2", -125.0}, {".5", 0.5}, {"&H10", 16.0}})
    EXPECT_DOUBLE_EQ(parseStrict(text), value) << text;
  for (const char* text : {"", "   ", "abc", "12a", "1e", "-", "1 2", "&H"})
    EXPECT_EQ(errorOf([&] { (void)parseStrict(text); }), err::TypeMismatch) << text;
}

TEST(NumberText, RoundsHalfToEvenAndConvertsToIntegersWithinRange) {
  const std::pair<double, double> cases[] = {{0.5, 0}, {1.5, 2}, {2.5, 2}, {-2.5, -2},
                                             {2.4, 2}, {2.6, 3}, {1e300, 1e300}};
  for (const auto& [value, rounded] : cases) EXPECT_EQ(roundHalfEven(value), rounded) << value;

  EXPECT_EQ(toInt16(32767.4), 32767);
  EXPECT_EQ(toInt16(-32768.5), -32768);  // half to even stays in range
  EXPECT_EQ(toInt32(2147483647.0), 2147483647);
  EXPECT_EQ(toInt32(-2147483648.0), std::numeric_limits<int32_t>::min());
  const double nan = std::numeric_limits<double>::quiet_NaN(), inf = std::numeric_limits<double>::infinity();
  for (double v : {32767.5, -32769.0, 1e10, nan}) EXPECT_EQ(errorOf([&] { (void)toInt16(v); }), err::Overflow) << v;
  for (double v : {2147483647.5, -2147483649.0, inf}) EXPECT_EQ(errorOf([&] { (void)toInt32(v); }), err::Overflow) << v;
}

}  // namespace
}  // namespace orvane
