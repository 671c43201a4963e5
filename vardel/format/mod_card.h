#pragma once

#include <vardel/core/byte_array.h>
#include <vardel/core/byte_array_data.h>
#include <vardel/core/card_data_struct.h>
#include <vardel/core/frame.h>
#include <vardel/core/type_code.h>  // IsValidMainType

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>

/// Conversions that the formats and the facade share. Little-endian: element 0 is the least
/// significant byte.
namespace vardel {

/// True for the pairs that the facade converts: EM/1, HID/1, HID/2, HID/5, Mifare/1, Mifare/5.
/// HID/3, HID/4 and Mifare/2 to 4 are not among them, although formats for most of these exist.
bool IsValidTypePair(std::int32_t CardType, std::int32_t CardSubType);

/// The automation type code says "array of bytes" (8192 + 17), by value.
bool IsByteArrayVariant(std::uint16_t variantTypeCode);

/// Fits a text to exactly `Length` characters. A shorter one is filled with the first character of
/// `PadChar`: on the left for Side 1, on the right for any other. A longer one keeps its last
/// characters for Side 1, its first ones for any other. A negative length, or an empty PadChar
/// where filling is due, is fault 5.
std::string PadText(std::string_view Source, std::int16_t Length, std::string_view PadChar,
                    std::int16_t Side);

/// The number that little-endian bytes stand for, summed up in a double. Nothing for no bytes, for
/// more than 128, and where the sum is too large for a double.
std::optional<double> ByteArrayToNumber(std::span<const std::uint8_t> Bytes);
/// The same as decimal text; "" for nothing.
std::string ByteArrayToNumberText(std::span<const std::uint8_t> Bytes);

/// A number as little-endian bytes by repeated division by 256; 0 gives one zero byte. The
/// remainder of a fractional number is rounded into its byte (ties to even). Fault 6 where a
/// remainder does not fit a byte (a negative number, 255.5), for infinities and NaN; fault 13 for
/// non-numeric text.
ByteArray NumberToBytesByByte(double Value);
ByteArray NumberToBytesByByte(std::string_view Value);

/// The same by repeated division by 16, two digits per byte; the bytes and faults are the same.
ByteArray NumberToBytes(double Value);
ByteArray NumberToBytes(std::string_view Value);

/// The bytes in reverse order.
ByteArray ReverseBytes(std::span<const std::uint8_t> Bytes);

/// A record that begins with the bytes, or with the bytes in reverse order; zeros follow. Bytes
/// beyond the 32nd are dropped first.
CardDataStruct MakeCardDataStruct(std::span<const std::uint8_t> Bytes, bool Reversed);

/// Describes the bytes: count, OR, AND, hexadecimal text and character text (a zero byte as a
/// blank). No byte array gives a new, empty description.
CByteArrayData MakeByteArrayData(RawBytes Bytes);

}  // namespace vardel
