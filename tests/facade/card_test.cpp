#include "tests/support.h"
#include <vardel/core/card_frame.h>
#include <vardel/facade/card.h>
#include <vardel/formats/card_formats.h>

#include <gtest/gtest.h>

#include <cmath>
#include <set>

namespace vardel {
namespace {

using Bytes = std::vector<std::uint8_t>;

CCardData Card(std::int32_t type, std::uint8_t subType, std::string facility, std::string cardID,
               std::string revision = "") {
  return {0, "", type, subType, std::move(facility), std::move(cardID), std::move(revision)};
}

TEST(CardTest, FindsExactlyTheFormatsOfItsList) {
  std::set<std::int32_t> codes;
  for (const CardFormatClass& row : CardFormatClasses()) {
    if (row.IsInFacade) codes.insert(row.CardType * 256 + row.CardSubType);
  }
  const CCard card;
  for (std::int32_t code = -1100; code <= 1100; ++code) {
    EXPECT_EQ(card.IsExisted(0, code), codes.contains(code)) << code;
    const int fault = FaultOf([&] { card.CardFormatByCode(code); });
    EXPECT_EQ(fault, codes.contains(code) ? 0 : 424) << code;
  }
}

TEST(CardTest, RecordsAnUnknownTypeUntilTheNextEncode) {
  CCard card;
  const CCardByteData raw = card.MakeCardData(Card(2, 4, "1", "1"));  // which has a format
  EXPECT_EQ(ErrorOf(card) + ErrorOf(raw), "-1 Unknown Card Type0 ");
  EXPECT_EQ(raw.CardType() + raw.CardSubType(), 0);
  EXPECT_EQ(raw.CardDataStruct, CardDataStruct());
  EXPECT_EQ(FaultOf([&] { card.MakeCardData(nullptr); }), 91);
  EXPECT_EQ(ErrorOf(card), "0 ");
  EXPECT_EQ(FaultOf([&] { card.AnalyzeCardData(nullptr); }), 91);
  EXPECT_EQ(FaultOf([&] { card.CardFormat(8388608, -1); }), 6);
  EXPECT_EQ(FaultOf([&] { card.IsExisted(8388607, 256); }), 6);
}

TEST(CardTest, ClearsOrRecordsTheErrorOfDongSeoThoughTheCallFails) {
  const CCard card;
  // A bad card number is recorded even where the revision then ends the call.
  const auto dongSeo = card.CardFormat(3, 5);
  EXPECT_EQ(FaultOf([&] { dongSeo->MakeCardData(Card(3, 5, "", "", "5")); }), 5);
  EXPECT_EQ(ErrorOf(*dongSeo), "-1 Incorrect Card ID");
  EXPECT_EQ(FaultOf([&] { dongSeo->MakeCardData(nullptr); }), 91);
  EXPECT_EQ(ErrorOf(*dongSeo), "0 ") << "cleared before the card is looked at";
}

TEST(CardTest, TakesALimitThatIsNotANumberAsTheFormatSays) {
  const CCard card;
  for (const int subType : {1, 5}) {  // 34 bits by its validators, to which nothing is within that
    const auto format = card.CardFormat(2, subType);
    format->MaxCardID = std::nan("");
    EXPECT_FALSE(format->IsCardIDValid("1"));
    format->MakeCardData(Card(2, 1, "1", "1"));
    EXPECT_EQ(ErrorOf(*format), subType == 1 ? "0 " : "-1 Incorrect Card ID");
  }
}

TEST(CardTest, DecodesByTheFramesPairOrAsEM) {
  const CCard card;
  constexpr int kRows[][4] = {{2, 1, false, 512}, {2, 1, true, 512}, {2, 3, false, 0},
                              {2, 3, true, 257},  {0, 0, false, 0},  {0, 0, true, 257}};
  for (const auto& [type, subType, isEM, decoded] : kRows) {
    const auto result = card.AnalyzeCardData(CCardFrame(type, subType, "020002020000", isEM != 0));
    EXPECT_EQ(TypeCode(result.CardType, result.CardSubType), decoded) << type;
    EXPECT_EQ(result.CardID, decoded == 0 ? "" : "00001");
  }
  struct RefusingFrame : TestFrame {
    using TestFrame::TestFrame;
    std::string_view RawCardHex() const override { throw "refused"; }
  };
  EXPECT_THROW(card.AnalyzeCardData(RefusingFrame({Bytes(6), ""}, 2, 1)), const char*);
  EXPECT_EQ(LibraryFiller().Length, 64);
  EXPECT_EQ(LibraryFiller().Text, std::string(64, '0'));
}

// A host's frame sees, and may refuse, each read of its bytes.
TEST(FrameReadsTest, AreAsManyAsTheFormatSays) {
  std::string reads;  // plainly, and reversed
  for (const CardFormatClass& row : CardFormatClasses()) {
    const auto format = row.Create();
    reads += row.ClassName.substr(11);
    for (const bool isReversed : {false, true}) {
      const TestFrame frame({Bytes(16, 1), std::string(32, '1')});
      format->IsCardArrayReversed = isReversed;
      format->AnalyzeCardData(frame);
      reads += " " + std::to_string(frame.byteReads);
    }
    reads += "; ";
  }
  EXPECT_EQ(reads,
            "EM 2 3; HIDStandard 1 2; Binary26 1 2; 37Bits 2 3; HIDCorp1000 2 3; 34Bits 2 2; "
            "UID32BIts 2 2; DongSeo 1 1; LG 2 2; Woori 2 2; ");
}

}  // namespace
}  // namespace vardel
