#include <vardel/core/enumerations.h>
#include <vardel/core/host_fault.h>
#include <vardel/core/type_code.h>

#include <array>
#include <cstddef>
#include <limits>

namespace vardel {
namespace {

/// One bit for each accepted sub-type of each main type.
constexpr std::array<std::uint32_t, 4> kAcceptedSubTypes = {
    0,
    1U << CARD_SUB_EM_STD_26BITS,
    1U << CARD_SUB_HID_STD | 1U << CARD_SUB_HID_FULL_BIN | 1U << CARD_SUB_HID_34BITS,
    1U << CARD_SUB_MI_UID_32BITS | 1U << CARD_SUB_MI_DONGSEO,
};

std::int32_t RequireInt32(std::int64_t value) {
  using Limits = std::numeric_limits<std::int32_t>;
  if (value < Limits::min() || value > Limits::max()) throw HostFault(Fault::Overflow);
  return static_cast<std::int32_t>(value);
}

}  // namespace

bool IsValidMainType(std::int32_t CardType) {
  return CardType >= CARD_EM && CardType <= CARD_MIFARE;
}

bool IsValidTypePair(std::int32_t CardType, std::int32_t CardSubType) {
  return IsValidMainType(CardType) && CardSubType >= 0 && CardSubType < 32 &&
         (kAcceptedSubTypes[static_cast<std::size_t>(CardType)] >> CardSubType & 1) != 0;
}

std::int32_t TypeCode(std::int32_t CardType, std::int32_t CardSubType) {
  // The product has to fit by itself: a negative sub-type does not bring it back into range.
  const std::int64_t product = RequireInt32(std::int64_t{CardType} * 256);
  return RequireInt32(product + CardSubType);
}

}  // namespace vardel
