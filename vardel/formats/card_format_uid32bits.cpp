#include <vardel/core/enumerations.h>
#include <vardel/core/number.h>
#include <vardel/format/format_parameters.h>
#include <vardel/formats/card_formats.h>
#include <vardel/formats/decode.h>
#include <vardel/formats/encode.h>

#include <algorithm>
#include <span>

namespace vardel {
namespace {

// The card's unique identifier is the card number, least significant byte first:
//
//     byte  0 ... 3 | 4 ... 31
//            UID    |    0
constexpr std::size_t kUidBytes = 4;

constexpr FormatParameters kParameters = {
    .IsSmartCard = true,
    .CardType = CARD_MIFARE,
    .CardSubType = CARD_SUB_MI_UID_32BITS,
    .DefaultCardName = "UID 32Bits Smart Card",
    .DefaultByte = 0,
    .BitCountTotal = 32,
    .ByteCountTotal = kUidBytes,
    .Facility = {.Bits = 0, .Bytes = 0, .Min = 0, .Max = 0, .Mask = "", .Index = {0, 0}},
    .CardID = {.Bits = 32,
               .Bytes = 32,
               .Min = 1,
               .Max = 4294967295,
               .Mask = "9999999999",
               .Index = {0, 3}},
    .Revision = {.Bits = 0, .Bytes = 0, .Min = 0, .Max = 0, .Mask = "", .Index = {0, 0}},
    .Layout = {.Bits = 32},
};

}  // namespace

CCardFormatUID32BIts::CCardFormatUID32BIts() : FormatWithoutFacility(kParameters) {}

bool CCardFormatUID32BIts::IsCardIDValid(std::string_view InData) const {
  const auto value = ParseNumber(InData);
  return value && MinCardID <= *value && *value < MaxCardID;
}

bool CCardFormatUID32BIts::IsRevisionValid(std::string_view /*InData*/) const { return true; }

void CCardFormatUID32BIts::Encode(const CCardData& card, vardel::CardDataStruct& record) {
  if (!encode::AcceptType(*this, card, CARD_MIFARE, CARD_SUB_MI_UID_32BITS)) return;
  // No range is checked: a larger number is taken modulo 2^32.
  const std::uint64_t uid = encode::LowBytesOf(RequireNumber(card.CardID), kUidBytes);
  std::ranges::copy(bits::ToBytes(uid), record.Bytes.begin());
  encode::TurnAround(*this, std::span(record.Bytes).first(kUidBytes));
}

bool CCardFormatUID32BIts::Decode(const ICardFrame& frame, CCardData& result) {
  result.CardType = CARD_MIFARE;
  result.CardSubType = CARD_SUB_MI_UID_32BITS;
  constexpr decode::IdleReads kIdleReads = {.always = 1, .whenReversed = 0};
  if (const auto bytes =
          decode::ReadBytes(*this, frame, decode::kLeastSmartCardBytes, kIdleReads, result)) {
    AssignNumber(result.CardID, decode::ValueOf<kUidBytes>(*bytes), 0);
  }
  return true;
}

}  // namespace vardel
