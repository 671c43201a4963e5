#include "soak/card_samples.h"
#include "tests/support.h"
#include <vardel/core/hex.h>
#include <vardel/facade/card_matches.h>

#include <gtest/gtest.h>

#include <regex>

namespace vardel {
namespace {

/// The formats, best first: of how many reads parity holds, how many have unused bits set, how many
/// are beyond the limits.
std::string Listed(const CCardMatches& matches) {
  std::string text;
  for (const CCardMatch& match : matches.Matches()) {
    const std::string holds = match.HasParity ? ValueText(match.ParityHolds) : "-";
    text += TextOf(match.ClassName.substr(11), holds, match.UnusedSet, match.BeyondLimits) + "; ";
  }
  return text;
}

TEST(CardMatchesTest, TellParityThatHoldsFromBrokenOneAndTenCardsFromThoseOfOtherLayouts) {
  std::string holding, listed;
  for (const NumberLayout& layout : kNumberLayouts) {
    const std::string name(layout.name);
    // Before a card's own format stands only what fits as well.
    const std::regex holds("(\\w+ 1 0 0; )*" + name + " 1 0 0; .*");
    const std::regex broken(".*\\b" + name + " 0 0 .*"), unused(".*\\b" + name + " 1 1 .*");
    Random random(20260104);
    CCardMatches ten;
    for (int i = 0; i < 400 && !layout.parities.empty(); ++i) {
      CardDataStruct record = DrawCard(name, random).record;
      const CCardFrame frame(0, 0, HexText(record.Bytes));
      ASSERT_TRUE(std::regex_match(Listed(MatchCardData(frame)), holds)) << name;
      if (i < 10) ten.Add(frame), ten.Add(CCardFrame());
      const std::size_t bit = random() % (layout.ruler.size() + 1);
      record.Bytes[bit / 8] ^= static_cast<std::uint8_t>(1 << bit % 8);
      const CCardFrame turned(0, 0, HexText(record.Bytes));
      const std::regex& other = bit == layout.ruler.size() ? unused : broken;
      ASSERT_TRUE(std::regex_match(Listed(MatchCardData(turned)), other)) << name << " " << bit;
    }
    holding += TextOf("; " + name, ten.ReadCount(), ten.BlankCount(), ":");
    for (const CCardMatch& match : ten.Matches()) {
      if (match.ParityHolds == 10) holding.append(" ") += match.ClassName.substr(11);
    }
    if (name == "HIDCorp1000") listed = Listed(ten);
  }
  EXPECT_EQ(holding,
            "; HIDStandard 20 10 : EM HIDStandard; EM 20 10 : EM HIDStandard; 37Bits 20 10 : 37Bits"
            "; HIDCorp1000 20 10 : HIDCorp1000; 34Bits 20 10 : 34Bits; UID32BIts 0 0 :");
  EXPECT_EQ(listed,
            "HIDCorp1000 10 0 0; Binary26 - 0 10; DongSeo - 0 10; LG - 0 10; Woori - 0 10; "
            "UID32BIts - 9 0; 37Bits 5 0 0; 34Bits 2 7 0; EM 2 10 1; HIDStandard 2 10 1; ");
}

TEST(CardMatchesTest, GoByWhatEachFormatReads) {
  const std::vector<std::uint8_t> em = {0x73, 0x60, 0xC8, 2, 0}, sevens(16, '7'), blank(10);
  const std::pair<FrameData, const char*> rows[] = {
      {{sevens, "30303030313230303030303334353037"},
       "LG - 0 0; Binary26 - 0 1; Woori - 0 1; UID32BIts - 1 0; DongSeo - 1 0; EM 0 1 0; "
       "HIDStandard 0 1 0; 37Bits 0 1 0; 34Bits 0 1 0; HIDCorp1000 0 1 1; "},
      {{em, "7360C80200"}, "34Bits 1 0 0; "},  // too short for the others
      {{sevens, "3X303030313230303030303334353037"}, "DongSeo - 1 0; 34Bits 0 1 0; "},
      {{sevens, std::string(32, '0')}, "DongSeo - 1 0; 34Bits 0 1 0; "},
      {{blank, "7360C802000000000000"},
       "EM 1 0 0; HIDStandard 1 0 0; 37Bits 1 0 0; Binary26 - 0 0; HIDCorp1000 0 0 0; "},
      {{blank, "ffffffffffffffffffff0123456789"}, "blank"},
      {{{}, "7360C8020000"}, ""},
      {{{}, ""}, "blank"}};
  for (const auto& [frame, answer] : rows) {
    const CCardMatches matches = MatchCardData(TestFrame(frame));
    EXPECT_EQ(matches.BlankCount() == 0 ? Listed(matches) : "blank", answer) << frame.hex;
  }
}

TEST(CardMatchesTest, StayWhenAFrameFailsAndWhereTheyAreHeld) {
  struct FailingFrame : TestFrame {
    using TestFrame::TestFrame;
    std::string_view RawCardHex() const override { throw HostFault(Fault::Overflow); }
  };
  const FailingFrame failing({{{1, 2, 3, 4, 5, 6}}, ""});
  const CCardFrame frame(0, 0, "7360C8020000");
  CCardMatches matches = MatchCardData(frame);
  const auto first = matches.Item(0);
  EXPECT_EQ(FaultOf([&] { matches.Add(failing); }), 6);
  EXPECT_EQ(FaultOf([&] { matches.Add(nullptr); }), 91);
  EXPECT_EQ(matches.Item(0), first);
  EXPECT_EQ(FaultOf([&] { matches.Item(matches.Count()); }), 9);
  EXPECT_EQ(FaultOf([&] { first->CardData(-1); }), 9);
  const ICardFrame* const both[] = {&frame, &frame};
  matches = MatchCardData(both);
  EXPECT_EQ(TextOf(matches.Item(0)->CardCount(), first->CardCount()), "2 1");
  EXPECT_EQ(first->CardData(0).CardID, "12345");
}

}  // namespace
}  // namespace vardel
