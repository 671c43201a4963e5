#include <vardel/core/number.h>
#include <vardel/formats/card_formats.h>
#include <vardel/formats/format_table.h>

namespace vardel {
std::span<const CardFormatClass> CardFormatClasses() { return kFormatTable; }

bool LimitCheckedFormat::IsFacilityValid(std::string_view InData) const {
  return IsNumberWithin(InData, MinFacility, MaxFacility);
}

bool LimitCheckedFormat::IsCardIDValid(std::string_view InData) const {
  return IsNumberWithin(InData, MinCardID, MaxCardID);
}

bool FormatWithoutFacility::IsFacilityValid(std::string_view /*InData*/) const { return true; }

}  // namespace vardel
