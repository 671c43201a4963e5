#pragma once

#include <cstdint>

namespace vardel {

/// True for EM, HID and Mifare (1, 2, 3).
bool IsValidMainType(std::int32_t CardType);

/// True for the pairs that the facade converts: EM/1, HID/1, HID/2, HID/5, Mifare/1, Mifare/5.
/// HID/3, HID/4 and Mifare/2 to 4 are not among them, although formats for most of these exist.
bool IsValidTypePair(std::int32_t CardType, std::int32_t CardSubType);

/// CardType x 256 + CardSubType in signed 32-bit arithmetic; fault 6 where that overflows.
std::int32_t TypeCode(std::int32_t CardType, std::int32_t CardSubType);

}  // namespace vardel
