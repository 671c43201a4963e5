#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>

namespace vardel {

/// Fills `bytes` from the leading digits of `hex`, two per byte, first byte first, upper or lower
/// case. Text that is too short or holds anything else in those places is fault 13; `bytes` is then
/// unspecified.
void ParseHex(std::string_view hex, std::span<std::uint8_t> bytes);

/// Two upper-case digits per byte, first byte first.
std::string HexText(std::span<const std::uint8_t> bytes);

}  // namespace vardel
