#include <vardel/core/enumerations.h>
#include <vardel/format/format_parameters.h>
#include <vardel/formats/card_formats.h>
#include <vardel/formats/steps.h>

namespace vardel {
namespace {

// 35 bits, held in 5 bytes, with three interleaved parity bits:
//
//     bit  34 | 33 | 32 ..... 21 | 20 ......... 1 | 0
//          C  | A  |  facility   |  card number   | B
//
// A makes the bits k of 1..33 with k mod 3 != 0, and itself, even;
// B makes the bits k of 2..33 with k mod 3 != 1, and itself, odd;
// C makes bits 0 to 34 odd. None is checked when decoding.
constexpr std::uint64_t kCoveredByA = 0x1'B6DB6DB6;
constexpr std::uint64_t kCoveredByB = 0x3'6DB6DB6C;
constexpr std::uint64_t kCoveredByC = 0x3'FFFFFFFF;

// The counts announce the fields of another layout (16 and 19 bits); limits and masks follow them,
// the bits on the card do not.
constexpr FormatParameters kParameters = {
    .CardType = CARD_HID,
    .CardSubType = CARD_SUB_HID_CORPORATES1000,
    .DefaultCardName = "HID Corporate 1000",
    .DefaultByte = 72,
    .BitCountTotal = 37,
    .ByteCountTotal = 5,
    .Facility = k37BitFacility,
    .CardID =
        {.Bits = 19, .Bytes = 4, .Min = 1, .Max = kAllBits, .Mask = "999999", .Index = {0, 1}},
    .Revision = {.Bits = 0, .Bytes = 0, .Min = -1, .Max = -1, .Mask = "", .Index = kNoBytes},
};

}  // namespace

CCardFormatHIDCorp1000::CCardFormatHIDCorp1000() : LimitCheckedFormat(kParameters) {}

void CCardFormatHIDCorp1000::Encode(const CCardData& card, vardel::CardDataStruct& record) {
  steps::Fields fields;
  if (!steps::AcceptFields(*this, card, steps::Unused::Convert, fields)) return;

  // A facility code above 4095 spills into bits 33 to 36; the parity bits are OR-ed to that. So is
  // B to what a fraction leaves in bit 0, and C counts both.
  std::uint64_t value = steps::PackFields(fields, 21, 5);
  value |= steps::Parity(value & kCoveredByA) << 33;
  const std::uint64_t b = 1 ^ steps::Parity(value & kCoveredByB);
  const std::uint64_t c = 1 ^ steps::Parity(value & kCoveredByC) ^ b;
  value |= b | c << 34;
  steps::PutRecord(*this, value, record);
}

bool CCardFormatHIDCorp1000::Decode(const ICardFrame& frame, CCardData& result) {
  // Type and sub-type stay 0.
  constexpr steps::Rereads kRereads = {.always = 1, .whenReversed = 1};
  if (const auto bytes =
          steps::ReadBytes(*this, frame, steps::kMinProximityBytes, kRereads, result)) {
    const std::uint64_t value = steps::LowBytes(*bytes, 5);
    steps::PutNumbers(*this, steps::GetBits(value, 21, 12), steps::GetBits(value, 1, 20), result);
  }
  return true;
}

}  // namespace vardel
