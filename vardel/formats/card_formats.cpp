#include <vardel/core/enumerations.h>
#include <vardel/core/number.h>
#include <vardel/formats/card_formats.h>

namespace vardel {
namespace {

template <class Format>
std::shared_ptr<CCardFormatInfo> Create() {
  return std::make_shared<Format>();
}

constexpr CardFormatClass kClasses[] = {
    {"CCardFormatEM", CARD_EM, CARD_SUB_EM_STD_26BITS, true, Create<CCardFormatEM>},
    {"CCardFormatHIDStandard", CARD_HID, CARD_SUB_HID_STD, true, Create<CCardFormatHIDStandard>},
    {"CCardFormatBinary26", CARD_HID, CARD_SUB_HID_FULL_BIN, true, Create<CCardFormatBinary26>},
    {"CCardFormat37Bits", CARD_HID, CARD_SUB_HID_37BITS, true, Create<CCardFormat37Bits>},
    {"CCardFormatHIDCorp1000", CARD_HID, CARD_SUB_HID_CORPORATES1000, true,
     Create<CCardFormatHIDCorp1000>},
    {"CCardFormat34Bits", CARD_HID, CARD_SUB_HID_34BITS, true, Create<CCardFormat34Bits>},
    {"CCardFormatUID32BIts", CARD_MIFARE, CARD_SUB_MI_UID_32BITS, true,
     Create<CCardFormatUID32BIts>},
    {"CCardFormatDongSeo", CARD_MIFARE, CARD_SUB_MI_DONGSEO, true, Create<CCardFormatDongSeo>},
    {"CCardFormatLG", CARD_MIFARE, CARD_SUB_MI_LG, false, Create<CCardFormatLG>},
    {"CCardFormatWoori", CARD_MIFARE, CARD_SUB_MI_WOORI_BANK, false, Create<CCardFormatWoori>},
};

}  // namespace

std::span<const CardFormatClass> CardFormatClasses() { return kClasses; }

bool LimitCheckedFormat::IsFacilityValid(std::string_view InData) const {
  return IsNumberWithin(InData, MinFacility, MaxFacility);
}

bool LimitCheckedFormat::IsCardIDValid(std::string_view InData) const {
  return IsNumberWithin(InData, MinCardID, MaxCardID);
}

bool FacilitylessFormat::IsFacilityValid(std::string_view /*InData*/) const { return true; }

}  // namespace vardel
