#pragma once

#include <vardel/core/enumerations.h>
#include <vardel/formats/card_formats.h>

#include <memory>

namespace vardel {

template <class Format>
std::shared_ptr<CCardFormatInfo> Create() {
  return std::make_shared<Format>();
}

/// The one list of formats, those of the facade first and in its order. That it hands out HID/3 and
/// HID/4 without converting them, and LG and Woori Bank not at all, is meant so.
inline constexpr CardFormatClass kFormatTable[] = {
    // class, type, sub-type, is in the facade, is converted there, maker
    {"CCardFormatEM", CARD_EM, CARD_SUB_EM_STD_26BITS, true, true, Create<CCardFormatEM>},
    {"CCardFormatHIDStandard", CARD_HID, CARD_SUB_HID_STD, true, true,
     Create<CCardFormatHIDStandard>},
    {"CCardFormatBinary26", CARD_HID, CARD_SUB_HID_FULL_BIN, true, true,
     Create<CCardFormatBinary26>},
    {"CCardFormat37Bits", CARD_HID, CARD_SUB_HID_37BITS, true, false, Create<CCardFormat37Bits>},
    {"CCardFormatHIDCorp1000", CARD_HID, CARD_SUB_HID_CORPORATES1000, true, false,
     Create<CCardFormatHIDCorp1000>},
    {"CCardFormat34Bits", CARD_HID, CARD_SUB_HID_34BITS, true, true, Create<CCardFormat34Bits>},
    {"CCardFormatUID32BIts", CARD_MIFARE, CARD_SUB_MI_UID_32BITS, true, true,
     Create<CCardFormatUID32BIts>},
    {"CCardFormatDongSeo", CARD_MIFARE, CARD_SUB_MI_DONGSEO, true, true,
     Create<CCardFormatDongSeo>},
    {"CCardFormatLG", CARD_MIFARE, CARD_SUB_MI_LG, false, false, Create<CCardFormatLG>},
    {"CCardFormatWoori", CARD_MIFARE, CARD_SUB_MI_WOORI_BANK, false, false,
     Create<CCardFormatWoori>},
};

}  // namespace vardel
