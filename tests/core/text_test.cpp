#include "tests/support/fault_of.h"
#include <vardel/core/text.h>

#include <gtest/gtest.h>

namespace vardel {
namespace {

std::u32string Chars(std::string_view text) {
  std::u32string chars;
  while (!text.empty()) chars += TakeChar(text);
  return chars;
}

TEST(TextTest, CountsAndCutsCharactersNotBytes) {
  constexpr std::string_view kMixed = "a\u00E9\u20AC\U0001F600";
  EXPECT_EQ(Chars(kMixed), U"a\u00E9\u20AC\U0001F600");
  EXPECT_EQ(CharCount({"a\0b", 3}), 3u);
  EXPECT_EQ(FirstChars(kMixed, 2), "a\u00E9");
  EXPECT_EQ(LastChars(kMixed, 2), "\u20AC\U0001F600");
  EXPECT_EQ(FirstChars(kMixed, SIZE_MAX), kMixed);
  EXPECT_EQ(LastChars(kMixed, SIZE_MAX), kMixed);
}

TEST(TextTest, MalformedSequencesReadAsReplacementCharacters) {
  // Stray bytes, cut short, longer than need be, a surrogate, beyond the last character.
  for (const std::string_view malformed :
       {"\x80", "\xFF", "\xBF\xBF", "\xC3", "\xE2\x82", "\xE2\xE2\x82", "\xF0\x9F\x98", "\xC0\xAF",
        "\xE0\x80\xAF", "\xF0\x80\x80\xAF", "\xED\xA0\x80", "\xF4\x90\x80\x80"}) {
    SCOPED_TRACE(testing::PrintToString(malformed));
    const std::string text = "<" + std::string(malformed) + ">\u00E9";
    const std::u32string chars = Chars(text);
    ASSERT_GE(chars.size(), 4u);
    EXPECT_EQ(chars, U"<" + std::u32string(chars.size() - 3, U'\uFFFD') + U">\u00E9");
    EXPECT_EQ(CharCount(malformed), chars.size() - 3);
    for (std::size_t count = 0; count <= chars.size(); ++count) {
      EXPECT_EQ(Chars(FirstChars(text, count)), chars.substr(0, count));
      EXPECT_EQ(Chars(LastChars(text, count)), chars.substr(chars.size() - count));
    }
  }
  EXPECT_EQ(CharCount("\xF0\x9F\x98"), 1u);
}

TEST(TextTest, EveryByteHasItsWindows1252CharacterAndNoOtherCharacterHasAByte) {
  constexpr std::u32string_view kFrom80To9F = U"€\x81‚ƒ„…†‡ˆ‰Š‹Œ\x8DŽ\x8F\x90‘’“”•–—˜™š›œ\x9DžŸ";
  for (unsigned byte = 0; byte < 256; ++byte) {
    const char32_t expected = byte < 0x80 || byte >= 0xA0 ? byte : kFrom80To9F[byte - 0x80];
    std::string text = "x";
    AppendCharOfByte(text, static_cast<std::uint8_t>(byte));
    EXPECT_EQ(Chars(text), std::u32string({U'x', expected})) << byte;
    EXPECT_EQ(ByteOfChar(expected), byte);
  }
  for (const unsigned c : {0x80u, 0x101u, 0xFFFDu, 0x100E9u}) EXPECT_EQ(FaultOf(ByteOfChar, c), 6);
}

}  // namespace
}  // namespace vardel
