#pragma once

#include <vardel/core/text.h>

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

/// Numbers travel as decimal text and are computed with as doubles.
namespace vardel {

/// ParseDigits for texts of any other size than 1 to 8.
bool ParseOtherDigits(std::string_view text, std::int64_t& value);

/// Whether the text is 1 to 15 digits and nothing else, as nearly all fields are; then `value`,
/// which a double holds exactly, is set. A bare bool because an optional costs the hot path its
/// registers.
inline bool ParseDigits(std::string_view text, std::int64_t& value) {
  constexpr std::uint64_t kOnes = 0x0101010101010101;
  const std::size_t size = text.size();
  if (size < 1 || size > 8) return ParseOtherDigits(text, value);

  const std::size_t unused = 64 - 8 * size;
  std::uint64_t digits = WordOf(text) << unused;
  digits ^= kOnes * '0' << unused;
  if (((digits | (digits + kOnes * (0x80 - 10))) & kOnes * 0x80) != 0) return false;

  // Digits to pairs, in every second byte; then each pair times its weight, all summed up in the
  // upper half.
  constexpr std::uint64_t kPairs = 0x000000FF000000FF;
  digits = digits * 10 + (digits >> 8);
  const std::uint64_t sum = (digits & kPairs) * (100 + (std::uint64_t{1000000} << 32)) +
                            (digits >> 16 & kPairs) * (1 + (std::uint64_t{10000} << 32));
  value = static_cast<std::int64_t>(sum >> 32);
  return true;
}

/// ParseNumber without the short way.
std::optional<double> ParseAnyNumber(std::string_view text);

/// The value of a numeric text, or nothing when the text is not numeric. Numeric is: optional
/// blanks or tabs; an optional sign; digits with at most one decimal point and at least one digit;
/// an optional exponent (e, E, d or D, an optional sign, digits); optional blanks or tabs; and
/// nothing else, whatever the locale. A value too large for a double is not numeric; one too small
/// is 0.
inline std::optional<double> ParseNumber(std::string_view text) {
  if (std::int64_t digits = 0; ParseDigits(text, digits)) return static_cast<double>(digits);
  return ParseAnyNumber(text);
}

/// The value of a numeric text; any other text is fault 13.
double RequireNumber(std::string_view text);

/// `text` is numeric and its value lies within the limits, both included.
inline bool IsNumberWithin(std::string_view text, double min, double max) {
  std::int64_t digits = 0;
  if (ParseDigits(text, digits)) {
    const auto value = static_cast<double>(digits);
    return min <= value && value <= max;
  }
  const std::optional<double> value = ParseAnyNumber(text);
  return value && min <= *value && *value <= max;
}

/// The number as an integer when it is whole, not negative and below 2^53, where doubles and
/// integers agree.
inline std::optional<std::uint64_t> WholeNumber(double value) {
  constexpr double kLimit = 9007199254740992.0;
  if (!(value >= 0 && value < kLimit)) return std::nullopt;
  const auto whole = static_cast<std::int64_t>(value);
  if (static_cast<double>(whole) != value) return std::nullopt;
  return static_cast<std::uint64_t>(whole);
}

/// A double stored in a byte: rounded to nearest, ties to even; outside 0..255 is fault 6.
std::uint8_t ToByte(double value);

/// The whole number as plain decimal digits, never with an exponent.
std::string NumberText(double value);

/// Sets `text` to the whole number's plain decimal digits, filled with zeros on the left to
/// `charCount` of them; a longer number is shown in full. A negative count is fault 5.
void AssignNumber(std::string& text, std::uint64_t value, std::int16_t charCount);
void AssignNumber(std::string& text, double value, std::int16_t charCount);

}  // namespace vardel
