#pragma once

#include <vardel/core/enumerations.h>
#include <vardel/core/host_fault.h>

#include <array>
#include <cstddef>
#include <cstdint>

namespace vardel {

/// True for EM, HID and Mifare (1, 2, 3).
inline bool IsValidMainType(std::int32_t CardType) {
  return CardType >= CARD_EM && CardType <= CARD_MIFARE;
}

/// True for the pairs that the facade converts: EM/1, HID/1, HID/2, HID/5, Mifare/1, Mifare/5.
/// HID/3, HID/4 and Mifare/2 to 4 are not among them, although formats for most of these exist.
inline bool IsValidTypePair(std::int32_t CardType, std::int32_t CardSubType) {
  // One bit for each accepted sub-type of each main type.
  static constexpr std::array<std::uint32_t, 4> kAcceptedSubTypes = {
      0,
      1U << CARD_SUB_EM_STD_26BITS,
      1U << CARD_SUB_HID_STD | 1U << CARD_SUB_HID_FULL_BIN | 1U << CARD_SUB_HID_34BITS,
      1U << CARD_SUB_MI_UID_32BITS | 1U << CARD_SUB_MI_DONGSEO,
  };
  return IsValidMainType(CardType) && CardSubType >= 0 && CardSubType < 32 &&
         (kAcceptedSubTypes[static_cast<std::size_t>(CardType)] >> CardSubType & 1) != 0;
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
