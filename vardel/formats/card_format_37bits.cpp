#include <vardel/core/enumerations.h>
#include <vardel/format/format_parameters.h>
#include <vardel/formats/card_formats.h>
#include <vardel/formats/decode.h>
#include <vardel/formats/encode.h>

#include <array>

namespace vardel {
namespace {

// 37 bits, held in 5 bytes; the card number lies on both sides of the facility code:
//
//     bit  36 | 35 ............. 25 | 24 ..... 9 | 8 ............. 1 | 0
//          E  |  card number 8..18  |  facility  |  card number 0..7 | O
//
// O makes bits 0 to 18 odd, E makes bits 19 to 36 even. Neither is checked when decoding.
constexpr std::array<bits::Parity, 2> kParity = {{
    {.position = 0, .covered = bits::Range(1, 18), .isOdd = true},
    {.position = 36, .covered = bits::Range(19, 35), .isOdd = false},
}};

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
    .Layout = {.Bits = 37, .Parity = kParity},
};

}  // namespace

CCardFormat37Bits::CCardFormat37Bits() : LimitCheckedFormat(kParameters) {}

void CCardFormat37Bits::Encode(const CCardData& card, vardel::CardDataStruct& record) {
  encode::Fields fields;
  if (!encode::AcceptFields(*this, card, encode::EachField::IsConverted, fields)) return;
  const std::uint64_t facility = encode::LowBytesOf(fields.facility.number, 2);
  const std::uint64_t cardID = encode::LowBytesOf(fields.cardID.number, 3);

  // With limits that a host has raised, the number's upper part can reach beyond bit 39, the last
  // one kept.
  const std::uint64_t value =
      bits::Get(cardID, 0, 8) << 1 | facility << 9 | bits::Get(cardID, 8, 15) << 25;
  encode::PutRecord(*this, value | bits::ParityOf(value, kParity), record);
}

bool CCardFormat37Bits::Decode(const ICardFrame& frame, CCardData& result) {
  // Type and sub-type stay 0.
  constexpr decode::IdleReads kIdleReads = {.always = 1, .whenReversed = 1};
  if (const auto bytes =
          decode::ReadBytes(*this, frame, decode::kLeastProximityBytes, kIdleReads, result)) {
    const std::uint64_t value = decode::ValueOf<5>(*bytes);
    const std::uint64_t cardID = bits::Get(value, 1, 8) | bits::Get(value, 25, 11) << 8;
    decode::PutNumbers(*this, bits::Get(value, 9, 16), cardID, result);
  }
  return true;
}

}  // namespace vardel
