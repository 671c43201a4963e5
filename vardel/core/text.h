#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>

/// Text is UTF-8; lengths and positions count characters, not bytes. A malformed sequence reads as
/// one U+FFFD character.
namespace vardel {

/// Takes the first character off `rest`, which begins with a byte of 80 or above.
char32_t TakeMultiByteChar(std::string_view& rest) noexcept;

/// Takes the first character off `rest`, which must not be empty.
inline char32_t TakeChar(std::string_view& rest) noexcept {
  const auto first = static_cast<std::uint8_t>(rest.front());
  if (first >= 0x80) return TakeMultiByteChar(rest);
  rest.remove_prefix(1);
  return first;
}

/// The 1 to 8 bytes of a text in one word, the first lowest, without a look beyond them and without
/// a branch for each length.
inline std::uint64_t WordOf(std::string_view text) noexcept {
  const auto at = [&](std::size_t i) {
    return std::uint64_t{static_cast<std::uint8_t>(text[i])} << 8 * i;
  };
  const std::size_t size = text.size();
  // Up to three are the first, the middle and the last; some of these may be the same.
  if (size < 4) return at(0) | at(size / 2) | at(size - 1);
  // The others are the first four and the last four.
  if constexpr (std::endian::native != std::endian::little) {
    std::uint64_t word = 0;
    for (std::size_t i = 0; i < size; ++i) word |= at(i);
    return word;
  }
  std::uint32_t first = 0;
  std::uint32_t last = 0;
  std::memcpy(&first, text.data(), sizeof(first));
  std::memcpy(&last, text.data() + size - sizeof(last), sizeof(last));
  return first | std::uint64_t{last} << 8 * (size - sizeof(last));
}

/// Whether all characters are ASCII, and so one byte long.
inline bool IsAscii(std::string_view text) noexcept {
  std::uint64_t seen = 0;
  for (; text.size() > 8; text.remove_prefix(8)) seen |= WordOf(text.substr(0, 8));
  if (!text.empty()) seen |= WordOf(text);
  return (seen & 0x8080808080808080) == 0;
}
/// CharCount without the short way.
std::size_t CountChars(std::string_view text) noexcept;
inline std::size_t CharCount(std::string_view text) noexcept {
  return IsAscii(text) ? text.size() : CountChars(text);
}
/// The first `count` characters of `text`, or all of it when it is shorter.
std::string_view FirstChars(std::string_view text, std::size_t count) noexcept;
/// LastChars of a text with more than `count` bytes.
std::string_view CutToLastChars(std::string_view text, std::size_t count) noexcept;
/// The last `count` characters of `text`, or all of it when it is shorter.
inline std::string_view LastChars(std::string_view text, std::size_t count) noexcept {
  return text.size() <= count ? text : CutToLastChars(text, count);  // none is shorter than a byte
}
/// `text` without leading and trailing blanks (U+0020 only).
std::string_view TrimBlanks(std::string_view text) noexcept;

/// The single-byte code of a character in Windows-1252, on every platform. The five bytes that the
/// code page leaves unassigned (81, 8D, 8F, 90, 9D) stand for the control characters of the same
/// number. A character without a code is fault 6.
std::uint8_t ByteOfNonAsciiChar(char32_t character);
inline std::uint8_t ByteOfChar(char32_t character) {
  return character < 0x80 ? static_cast<std::uint8_t>(character) : ByteOfNonAsciiChar(character);
}
/// Appends the character of a Windows-1252 code; every byte has one.
void AppendCharOfByte(std::string& text, std::uint8_t byte);

}  // namespace vardel
