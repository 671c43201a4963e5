#pragma once

#include <cstddef>
#include <cstdint>
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

std::size_t CharCount(std::string_view text) noexcept;
/// The first `count` characters of `text`, or all of it when it is shorter.
std::string_view FirstChars(std::string_view text, std::size_t count) noexcept;
/// The last `count` characters of `text`, or all of it when it is shorter.
std::string_view LastChars(std::string_view text, std::size_t count) noexcept;
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
void AppendCharOfNonAsciiByte(std::string& text, std::uint8_t byte);
inline void AppendCharOfByte(std::string& text, std::uint8_t byte) {
  if (byte >= 0x80) return AppendCharOfNonAsciiByte(text, byte);
  text += static_cast<char>(byte);
}

}  // namespace vardel
