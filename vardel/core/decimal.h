#pragma once

#include <cstdint>
#include <optional>
#include <string>

/// What <charconv> does with doubles, also where the standard library has it for integers alone.
namespace vardel {

/// `digits`, which is not empty, times ten to the power of `power`, as the nearest double: 0 where
/// that is too small for one, nothing where it is too large. `power` is within 2^62 of 0.
std::optional<double> DecimalValue(const std::string& digits, std::int64_t power);

/// The nearest whole number in plain digits, never with an exponent.
std::string WholeText(double value);

}  // namespace vardel
