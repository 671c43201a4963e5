#include "tests/support/allocations.h"
#include <vardel/core/card_frame.h>
#include <vardel/core/enumerations.h>
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

TEST(Allocations, AreNotMadeByTheConversionsOfTheFacade) {
  CCard facade;
  ASSERT_GT(AllocationsOf([] { CCard another; }), 0U) << "the count does not work";
  for (const std::int32_t type : {CARD_EM, CARD_HID}) {
    CCardData card;
    card.CardType = type;
    card.CardSubType = 1;
    card.Facility = "100";
    card.CardID = "12345";
    const CCardFrame frame(type, 1, "7360C802" + std::string(56, '0'));
    CCardByteData raw;
    EXPECT_EQ(AllocationsOf([&] { raw = facade.MakeCardData(card); }), 0U);
    CCardData decoded;
    EXPECT_EQ(AllocationsOf([&] { decoded = facade.AnalyzeCardData(frame); }), 0U);
    EXPECT_EQ(raw.CardArrDataByIndex(0), 0x73);
    EXPECT_EQ(decoded.CardID, "12345");
  }
}

TEST(Allocations, AreNotMadeByCorporate1000ReachedThroughTheFacade) {
  const CCard facade;
  CCardData card;
  card.Facility = "100";
  card.CardID = "12345";
  const CCardFrame frame(CARD_HID, CARD_SUB_HID_CORPORATES1000,
                         "7260800C06" + std::string(54, '0'));
  CardDataStruct record;
  CCardData decoded;
  EXPECT_EQ(AllocationsOf([&] {
              const auto format = facade.CardFormat(CARD_HID, CARD_SUB_HID_CORPORATES1000);
              record = format->MakeCardData(card);
              decoded = *format->AnalyzeCardData(frame);
            }),
            0U);
  EXPECT_EQ(record.Bytes[0], 0x72);
  EXPECT_EQ(decoded.CardID, "012345");
}

}  // namespace
}  // namespace vardel
