#include "tests/support.h"
#include <vardel/core/number.h>

#include <gtest/gtest.h>

#include <cmath>
#include <map>

namespace vardel {
namespace {

const std::string kZeros(400, '0');

TEST(NumberTest, ReadsNumericText) {
  const std::map<double, std::vector<std::string>> rows = {
      {0,
       {"1e-400", "0e999", "0." + kZeros + "1", "1e-1" + kZeros, kZeros + "1e-330",
        "0." + kZeros + "1e70", "0." + kZeros + "e99999"}},
      {1, {"1" + kZeros + "e-400"}},
      {10, {"1e" + kZeros + "1", "0." + kZeros + "1e402"}},
      {12, {"+12", "012", kZeros + "12", " \t12\t ", ".12e2", "12.", "1.2E+1", "1.2d1", "12.D0"}},
      {-.25, {"-.25", "-2.5d-1"}},
      {999999999999999, {"999999999999999"}},
      {9007199254740992, {"9007199254740993"}},
      {1.7976931348623157e308, {"1.7976931348623157e308"}}};
  for (const auto& [value, texts] : rows) {
    for (const std::string& text : texts) {
      EXPECT_EQ(ParseAnyNumber(text), value) << text;
      EXPECT_EQ(RequireNumber(text), value) << text;
      EXPECT_TRUE(IsNumberWithin(text, value, value)) << text;
      EXPECT_FALSE(IsNumberWithin(text, std::nextafter(value, HUGE_VAL), HUGE_VAL)) << text;
      EXPECT_FALSE(IsNumberWithin(text, -HUGE_VAL, std::nextafter(value, -HUGE_VAL))) << text;
    }
  }
}

TEST(NumberTest, TakesNothingElseForANumber) {
  std::vector<std::string> rows = {
      "",      " ",   "+",   ".",   "-.",  "e5",        ".e5",   "1e",    "1e+",  "1e5.0",
      "1e1e1", "--1", "- 1", "1-",  "1 2", "1 e2",      "1.2.3", "1,000", "&H10", "0x10",
      "1p3",   "inf", "nan", "\n1", "1\n", "\302\2401", "１",    "1/",    ":1",   "12345678:"};
  // Too large for a double.
  rows.insert(rows.end(), {"1.7976931348623159e308", "-1e309", "1" + kZeros, "1e1" + kZeros,
                           kZeros + "1e309", "0." + kZeros + "1e720"});
  for (const std::string& text : rows) {
    EXPECT_EQ(FaultOf([&] { RequireNumber(text); }), 13) << text;
    EXPECT_FALSE(IsNumberWithin(text, -HUGE_VAL, HUGE_VAL)) << text;
  }
}

TEST(NumberTest, ReadsDigitsToTheirEndAndNoFurther) {
  for (std::size_t size = 1; size <= 16; ++size) {
    for (std::size_t place = 0; place < size; ++place) {
      std::vector<char> text(size, '9');  // a read beyond it would leave this allocation
      const std::string_view digits(text.data(), size);
      for (int code = 0; code < 256; ++code) {
        text[place] = static_cast<char>(code);
        std::int64_t value = -1;
        const bool isShort = size <= 15 && code >= '0' && code <= '9';
        ASSERT_EQ(ParseDigits(digits, value), isShort) << digits;
        ASSERT_EQ(value, isShort ? std::stoll(std::string(digits)) : -1) << digits;
      }
    }
  }
}

TEST(NumberTest, KnowsWholeNumbers) {
  for (const double value : {0., 1., 9007199254740991.}) EXPECT_EQ(WholeNumber(value), value);
  for (const double value : {0.5, -1., 9007199254740992., HUGE_VAL, std::nan("")}) {
    EXPECT_EQ(WholeNumber(value), std::nullopt) << value;
  }
}

TEST(NumberTest, WritesAllDigitsFilledUpWithZeros) {
  const auto written = [](double value, std::int16_t count) {
    std::string text = "old";
    return AnswerOf([&] { return AssignNumber(text, value, count), text; });
  };
  EXPECT_EQ(written(0, 0), "0");
  EXPECT_EQ(written(1234, 3), "1234");
  EXPECT_EQ(written(7, 400), kZeros.substr(1) + "7");
  EXPECT_EQ(written(9007199254740991, 17), "09007199254740991");
  EXPECT_EQ(written(1e16, 18), "010000000000000000");
  EXPECT_EQ(written(1e308, 0).size(), 309U);
  EXPECT_EQ(written(7, -1), "fault 5");
  EXPECT_EQ(written(1e16, -1), "fault 5");
}

}  // namespace
}  // namespace vardel
