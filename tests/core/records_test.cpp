#include "tests/support.h"
#include <vardel/core/byte_array_data.h>
#include <vardel/core/card_byte_data.h>
#include <vardel/core/card_frame.h>
#include <vardel/core/hex.h>
#include <vardel/format/mod_card.h>  // with the checks of types and pairs

#include <gtest/gtest.h>

#include <array>
#include <functional>
#include <limits>
#include <set>

namespace vardel {
namespace {

constexpr std::int32_t kLowest = std::numeric_limits<std::int32_t>::min();

TEST(HostFaultTest, SaysWhatItsNumberMeans) {
  std::string text;
  for (const int number : {5, 6, 7, 9, 13, 91, 424, 1}) {
    text += TextOf(number, HostFault(Fault{number}).what()) + "; ";
  }
  EXPECT_EQ(text,
            "5 Invalid procedure call or argument; 6 Overflow; 7 Out of memory; "
            "9 Subscript out of range; 13 Type mismatch; 91 Object variable not set; "
            "424 Object required; 1 Unknown fault; ");
}

TEST(TypeCodeTest, KnowsTheTypesAndPairsThatCardsMayHave) {
  const std::set<std::pair<int, int>> pairs = {{1, 1}, {2, 1}, {2, 2}, {2, 5}, {3, 1}, {3, 5}};
  for (int type = -2; type <= 6; ++type) {
    EXPECT_EQ(IsValidMainType(type), type >= 1 && type <= 3) << type;
    for (int subType = -40; subType <= 300; ++subType) {
      EXPECT_EQ(IsValidTypePair(type, subType), pairs.contains({type, subType})) << subType;
    }
  }
  EXPECT_FALSE(IsValidTypePair(16777217, 1));  // the type code of 1/1 after a wrap-around
  EXPECT_EQ(TextOf(TypeCode(-1, 5), TypeCode(8388607, 255), TypeCode(-8388608, 0)),
            "-251 2147483647 -2147483648");
}

std::string StateOf(const CCardByteData& data) {
  return TextOf(data.CardType(), data.CardSubType(),
                RecordAnswer(data.CardDataStruct.Bytes, data.ErrNumber(), data.ErrName()));
}

TEST(CardByteDataTest, RecordsAWrongTypeAndKeepsTypeAndBytes) {
  CCardByteData data;
  EXPECT_EQ(StateOf(data), "0 0 ");
  for (const std::int32_t type : {1, 2, 3}) {
    data.InitCardData(type);
    EXPECT_EQ(StateOf(data), TextOf(type, 0, ""));
    data.CardArrDataByIndex(0, 7);
    for (const std::int32_t wrong : {0, -1, 4, 257}) {
      data.CardType(wrong);
      EXPECT_EQ(StateOf(data), TextOf(type, 0, "07 error -1 Incorrect Card Type"));
      data.CardType(type);
      EXPECT_EQ(StateOf(data), TextOf(type, 0, "07"));
      data.InitCardData(wrong);
      EXPECT_EQ(StateOf(data), TextOf(type, 0, "07 error -1 Incorrect Card Type"));
    }
  }
  data.CardSubType(255);
  EXPECT_EQ(StateOf(data), "3 255 07");
  data.InitCardData();
  EXPECT_EQ(StateOf(data), "3 255 07 error -1 Incorrect Card Type");
}

TEST(CardByteDataTest, HasThirtyTwoBytes) {
  CCardByteData data;
  EXPECT_EQ(data.CardDataByteCount(), 32);
  for (const std::int32_t index : {0, 31, 32, -1, 256, kLowest}) {
    data.MakeErr(-1, "earlier");
    data.CardArrDataByIndex(index, 255);
    EXPECT_EQ(ErrorOf(data), "0 ");
    EXPECT_EQ(data.CardArrDataByIndex(index), index == 0 || index == 31 ? 255 : 0) << index;
  }
  EXPECT_EQ(StateOf(data), "0 0 FF" + std::string(60, '0') + "FF");
}

TEST(ByteArrayDataTest, StartsItsSummaryWithACount) {
  CByteArrayData data;
  const auto state = [&data] {
    return TextOf(data.ByteCount(), data.LastArrayIndex(), data.ByteOR(), data.ByteAND(),
                  data.IsAvailable(), ErrorOf(data));
  };
  EXPECT_EQ(state(), "0 -1 0 0 False 0 ");
  data.ByteCount(4);
  EXPECT_EQ(state(), "4 3 0 255 False 0 ");
  data.ByteOR(1);
  EXPECT_EQ(state(), "4 3 1 255 False 0 ");
  data.ByteAND(254);
  EXPECT_EQ(state(), "4 3 1 254 True 0 ");
  data.ByteCount(-2);
  EXPECT_EQ(state(), "-2 -3 0 255 False -1 Incorrect Byte Count");
  data.ByteCount(0);  // which does not clear the error
  data.ByteAND(0);
  EXPECT_EQ(state(), "0 -1 0 0 False -1 Incorrect Byte Count");
  for (const std::int32_t value : {256, -1, 65536}) {
    EXPECT_EQ(FaultOf([&] { data.ByteOR(value); }), 6) << value;
    EXPECT_EQ(FaultOf([&] { data.ByteAND(value); }), 6) << value;
  }
  EXPECT_EQ(FaultOf([&] { data.ByteCount(kLowest); }), 6);
  data.ByteOR(255);
  data.HexString = data.ChrString = "kept";
  data.InitData();
  EXPECT_EQ(state(), "0 -1 255 255 False -1 Incorrect Byte Count");
  EXPECT_EQ(TextOf(data.HexString, data.ChrString, data.HexCharCount()), "kept kept 0");
}

TEST(ErrorTest, IsSharedByTheObjectsThatAreGivenIt) {
  CCardByteData a;
  CByteArrayData b;
  a.MakeErr(5, "any code");
  const std::shared_ptr<CError> error = a.Error();
  b.Error(error);
  EXPECT_EQ(b.Error(), error);
  EXPECT_EQ(ErrorOf(b), "5 any code");
  a.InitErr();
  b.ByteCount(-1);
  EXPECT_EQ(ErrorOf(*error), "-1 Incorrect Byte Count");
  a.ErrName("renamed");
  a.ErrNumber(7);
  EXPECT_EQ(ErrorOf(b), "7 renamed");

  // Without an error, all that would read or change it fails and changes nothing.
  a.Error(nullptr);
  EXPECT_EQ(a.Error(), nullptr);
  const std::function<void()> uses[] = {
      [&] { a.ErrName(); },    [&] { a.ErrNumber(); },    [&] { a.ErrName("x"); },
      [&] { a.ErrNumber(1); }, [&] { a.InitErr(); },      [&] { a.MakeErr(-1, "x"); },
      [&] { a.CardType(3); },  [&] { a.CardSubType(3); }, [&] { a.CardArrDataByIndex(0, 3); }};
  for (const auto& use : uses) EXPECT_EQ(FaultOf(use), 91) << &use - uses;
  a.InitCardData(1);
  a.Error(error);
  EXPECT_EQ(StateOf(a), "0 0  error 7 renamed");
}

TEST(ErrorTest, IsCopiedByValue) {
  CCardByteData original, assigned;
  original.MakeErr(-1, "original");
  const std::shared_ptr<CError> error = original.Error(), replaced = assigned.Error();
  const CCardByteData copy = original;
  assigned = original;
  error->MakeErr(-1, "changed");
  replaced->MakeErr(-1, "changed");
  EXPECT_EQ(ErrorOf(copy) + ErrorOf(assigned), "-1 original-1 original");
  original.Error(nullptr);
  assigned = original;
  EXPECT_EQ(assigned.Error(), nullptr);
}

TEST(CardFrameTest, KeepsTextAndBytesInStep) {
  CCardFrame frame;
  const auto state = [&frame] {
    return TextOf(frame.FrameCardType(), frame.FrameCardSubType(), frame.IsEMFrame(),
                  frame.RawCardHex(), HexText(frame.RawCardBytes().value()));
  };
  EXPECT_EQ(state(), "0 0 False  ");
  frame = CCardFrame(2, 1, "00aBcDeF9a", true);
  EXPECT_EQ(state(), "2 1 True 00aBcDeF9a 00ABCDEF9A");
  frame.FrameCardType(3);
  frame.FrameCardSubType(5);
  frame.IsEMFrame(false);
  // What stands beside the digits in the character table, at either place and among eight digits.
  for (const char* malformed :
       {"1",        "123",      "1G",       " 12",      "0x12",     "-1",      "1é",
        "/0",       ":0",       "@0",       "`0",       "g0",       "\0211",   "1\031",
        "0123456G", "/1234567", "0123456:", "012345@6", "01`34567", "0g234567"}) {
    EXPECT_EQ(FaultOf([&] { frame.RawCardHex(malformed); }), 13) << malformed;
  }
  EXPECT_EQ(state(), "3 5 False 00aBcDeF9a 00ABCDEF9A");
  std::array<std::uint8_t, 3> bytes;  // and a text that ends before the digits behind it do
  EXPECT_EQ(FaultOf([&] { ParseHex(std::string_view("001122").substr(0, 5), bytes); }), 13);
  frame.CardDataStruct({{1}});
  const std::string record = "01" + std::string(62, '0');
  EXPECT_EQ(state(), TextOf("3 5 False", record, record));

  // More bytes than a record has, and then a part of its own text.
  frame.RawCardHex(std::string(100, '7'));
  CCardFrame kept = frame;
  frame.RawCardHex(frame.RawCardHex().substr(2, 4));
  EXPECT_EQ(state(), "3 5 False 7777 7777");
  EXPECT_EQ(HexText(kept.RawCardBytes().value()), std::string(100, '7'));
  const CCardFrame target = std::move(kept);
  EXPECT_EQ(kept.RawCardBytes()->size(), 0U);
}

}  // namespace
}  // namespace vardel
