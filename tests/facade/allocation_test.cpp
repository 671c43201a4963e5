#include <vardel/core/card_frame.h>
#include <vardel/core/enumerations.h>
#include <vardel/facade/card.h>

#include <gtest/gtest.h>

#include <cstdlib>
#include <new>

// Counts what the whole program asks of the heap.
namespace {
std::size_t allocations = 0;
}
void* operator new(std::size_t size) {
  ++allocations;
  if (void* const memory = std::malloc(size)) return memory;
  throw std::bad_alloc();
}
void operator delete(void* memory) noexcept { std::free(memory); }
void operator delete(void* memory, std::size_t) noexcept { std::free(memory); }

namespace vardel {
namespace {

template <class F>
std::size_t AllocationsOf(F&& call) {
  const std::size_t before = allocations;
  call();
  return allocations - before;
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
