#include "tests/support.h"
#include <vardel/core/text.h>

#include <gtest/gtest.h>

#include <algorithm>

namespace vardel {
namespace {

std::u32string Characters(std::string_view text) {
  std::u32string characters;
  while (!text.empty()) characters += TakeChar(text);
  return characters;
}

TEST(TextTest, ReadsCharactersOfOneToFourBytes) {
  // Each length's first and last, and those where the rule for the second byte changes.
  EXPECT_EQ(Characters("a\x7F\u0080\u07FF\u0800\u0FFF\u1000\uCFFF\uD000\uD7FF\uE000\uFFFF"),
            U"a\x7F\u0080\u07FF\u0800\u0FFF\u1000\uCFFF\uD000\uD7FF\uE000\uFFFF");
  EXPECT_EQ(Characters("\U00010000\U0003FFFF\U00040000\U000FFFFF\U00100000\U0010FFFF"),
            U"\U00010000\U0003FFFF\U00040000\U000FFFFF\U00100000\U0010FFFF");
}

TEST(TextTest, ReadsMalformedSequencesAsReplacementCharacters) {
  // Bytes that begin nothing, characters cut short, longer than need be, a surrogate, beyond the
  // last character; in the end by how many characters they read as.
  const std::vector<std::string> rows[] = {
      {},
      {"\x80", "\xFF", "\xC3", "\xE2\x82", "\xF0\x9F\x98", "\xF1\x80\x80"},
      {"\xBF\xBF", "\xE2\xE2\x82", "\xC1\xBF"},
      {"\xE0\x9F\xBF", "\xED\xA0\x80"},
      {"\xF0\x8F\xBF\xBF", "\xF4\x90\x80\x80", "\xF5\x80\x80\x80"}};
  for (std::size_t count = 1; count < std::size(rows); ++count) {
    for (const std::string& text : rows[count]) {
      const std::string whole = "<" + text + ">é";
      EXPECT_EQ(Characters(whole), U"<" + std::u32string(count, 0xFFFD) + U">é") << text;
      EXPECT_EQ(FirstChars(whole, 1 + count), "<" + text);
      EXPECT_EQ(LastChars(whole, 2 + count), text + ">é");
    }
  }
}

TEST(TextTest, CountsCharactersToTheEndOfTheView) {
  constexpr std::string_view kText = "aé€😀";
  constexpr std::u32string_view kCut[] = {U"",    U"a",    U"a�",   U"aé",   U"aé�", U"aé�",
                                          U"aé€", U"aé€�", U"aé€�", U"aé€�", U"aé€😀"};
  for (std::size_t size = 0; size <= kText.size(); ++size) {
    EXPECT_EQ(Characters(kText.substr(0, size)), kCut[size]) << size;
    EXPECT_EQ(CharCount(FirstChars(kText, size)), std::min<std::size_t>(size, 4));
    EXPECT_EQ(CharCount(LastChars(kText, size)), std::min<std::size_t>(size, 4));
  }
  // A character of two bytes at any place among others.
  for (std::size_t size = 0; size < 20; ++size) {
    for (std::size_t place = 0; place <= size; ++place) {
      ASSERT_EQ(CharCount(std::string(size, 'a').insert(place, "é")), size + 1) << place;
    }
  }
  EXPECT_EQ(TrimBlanks("  "), "");
  EXPECT_EQ(TrimBlanks("  \ta b "), "\ta b");
}

TEST(TextTest, HasOneCharacterForEachByte) {
  constexpr std::u32string_view kFrom80 =
      U"€\u0081‚ƒ„…†‡ˆ‰Š‹Œ\u008DŽ\u008F"
      U"\u0090‘’“”•–—˜™š›œ\u009DžŸ";
  std::u32string page;
  std::string text;
  for (char32_t byte = 0; byte < 256; ++byte) {
    page += byte < 0x80 || byte >= 0xA0 ? byte : kFrom80[byte - 0x80];
    AppendCharOfByte(text, static_cast<std::uint8_t>(byte));
    EXPECT_EQ(ByteOfChar(page[byte]), byte);
  }
  EXPECT_EQ(Characters(text), page);
  for (char32_t character = 0; character < 0x2400; ++character) {
    const int fault = page.find(character) == page.npos ? 6 : 0;
    ASSERT_EQ(FaultOf([&] { ByteOfChar(character); }), fault) << std::uint32_t{character};
  }
}

}  // namespace
}  // namespace vardel
