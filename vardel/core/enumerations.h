#pragma once

#include <cstdint>

namespace vardel {

/// Main card type.
enum CardType : std::int32_t {
  CARD_UNKNOWN = 0,
  CARD_EM = 1,
  CARD_HID = 2,
  CARD_MIFARE = 3,
};

/// Sub-type within CARD_EM.
enum CardSubTypeEM : std::int32_t {
  CARD_SUB_EM_STD_26BITS = 1,
};

/// Sub-type within CARD_HID.
enum CardSubTypeHID : std::int32_t {
  CARD_SUB_HID_STD = 1,
  CARD_SUB_HID_FULL_BIN = 2,
  CARD_SUB_HID_37BITS = 3,
  CARD_SUB_HID_CORPORATES1000 = 4,
  CARD_SUB_HID_34BITS = 5,
};

/// Sub-type within CARD_MIFARE. CARD_SUB_MI_DATA has no format.
enum CardSubTypeMifare : std::int32_t {
  CARD_SUB_MI_UID_32BITS = 1,
  CARD_SUB_MI_DATA = 2,
  CARD_SUB_MI_LG = 3,
  CARD_SUB_MI_WOORI_BANK = 4,
  CARD_SUB_MI_DONGSEO = 5,
};

/// Number of values that a field of so many bits can take.
enum BitWeight : std::int32_t {
  WEIGHT_8_BITS = 256,
  WEIGHT_16_BITS = 65536,
  WEIGHT_24_BITS = 16777216,
};

}  // namespace vardel
