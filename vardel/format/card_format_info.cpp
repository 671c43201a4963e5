#include <vardel/core/host_fault.h>
#include <vardel/core/text.h>
#include <vardel/format/card_format_info.h>
#include <vardel/format/format_parameters.h>

#include <cmath>

namespace vardel {
namespace {

double MaxOf(const FieldParameters& field) {
  return field.Max == kAllBits ? std::exp2(field.Bits) - 1 : field.Max;
}

std::int16_t MaskLength(const std::string& mask) {
  return static_cast<std::int16_t>(CharCount(mask));
}

}  // namespace

CCardFormatInfo::CCardFormatInfo(const FormatParameters& parameters)
    : cardLayout_(&parameters.Layout), isSmartCard_(parameters.IsSmartCard) {
  // All values are put one after the other, so that those that depend on others see them.
  CardType = parameters.CardType;
  CardSubType = parameters.CardSubType;
  // cppcheck-suppress useInitializationList
  DefaultCardName = parameters.DefaultCardName;
  CardName = DefaultCardName;
  // cppcheck-suppress useInitializationList
  DefaultChar = parameters.DefaultChar;
  DefaultByte = parameters.DefaultByte;
  BitCountFacility = parameters.Facility.Bits;
  BitCountCardID = parameters.CardID.Bits;
  BitCountRevision = parameters.Revision.Bits;
  OccupiedByteCardId = parameters.CardID.Bytes;
  OccupiedByteFacility = parameters.Facility.Bytes;
  OccupiedByteRevision = parameters.Revision.Bytes;
  BitCountTotal = parameters.BitCountTotal;
  ByteCountTotal = parameters.ByteCountTotal;
  MinFacility = parameters.Facility.Min;
  MinCardID = parameters.CardID.Min;
  MinRevision = static_cast<std::int16_t>(parameters.Revision.Min);
  MaxFacility = MaxOf(parameters.Facility);
  MaxCardID = MaxOf(parameters.CardID);
  MaxRevision = static_cast<std::int16_t>(parameters.Revision.Max);
  MaskFacility = parameters.Facility.Mask;
  MaskCardID = parameters.CardID.Mask;
  MaskRevision = parameters.Revision.Mask;
  CharCountFacility = MaskLength(MaskFacility);
  CharCountCardID = MaskLength(MaskCardID);
  CharCountRevision = MaskLength(MaskRevision);
  CharCountTotal = CharCountRevision + CharCountCardID + CharCountFacility;
  SidxFacility = parameters.Facility.Index.first;
  SidxCardID = parameters.CardID.Index.first;
  SidxRevision = parameters.Revision.Index.first;
  EidxFacility = parameters.Facility.Index.last;
  EidxCardID = parameters.CardID.Index.last;
  EidxRevision = parameters.Revision.Index.last;
}

const CardLayout& LayoutOf(const CCardFormatInfo& format) { return *format.cardLayout_; }

bool CCardFormatInfo::IsFacilityValid(std::string_view /*InData*/) const { return false; }

bool CCardFormatInfo::IsCardIDValid(std::string_view /*InData*/) const { return false; }

CardDataStruct CCardFormatInfo::MakeCardData(const CCardData& CardData) {
  vardel::CardDataStruct record;
  Encode(CardData, record);
  return record;
}

CardDataStruct CCardFormatInfo::MakeCardData(const CCardData* CardData) {
  return MakeCardData(RequireObject(CardData));
}

std::optional<CCardData> CCardFormatInfo::AnalyzeCardData(const ICardFrame& UserInfo) {
  std::optional result = CCardData{};  // made in place it would be zeroed as a whole first
  if (!Decode(UserInfo, *result)) result.reset();
  return result;
}

std::optional<CCardData> CCardFormatInfo::AnalyzeCardData(const ICardFrame* UserInfo) {
  return AnalyzeCardData(RequireObject(UserInfo));
}

void CCardFormatInfo::Encode(const CCardData& /*card*/, vardel::CardDataStruct& /*record*/) {}

bool CCardFormatInfo::Decode(const ICardFrame& /*frame*/, CCardData& /*result*/) { return false; }

}  // namespace vardel
