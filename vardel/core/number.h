#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

/// Numbers travel as decimal text and are computed with as doubles.
namespace vardel {

/// The value of a numeric text, or nothing when the text is not numeric. Numeric is: optional
/// blanks or tabs; an optional sign; digits with at most one decimal point and at least one digit;
/// an optional exponent (e, E, d or D, an optional sign, digits); optional blanks or tabs; and
/// nothing else, whatever the locale. A value too large for a double is not numeric; one too small
/// is 0.
std::optional<double> ParseNumber(std::string_view text);

/// The value of a numeric text; any other text is fault 13.
double RequireNumber(std::string_view text);

/// `text` is numeric and its value lies within the limits, both included.
bool IsNumberWithin(std::string_view text, double min, double max);

/// The number as an integer when it is whole, not negative and below 2^53, where doubles and
/// integers agree.
std::optional<std::uint64_t> WholeNumber(double value);

/// A double stored in a byte: rounded to nearest, ties to even; outside 0..255 is fault 6.
std::uint8_t ToByte(double value);

/// The whole number as plain decimal digits, never with an exponent.
std::string NumberText(double value);

/// As NumberText, filled with zeros on the left to `charCount` digits; a longer number is shown in
/// full. A negative count is fault 5.
std::string NumberText(double value, std::int16_t charCount);

}  // namespace vardel
