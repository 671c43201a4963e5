#include <vardel/core/hex.h>
#include <vardel/core/host_fault.h>

#include <array>
#include <cstddef>

#ifdef __SSE2__
#include <emmintrin.h>
#endif

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

#ifdef __SSE2__
/// Parses eight bytes at a time and says how many it has done: all but the rest that is no eight,
/// or less where something else than a digit comes. The values of 16 digits at once are found as in
/// Wojciech Mula's "Parsing hex numbers with validation".
std::size_t ParseEights(std::string_view hex, std::span<std::uint8_t> bytes) {
  const auto each = [](int value) { return _mm_set1_epi8(static_cast<char>(value)); };
  std::size_t done = 0;
  for (; done + 8 <= bytes.size(); done += 8) {
    const __m128i text = _mm_loadu_si128(reinterpret_cast<const __m128i*>(hex.data() + 2 * done));
    // '0' to '9' become F6 to FF, F0 to F9, 0 to 9; everything else comes to lie above 15.
    const __m128i high = _mm_subs_epu8(_mm_add_epi8(text, each(0xFF - '9')), each(6));
    const __m128i digits = _mm_sub_epi8(high, each(0xF0));
    // Letters of either case become 0 to 5, 10 to 15; everything else comes to lie above 15.
    const __m128i upper = _mm_and_si128(text, each(0xDF));
    const __m128i letters = _mm_adds_epu8(_mm_sub_epi8(upper, each('A')), each(10));
    const __m128i values = _mm_min_epu8(digits, letters);
    if (_mm_movemask_epi8(_mm_adds_epu8(values, each(127 - 15))) != 0) break;
    // The first digit of a pair is in its lower byte.
    const __m128i pairs = _mm_or_si128(_mm_slli_epi16(values, 4), _mm_srli_epi16(values, 8));
    const __m128i lows = _mm_and_si128(pairs, _mm_set1_epi16(0xFF));
    _mm_storel_epi64(reinterpret_cast<__m128i*>(bytes.data() + done), _mm_packus_epi16(lows, lows));
  }
  return done;
}
#else
std::size_t ParseEights(std::string_view /*hex*/, std::span<std::uint8_t> /*bytes*/) { return 0; }
#endif

}  // namespace

void ParseHex(std::string_view hex, std::span<std::uint8_t> bytes) {
  if (hex.size() / 2 < bytes.size()) throw HostFault(Fault::TypeMismatch);
  for (std::size_t i = ParseEights(hex, bytes); i < bytes.size(); ++i) {
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
