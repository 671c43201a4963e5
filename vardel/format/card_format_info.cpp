#include <vardel/core/host_fault.h>
#include <vardel/core/number.h>
#include <vardel/core/text.h>
#include <vardel/format/card_format_info.h>
#include <vardel/format/format_parameters.h>

#include <cmath>
#include <limits>

namespace vardel {
namespace {

double MaxOf(const std::optional<double>& fixed, std::int16_t bitCount) {
  return fixed.value_or(std::exp2(bitCount) - 1);
}

std::int16_t MaskLength(const std::string& mask) {
  return static_cast<std::int16_t>(CharCount(mask));
}

/// The sum of 16-bit counts has to be one itself.
std::int16_t AddCounts(int left, int right) {
  const int sum = left + right;
  if (sum > std::numeric_limits<std::int16_t>::max()) throw HostFault(Fault::Overflow);
  return static_cast<std::int16_t>(sum);
}

}  // namespace

CCardFormatInfo::CCardFormatInfo(const FormatParameters& parameters)
    : isSmartCard_(parameters.IsSmartCard) {
  // All values are put one after the other, so that those that depend on others see them.
  CardType = parameters.CardType;
  CardSubType = parameters.CardSubType;
  // cppcheck-suppress useInitializationList
  DefaultCardName = parameters.DefaultCardName;
  CardName = DefaultCardName;
  // cppcheck-suppress useInitializationList
  DefaultChar = parameters.DefaultChar;
  DefaultByte = parameters.DefaultByte;
  BitCountFacility = parameters.BitCount.Facility;
  BitCountCardID = parameters.BitCount.CardID;
  BitCountRevision = parameters.BitCount.Revision;
  OccupiedByteCardId = parameters.OccupiedByte.CardID;
  OccupiedByteFacility = parameters.OccupiedByte.Facility;
  OccupiedByteRevision = parameters.OccupiedByte.Revision;
  BitCountTotal = parameters.BitCountTotal;
  ByteCountTotal = parameters.ByteCountTotal;
  MinFacility = parameters.Min.Facility;
  MinCardID = parameters.Min.CardID;
  MinRevision = parameters.Min.Revision;
  MaxFacility = MaxOf(parameters.Max.Facility, BitCountFacility);
  MaxCardID = MaxOf(parameters.Max.CardID, BitCountCardID);
  MaxRevision = parameters.Max.Revision;
  MaskFacility = parameters.Mask.Facility;
  MaskCardID = parameters.Mask.CardID;
  MaskRevision = parameters.Mask.Revision;
  CharCountFacility = MaskLength(MaskFacility);
  CharCountCardID = MaskLength(MaskCardID);
  CharCountRevision = MaskLength(MaskRevision);
  CharCountTotal = AddCounts(AddCounts(CharCountRevision, CharCountCardID), CharCountFacility);
  SidxFacility = parameters.Index.Facility.first;
  SidxCardID = parameters.Index.CardID.first;
  SidxRevision = parameters.Index.Revision.first;
  EidxFacility = parameters.Index.Facility.last;
  EidxCardID = parameters.Index.CardID.last;
  EidxRevision = parameters.Index.Revision.last;
}

bool CCardFormatInfo::IsFacilityValid(std::string_view /*InData*/) const { return false; }

bool CCardFormatInfo::IsCardIDValid(std::string_view /*InData*/) const { return false; }

CardDataStruct CCardFormatInfo::MakeCardData(const CCardData* CardData) {
  return Encode(RequireObject(CardData));
}

std::optional<CCardData> CCardFormatInfo::AnalyzeCardData(const ICardFrame& UserInfo) {
  std::optional<CCardData> result(std::in_place);
  if (!Decode(UserInfo, *result)) result.reset();
  return result;
}

std::optional<CCardData> CCardFormatInfo::AnalyzeCardData(const ICardFrame* UserInfo) {
  return AnalyzeCardData(RequireObject(UserInfo));
}

CardDataStruct CCardFormatInfo::Encode(const CCardData& /*card*/) { return {}; }

bool CCardFormatInfo::Decode(const ICardFrame& /*frame*/, CCardData& /*result*/) { return false; }

}  // namespace vardel
