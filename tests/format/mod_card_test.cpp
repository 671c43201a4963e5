#include "tests/support.h"
#include <vardel/core/hex.h>
#include <vardel/format/mod_card.h>

#include <gtest/gtest.h>

#include <cmath>
#include <numeric>

namespace vardel {
namespace {

using Bytes = std::vector<std::uint8_t>;

TEST(ModCardTest, FitsTextsToALengthInCharacters) {
  const auto padded = [](std::string_view source, std::int16_t length, std::string_view filler,
                         std::int16_t side) {
    return AnswerOf([&] { return PadText(source, length, filler, side); });
  };
  EXPECT_EQ(padded("12", 5, "0", 1), "00012");
  EXPECT_EQ(padded("12", 4, "xy", -1), "12xx");
  EXPECT_EQ(padded("12345", 5, "", 1), "12345");
  EXPECT_EQ(padded("12", 0, "0", 1), "");
  EXPECT_EQ(padded("aé", 3, "€x", 1), "€aé");
  EXPECT_EQ(padded("aé€", 2, "", 1), "é€");
  EXPECT_EQ(padded("é€a", 2, "", 2), "é€");
  EXPECT_EQ(padded("", -1, "0", 1), "fault 5");
  EXPECT_EQ(padded("1", 2, "", 1), "fault 5");
}

TEST(ModCardTest, TurnsNumbersIntoBytesByEitherDivision) {
  // A fraction is rounded into its byte, on a tie to the even one.
  constexpr std::string_view kRows[][2] = {
      {"0", "00"},          {"255", "FF"},        {"65535", "FFFF"},    {"-0.5", "00"},
      {"0.51", "01"},       {"12.5", "0C"},       {"13.5", "0E"},       {"255.49", "FF"},
      {"254.5", "FE"},      {"256", "0001"},      {"256.5", "0001"},    {"257.5", "0201"},
      {"255.5", "fault 6"}, {"511.5", "fault 6"}, {"-0.51", "fault 6"}, {"-1", "fault 6"},
      {"-16", "fault 6"},   {"-256", "fault 6"},  {"", "fault 13"},     {"1e309", "fault 13"}};
  for (const auto& row : kRows) {
    EXPECT_EQ(AnswerOf([&] { return HexText(NumberToBytes(row[0])); }), row[1]) << row[0];
    EXPECT_EQ(AnswerOf([&] { return HexText(NumberToBytesByByte(row[0])); }), row[1]) << row[0];
  }
  for (const double value : {0x1p53 - 1, 0x1p53, 0x1p64, 0x1p1023}) {
    EXPECT_EQ(ByteArrayToNumber(NumberToBytes(value)), value);
  }
  for (const double value : {HUGE_VAL, std::nan(""), -0x1p53}) {
    EXPECT_EQ(FaultOf([&] { NumberToBytes(value); }), 6) << value;
  }
}

TEST(ModCardTest, TurnsBytesIntoNumbersThatADoubleHolds) {
  EXPECT_EQ(ByteArrayToNumberText({}), "");
  EXPECT_EQ(ByteArrayToNumberText(Bytes{0, 0}), "0");
  EXPECT_EQ(ByteArrayToNumberText(Bytes{0, 16, 0, 0, 0, 0, 0, 0, 1}), "18446744073709555712");
  EXPECT_EQ(ByteArrayToNumber(Bytes(127, 255)), 0x1p1016);
  EXPECT_EQ(ByteArrayToNumber(Bytes(128)), 0);
  EXPECT_EQ(ByteArrayToNumber(Bytes(129)), std::nullopt);
  EXPECT_EQ(ByteArrayToNumberText(Bytes(128, 255)), "");
}

TEST(ModCardTest, MakesRecordsAndDescriptionsOfBytes) {
  EXPECT_EQ(RecordAnswer(MakeCardDataStruct(Bytes{1, 2, 3}, true).Bytes, 0, ""), "030201");
  Bytes bytes(40);
  std::iota(bytes.begin(), bytes.end(), std::uint8_t{1});
  const std::span used = std::span(bytes).first(32);
  EXPECT_EQ(HexText(MakeCardDataStruct(bytes, false).Bytes), HexText(used));
  EXPECT_EQ(HexText(MakeCardDataStruct(bytes, true).Bytes), HexText(ReverseBytes(used)));
  const CByteArrayData data = MakeByteArrayData(Bytes{0x41, 0x80, 0x00, 0x0F});
  EXPECT_EQ(TextOf(data.ByteCount(), data.ByteOR(), data.ByteAND()), "4 207 0");
  EXPECT_EQ(TextOf(data.HexString, data.ChrString), "4180000F A€ \x0F");
  EXPECT_EQ(MakeByteArrayData(Bytes{0xF3, 0x37}).ByteAND(), 0x33);
  EXPECT_EQ(MakeByteArrayData(Bytes()).ByteAND(), 255);
  EXPECT_EQ(MakeByteArrayData({}).ByteAND(), 0);
  for (int code = 0; code <= 0xFFFF; ++code) {
    ASSERT_EQ(IsByteArrayVariant(static_cast<std::uint16_t>(code)), code == 8192 + 17) << code;
  }
}

}  // namespace
}  // namespace vardel
