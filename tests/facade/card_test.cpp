#include "tests/support/fault_of.h"
#include "tests/support/test_frame.h"
#include <vardel/core/card_frame.h>
#include <vardel/core/enumerations.h>
#include <vardel/facade/card.h>
#include <vardel/formats/card_formats.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <limits>
#include <vector>

namespace vardel {
namespace {

CCardData HidCard(const std::string& facility, const std::string& cardID) {
  CCardData card;
  card.CardType = CARD_HID;
  card.CardSubType = CARD_SUB_HID_STD;
  card.Facility = facility;
  card.CardID = cardID;
  return card;
}

TEST(Card, HandsOutTheSameFormatObjectEveryTime) {
  const CCard facade;
  const auto format = facade.CardFormat(CARD_HID, CARD_SUB_HID_STD);
  ASSERT_NE(format, nullptr);
  EXPECT_EQ(facade.CardFormatByCode(513), format);
  EXPECT_EQ(facade.CardFormat(CARD_HID, CARD_SUB_HID_STD), format);
  EXPECT_NE(CCard().CardFormatByCode(513), format);
}

TEST(Card, RegistersExactlyTheFormatsOfTheFacadeList) {
  const CCard facade;
  for (std::int32_t code = -1100; code <= 1100; ++code) {
    SCOPED_TRACE(code);
    bool expected = false;
    for (const CardFormatClass& row : CardFormatClasses()) {
      expected |= row.IsInFacade && row.CardType * 256 + row.CardSubType == code;
    }
    EXPECT_EQ(facade.IsExisted(0, code), expected);
    EXPECT_EQ(FaultOf([&] { facade.CardFormatByCode(code); }), expected ? 0 : 424);
  }
}

TEST(Card, LeavesItsErrorAloneInLookupsAndFaults) {
  CCard facade;
  facade.ErrNumber = 7;
  facade.ErrName = "old";
  EXPECT_EQ(FaultOf([&] { facade.CardFormat(3, 3); }), 424);
  EXPECT_EQ(FaultOf([&] { facade.CardFormat(9000000, 1); }), 6);
  EXPECT_EQ(FaultOf([&] { facade.CardFormat(8388608, -1); }), 6);
  EXPECT_EQ(FaultOf([&] { facade.IsExisted(8388607, 256); }), 6);
  EXPECT_EQ(FaultOf([&] { facade.IsExisted(-8388608, -1); }), 6);
  EXPECT_EQ(FaultOf([&] { facade.IsSmartCardData("12"); }), 424);
  EXPECT_EQ(FaultOf([&] { facade.IsSecurityCardData(""); }), 424);
  EXPECT_FALSE(facade.IsExisted(3, 3));
  facade.AnalyzeCardData(TestFrame({}, ""));
  EXPECT_EQ(facade.ErrNumber, 7);
  EXPECT_EQ(facade.ErrName, "old");
}

TEST(Card, CountsMainTypesAndChecksPairs) {
  const CCard facade;
  EXPECT_EQ(facade.CardTypeCount(), 3);
  EXPECT_FALSE(facade.IsCardMainType(0));
  EXPECT_TRUE(facade.IsCardMainType(3));
  EXPECT_FALSE(facade.IsCardType(1, 2));
  EXPECT_FALSE(facade.IsCardType(4, 1));
  EXPECT_TRUE(facade.IsCardType(2, 5));
}

TEST(Card, EncodesIntoARecordWithTypeAndSubType) {
  CCard facade;
  const CCardByteData raw = facade.MakeCardData(HidCard("1", "1"));
  EXPECT_EQ(raw.CardType(), CARD_HID);
  EXPECT_EQ(raw.CardSubType(), CARD_SUB_HID_STD);
  EXPECT_EQ(raw.CardDataByteCount(), 32);
  EXPECT_EQ(raw.CardArrDataByIndex(0), 0x02);
  EXPECT_EQ(raw.CardArrDataByIndex(3), 0x02);
  EXPECT_EQ(raw.ErrNumber(), 0);
}

TEST(Card, RecordsAnUnknownTypeOnItselfAndClearsItWithTheNextCard) {
  CCard facade;
  for (const std::int32_t type : {0, 4, -1, std::numeric_limits<std::int32_t>::max()}) {
    CCardData card = HidCard("1", "1");
    card.CardType = type;
    const CCardByteData raw = facade.MakeCardData(card);
    EXPECT_EQ(facade.ErrNumber, -1);
    EXPECT_EQ(facade.ErrName, "Unknown Card Type");
    EXPECT_EQ(raw.CardType(), 0);
    EXPECT_EQ(raw.ErrNumber(), 0);
    EXPECT_EQ(raw.CardDataStruct, CardDataStruct());
  }
  CCardData keico = HidCard("1", "1");
  keico.CardSubType = CARD_SUB_HID_37BITS;
  facade.MakeCardData(keico);
  EXPECT_EQ(facade.ErrName, "Unknown Card Type");

  facade.MakeCardData(HidCard("1", "1"));
  EXPECT_EQ(facade.ErrNumber, 0);
  EXPECT_EQ(facade.ErrName, "");
}

TEST(Card, CarriesAFormatsErrorUntilSomeoneClearsIt) {
  CCard facade;
  const CCardByteData wrong = facade.MakeCardData(HidCard("1", "0"));
  EXPECT_EQ(wrong.ErrNumber(), -1);
  EXPECT_EQ(wrong.ErrName(), "Incorrect Card ID");
  EXPECT_EQ(facade.ErrNumber, 0);

  const CCardByteData stale = facade.MakeCardData(HidCard("1", "1"));
  EXPECT_EQ(stale.ErrName(), "Incorrect Card ID");
  EXPECT_EQ(stale.CardArrDataByIndex(0), 0x02);

  facade.CardFormatByCode(513)->InitErr();
  EXPECT_EQ(facade.MakeCardData(HidCard("1", "1")).ErrNumber(), 0);
  EXPECT_EQ(wrong.ErrName(), "Incorrect Card ID") << "a result keeps its own error";
}

TEST(Card, KeepsTheErrorsOfAllEncodersButDongSeo) {
  for (const CardFormatClass& row : CardFormatClasses()) {
    SCOPED_TRACE(row.ClassName);
    const auto format = row.Create();
    CCardData card;
    card.CardType = row.CardType;
    card.CardSubType = static_cast<std::uint8_t>(row.CardSubType);
    card.Facility = "1";
    card.CardID = "12345678";
    card.Revision = "12";
    format->MakeErr(-1, "old");
    FaultOf([&] { format->MakeCardData(card); });
    const bool clears = row.ClassName == "CCardFormatDongSeo";
    EXPECT_EQ(format->ErrNumber(), clears ? 0 : -1);
    if (!format->IsSmartCard()) continue;
    card.CardType = CARD_HID;
    EXPECT_EQ(format->MakeCardData(card), CardDataStruct());
    EXPECT_EQ(format->ErrName(), "Incorrect Card Type");
  }
  // A bad card number is recorded even where the revision then ends the call.
  const auto dongSeo = CCard().CardFormatByCode(773);
  CCardData card;
  card.CardType = CARD_MIFARE;
  card.CardSubType = CARD_SUB_MI_DONGSEO;
  card.Revision = "5";
  EXPECT_EQ(FaultOf([&] { dongSeo->MakeCardData(card); }), 5);
  EXPECT_EQ(dongSeo->ErrName(), "Incorrect Card ID");
}

TEST(Card, DecodesByTheFramesPair) {
  const CCard facade;
  const CCardData card = facade.AnalyzeCardData(CCardFrame(2, 1, "020002020000"));
  EXPECT_EQ(card.CardType, CARD_HID);
  EXPECT_EQ(card.Facility, "001");
  EXPECT_EQ(card.CardID, "00001");

  const CCardData blank = facade.AnalyzeCardData(CCardFrame(2, 3, "020002020000"));
  EXPECT_EQ(blank.CardType, 0);
  EXPECT_EQ(blank.CardID, "");
  EXPECT_EQ(blank.ErrNumber, 0);

  // A pair that is not accepted is decoded as EM when the frame says so; an accepted one is not.
  const CCardData em = facade.AnalyzeCardData(CCardFrame(0, 0, "020002020000", true));
  EXPECT_EQ(em.CardType, CARD_EM);
  EXPECT_EQ(em.CardSubType, CARD_SUB_EM_STD_26BITS);
  EXPECT_EQ(em.CardID, "00001");
  EXPECT_EQ(facade.AnalyzeCardData(CCardFrame(2, 3, "020002020000", true)).CardType, CARD_EM);
  EXPECT_EQ(facade.AnalyzeCardData(CCardFrame(2, 1, "020002020000", true)).CardType, CARD_HID);
}

TEST(Card, ReadsAFrameAsOftenAsItsFormatSays) {
  struct Row {
    const char* format;
    int plain;
    int reversed;
  };
  constexpr Row kRows[] = {
      {"CCardFormatEM", 2, 3},          {"CCardFormatHIDStandard", 1, 2},
      {"CCardFormatBinary26", 1, 2},    {"CCardFormat37Bits", 2, 3},
      {"CCardFormatHIDCorp1000", 2, 3}, {"CCardFormat34Bits", 2, 2},
      {"CCardFormatUID32BIts", 2, 2},   {"CCardFormatDongSeo", 1, 1},
      {"CCardFormatLG", 2, 2},          {"CCardFormatWoori", 2, 2},
  };
  for (const Row& row : kRows) {
    SCOPED_TRACE(row.format);
    const auto classes = CardFormatClasses();
    const auto listed = std::ranges::find(classes, row.format, &CardFormatClass::ClassName);
    ASSERT_NE(listed, classes.end());
    const auto format = listed->Create();
    const TestFrame frame(std::vector<std::uint8_t>(16, 1), std::string(32, '1'));
    format->AnalyzeCardData(frame);
    EXPECT_EQ(frame.byteReads, row.plain);
    format->IsCardArrayReversed = true;
    format->AnalyzeCardData(frame);
    EXPECT_EQ(frame.byteReads - row.plain, row.reversed);
  }
}

TEST(Card, RefusesNullAndPassesAFramesOwnFailureOn) {
  struct Refusal {};
  struct RefusingFrame : TestFrame {
    using TestFrame::TestFrame;
    std::string_view RawCardHex() const override { throw Refusal(); }
  };
  CCard facade;
  facade.ErrNumber = -1;
  EXPECT_EQ(FaultOf([&] { facade.MakeCardData(nullptr); }), 91);
  EXPECT_EQ(FaultOf([&] { facade.AnalyzeCardData(nullptr); }), 91);
  const auto format = facade.CardFormatByCode(513);
  EXPECT_EQ(FaultOf([&] { format->MakeCardData(nullptr); }), 91);
  EXPECT_EQ(FaultOf([&] { format->AnalyzeCardData(nullptr); }), 91);

  RefusingFrame frame(std::vector<std::uint8_t>(6), "");
  frame.type = 2;
  frame.subType = 1;
  EXPECT_THROW(facade.AnalyzeCardData(frame), Refusal);
}

TEST(Card, SetsTheFillerOfItsThread) {
  const CCard facade;
  EXPECT_EQ(LibraryFiller().Length, 64);
  EXPECT_EQ(LibraryFiller().Text, std::string(64, '0'));
}

}  // namespace
}  // namespace vardel
