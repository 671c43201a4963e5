#include "bench/allocations.h"
#include <vardel/core/card_frame.h>
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
  const struct {
    std::int32_t type;
    std::uint8_t subType;
    const char *hex, *cardID;
  } rows[] = {{CARD_EM, CARD_SUB_EM_STD_26BITS, "7360C80200", "12345"},
              {CARD_HID, CARD_SUB_HID_STD, "7360C80200", "12345"},
              {CARD_HID, CARD_SUB_HID_CORPORATES1000, "7260800C06", "012345"}};
  for (const auto& row : rows) {
    const CCardData card{0, "", row.type, row.subType, "100", "12345", ""};
    const CCardFrame frame(row.type, row.subType, row.hex + std::string(54, '0'));
    const auto format = facade.CardFormat(row.type, row.subType);
    CardDataStruct record;
    CCardData decoded;
    EXPECT_EQ(AllocationsOf([&] {
                record = format->MakeCardData(card);
                decoded = *format->AnalyzeCardData(frame);
              }),
              0U);
    EXPECT_EQ(record.Bytes[0], row.hex[1] - '0' + 0x70);
    EXPECT_EQ(decoded.CardID, row.cardID);
    if (!facade.IsCardType(row.type, row.subType)) continue;
    CCardByteData raw;
    EXPECT_EQ(AllocationsOf([&] {
                raw = facade.MakeCardData(card);
                decoded = facade.AnalyzeCardData(frame);
              }),
              0U);
    EXPECT_EQ(raw.CardDataStruct, record);
  }
}

}  // namespace
}  // namespace vardel
