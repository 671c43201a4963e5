#include "bench/allocations.h"
#include <vardel/core/card_frame.h>
#include <vardel/core/hex.h>
#include <vardel/facade/card.h>

#include <gtest/gtest.h>

namespace vardel {
namespace {

template <class F>
std::size_t AllocationsOf(F&& call) {
  const std::size_t before = AllocationCount();
  call();
  return AllocationCount() - before;
}

TEST(Allocations, AreNotMadeByConversions) {
  CCard facade;
  ASSERT_GT(AllocationsOf([] { CCard another; }), 0U) << "the count does not work";
  const std::pair<CCardData, std::string> rows[] = {
      {{0, "", CARD_EM, CARD_SUB_EM_STD_26BITS, "100", "12345", ""}, "7360C80200"},
      {{0, "", CARD_HID, CARD_SUB_HID_STD, "100", "12345", ""}, "7360C80200"},
      {{0, "", CARD_HID, CARD_SUB_HID_CORPORATES1000, "100", "12345", ""}, "7260800C06"}};
  for (const auto& row : rows) {
    const CCardData& card = row.first;
    const std::string& hex = row.second;
    const CCardFrame frame(card.CardType, card.CardSubType, hex + std::string(54, '0'));
    const auto format = facade.CardFormat(card.CardType, card.CardSubType);
    CardDataStruct record;
    CCardData decoded;
    CCardByteData raw;
    EXPECT_EQ(AllocationsOf([&] {
                record = format->MakeCardData(card);
                decoded = *format->AnalyzeCardData(frame);
                if (!facade.IsCardType(card.CardType, card.CardSubType)) return;
                raw = facade.MakeCardData(card);
                decoded = facade.AnalyzeCardData(frame);
              }),
              0U);
    EXPECT_EQ(HexText(record.Bytes).substr(0, 10), hex);
    EXPECT_EQ(std::stoi(decoded.CardID), 12345);
  }
}

}  // namespace
}  // namespace vardel
