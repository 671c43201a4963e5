#include "tests/support/fault_of.h"
#include <vardel/facade/card_types.h>

#include <gtest/gtest.h>

namespace vardel {
namespace {

std::string Text(const std::string& text) { return text; }
std::string Text(std::int32_t number) { return std::to_string(number); }
std::string Text(const ErrorHolder& holder) { return Text(holder.ErrNumber()) + holder.ErrName(); }
std::string Text(const std::shared_ptr<CCardType>& e) {
  return Text(e->TypeCode()) + " " + Text(e->CardType()) + "/" + Text(e->CardSubType()) + " " +
         e->DefaultName() + "|" + e->DefaultShortName() + "|" + e->TypeName + "|" + e->ShortName +
         "|" + Text(e->IsAvailable) + "|" + Text(*e);
}

struct Member {
  std::string (*run)(CCardTypes& types, std::int32_t type, std::int32_t sub, const char* key);
  std::string_view call;
  const char *hit, *miss, *errorAfterHit, *errorAfterMiss;
};
constexpr const char* kKept = "5old";
constexpr const char* kHid = "513 2/1 HID Standard|HID STD|HID Standard|HID STD|1|0";
constexpr const char* kOwn = "513 2/1 HID Standard|HID STD|name|short|1|0";

#define CALL(...)                                                                              \
  [](CCardTypes& types, [[maybe_unused]] std::int32_t type, [[maybe_unused]] std::int32_t sub, \
     [[maybe_unused]] const char* key) { return Text((types.__VA_ARGS__)); },                  \
      #__VA_ARGS__
constexpr Member kMembers[] = {
    {CALL(IsExisted(type, sub)), "1", "0", kKept, kKept},
    {CALL(CardTypeByCode(type * 256 + sub)), kOwn, "0 0/0 ||||1|0", kKept, "-1Unknown Card Type"},
    {CALL(CardTypeByType(type, sub)), kOwn, "0 0/0 ||||0|0", "0", kKept},
    {CALL(AllCardTypes().at(2)->TypeName), "HID", "HID", "0", "0"},
    {CALL(CardTypeCodes().at(2)), "512", "512", "0", "0"},
    {CALL(Count()), "9", "9", "0", "0"},
    {CALL(GetDefaultShortName(type, sub)), "HID STD", "", "0", kKept},
    {CALL(GetDefaultName(type, sub)), "HID Standard", "", "0", kKept},
    {CALL(GetShortName(type, sub)), "short", "", "0", kKept},
    {CALL(GetCardTypeName(type, sub)), "name", "", "0", kKept},
    {CALL(LetShortName(type, sub, "x")), "0", "-1", "0", "-1"},
    {CALL(LetCardTypeName(type, sub, "x")), "0", "-1", "0", "-1"},
    {CALL(DefaultShortName(key)), "HID STD", "", "0", kKept},
    {CALL(DefaultName(key)), "HID Standard", "", "0", kKept},
    {CALL(ShortName(key)), "short", "", "0", kKept},
    {CALL(CardTypeName(key)), "name", "", "0", kKept},
    {CALL(ShortName(key, "x"), ""), "", "", "0", "-1"},
    {CALL(CardTypeName(key, "x"), ""), "", "", "0", "-1"}};

TEST(CardTypesTest, EachMemberAnswersAndKeepsClearsOrRecordsTheErrorInItsWay) {
  for (const Member& member : kMembers) {
    for (const bool isHit : {true, false}) {
      SCOPED_TRACE(member.call);
      CCardTypes types;
      types.CardTypeByCode(513)->ShortName = "short";
      types.CardTypeByCode(513)->TypeName = "name";
      types.MakeErr(5, "old");
      const auto run = [&] { return member.run(types, 2, isHit ? 1 : 3, isHit ? "513" : "515"); };
      const std::string error = isHit ? member.errorAfterHit : member.errorAfterMiss;
      EXPECT_EQ(run(), isHit ? member.hit : member.miss);
      EXPECT_EQ(Text(types), error);
      EXPECT_EQ(types.Count(), 9);
      types.Error(nullptr);
      EXPECT_EQ(FaultOf(run), error == kKept ? 0 : 91);
    }
  }
}

TEST(CardTypesTest, APairWhoseCodeOverflowsIsAFaultAndChangesNothing) {
  for (const Member& member : kMembers) {
    if (member.call.find("type, sub") == std::string_view::npos) continue;
    SCOPED_TRACE(member.call);
    CCardTypes types;
    const auto run = [&](int type, int subType) { member.run(types, type, subType, ""); };
    EXPECT_EQ(FaultOf(run, 8388607, 255) + FaultOf(run, -8388608, 0), 0);
    types.MakeErr(5, "old");
    for (const int subType : {256, 2147483647}) EXPECT_EQ(FaultOf(run, 8388607, subType), 6);
    for (const int type : {8388608, -8388608, 16777218}) EXPECT_EQ(FaultOf(run, type, -1), 6);
    EXPECT_EQ(Text(types), kKept);
  }
}

TEST(CardTypesTest, AKeyIsTheExactDecimalText) {
  CCardTypes types;
  types.Add(std::make_shared<CCardType>(), 0);
  for (const char* key :
       {"0513", " 513", "513 ", "+513", "", "513x", "513.0", "-0", "00", "-", "4294967809"}) {
    for (const Member& member : kMembers) {
      if (member.call.find("key") == std::string_view::npos) continue;
      SCOPED_TRACE(std::string(member.call) + " " + key);
      types.MakeErr(5, "old");
      EXPECT_EQ(member.run(types, 0, 0, key), member.miss);
      EXPECT_EQ(Text(types), member.errorAfterMiss);
    }
  }
}

TEST(CardTypesTest, StartsWithNineDefaultsInTheirOrder) {
  CCardTypes types;
  std::size_t i = 0;
  for (const std::string row : {"256 1/0 EM|EM", "257 1/1 EM Standard|EM STD", "512 2/0 HID|HID",
                                "513 2/1 HID Standard|HID STD", "514 2/2 HID Binary|HID BIN",
                                "517 2/5 HID 34Bits|HID 34Bits", "768 3/0 Mifare|MI",
                                "769 3/1 Mifare 32 Bits UID|MI UID 32Bits",
                                "773 3/5 KyungHee Univ. DongSeo Hospital|MI DongSeo 64Bits"}) {
    EXPECT_EQ(types.CardTypeCodes().at(i), row.substr(0, 3));
    EXPECT_EQ(Text(types.AllCardTypes().at(i++)), row + "|" + row.substr(8) + "|1|0");
  }
}

TEST(CardTypesTest, LookupsGiveTheStoredEntrySoThatRenamingShowsEverywhere) {
  CCardTypes types;
  const auto entry = types.CardTypeByCode(513);
  EXPECT_EQ(types.CardTypeByType(2, 1), entry);
  types.ShortName("513", "c");
  types.LetCardTypeName(2, 1, "");
  EXPECT_EQ(Text(entry), "513 2/1 HID Standard|HID STD||c|1|0");
  types.CardTypeName("513", "d");
  types.LetShortName(2, 1, "");
  EXPECT_EQ(Text(entry), "513 2/1 HID Standard|HID STD|d||1|0");
  EXPECT_EQ(Text(CCardTypes().CardTypeByCode(513)), kHid);
}

TEST(CardTypesTest, AnyEntryIsAppendedUnderAnyFreeCode) {
  CCardTypes types;
  const auto entry = types.CardTypeByCode(513);
  for (const int code : {515, 0, -257, INT32_MIN}) {
    types.MakeErr(5, "old");
    EXPECT_TRUE(types.Add(entry, code));
    EXPECT_EQ(Text(types), "0");
    EXPECT_TRUE(types.IsExisted(0, code));
    EXPECT_EQ(types.CardTypeByCode(code), entry);
    EXPECT_EQ(types.AllCardTypes().back(), entry);
    EXPECT_EQ(types.CardTypeCodes().back(), std::to_string(code));
    EXPECT_EQ(types.ShortName(std::to_string(code)), "HID STD");
  }
  EXPECT_EQ(types.Count(), 13);
  EXPECT_EQ(Text(types.AllCardTypes().at(3)), kHid);
  types.Error(nullptr);
  EXPECT_EQ(FaultOf([&](int code) { types.Add(entry, code); }, 516), 91);
}

TEST(CardTypesTest, ATakenCodeAndNoEntryAreRefused) {
  CCardTypes types;
  const auto entries = types.AllCardTypes();
  for (const int code : {257, 515}) {
    types.InitErr();
    EXPECT_FALSE(types.Add(code == 257 ? entries.at(3) : nullptr, code));
    EXPECT_EQ(types.ErrNumber(), -1);
    EXPECT_NE(types.ErrName(), "");
    EXPECT_EQ(types.AllCardTypes(), entries);
  }
}

TEST(CardTypeTest, InitDataKeepsTheTypePairAndTheErrorThatInitAllClears) {
  CCardTypes types;
  const auto entry = types.CardTypeByCode(513);
  entry->IsAvailable = false;
  entry->MakeErr(5, "old");
  entry->InitData();
  EXPECT_EQ(Text(entry), "0 2/1 ||||1|5old");
  entry->TypeName = "x";
  entry->initAll();
  EXPECT_EQ(Text(entry), "0 2/1 ||||1|0");
  entry->Error(nullptr);
  EXPECT_EQ(FaultOf([&] { entry->InitData(); }), 0);
  EXPECT_EQ(FaultOf([&] { entry->initAll(); }), 91);
}

}  // namespace
}  // namespace vardel
