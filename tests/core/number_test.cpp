#include "tests/support/fault_of.h"
#include <vardel/core/number.h>

#include <gtest/gtest.h>

#include <cmath>

namespace vardel {
namespace {

TEST(NumberTest, ReadsNumericText) {
  constexpr std::pair<std::string_view, double> kCases[] = {
      {"007", 7},      {"+12", 12},    {"-12", -12}, {".5", 0.5},   {"5.", 5},
      {"-.25", -0.25}, {" \t4\t ", 4}, {"1e3", 1e3}, {"1E+3", 1e3}, {"1d3", 1e3},
      {"2D-1", 0.2},   {".5e1", 5},    {"5.e1", 50}, {"1e-400", 0}, {"0e999", 0}};
  for (const auto& [text, value] : kCases) EXPECT_EQ(ParseNumber(text), value) << text;
  EXPECT_EQ(ParseNumber("9007199254740993"), 9007199254740992);
  EXPECT_EQ(ParseNumber("1.7976931348623157e308"), 1.7976931348623157e308);
  EXPECT_EQ(ParseNumber("1.7976931348623159e308"), std::nullopt);
  EXPECT_TRUE(IsNumberWithin("5", 5, 9) && IsNumberWithin(" 9.0", 5, 9));
  EXPECT_FALSE(IsNumberWithin("4.99", 5, 9) || IsNumberWithin("9.01", 5, 9));
}

TEST(NumberTest, RefusesEverythingElse) {
  for (const std::string_view text :
       {"",     " ",     "+",     "-",     ".",    "-.",      "e5",     ".e5",   "1e",
        "1e+",  "1d-",   "1e5.0", "1e1e1", "1de1", "--1",     "- 1",    "1-",    "1 2",
        "1 e2", "1.2.3", "1,000", "1,5",   "(1)",  "$1",      "&H10",   "0x10",  "1p3",
        "inf",  "nan",   "1f",    "\n1",   "1\n",  "\u00A01", "\uFF11", "1e309", "-1e309"}) {
    EXPECT_EQ(FaultOf(RequireNumber, text), 13) << text;
    EXPECT_FALSE(IsNumberWithin(text, -INFINITY, INFINITY)) << text;
  }
}

TEST(NumberTest, ReadsTextOfAnyLength) {
  const std::string zeros(5000, '0');
  EXPECT_EQ(ParseNumber(zeros + "12"), 12);
  EXPECT_EQ(ParseNumber("0." + zeros + "1"), 0);
  EXPECT_EQ(ParseNumber("1" + zeros), std::nullopt);
  EXPECT_EQ(ParseNumber("1" + zeros + "e-5000"), 1);
  EXPECT_EQ(ParseNumber("1e" + zeros + "1"), 10);
  EXPECT_EQ(ParseNumber("1e1" + zeros), std::nullopt);
  EXPECT_EQ(ParseNumber("1e-1" + zeros), 0);
}

TEST(NumberTest, AByteIsRoundedToTheNearestAndOnATieToTheEvenNumber) {
  constexpr std::pair<double, int> kCases[] = {{0, 0},       {0.5, 0},     {0.51, 1},
                                               {1.5, 2},     {2.5, 2},     {-0.5, 0},
                                               {254.5, 254}, {127.5, 128}, {255.49, 255}};
  for (const auto& [value, byte] : kCases) EXPECT_EQ(ToByte(value), byte) << value;
  for (const double v : {255.5, 256., -0.51, -1., HUGE_VAL, NAN + 0.})
    EXPECT_EQ(FaultOf(ToByte, v), 6);
}

TEST(NumberTest, WritesAllDigitsPlainlyFilledUpWithZeros) {
  EXPECT_EQ(NumberText(0), "0");
  EXPECT_EQ(NumberText(18446744073709551616.0), "18446744073709551616");
  EXPECT_EQ(NumberText(1e308).size(), 309u);
  struct Row {
    double value;
    std::int16_t charCount;
    std::string text;
  };
  const Row rows[] = {{5, 3, "005"},
                      {1234, 3, "1234"},
                      {0, 0, "0"},
                      {120, 1, "120"},
                      {10, 2, "10"},
                      {9007199254740991, 18, "009007199254740991"},
                      {1e16, 18, "010000000000000000"},
                      {7, 32767, std::string(32766, '0') + "7"}};
  for (const Row& row : rows) {
    std::string text = "old";
    AssignNumber(text, row.value, row.charCount);
    EXPECT_EQ(text, row.text);
    EXPECT_EQ(FaultOf([&] { AssignNumber(text, row.value, -1); }), 5);
  }
}

TEST(NumberTest, TakesShortWaysToTheSameNumbers) {
  for (const std::uint64_t value : {0ULL, 1ULL, 255ULL, 256ULL, 65535ULL, 999999999999999ULL}) {
    const std::string digits = std::to_string(value);
    EXPECT_EQ(ParseNumber(digits), ParseAnyNumber(digits));
    EXPECT_EQ(ParseNumber(digits), ParseNumber(digits + ".0"));
    EXPECT_EQ(ParseNumber(digits), ParseNumber(digits + "e0"));
    EXPECT_EQ(WholeNumber(static_cast<double>(value)), value);
  }
  for (const double value : {0.5, -1.0, 9007199254740992.0, 1e300, HUGE_VAL, NAN + 0.}) {
    EXPECT_EQ(WholeNumber(value), std::nullopt);
  }
}

}  // namespace
}  // namespace vardel
