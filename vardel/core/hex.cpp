#include <vardel/core/hex.h>
#include <vardel/core/host_fault.h>

#include <array>
#include <bit>
#include <cstddef>
#include <cstring>

namespace vardel {
namespace {

constexpr std::string_view kDigits = "0123456789ABCDEF";

constexpr std::uint8_t kNoDigit = 0xFF;

/// Value of each character code as a hexadecimal digit; kNoDigit for all others.
constexpr std::array<std::uint8_t, 256> MakeDigitValues() {
  std::array<std::uint8_t, 256> values{};
  values.fill(kNoDigit);
  for (std::size_t value = 0; value < kDigits.size(); ++value) {
    const auto upper = static_cast<std::uint8_t>(kDigits[value]);
    values[upper] = static_cast<std::uint8_t>(value);
    // Digits have this bit already, letters become lower case.
    values[upper | 0x20] = values[upper];
  }
  return values;
}
constexpr std::array<std::uint8_t, 256> kDigitValues = MakeDigitValues();

unsigned DigitValue(char c) { return kDigitValues[static_cast<std::uint8_t>(c)]; }

/// One in every byte of a word.
constexpr std::uint64_t kOnes = 0x0101010101010101;

/// Sets the top bit of each byte that is within low..high; all bytes are below 80.
constexpr std::uint64_t Within(std::uint64_t bytes, unsigned low, unsigned high) {
  return (bytes + kOnes * (0x80 - low)) & ~(bytes + kOnes * (0x7F - high));
}

/// Four bytes from eight digits, the first digit in the lowest byte of `text`. False where one of
/// them is no digit.
bool ParseEight(std::uint64_t text, std::uint32_t& value) {
  constexpr std::uint64_t kTop = kOnes * 0x80;
  if ((text & kTop) != 0) return false;
  const std::uint64_t valid = Within(text, '0', '9') | Within(text | kOnes * 0x20, 'a', 'f');
  if ((valid & kTop) != kTop) return false;
  // A letter's code ends in its value less 9.
  std::uint64_t digits = (text & kOnes * 0x0F) + 9 * (text >> 6 & kOnes);
  digits = (digits << 4 | digits >> 8) & 0x00FF00FF00FF00FF;
  digits = (digits | digits >> 8) & 0x0000FFFF0000FFFF;
  value = static_cast<std::uint32_t>(digits | digits >> 16);
  return true;
}

}  // namespace

void ParseHex(std::string_view hex, std::span<std::uint8_t> bytes) {
  if (hex.size() / 2 < bytes.size()) throw HostFault(Fault::TypeMismatch);
  std::size_t i = 0;
  if constexpr (std::endian::native == std::endian::little) {
    for (; i + 4 <= bytes.size(); i += 4) {
      std::uint64_t text = 0;
      std::uint32_t value = 0;
      std::memcpy(&text, hex.data() + 2 * i, sizeof(text));
      if (!ParseEight(text, value)) throw HostFault(Fault::TypeMismatch);
      std::memcpy(bytes.data() + i, &value, sizeof(value));
    }
  }
  for (; i < bytes.size(); ++i) {
    const unsigned high = DigitValue(hex[2 * i]);
    const unsigned low = DigitValue(hex[2 * i + 1]);
    if ((high | low) > 0xF) throw HostFault(Fault::TypeMismatch);
    bytes[i] = static_cast<std::uint8_t>(high << 4 | low);
  }
}

std::string HexText(std::span<const std::uint8_t> bytes) {
  std::string text;
  text.reserve(2 * bytes.size());
  for (const std::uint8_t byte : bytes) {
    text += kDigits[byte >> 4];
    text += kDigits[byte & 0xF];
  }
  return text;
}

}  // namespace vardel
