#include <vardel/core/decimal.h>

#include <array>
#include <charconv>
#include <cmath>
#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <system_error>

namespace vardel {
namespace {

constexpr std::size_t kLongest = 320;  // the largest double has 309 digits; sign, and an end

}  // namespace

// libc++ has the conversions of integers without those of doubles, and does not define this then.
#ifdef __cpp_lib_to_chars

std::optional<double> DecimalValue(const std::string& digits, std::int64_t power) {
  const std::size_t first = digits.find_first_not_of('0');
  if (first == std::string::npos) return 0.0;
  const std::string text = digits + "e" + std::to_string(power);
  double value = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
  if (error == std::errc()) return value;
  // Out of range says either too large or too small. The largest and the smallest double are 308
  // powers of ten away from 1, so the decimal exponent of the first non-zero digit tells which.
  const bool isLarge = power + static_cast<std::int64_t>(digits.size() - first) > 0;
  return isLarge ? std::nullopt : std::optional(0.0);
}

std::string WholeText(double value) {
  std::array<char, kLongest> text;
  const auto [end, error] =
      std::to_chars(text.data(), text.data() + text.size(), value, std::chars_format::fixed, 0);
  return {text.data(), end};
}

#else

// Without a decimal point in the text neither of these depends on the host's locale.

std::optional<double> DecimalValue(const std::string& digits, std::int64_t power) {
  const double value = std::strtod((digits + "e" + std::to_string(power)).c_str(), nullptr);
  return value == HUGE_VAL ? std::nullopt : std::optional(value);
}

std::string WholeText(double value) {
  std::array<char, kLongest> text;
  const int size = std::snprintf(text.data(), text.size(), "%.0f", value);
  return {text.data(), static_cast<std::size_t>(size)};
}

#endif

}  // namespace vardel
