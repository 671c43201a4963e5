#include <vardel/core/decimal.h>
#include <vardel/core/host_fault.h>
#include <vardel/core/number.h>

#include <algorithm>
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

}  // namespace

bool ParseOtherDigits(std::string_view text, std::int64_t& value) {
  if (text.size() <= 8 || text.size() > 15) return false;
  const std::size_t upperCount = text.size() - 8;
  std::int64_t upper = 0;
  std::int64_t lower = 0;
  if (!ParseDigits(text.substr(0, upperCount), upper)) return false;
  if (!ParseDigits(text.substr(upperCount), lower)) return false;
  value = upper * 100000000 + lower;
  return true;
}

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
  if (charCount < 0) throw HostFault(Fault::InvalidCall);
  text.assign(static_cast<std::size_t>(charCount), '0');
  // As many digits as there are places, whatever the value: nothing to mispredict.
  for (std::size_t place = text.size(); place > 0; --place) {
    text[place - 1] = static_cast<char>('0' + value % 10);
    value /= 10;
  }
  if (value != 0 || text.empty()) text.insert(0, std::to_string(value));
}

void AssignNumber(std::string& text, double value, std::int16_t charCount) {
  if (const auto whole = WholeNumber(value)) return AssignNumber(text, *whole, charCount);
  if (charCount < 0) throw HostFault(Fault::InvalidCall);
  const std::string digits = WholeText(value);
  const auto width = static_cast<std::size_t>(charCount);
  text.assign(width > digits.size() ? width - digits.size() : 0, '0');
  text.append(digits);
}

}  // namespace vardel
