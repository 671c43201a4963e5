#include "bench/allocations.h"
#include "tests/support.h"
#include <vardel/core/card_frame.h>
#include <vardel/core/hex.h>
#include <vardel/facade/card.h>

#include <gtest/gtest.h>

#include <new>

namespace vardel {
namespace {

TEST(Allocations, AreNotMadeByConversions) {
  const std::size_t beforeFacade = AllocationCount();
  CCard facade;
  ASSERT_GT(AllocationCount(), beforeFacade) << "the count does not work";
  const std::pair<CCardData, std::string> rows[] = {
      {{0, "", CARD_EM, CARD_SUB_EM_STD_26BITS, "100", "12345", ""}, "7360C802"},
      {{0, "", CARD_HID, CARD_SUB_HID_STD, "100", "12345", ""}, "7360C802"},
      {{0, "", CARD_HID, CARD_SUB_HID_CORPORATES1000, "100", "12345", ""}, "7260800C06"}};
  for (const auto& [card, hex] : rows) {
    const CCardFrame frame(card.CardType, card.CardSubType, hex + std::string(54, '0'));
    const auto format = facade.CardFormat(card.CardType, card.CardSubType);
    CCardData decoded;
    const std::size_t before = AllocationCount();
    const CardDataStruct record = format->MakeCardData(card);
    decoded = *format->AnalyzeCardData(frame);
    if (facade.IsCardType(card.CardType, card.CardSubType)) {
      const CCardByteData raw = facade.MakeCardData(card);
      decoded = facade.AnalyzeCardData(frame);
    }
    EXPECT_EQ(AllocationCount(), before);
    EXPECT_EQ(HexText(record.Bytes).substr(0, hex.size()), hex);
    EXPECT_EQ(std::stoi(decoded.CardID), 12345);
  }
}

TEST(Allocations, ThatFailLeaveNothingHalfRecorded) {
  CCardByteData data;
  data.CardType(CARD_HID);
  data.CardArrDataByIndex(3, 7);
  CError error{"short", 5};
  RefuseAllocations(true);
  data.InitCardData(9);
  EXPECT_THROW(error.MakeErr(-1, "a text that is too long for a string itself"), std::bad_alloc);
  RefuseAllocations(false);
  EXPECT_EQ(TextOf(ErrorOf(data), data.CardType(), data.CardArrDataByIndex(3)),
            "-1 Out of memory 2 7");
  EXPECT_EQ(ErrorOf(error), "5 short");
}

}  // namespace
}  // namespace vardel
