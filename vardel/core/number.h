#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

/// Numbers travel as decimal text and are computed with as doubles.
namespace vardel {

/// Whether the text is 1 to 15 digits and nothing else, as nearly all fields are; then `value`,
/// which a double holds exactly, is set. A bare bool because an optional costs the hot path its
/// registers.
inline bool ParseDigits(std::string_view text, std::int64_t& value) {
  if (text.empty() || text.size() > 15) return false;
  std::int64_t number = 0;
  for (const char c : text) {
    if (c < '0' || c > '9') return false;
    number = number * 10 + (c - '0');
  }
  value = number;
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
