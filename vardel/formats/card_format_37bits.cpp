#include <vardel/core/enumerations.h>
#include <vardel/format/format_parameters.h>
#include <vardel/formats/card_formats.h>
#include <vardel/formats/steps.h>

namespace vardel {
namespace {

// 37 bits, held in 5 bytes; the card number lies on both sides of the facility code:
//
//     bit  36 | 35 ............. 25 | 24 ..... 9 | 8 ............. 1 | 0
//          E  |  card number 8..18  |  facility  |  card number 0..7 | O
//
// O makes bits 0 to 18 odd, E makes bits 19 to 36 even. Neither is checked when decoding.
constexpr FormatParameters kParameters = {
    .CardType = CARD_HID,
    .CardSubType = CARD_SUB_HID_37BITS,
    .DefaultCardName = "Keico",
    .DefaultByte = 72,
    .BitCountTotal = 37,
    .ByteCountTotal = 5,
    .Facility = k37BitFacility,
    .CardID =
        {.Bits = 19, .Bytes = 4, .Min = 1, .Max = kAllBits, .Mask = "999999", .Index = {0, 4}},
    .Revision = {.Bits = 0, .Bytes = 0, .Min = -1, .Max = 0, .Mask = "", .Index = kNoBytes},
};

}  // namespace

CCardFormat37Bits::CCardFormat37Bits() : LimitCheckedFormat(kParameters) {}

void CCardFormat37Bits::Encode(const CCardData& card, vardel::CardDataStruct& record) {
  steps::Fields fields;
  if (!steps::AcceptFields(*this, card, steps::Unused::Convert, fields)) return;
  const std::uint64_t facility = steps::NumberBytes(fields.facility.number, 2);
  const std::uint64_t cardID = steps::NumberBytes(fields.cardID.number, 3);

  // With limits that a host has raised, the number's upper part can reach beyond bit 39, the last
  // one kept.
  std::uint64_t value =
      steps::GetBits(cardID, 0, 8) << 1 | facility << 9 | steps::GetBits(cardID, 8, 15) << 25;
  value |= (1 ^ steps::Parity(steps::GetBits(value, 1, 18))) |
           steps::Parity(steps::GetBits(value, 19, 17)) << 36;
  steps::PutRecord(*this, value, record);
}

bool CCardFormat37Bits::Decode(const ICardFrame& frame, CCardData& result) {
  // Type and sub-type stay 0.
  constexpr steps::Rereads kRereads = {.always = 1, .whenReversed = 1};
  if (const auto bytes =
          steps::ReadBytes(*this, frame, steps::kMinProximityBytes, kRereads, result)) {
    const std::uint64_t value = steps::LowBytes(*bytes, 5);
    const std::uint64_t cardID = steps::GetBits(value, 1, 8) | steps::GetBits(value, 25, 11) << 8;
    steps::PutNumbers(*this, steps::GetBits(value, 9, 16), cardID, result);
  }
  return true;
}

}  // namespace vardel
