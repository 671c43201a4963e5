#pragma once

#include <vardel/core/byte_array.h>
#include <vardel/core/card_data.h>
#include <vardel/core/card_data_struct.h>
#include <vardel/format/card_format_info.h>

/// The 26-bit card value that HID standard and EM standard share, held in 4 bytes:
///
///     bit  25 | 24 ... 17 | 16 ........... 1 | 0
///          E  |  facility |   card number    | O
///
/// O makes bits 0 to 12 odd, E makes bits 13 to 25 even. Neither is checked when decoding.
namespace vardel::layout_26bit {

/// The record of two accepted numbers. Fractions travel through the sum and are rounded into the
/// bytes; what reaches bit 0 is counted and kept.
CardDataStruct Encode(CCardFormatInfo& format, double facility, double cardID);

/// Puts the fields of a read into the result. Where one field ends and the other begins follows the
/// descriptor's occupied bytes (3 and 2): each has to be within 1..32, or fault 9.
void PutFields(const CCardFormatInfo& format, const ByteArray& bytes, CCardData& result);

}  // namespace vardel::layout_26bit
