#include <vardel/core/enumerations.h>
#include <vardel/format/format_parameters.h>
#include <vardel/formats/card_formats.h>
#include <vardel/formats/decode.h>
#include <vardel/formats/encode.h>

#include <array>

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
constexpr bits::Parity kA = {.position = 33, .covered = 0x1'B6DB6DB6, .isOdd = false};
constexpr bits::Parity kB = {.position = 0, .covered = 0x3'6DB6DB6C, .isOdd = true};
constexpr bits::Parity kC = {.position = 34, .covered = bits::Range(0, 33), .isOdd = true};
constexpr std::array<bits::Parity, 3> kParity = {kA, kB, kC};

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
    .Layout = {.Bits = 35, .Parity = kParity},
};

}  // namespace

CCardFormatHIDCorp1000::CCardFormatHIDCorp1000() : LimitCheckedFormat(kParameters) {}

void CCardFormatHIDCorp1000::Encode(const CCardData& card, vardel::CardDataStruct& record) {
  encode::Fields fields;
  if (!encode::AcceptFields(*this, card, encode::EachField::IsConverted, fields)) return;

  // A facility code above 4095 spills into bits 33 to 36; the parity bits are OR-ed to that.
  const std::uint64_t value = encode::Sum(fields, 21, 5);
  std::uint64_t parity = bits::ParityOf(value, kParity);
  // So is B to what a fraction leaves in bit 0, and C counts both.
  if ((value & parity & 1) != 0) parity ^= std::uint64_t{1} << kC.position;
  encode::PutRecord(*this, value | parity, record);
}

bool CCardFormatHIDCorp1000::Decode(const ICardFrame& frame, CCardData& result) {
  // Type and sub-type stay 0.
  constexpr decode::IdleReads kIdleReads = {.always = 1, .whenReversed = 1};
  if (const auto bytes =
          decode::ReadBytes(*this, frame, decode::kLeastProximityBytes, kIdleReads, result)) {
    const std::uint64_t value = decode::ValueOf<5>(*bytes);
    decode::PutNumbers(*this, bits::Get(value, 21, 12), bits::Get(value, 1, 20), result);
  }
  return true;
}

}  // namespace vardel
