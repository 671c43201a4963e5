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
    {"CCardFormatHIDStandard", CARD_HID, CARD_SUB_HID_STD, true, Create<CCardFormatHIDStandard>},
};

}  // namespace

std::span<const CardFormatClass> CardFormatClasses() { return kClasses; }

bool LimitCheckedFormat::IsFacilityValid(std::string_view InData) const {
  return IsNumberWithin(InData, MinFacility, MaxFacility);
}

bool LimitCheckedFormat::IsCardIDValid(std::string_view InData) const {
  return IsNumberWithin(InData, MinCardID, MaxCardID);
}

}  // namespace vardel
