#include <vardel/core/enumerations.h>
#include <vardel/core/error.h>
#include <vardel/core/host_fault.h>
#include <vardel/core/type_code.h>
#include <vardel/facade/card.h>
#include <vardel/formats/card_formats.h>

#include <algorithm>

namespace vardel {
namespace {

constexpr std::string_view kFillerText =
    "0000000000000000000000000000000000000000000000000000000000000000";
static_assert(kFillerText.size() == 64);

thread_local CardFiller filler;

}  // namespace

const CardFiller& LibraryFiller() { return filler; }

CCard::CCard() {
  filler = {.Length = static_cast<std::int32_t>(kFillerText.size()), .Text = kFillerText};
  for (const CardFormatClass& row : CardFormatClasses()) {
    if (row.IsInFacade) {
      formats_.push_back({TypeCode(row.CardType, row.CardSubType), row.Create()});
    }
  }
}

const CCard::Entry* CCard::Find(std::int32_t code) const {
  const auto found = std::ranges::find(formats_, code, &Entry::code);
  return found == formats_.end() ? nullptr : &*found;
}

CCardFormatInfo& CCard::Format(std::int32_t cardType, std::int32_t cardSubType) const {
  const Entry* const entry = Find(TypeCode(cardType, cardSubType));
  if (entry == nullptr) throw HostFault(Fault::ObjectRequired);
  return *entry->format;
}

std::shared_ptr<CCardFormatInfo> CCard::CardFormat(std::int32_t CardType,
                                                   std::int32_t CardSubType) const {
  return CardFormatByCode(TypeCode(CardType, CardSubType));
}

std::shared_ptr<CCardFormatInfo> CCard::CardFormatByCode(std::int32_t CardTypeCode) const {
  const Entry* const entry = Find(CardTypeCode);
  if (entry == nullptr) throw HostFault(Fault::ObjectRequired);
  return entry->format;
}

bool CCard::IsExisted(std::int32_t CardType, std::int32_t CardSubType) const {
  return Find(TypeCode(CardType, CardSubType)) != nullptr;
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
    ErrNumber = kContentError;
    ErrName = message::kUnknownCardType;
    return result;
  }
  CCardFormatInfo& format = Format(card.CardType, card.CardSubType);
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
    Format(cardType, cardSubType).Decode(frame, result);
  } else if (frame.IsEMFrame()) {
    Format(CARD_EM, CARD_SUB_EM_STD_26BITS).Decode(frame, result);
  }
  return result;
}

}  // namespace vardel
