#pragma once

#include <vardel/core/bits.h>
#include <vardel/core/byte_array.h>
#include <vardel/core/card_data.h>
#include <vardel/core/card_data_struct.h>
#include <vardel/core/enumerations.h>
#include <vardel/format/card_format_info.h>
#include <vardel/format/format_parameters.h>
#include <vardel/formats/encode.h>

#include <array>
#include <cstdint>
#include <string_view>

/// The 26-bit card value that HID standard and EM standard share, held in 4 bytes:
///
///     bit  25 | 24 ... 17 | 16 ........... 1 | 0
///          E  |  facility |   card number    | O
///
/// O makes bits 0 to 12 odd, E makes bits 13 to 25 even. Neither is checked when decoding.
namespace vardel::layout_26bit {

inline constexpr std::array<bits::Parity, 2> kParity = {{
    {.position = 0, .covered = bits::Range(1, 12), .isOdd = true},
    {.position = 25, .covered = bits::Range(13, 24), .isOdd = false},
}};

constexpr FormatParameters Parameters(CardType type, std::int16_t subType, std::string_view name) {
  return {
      .CardType = static_cast<std::int16_t>(type),
      .CardSubType = subType,
      .DefaultCardName = name,
      .DefaultByte = 72,
      .BitCountTotal = 26,
      .ByteCountTotal = 4,
      .Facility =
          {.Bits = 8, .Bytes = 2, .Min = 1, .Max = kAllBits, .Mask = "999", .Index = {2, 3}},
      .CardID =
          {.Bits = 16, .Bytes = 3, .Min = 1, .Max = kAllBits, .Mask = "99999", .Index = {0, 2}},
      .Revision = {.Bits = 0, .Bytes = 0, .Min = -1, .Max = -1, .Mask = "", .Index = kNoBytes},
      .Layout = {.Bits = 26, .Parity = kParity},
  };
}

/// The record of two accepted numbers. Fractions travel through the sum and are rounded into the
/// bytes; what reaches bit 0 stays there.
inline void Encode(const CCardFormatInfo& format, const encode::Fields& fields,
                   CardDataStruct& record) {
  const std::uint64_t value = encode::Sum(fields, 17, 4);
  encode::PutRecord(format, value | bits::ParityOf(value, kParity), record);
}

/// Puts the fields of a read into the result. Where one field ends and the other begins follows the
/// descriptor's occupied bytes (3 and 2): each has to be at least 1, or fault 9.
void PutFields(const CCardFormatInfo& format, const ByteArray& bytes, CCardData& result);

}  // namespace vardel::layout_26bit
