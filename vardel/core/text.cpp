#include <vardel/core/host_fault.h>
#include <vardel/core/text.h>

#include <algorithm>
#include <array>

namespace vardel {
namespace {

constexpr char32_t kReplacement = 0xFFFD;

/// Windows-1252 codes 80 to 9F; all other codes equal their character's number.
constexpr char32_t kFirstRemapped = 0x80;
constexpr std::array<char16_t, 32> kRemapped = {
    0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021,  // 80
    0x02C6, 0x2030, 0x0160, 0x2039, 0x0152, 0x008D, 0x017D, 0x008F,  // 88
    0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022, 0x2013, 0x2014,  // 90
    0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178,  // 98
};

constexpr bool IsRemapped(char32_t code) {
  return code >= kFirstRemapped && code < kFirstRemapped + kRemapped.size();
}

/// What may follow a lead byte of a multi-byte character.
struct Sequence {
  int length;                // bytes in all; 0 = not a lead byte
  std::uint8_t low = 0x80;   // range of the second byte, narrowed against overlong forms,
  std::uint8_t high = 0xBF;  // surrogates and numbers above 10FFFF
};

constexpr Sequence SequenceOf(std::uint8_t lead) {
  if (lead >= 0xC2 && lead <= 0xDF) return {2};
  if (lead == 0xE0) return {3, 0xA0};
  if (lead == 0xED) return {3, 0x80, 0x9F};
  if (lead >= 0xE1 && lead <= 0xEF) return {3};
  if (lead == 0xF0) return {4, 0x90};
  if (lead >= 0xF1 && lead <= 0xF3) return {4};
  if (lead == 0xF4) return {4, 0x80, 0x8F};
  return {0};
}

}  // namespace

char32_t TakeMultiByteChar(std::string_view& rest) noexcept {
  // Not empty on entry; the test below is about what follows the first byte.
  // cppcheck-suppress containerOutOfBounds
  const auto lead = static_cast<std::uint8_t>(rest.front());
  rest.remove_prefix(1);

  auto [length, low, high] = SequenceOf(lead);
  if (length == 0) return kReplacement;
  char32_t character = lead & (0x7FU >> length);
  for (int i = 1; i < length; ++i) {
    if (rest.empty()) return kReplacement;
    const auto next = static_cast<std::uint8_t>(rest.front());
    if (next < low || next > high) return kReplacement;
    rest.remove_prefix(1);
    character = (character << 6) | (next & 0x3F);
    low = 0x80;
    high = 0xBF;
  }
  return character;
}

std::size_t CharCount(std::string_view text) noexcept {
  std::size_t count = 0;
  for (; !text.empty(); ++count) TakeChar(text);
  return count;
}

std::string_view FirstChars(std::string_view text, std::size_t count) noexcept {
  std::string_view rest = text;
  for (; count > 0 && !rest.empty(); --count) TakeChar(rest);
  return text.substr(0, text.size() - rest.size());
}

std::string_view LastChars(std::string_view text, std::size_t count) noexcept {
  const std::size_t total = CharCount(text);
  for (std::size_t excess = total - std::min(total, count); excess > 0; --excess) TakeChar(text);
  return text;
}

std::string_view TrimBlanks(std::string_view text) noexcept {
  const std::size_t first = text.find_first_not_of(' ');
  if (first == std::string_view::npos) return {};
  return text.substr(first, text.find_last_not_of(' ') - first + 1);
}

std::uint8_t ByteOfNonAsciiChar(char32_t character) {
  if (character <= 0xFF && !IsRemapped(character)) return static_cast<std::uint8_t>(character);
  const auto place =
      static_cast<std::size_t>(std::ranges::find(kRemapped, character) - kRemapped.begin());
  if (place == kRemapped.size()) throw HostFault(Fault::Overflow);
  return static_cast<std::uint8_t>(kFirstRemapped + place);
}

void AppendCharOfNonAsciiByte(std::string& text, std::uint8_t byte) {
  const char32_t character = IsRemapped(byte) ? kRemapped[byte - kFirstRemapped] : byte;
  if (character < 0x800) {
    text += static_cast<char>(0xC0 | (character >> 6));
  } else {
    text += static_cast<char>(0xE0 | (character >> 12));
    text += static_cast<char>(0x80 | ((character >> 6) & 0x3F));
  }
  text += static_cast<char>(0x80 | (character & 0x3F));
}

}  // namespace vardel
