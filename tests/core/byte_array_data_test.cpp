#include "tests/support/fault_of.h"
#include <vardel/core/byte_array_data.h>

#include <gtest/gtest.h>

#include <climits>

namespace vardel {
namespace {

TEST(ByteArrayDataTest, ACountStartsTheSummaryAndANegativeOneIsRecordedButStored) {
  CByteArrayData data;
  EXPECT_EQ(data.LastArrayIndex(), -1);
  data.ByteOR(1);
  data.ByteCount(-2);
  EXPECT_EQ(data.ErrNumber(), -1);
  EXPECT_EQ(data.ByteCount(), -2);
  EXPECT_EQ(data.LastArrayIndex(), -3);
  data.ByteCount(4);
  EXPECT_EQ(data.ErrName(), "Incorrect Byte Count");
  EXPECT_EQ(data.ByteOR() + data.HexCharCount(), 0);
  data.InitData();
  EXPECT_EQ(data.ByteCount(), 0);
  EXPECT_EQ(data.LastArrayIndex(), -1);
  EXPECT_EQ(data.ByteAND(), 255);
}

TEST(ByteArrayDataTest, ValuesThatFitNoByteAndTheLowestCountOverflow) {
  CByteArrayData data;
  data.ByteOR(255);
  for (const std::int32_t wrong : {256, -1, 65536}) {
    EXPECT_EQ(FaultOf([&] { data.ByteOR(wrong); }), 6) << wrong;
    EXPECT_EQ(FaultOf([&] { data.ByteAND(wrong); }), 6) << wrong;
  }
  EXPECT_EQ(data.ByteOR(), 255);
  EXPECT_EQ(data.ByteAND(), 0);
  EXPECT_EQ(FaultOf([&] { data.ByteCount(INT_MIN); }), 6);
}

TEST(ByteArrayDataTest, IsAvailableUnlessAllBytesAre00OrAllAreFF) {
  CByteArrayData data;
  EXPECT_FALSE(data.IsAvailable());
  data.ByteOR(0x12);
  EXPECT_TRUE(data.IsAvailable());
  data.ByteAND(0xFF);
  EXPECT_FALSE(data.IsAvailable());
}

}  // namespace
}  // namespace vardel
