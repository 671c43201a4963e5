#include <vardel/core/enumerations.h>
#include <vardel/core/error.h>
#include <vardel/core/host_fault.h>
#include <vardel/core/type_code.h>
#include <vardel/facade/card.h>
#include <vardel/format/mod_card.h>
#include <vardel/formats/format_table.h>

#include <algorithm>
#include <cstddef>

namespace vardel {
namespace {

constexpr std::string_view kFillerText =
    "0000000000000000000000000000000000000000000000000000000000000000";
static_assert(kFillerText.size() == 64);

thread_local CardFiller filler;

/// The place of a type pair among a facade's formats; the first, which stays empty, for all pairs
/// that no format can have.
constexpr std::size_t Slot(std::uint32_t cardType, std::uint32_t cardSubType) {
  return cardType < 4 && cardSubType < 8 ? cardType * 8 + cardSubType : 0;
}
constexpr std::size_t Slot(const CardFormatClass& row) {
  return Slot(static_cast<std::uint32_t>(row.CardType),
              static_cast<std::uint32_t>(row.CardSubType));
}
std::size_t Slot(std::int32_t code) {
  const auto bits = static_cast<std::uint32_t>(code);
  return Slot(bits / 256, bits % 256);
}

static_assert(std::ranges::all_of(kFormatTable, [](const auto& row) { return Slot(row) != 0; }),
              "a format's type pair has no place: widen Slot here and CCard::formats_ in card.h");

/// One bit for each place whose format the facade converts with.
constexpr std::uint32_t kConverted = [] {
  std::uint32_t bits = 0;
  for (const CardFormatClass& row : kFormatTable) {
    if (row.IsConverted) bits |= std::uint32_t{1} << Slot(row);
  }
  return bits;
}();

}  // namespace

const CardFiller& LibraryFiller() { return filler; }

CCard::CCard() {
  filler = {.Length = static_cast<std::int32_t>(kFillerText.size()), .Text = kFillerText};
  for (const CardFormatClass& row : kFormatTable) {
    if (row.IsInFacade) formats_[Slot(row)] = row.Create();
  }
}

CCardFormatInfo* CCard::Converter(std::int32_t cardType, std::int32_t cardSubType) const {
  const std::size_t slot =
      Slot(static_cast<std::uint32_t>(cardType), static_cast<std::uint32_t>(cardSubType));
  return (kConverted >> slot & 1) != 0 ? formats_[slot].get() : nullptr;
}

std::shared_ptr<CCardFormatInfo> CCard::CardFormat(std::int32_t CardType,
                                                   std::int32_t CardSubType) const {
  return CardFormatByCode(TypeCode(CardType, CardSubType));
}

std::shared_ptr<CCardFormatInfo> CCard::CardFormatByCode(std::int32_t CardTypeCode) const {
  const auto& format = formats_[Slot(CardTypeCode)];
  if (format == nullptr) throw HostFault(Fault::ObjectRequired);
  return format;
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
  CCardFormatInfo* const format = Converter(card.CardType, card.CardSubType);
  if (format == nullptr) {
    ErrName = message::kUnknownCardType;
    ErrNumber = kContentError;
    return result;
  }
  result.CardType(card.CardType);
  result.CardSubType(card.CardSubType);
  format->Encode(card, result.CardDataStruct);
  if (format->ErrNumber() != 0) result.ErrNumber(format->ErrNumber());
  if (!format->ErrName().empty()) result.ErrName(format->ErrName());
  return result;
}

CCardData CCard::AnalyzeCardData(const ICardFrame* UFrame) const {
  const ICardFrame& frame = RequireObject(UFrame);
  const std::int32_t cardType = frame.FrameCardType();
  const std::int32_t cardSubType = frame.FrameCardSubType();
  CCardFormatInfo* format = Converter(cardType, cardSubType);
  if (format == nullptr && frame.IsEMFrame()) format = Converter(CARD_EM, CARD_SUB_EM_STD_26BITS);
  CCardData result;
  if (format != nullptr) format->Decode(frame, result);
  return result;
}

}  // namespace vardel
