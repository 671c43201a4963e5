#include <vardel/core/hex.h>
#include <vardel/core/host_fault.h>

#include <array>
#include <cstddef>

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
    values[upper | 0x20] =
        values[upper];  // digits have this bit already, letters become lower case
  }
  return values;
}
constexpr std::array<std::uint8_t, 256> kDigitValues = MakeDigitValues();

std::uint8_t DigitValue(char c) { return kDigitValues[static_cast<std::uint8_t>(c)]; }

}  // namespace

void ParseHex(std::string_view hex, std::span<std::uint8_t> bytes) {
  if (hex.size() / 2 < bytes.size()) throw HostFault(Fault::TypeMismatch);
  unsigned all = 0;
  for (std::size_t i = 0; i < bytes.size(); ++i) {
    const unsigned high = DigitValue(hex[2 * i]);
    const unsigned low = DigitValue(hex[2 * i + 1]);
    all |= high | low;
    bytes[i] = static_cast<std::uint8_t>(high << 4 | low);
  }
  if (all > 0xF) throw HostFault(Fault::TypeMismatch);
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
