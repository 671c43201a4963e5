#include <vardel/core/bits.h>
#include <vardel/core/decimal.h>
#include <vardel/core/host_fault.h>
#include <vardel/core/number.h>

#include <algorithm>
#include <array>
#include <bit>
#include <charconv>
#include <cmath>
#include <cstddef>

namespace vardel {
namespace {

/// Takes the leading digits off `rest`.
std::string_view TakeDigits(std::string_view& rest) {
  const std::string_view digits = rest.substr(0, rest.find_first_not_of("0123456789"));
  rest.remove_prefix(digits.size());
  return digits;
}

/// Takes one of `characters` off `rest`, if it begins with one; 0 otherwise.
char TakeAnyOf(std::string_view& rest, std::string_view characters) {
  if (rest.empty() || characters.find(rest.front()) == std::string_view::npos) return 0;
  const char taken = rest.front();
  rest.remove_prefix(1);
  return taken;
}

/// The value of digits, point and exponent.
std::optional<double> ValueOf(std::string_view whole, std::string_view fraction, char exponentSign,
                              std::string_view exponent) {
  constexpr std::int64_t kFar = std::int64_t{1} << 62;  // more than a text has digits to undo
  std::int64_t power = kFar;
  std::from_chars(exponent.data(), exponent.data() + exponent.size(), power);
  power = std::min(power, kFar);
  if (exponentSign == '-') power = -power;
  return DecimalValue(std::string(whole).append(fraction),
                      power - static_cast<std::int64_t>(fraction.size()));
}

void AssignFilled(std::string& text, std::string_view digits, std::int16_t charCount) {
  if (charCount < 0) throw HostFault(Fault::InvalidCall);
  const auto width = static_cast<std::size_t>(charCount);
  text.assign(width - std::min(width, digits.size()), '0');
  text += digits;
}

/// AssignNumber without the short way.
void AssignAnyNumber(std::string& text, std::uint64_t value, std::int16_t charCount) {
  std::array<char, 20> digits;  // the largest has as many
  const auto [end, error] = std::to_chars(digits.data(), digits.data() + digits.size(), value);
  AssignFilled(text, {digits.data(), end}, charCount);
}

/// The two digits of each number below 100 as characters, the first in the low byte.
constexpr std::array<std::uint16_t, 100> MakePairs() {
  std::array<std::uint16_t, 100> pairs{};
  for (unsigned i = 0; i < pairs.size(); ++i) {
    pairs[i] = static_cast<std::uint16_t>(('0' + i / 10) | ('0' + i % 10) << 8);
  }
  return pairs;
}
constexpr std::array<std::uint16_t, 100> kPairs = MakePairs();

/// Ten to the power of the index; but 0 for the first, as there is no number without a digit.
constexpr std::array<std::uint32_t, 9> kWidthLimits = {0,      10,      100,      1000,     10000,
                                                       100000, 1000000, 10000000, 100000000};

}  // namespace

std::optional<double> ParseAnyNumber(std::string_view text) {
  constexpr std::string_view kSpace = " \t";
  std::string_view rest = text;
  while (TakeAnyOf(rest, kSpace) != 0) continue;
  const char sign = TakeAnyOf(rest, "+-");
  const std::string_view whole = TakeDigits(rest);
  const bool hasPoint = TakeAnyOf(rest, ".") != 0;
  const std::string_view fraction = hasPoint ? TakeDigits(rest) : std::string_view();
  if (whole.empty() && fraction.empty()) return std::nullopt;

  char exponentSign = 0;
  std::string_view exponent = "0";
  if (TakeAnyOf(rest, "eEdD") != 0) {
    exponentSign = TakeAnyOf(rest, "+-");
    exponent = TakeDigits(rest);
    if (exponent.empty()) return std::nullopt;
  }
  while (TakeAnyOf(rest, kSpace) != 0) continue;
  if (!rest.empty()) return std::nullopt;

  std::optional<double> value = ValueOf(whole, fraction, exponentSign, exponent);
  if (value && sign == '-') value = -*value;
  return value;
}

double RequireNumber(std::string_view text) {
  const std::optional<double> value = ParseNumber(text);
  if (!value) throw HostFault(Fault::TypeMismatch);
  return *value;
}

std::uint8_t ToByte(double value) {
  // Not the current rounding mode, which belongs to the host.
  const double floor = std::floor(value);
  const double rest = value - floor;
  const bool roundsUp = rest > 0.5 || (rest == 0.5 && std::fmod(floor, 2.0) != 0);
  const double rounded = roundsUp ? floor + 1 : floor;
  if (!(rounded >= 0 && rounded <= 255)) throw HostFault(Fault::Overflow);
  return static_cast<std::uint8_t>(rounded);
}

std::string NumberText(double value) {
  std::string text;
  AssignNumber(text, value, 0);
  return text;
}

void AssignNumber(std::string& text, std::uint64_t value, std::int16_t charCount) {
  const auto width = static_cast<std::uint16_t>(charCount);
  if (width >= kWidthLimits.size() || value >= kWidthLimits[width]) {
    return AssignAnyNumber(text, value, charCount);
  }
  // Eight digits, of which the last ones are shown: in pairs from a table, as in Andrei
  // Alexandrescu's "Three Optimization Tips for C++", none of which waits for another.
  const auto number = static_cast<std::uint32_t>(value);
  const std::uint32_t upper = number / 10000;
  const std::uint32_t lower = number % 10000;
  const std::uint64_t digits = kPairs[upper / 100] | std::uint64_t{kPairs[upper % 100]} << 16 |
                               std::uint64_t{kPairs[lower / 100]} << 32 |
                               std::uint64_t{kPairs[lower % 100]} << 48;
  const auto characters =
      std::bit_cast<std::array<char, 8>>(bits::ToBytes(digits >> 8 * (8U - width)));
  text = std::string(characters.data(), characters.size());
  text.erase(width);
}

void AssignNumber(std::string& text, double value, std::int16_t charCount) {
  if (const auto whole = WholeNumber(value)) return AssignNumber(text, *whole, charCount);
  AssignFilled(text, WholeText(value), charCount);
}

}  // namespace vardel
