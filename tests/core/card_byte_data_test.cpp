#include <vardel/core/card_byte_data.h>

#include <gtest/gtest.h>

namespace vardel {
namespace {

TEST(CardByteDataTest, StartsBlankAndAWrongTypeIsRecordedAndKeepsTypeAndBytes) {
  CCardByteData data;
  EXPECT_EQ(data.CardType() + data.CardSubType() + data.ErrNumber(), 0);
  EXPECT_EQ(data.CardDataStruct, CardDataStruct{});
  data.InitCardData(CARD_MIFARE);
  data.CardArrDataByIndex(31, 7);
  for (const std::int32_t wrong : {0, 4, -1, 257}) {
    data.CardType(wrong);
    EXPECT_EQ(data.ErrNumber(), -1) << wrong;
    EXPECT_EQ(data.CardType(), CARD_MIFARE) << wrong;
    data.CardType(CARD_MIFARE);
    EXPECT_EQ(data.ErrNumber(), 0) << wrong;
  }
  data.InitCardData();
  EXPECT_EQ(data.ErrName(), "Incorrect Card Type");
  EXPECT_EQ(data.CardType(), CARD_MIFARE);
  EXPECT_EQ(data.CardDataStruct.Bytes[31], 7);
  data.CardSubType(255);
  EXPECT_EQ(data.ErrNumber(), 0);
  data.InitCardData(CARD_EM);
  EXPECT_EQ(data.CardType(), CARD_EM);
  EXPECT_EQ(data.CardDataStruct, CardDataStruct{});
}

TEST(CardByteDataTest, IndexesReachTheRecordAndNothingBeyond) {
  CCardByteData data;
  data.InitCardData(CARD_EM);
  data.CardDataStruct.Bytes.back() = 7;
  EXPECT_EQ(data.CardArrDataByIndex(31), 7);
  const CardDataStruct before = data.CardDataStruct;
  for (const std::int32_t outside : {32, -1, 256, -2147483647}) {
    SCOPED_TRACE(outside);
    data.MakeErr(-1, "stale");
    EXPECT_EQ(data.CardArrDataByIndex(outside), 0);
    EXPECT_EQ(data.ErrName(), "stale");
    data.CardArrDataByIndex(outside, 0x55);
    EXPECT_EQ(data.ErrName(), "");
    EXPECT_EQ(data.CardDataStruct, before);
  }
}

}  // namespace
}  // namespace vardel
