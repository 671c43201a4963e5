#pragma once

#include <vardel/core/enumerations.h>
#include <vardel/core/host_fault.h>

#include <cstdint>

namespace vardel {

/// True for EM, HID and Mifare (1, 2, 3).
inline bool IsValidMainType(std::int32_t CardType) {
  return CardType >= CARD_EM && CardType <= CARD_MIFARE;
}

/// CardType x 256 + CardSubType in signed 32-bit arithmetic; fault 6 where that overflows.
inline std::int32_t TypeCode(std::int32_t CardType, std::int32_t CardSubType) {
  // The product has to fit by itself: a negative sub-type does not bring it back into range.
  const std::int64_t product = std::int64_t{CardType} * 256;
  const std::int64_t sum = product + CardSubType;
  if (product != static_cast<std::int32_t>(product) || sum != static_cast<std::int32_t>(sum)) {
    throw HostFault(Fault::Overflow);
  }
  return static_cast<std::int32_t>(sum);
}

}  // namespace vardel
