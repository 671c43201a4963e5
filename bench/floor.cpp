#include "bench/floor.h"

#include <bit>
#include <charconv>
#include <system_error>

namespace floor_of {
namespace {

bool Parse(std::string_view text, std::uint64_t max, std::uint64_t& value) {
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
  return error == std::errc() && end == text.data() + text.size() && value >= 1 && value <= max;
}

std::uint64_t Odd(std::uint64_t bits) {
  return static_cast<std::uint64_t>(std::popcount(bits)) & 1;
}

void Store(std::uint64_t value, Record& record) {
  record = {};
  for (std::size_t i = 0; i < 5; ++i) record[i] = static_cast<std::uint8_t>(value >> 8 * i);
}

constexpr std::array<std::uint8_t, 256> kDigits = [] {
  std::array<std::uint8_t, 256> digits{};
  digits.fill(0xFF);
  for (std::uint8_t i = 0; i < 10; ++i) digits[static_cast<std::size_t>('0' + i)] = i;
  for (std::uint8_t i = 0; i < 6; ++i) {
    digits[static_cast<std::size_t>('A' + i)] = static_cast<std::uint8_t>(10 + i);
    digits[static_cast<std::size_t>('a' + i)] = static_cast<std::uint8_t>(10 + i);
  }
  return digits;
}();

bool Load(std::string_view hex, std::uint64_t& value) {
  if (hex.size() < 64) return false;
  Record bytes;
  std::uint8_t wrong = 0;
  std::uint8_t any = 0;
  std::uint8_t all = 0xFF;
  for (std::size_t i = 0; i < 32; ++i) {
    const std::uint8_t high = kDigits[static_cast<std::uint8_t>(hex[2 * i])];
    const std::uint8_t low = kDigits[static_cast<std::uint8_t>(hex[2 * i + 1])];
    wrong |= static_cast<std::uint8_t>((high | low) & 0xF0);
    bytes[i] = static_cast<std::uint8_t>(high << 4 | low);
    any |= bytes[i];
    all &= bytes[i];
  }
  if (wrong != 0 || any == 0 || all == 0xFF) return false;
  value = 0;
  for (std::size_t i = 5; i > 0; --i) value = value << 8 | bytes[i - 1];
  return true;
}

std::string Digits(std::uint64_t value, std::size_t width) {
  std::string text(width, '0');
  for (std::size_t i = width; i > 0 && value != 0; --i, value /= 10) {
    text[i - 1] = static_cast<char>('0' + value % 10);
  }
  return text;
}

}  // namespace

bool Encode26(std::string_view facility, std::string_view cardID, Record& record) {
  std::uint64_t f = 0;
  std::uint64_t c = 0;
  if (!Parse(facility, 255, f) || !Parse(cardID, 65535, c)) return false;
  std::uint64_t value = f << 17 | c << 1;
  value |= (1 ^ Odd(value & 0x1FFE)) | Odd(value & 0x1FFE000) << 25;
  Store(value, record);
  return true;
}

bool Encode35(std::string_view facility, std::string_view cardID, Record& record) {
  std::uint64_t f = 0;
  std::uint64_t c = 0;
  if (!Parse(facility, 4095, f) || !Parse(cardID, 524287, c)) return false;
  std::uint64_t value = f << 21 | c << 1;
  value |= Odd(value & 0x1B6DB6DB6) << 33;
  value |= 1 ^ Odd(value & 0x36DB6DB6C);
  value |= (1 ^ Odd(value)) << 34;
  Store(value, record);
  return true;
}

bool Decode26(std::string_view hex, Fields& fields) {
  std::uint64_t value = 0;
  if (!Load(hex, value)) return false;
  fields.facility = Digits(value >> 17 & 0xFF, 3);
  fields.cardID = Digits(value >> 1 & 0xFFFF, 5);
  return true;
}

bool Decode35(std::string_view hex, Fields& fields) {
  std::uint64_t value = 0;
  if (!Load(hex, value)) return false;
  fields.facility = Digits(value >> 21 & 0xFFF, 5);
  fields.cardID = Digits(value >> 1 & 0xFFFFF, 6);
  return true;
}

}  // namespace floor_of
