#include "tests/support/fault_of.h"
#include <vardel/core/card_frame.h>
#include <vardel/core/hex.h>
#include <vardel/format/card_format_info.h>
#include <vardel/format/mod_card.h>

#include <gtest/gtest.h>

#include <cmath>
#include <vector>

namespace vardel {
namespace {

using Bytes = std::vector<std::uint8_t>;

Bytes OneTo(std::size_t count) {
  Bytes bytes;
  while (bytes.size() < count) bytes.push_back(static_cast<std::uint8_t>(bytes.size() + 1));
  return bytes;
}

TEST(ModCardTest, OnlyAnArrayOfBytesByValueIsAByteArray) {
  for (std::uint32_t code = 0; code <= 65535; ++code) {
    EXPECT_EQ(IsByteArrayVariant(static_cast<std::uint16_t>(code)), code == 8209) << code;
  }
}

TEST(ModCardTest, PadTextFitsATextToItsLengthInCharacters) {
  EXPECT_EQ(PadText("12", 5, "0", 1), "00012");
  EXPECT_EQ(PadText("12", 5, "0", 0), "12000");
  EXPECT_EQ(PadText("12", 4, "xy", -1), "12xx");
  EXPECT_EQ(PadText("12345", 5, "", 1), "12345");
  EXPECT_EQ(PadText("12", 0, "0", 1), "");
  EXPECT_EQ(PadText("a\u00E9", 3, "\u20AC", 1), "\u20ACa\u00E9");
  EXPECT_EQ(PadText("a\u00E9\u20AC", 2, "", 1), "\u00E9\u20AC");
  EXPECT_EQ(PadText("\u00E9\u20ACa", 2, "", 2), "\u00E9\u20AC");
  EXPECT_EQ(FaultOf([] { PadText("12", -1, "0", 1); }), 5);
  EXPECT_EQ(FaultOf([] { PadText("", -32768, "0", 0); }), 5);
  EXPECT_EQ(FaultOf([] { PadText("12", 3, "", 1); }), 5);
}

TEST(ModCardTest, NumbersBecomeLittleEndianBytesByEitherDivision) {
  constexpr std::pair<double, std::string_view> kCases[] = {
      {0, "00"},       {255, "FF"},     {256, "0001"},   {4096, "0010"}, {0.5, "00"},
      {0.75, "01"},    {12.5, "0C"},    {13.5, "0E"},    {15.5, "10"},   {254.5, "FE"},
      {256.5, "0001"}, {257.5, "0201"}, {510.5, "FE01"}, {-0.5, "00"}};
  for (const auto& [value, hex] : kCases) {
    EXPECT_EQ(HexText(NumberToBytes(value)), hex) << value;
    EXPECT_EQ(HexText(NumberToBytesByByte(value)), hex) << value;
  }
  for (const double value : {255.5, 511.5, -0.75, -1.0, -15.5, -16.0, -256.0, -0x1p53, HUGE_VAL}) {
    EXPECT_EQ(FaultOf([&] { NumberToBytes(value); }), 6) << value;
    EXPECT_EQ(FaultOf([&] { NumberToBytesByByte(value); }), 6) << value;
  }
}

TEST(ModCardTest, NumericTextConvertsLikeItsValueAndOtherTextIsAFault) {
  EXPECT_EQ(HexText(NumberToBytes("9007199254740992")), "00000000000020");
  EXPECT_EQ(HexText(NumberToBytesByByte("9007199254740991")), "FFFFFFFFFFFF1F");
  EXPECT_EQ(HexText(NumberToBytesByByte("18446744073709551616")), "000000000000000001");
  for (const std::string_view text : {"", "A", "1,000", "&HFF", "1e309"}) {
    EXPECT_EQ(FaultOf([&] { NumberToBytes(text); }), 13) << text;
    EXPECT_EQ(FaultOf([&] { NumberToBytesByByte(text); }), 13) << text;
  }
}

TEST(ModCardTest, BytesBecomeTheDecimalTextOfTheirValue) {
  EXPECT_EQ(ByteArrayToNumberText({}), "");
  EXPECT_EQ(ByteArrayToNumberText(Bytes{0, 0}), "0");
  EXPECT_EQ(ByteArrayToNumberText(Bytes{0, 1}), "256");
  EXPECT_EQ(ByteArrayToNumberText(Bytes{255, 255, 255, 255, 255, 255, 31}), "9007199254740991");
  EXPECT_EQ(ByteArrayToNumberText(Bytes{0, 0, 0, 0, 0, 0, 0, 0, 1}), "18446744073709551616");
  EXPECT_EQ(std::stod(ByteArrayToNumberText(Bytes(127, 255))), 0x1p1016);
  for (const std::size_t count : {128u, 129u, 1000u}) {
    const std::string text = ByteArrayToNumberText(Bytes(count, 255));
    EXPECT_EQ(text.find_first_not_of("0123456789"), std::string::npos) << text;
  }
}

TEST(ModCardTest, RecordsBeginWithUpTo32BytesInEitherOrder) {
  EXPECT_EQ(HexText(ReverseBytes(OneTo(3))), "030201");
  const std::string zeros(56, '0');
  EXPECT_EQ(HexText(MakeCardDataStruct(OneTo(4), false).Bytes), "01020304" + zeros);
  EXPECT_EQ(HexText(MakeCardDataStruct(OneTo(4), true).Bytes), "04030201" + zeros);
  EXPECT_EQ(HexText(MakeCardDataStruct(OneTo(40), false).Bytes), HexText(OneTo(32)));
  EXPECT_EQ(HexText(MakeCardDataStruct(OneTo(40), true).Bytes), HexText(ReverseBytes(OneTo(32))));
}

TEST(ModCardTest, DescribesAByteArrayInAllItsForms) {
  const CByteArrayData data = MakeByteArrayData(Bytes{0x41, 0x80, 0x00, 0x0F});
  EXPECT_EQ(data.ByteCount(), 4);
  EXPECT_EQ(data.ByteOR(), 0xCF);
  EXPECT_EQ(data.ByteAND(), 0);
  EXPECT_EQ(data.HexString, "4180000F");
  EXPECT_EQ(data.ChrString, "A\u20AC \x0F");
  EXPECT_EQ(MakeByteArrayData(Bytes{0xF3, 0x37}).ByteAND(), 0x33);
  EXPECT_EQ(MakeByteArrayData(Bytes{}).ByteAND(), 255) << "a summary of no bytes";
  EXPECT_EQ(MakeByteArrayData(std::nullopt).ByteAND(), 0) << "no summary";
}

TEST(CardFormatInfoTest, ABareOneAnswersWithNothingAndRecordsNothing) {
  CCardFormatInfo info;
  EXPECT_EQ(info.PromptChar, "_");
  EXPECT_FALSE(info.IsFacilityValid("0") || info.IsCardIDValid("0"));
  EXPECT_EQ(info.MakeCardData(CCardData()), CardDataStruct{});
  EXPECT_FALSE(info.AnalyzeCardData(CCardFrame(CARD_HID, 1, std::string(64, '1'))));
  EXPECT_EQ(info.ErrNumber(), 0);
  EXPECT_EQ(FaultOf([&] { info.MakeCardData(nullptr); }), 91);
  EXPECT_EQ(FaultOf([&] { info.AnalyzeCardData(nullptr); }), 91);
}

}  // namespace
}  // namespace vardel
