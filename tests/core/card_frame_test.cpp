#include "tests/support/fault_of.h"
#include <vardel/core/card_frame.h>
#include <vardel/core/hex.h>

#include <gtest/gtest.h>

namespace vardel {
namespace {

void ExpectData(const CCardFrame& frame, std::string_view hex) {
  EXPECT_EQ(frame.RawCardHex(), hex);
  EXPECT_EQ(HexText(frame.RawCardBytes().value()), hex);
}

TEST(CardFrameTest, TakesHexadecimalTextOfAnyLengthAndCaseAndItsCopiesKeepIt) {
  CCardFrame frame(CARD_HID, CARD_SUB_HID_34BITS, "00aBcDeF99");
  EXPECT_EQ(HexText(frame.RawCardBytes().value()), "00ABCDEF99");
  for (const std::string& hex : {std::string(100, '7'), std::string(), std::string("0A")}) {
    frame.RawCardHex(hex);
    const CCardFrame copy = frame;
    frame.RawCardHex("FF");
    ExpectData(copy, hex);
  }
}

TEST(CardFrameTest, MalformedTextIsAFaultAndChangesNothing) {
  CCardFrame frame(CARD_EM, 1, "12AB");
  for (const std::string_view malformed :
       {"1", "123", "1G", " 12", "0x12", "-1", "+1", "1\u00E9", "/0", ":0", "@0", "`0"}) {
    EXPECT_EQ(FaultOf([&] { frame.RawCardHex(malformed); }), 13) << malformed;
    ExpectData(frame, "12AB");
  }
}

TEST(CardFrameTest, TakesAnEncodedRecordAsAFullReadAndAPartOfItsOwnText) {
  CCardFrame frame;
  frame.CardDataStruct({{0x0A, 0xFE}});
  ExpectData(frame, "0AFE" + std::string(60, '0'));
  frame.RawCardHex(frame.RawCardHex().substr(2));
  ExpectData(frame, "FE" + std::string(60, '0'));
}

}  // namespace
}  // namespace vardel
