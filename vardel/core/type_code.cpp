#include <vardel/core/enumerations.h>
#include <vardel/core/host_fault.h>
#include <vardel/core/type_code.h>

#include <algorithm>
#include <array>
#include <limits>
#include <utility>

namespace vardel {
namespace {

constexpr std::array<std::pair<std::int32_t, std::int32_t>, 6> kAcceptedPairs = {{
    {CARD_EM, CARD_SUB_EM_STD_26BITS},
    {CARD_HID, CARD_SUB_HID_STD},
    {CARD_HID, CARD_SUB_HID_FULL_BIN},
    {CARD_HID, CARD_SUB_HID_34BITS},
    {CARD_MIFARE, CARD_SUB_MI_UID_32BITS},
    {CARD_MIFARE, CARD_SUB_MI_DONGSEO},
}};

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
  return std::ranges::find(kAcceptedPairs, std::pair(CardType, CardSubType)) !=
         kAcceptedPairs.end();
}

std::int32_t TypeCode(std::int32_t CardType, std::int32_t CardSubType) {
  // The product has to fit by itself: a negative sub-type does not bring it back into range.
  const std::int64_t product = RequireInt32(std::int64_t{CardType} * 256);
  return RequireInt32(product + CardSubType);
}

}  // namespace vardel
