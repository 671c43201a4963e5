#include <vardel/core/enumerations.h>
#include <vardel/core/error.h>
#include <vardel/core/host_fault.h>
#include <vardel/core/type_code.h>
#include <vardel/facade/card.h>
#include <vardel/formats/card_formats.h>

#include <cstddef>

namespace vardel {
namespace {

constexpr std::string_view kFillerText =
    "0000000000000000000000000000000000000000000000000000000000000000";
static_assert(kFillerText.size() == 64);

thread_local CardFiller filler;

/// The place of a type code among a facade's formats; the first, which stays empty, for all codes
/// that no format can have.
std::size_t Slot(std::int32_t code) {
  const auto type = static_cast<std::uint32_t>(code) / 256;
  const auto subType = static_cast<std::uint32_t>(code) % 256;
  return type < 4 && subType < 8 ? type * 8 + subType : 0;
}

}  // namespace

const CardFiller& LibraryFiller() { return filler; }

CCard::CCard() {
  filler = {.Length = static_cast<std::int32_t>(kFillerText.size()), .Text = kFillerText};
  for (const CardFormatClass& row : CardFormatClasses()) {
    if (row.IsInFacade) {
      formats_[Slot(TypeCode(row.CardType, row.CardSubType))] = row.Create();
    }
  }
}

const std::shared_ptr<CCardFormatInfo>& CCard::Format(std::int32_t code) const {
  const auto& format = formats_[Slot(code)];
  if (format == nullptr) throw HostFault(Fault::ObjectRequired);
  return format;
}

std::shared_ptr<CCardFormatInfo> CCard::CardFormat(std::int32_t CardType,
                                                   std::int32_t CardSubType) const {
  return CardFormatByCode(TypeCode(CardType, CardSubType));
}

std::shared_ptr<CCardFormatInfo> CCard::CardFormatByCode(std::int32_t CardTypeCode) const {
  return Format(CardTypeCode);
}

bool CCard::IsExisted(std::int32_t CardType, std::int32_t CardSubType) const {
  return formats_[Slot(TypeCode(CardType, CardSubType))] != nullptr;
}

bool CCard::IsCardMainType(std::int32_t InData) const { return IsValidMainType(InData); }

bool CCard::IsCardType(std::int32_t InCardType, std::int32_t InCardSubType) const {
  return IsValidTypePair(InCardType, InCardSubType);
}

bool CCard::IsSmartCardData(std::string_view /*CardData*/) const {
  throw HostFault(Fault::ObjectRequired);
}

bool CCard::IsSecurityCardData(std::string_view /*CardData*/) const {
  throw HostFault(Fault::ObjectRequired);
}

CCardByteData CCard::MakeCardData(const CCardData* InCardData) {
  ErrNumber = 0;
  ErrName.clear();
  const CCardData& card = RequireObject(InCardData);
  CCardByteData result;
  if (!IsValidTypePair(card.CardType, card.CardSubType)) {
    ErrName = message::kUnknownCardType;
    ErrNumber = kContentError;
    return result;
  }
  CCardFormatInfo& format = *Format(TypeCode(card.CardType, card.CardSubType));
  result.CardType(card.CardType);
  result.CardSubType(card.CardSubType);
  format.Encode(card, result.CardDataStruct);
  if (format.ErrNumber() != 0) result.ErrNumber(format.ErrNumber());
  if (!format.ErrName().empty()) result.ErrName(format.ErrName());
  return result;
}

CCardData CCard::AnalyzeCardData(const ICardFrame* UFrame) const {
  const ICardFrame& frame = RequireObject(UFrame);
  const std::int32_t cardType = frame.FrameCardType();
  const std::int32_t cardSubType = frame.FrameCardSubType();
  CCardData result;
  if (IsValidTypePair(cardType, cardSubType)) {
    Format(TypeCode(cardType, cardSubType))->Decode(frame, result);
  } else if (frame.IsEMFrame()) {
    Format(TypeCode(CARD_EM, CARD_SUB_EM_STD_26BITS))->Decode(frame, result);
  }
  return result;
}

}  // namespace vardel
