#include "tests/support.h"
#include <vardel/core/type_code.h>
#include <vardel/facade/card_types.h>

#include <gtest/gtest.h>

#include <limits>

namespace vardel {
namespace {

constexpr std::int32_t kLowest = std::numeric_limits<std::int32_t>::min();

/// The members for one of an entry's names.
struct Name {
  std::string_view value;
  std::string (CCardTypes::*get)(std::int32_t, std::int32_t);
  std::string (CCardTypes::*getByKey)(std::string_view);
  std::int32_t (CCardTypes::*put)(std::int32_t, std::int32_t, std::string_view) = nullptr;
  void (CCardTypes::*putByKey)(std::string_view, std::string_view) = nullptr;
};
using T = CCardTypes;
constexpr Name kNames[] = {
    {"HID STD", &T::GetDefaultShortName, &T::DefaultShortName},
    {"HID Standard", &T::GetDefaultName, &T::DefaultName},
    {"short", &T::GetShortName, &T::ShortName, &T::LetShortName, &T::ShortName},
    {"name", &T::GetCardTypeName, &T::CardTypeName, &T::LetCardTypeName, &T::CardTypeName}};

TEST(CardTypesTest, KeepsClearsOrRecordsTheErrorByMember) {
  const std::string kept = "5 earlier", cleared = "0 ", missed = "-1 ";
  const std::vector<std::pair<int, int>> missing = {{2, 3}, {8388607, 255}, {-8388608, 0}};
  const std::vector<std::pair<int, int>> overflowing = {
      {8388607, 256}, {-8388608, -1}, {8388608, -1}, {-8388609, 256}, {1, 2147483647}};
  CCardTypes types;
  types.LetShortName(2, 1, "short");
  types.LetCardTypeName(2, 1, "name");
  types.Add(std::make_shared<CCardType>(), 0);  // which no other text than "0" reaches
  const auto hid = types.CardTypeByCode(513);
  // A member that leaves the error alone works without an error object as well.
  const auto expect = [&](const auto& call, std::string_view answer, std::string_view error) {
    types.Error(std::make_shared<CError>());
    types.MakeErr(5, "earlier");
    EXPECT_EQ(AnswerOf([&] { return ValueText(call()); }), answer);
    EXPECT_EQ(ErrorOf(types), error);
    types.Error(nullptr);
    EXPECT_EQ(AnswerOf([&] { return ValueText(call()); }), error == kept ? answer : "fault 91");
  };
  // For a pair that is there, those that are not, and those whose type code overflows.
  const auto expectPairs = [&](const auto& call, std::string_view known, bool isCleared,
                               std::string_view unknown, std::string_view unknownError) {
    expect([&] { return call(2, 1); }, known, isCleared ? cleared : kept);
    for (const auto& p : missing) {
      expect([&] { return call(p.first, p.second); }, unknown, unknownError);
    }
    for (const auto& p : overflowing) {
      expect([&] { return call(p.first, p.second); }, "fault 6", kept);
    }
  };
  expectPairs([&](int t, int s) { return types.IsExisted(t, s); }, "True", false, "False", kept);
  expectPairs([&](int t, int s) { return types.CardTypeByType(t, s)->IsAvailable; }, "True", true,
              "False", kept);
  expect([&] { return types.CardTypeByCode(513) == hid; }, "True", kept);
  expect([&] { return types.CardTypeByCode(515)->IsAvailable; }, "True", "-1 Unknown Card Type");
  expect([&] { return types.Count(); }, "10", cleared);
  expect([&] { return types.AllCardTypes().at(3) == hid; }, "True", cleared);
  expect([&] { return types.CardTypeCodes().at(3); }, "513", cleared);

  // A key is the exact decimal text.
  const char* const keys[] = {"515",  "0513",  " 513", "513 ", "+513", "",
                              "513x", "513.0", "-0",   "00",   "-",    "4294967809"};
  for (const Name& n : kNames) {
    expectPairs([&](int t, int s) { return (types.*n.get)(t, s); }, n.value, true, "", kept);
    expect([&] { return (types.*n.getByKey)("513"); }, n.value, cleared);
    for (const char* key : keys) expect([&] { return (types.*n.getByKey)(key); }, "", kept);
    if (n.put == nullptr) continue;
    expectPairs([&](int t, int s) { return (types.*n.put)(t, s, n.value); }, "0", true, "-1",
                missed);
    expect([&] { return (types.*n.putByKey)("513", n.value), ""; }, "", cleared);
    for (const char* k : keys) expect([&] { return (types.*n.putByKey)(k, "x"), ""; }, "", missed);
  }
  EXPECT_EQ(hid->ShortName + hid->TypeName, "shortname");
  EXPECT_EQ(FaultOf([&] { types.ShortName("513", "new"); }), 91);
  EXPECT_EQ(hid->ShortName, "new") << "stored before the error is cleared";
  EXPECT_EQ(hid->DefaultShortName() + CCardTypes().GetShortName(2, 1), "HID STDHID STD");
}

std::string StateOf(const CCardType& entry) {
  return TextOf(entry.TypeCode(), TypeCode(entry.CardType(), entry.CardSubType()),
                entry.DefaultName(), entry.DefaultShortName(), entry.TypeName, entry.ShortName,
                entry.IsAvailable, ErrorOf(entry));
}

TEST(CardTypesTest, HasNineDefaultsInTheirOrder) {
  const std::pair<int, std::string> rows[] = {
      {256, "EM EM"},
      {257, "EM Standard EM STD"},
      {512, "HID HID"},
      {513, "HID Standard HID STD"},
      {514, "HID Binary HID BIN"},
      {517, "HID 34Bits HID 34Bits"},
      {768, "Mifare MI"},
      {769, "Mifare 32 Bits UID MI UID 32Bits"},
      {773, "KyungHee Univ. DongSeo Hospital MI DongSeo 64Bits"}};
  CCardTypes types;
  ASSERT_EQ(types.Count(), std::ssize(rows));
  for (std::size_t i = 0; i < std::size(rows); ++i) {
    const auto& [code, names] = rows[i];
    const auto entry = types.AllCardTypes().at(i);
    EXPECT_EQ(StateOf(*entry), TextOf(code, code, names, names, "True 0 "));
    EXPECT_EQ(types.CardTypeCodes().at(i), std::to_string(code));
    EXPECT_EQ(types.CardTypeByCode(code), entry);
  }
  EXPECT_EQ(StateOf(*types.CardTypeByCode(515)), "0 0     True 0 ");
  EXPECT_EQ(StateOf(*types.CardTypeByType(2, 3)), "0 0     False 0 ");
}

TEST(CardTypesTest, AddsAnyEntryUnderAnyFreeCode) {
  CCardTypes types;
  const auto entry = types.CardTypeByCode(513);
  std::size_t count = 9;
  for (const std::int32_t code : {515, 0, -257, kLowest}) {
    EXPECT_FALSE(types.Add(nullptr, code));
    EXPECT_EQ(ErrorOf(types), "-1 No card type to add");
    EXPECT_TRUE(types.Add(entry, code));
    EXPECT_EQ(ErrorOf(types), "0 ");
    EXPECT_FALSE(types.Add(std::make_shared<CCardType>(), code));
    EXPECT_EQ(ErrorOf(types), "-1 The card type code is already present");
    EXPECT_TRUE(types.IsExisted(0, code));
    EXPECT_EQ(types.CardTypeByCode(code), entry);
    EXPECT_EQ(types.ShortName(std::to_string(code)), "HID STD");
    EXPECT_EQ(types.CardTypeCodes().at(count), std::to_string(code));
    EXPECT_EQ(types.AllCardTypes().at(count++), entry);
  }
  EXPECT_EQ(types.Count(), count);
  EXPECT_EQ(entry->TypeCode(), 513);
  types.Error(nullptr);
  EXPECT_EQ(FaultOf([&] { types.Add(entry, 516); }), 91);
}

TEST(CardTypeTest, IsInitializedWithItsErrorOrWithout) {
  const auto entry = CCardTypes().CardTypeByCode(513);
  // InitData keeps the type pair and the error, which initAll clears.
  entry->IsAvailable = false;
  entry->MakeErr(5, "earlier");
  entry->InitData();
  EXPECT_EQ(StateOf(*entry), "0 513     True 5 earlier");
  entry->TypeName = "name";
  entry->initAll();
  EXPECT_EQ(StateOf(*entry), "0 513     True 0 ");
  entry->Error(nullptr);
  entry->InitData();
  EXPECT_EQ(FaultOf([&] { entry->initAll(); }), 91);
}

}  // namespace
}  // namespace vardel
