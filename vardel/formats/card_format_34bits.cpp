#include <vardel/core/enumerations.h>
#include <vardel/core/host_fault.h>
#include <vardel/core/number.h>
#include <vardel/format/format_parameters.h>
#include <vardel/format/mod_card.h>
#include <vardel/formats/card_formats.h>
#include <vardel/formats/decode.h>
#include <vardel/formats/encode.h>

#include <algorithm>
#include <array>

namespace vardel {
namespace {

// 34 bits, held in 5 bytes; the bytes of the two fields alternate:
//
//     bit  33 | 32 ........ 25 | 24 ......... 17 | 16 ........ 9 | 8 .......... 1 | 0
//          E  | facility 8..15 | card no. 8..15  | facility 0..7 | card no. 0..7  | O
//
// O makes bits 0 to 16 odd, E makes bits 17 to 33 even. Neither is checked when decoding.
constexpr std::array<bits::Parity, 2> kParity = {{
    {.position = 0, .covered = bits::Range(1, 16), .isOdd = true},
    {.position = 33, .covered = bits::Range(17, 32), .isOdd = false},
}};
constexpr int kValueBytes = 5;

constexpr FormatParameters kParameters = {
    .CardType = CARD_HID,
    .CardSubType = CARD_SUB_HID_34BITS,
    .DefaultCardName = "HID 34Bits",
    .DefaultByte = 72,
    .BitCountTotal = 34,
    .ByteCountTotal = kValueBytes,
    .Facility =
        {.Bits = 16, .Bytes = 4, .Min = 1, .Max = kAllBits, .Mask = "99999", .Index = {1, 3}},
    .CardID = {.Bits = 16, .Bytes = 4, .Min = 1, .Max = kAllBits, .Mask = "99999", .Index = {0, 4}},
    .Revision = {.Bits = 0, .Bytes = 0, .Min = -1, .Max = 0, .Mask = "", .Index = kNoBytes},
    .Layout = {.Bits = 34, .Parity = kParity, .IsByteArray = true},
};

/// A field's two bytes, the low one at bit `position`, the high one 16 bits above.
constexpr std::uint64_t Spread(std::uint64_t field, int position) {
  return (bits::Get(field, 0, 8) | bits::Get(field, 8, 8) << 16) << position;
}
constexpr std::uint64_t Gather(std::uint64_t value, int position) {
  return bits::Get(value, position, 8) | bits::Get(value, position + 16, 8) << 8;
}

}  // namespace

CCardFormat34Bits::CCardFormat34Bits() : LimitCheckedFormat(kParameters) {}

bool CCardFormat34Bits::IsRevisionValid(std::string_view /*InData*/) const { return true; }

void CCardFormat34Bits::Encode(const CCardData& card, vardel::CardDataStruct& record) {
  // By its own validators, to which nothing is within a limit that is not a number.
  if (!IsFacilityValid(card.Facility)) {
    return encode::Reject(*this, message::kIncorrectFacilityCode);
  }
  if (!IsCardIDValid(card.CardID)) return encode::Reject(*this, message::kIncorrectCardID);

  const std::uint64_t value = Spread(encode::LowBytesOf(RequireNumber(card.CardID), 2), 1) |
                              Spread(encode::LowBytesOf(RequireNumber(card.Facility), 2), 9);
  // This encoder alone never turns the record around.
  std::ranges::copy(bits::ToBytes(value | bits::ParityOf(value, kParity)), record.Bytes.begin());
}

bool CCardFormat34Bits::Decode(const ICardFrame& frame, CCardData& result) {
  result.CardType = CARD_HID;
  result.CardSubType = CARD_SUB_HID_34BITS;
  // The raw bytes count here, not their text, and a frame without any is a blank read.
  const RawBytes summary = frame.RawCardBytes();
  if (!summary || decode::IsBlank(*summary)) return true;

  const auto raw = decode::RequireRawBytes(frame);
  const ByteArray bytes = IsCardArrayReversed ? ReverseBytes(raw) : ByteArray(raw);
  if (bytes.size() < kValueBytes) throw HostFault(Fault::OutOfRange);
  const std::uint64_t value = decode::ValueOf<kValueBytes>(bytes);
  decode::RequireOccupied(OccupiedByteCardId, 4);
  decode::RequireOccupied(OccupiedByteFacility, 4);
  decode::PutNumbers(*this, Gather(value, 9), Gather(value, 1), result);
  return true;
}

}  // namespace vardel
