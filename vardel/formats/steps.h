#pragma once

#include <vardel/core/byte_array.h>
#include <vardel/core/card_data.h>
#include <vardel/core/card_data_struct.h>
#include <vardel/core/enumerations.h>
#include <vardel/core/frame.h>
#include <vardel/core/number.h>
#include <vardel/format/card_format_info.h>
#include <vardel/format/mod_card.h>

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string_view>

/// The steps that several formats take alike.
namespace vardel::steps {

// --- bits of a card value; bit 0 is bit 0 of byte 0 ---

constexpr std::uint64_t GetBits(std::uint64_t value, int position, int width) {
  return (value >> position) & ((std::uint64_t{1} << width) - 1);
}

/// 1 when an odd number of the bits is set, 0 when an even number is.
constexpr std::uint64_t Parity(std::uint64_t bits) {
  // Folding needs no population count, which is a call where the processor's own may not be used.
  bits ^= bits >> 32;
  bits ^= bits >> 16;
  bits ^= bits >> 8;
  bits ^= bits >> 4;
  constexpr std::uint64_t kOddNibbles = 0x6996;
  return kOddNibbles >> (bits & 0xF) & 1;
}

/// The first bytes (at most 8) as a number, byte 0 least significant.
std::uint64_t LittleEndian(std::span<const std::uint8_t> bytes);

/// The first `count` bytes (at most 8) of an array that may be shorter, as a number.
std::uint64_t LowBytes(const ByteArray& bytes, std::size_t count);

/// The lowest `count` bytes (at most 7) that NumberToBytes gives for a number. Whole numbers, which
/// nearly all are, take a short way to the same bytes.
inline std::uint64_t NumberBytes(double number, std::size_t count) {
  if (const auto whole = WholeNumber(number))
    return GetBits(*whole, 0, static_cast<int>(8 * count));
  return LowBytes(NumberToBytes(number), count);
}

/// The bytes of a card value, byte 0 least significant.
inline std::array<std::uint8_t, 8> BytesOf(std::uint64_t value) {
  if constexpr (std::endian::native == std::endian::little) {
    return std::bit_cast<std::array<std::uint8_t, 8>>(value);
  }
  std::array<std::uint8_t, 8> bytes;
  for (std::uint8_t& byte : bytes) {
    byte = static_cast<std::uint8_t>(value);
    value >>= 8;
  }
  return bytes;
}

// --- encode ---

/// Records a content error on the format.
void Reject(CCardFormatInfo& format, std::string_view message);

/// An accepted number. Nearly all are whole and below 10^15: those have an integer beside the
/// double.
struct Field {
  double number = 0;
  std::int64_t whole = kNotWhole;

  static constexpr std::int64_t kNotWhole = -1;
};

/// Whether the text is digits and nothing else; then `field` is set.
inline bool ParseDigits(std::string_view text, Field& field) {
  if (!vardel::ParseDigits(text, field.whole)) return false;
  field.number = static_cast<double>(field.whole);
  return true;
}

/// Whether the number is neither below nor above the limits, as all are to a limit that is none.
inline bool IsWithin(const Field& field, double min, double max) {
  return !(field.number < min) && !(field.number > max);
}

/// Whether the card number is numeric and within the format's limits; then `field` is set.
/// Otherwise the error is recorded on the format.
bool AcceptCardID(CCardFormatInfo& format, const CCardData& card, Field& field);

struct Fields {
  Field facility;
  Field cardID;
};

/// Some formats convert each field to bytes that they do not use, and end in the conversion's
/// faults.
enum class Unused { Skip, Convert };

/// AcceptFields without the short way.
bool AcceptAnyFields(CCardFormatInfo& format, const CCardData& card, Unused unused, Fields& fields);

/// As AcceptCardID, for the facility code and then the card number.
inline bool AcceptFields(CCardFormatInfo& format, const CCardData& card, Unused unused,
                         Fields& fields) {
  // Digits within the limits leave nothing to record and nothing that a conversion could refuse.
  if (ParseDigits(card.Facility, fields.facility) && ParseDigits(card.CardID, fields.cardID) &&
      IsWithin(fields.facility, format.MinFacility, format.MaxFacility) &&
      IsWithin(fields.cardID, format.MinCardID, format.MaxCardID)) {
    return true;
  }
  return AcceptAnyFields(format, card, unused, fields);
}

/// Whether the card is of the format's own type pair; otherwise the error is recorded on the
/// format.
inline bool AcceptType(CCardFormatInfo& format, const CCardData& card, CardType type, int subType) {
  if (card.CardType == type && card.CardSubType == subType) return true;
  Reject(format, message::kIncorrectCardType);
  return false;
}

/// Ends in the faults of NumberToBytes.
void CheckConversion(const Field& field);

/// The lowest `count` bytes of 2^facilityAt x facility code + 2 x card number, computed in doubles
/// as the fields are; whole fields whose sum is exact take the short way.
inline std::uint64_t PackFields(const Fields& fields, int facilityAt, std::size_t count) {
  // With any card number, which has 15 digits at most, the sum stays below 2^53.
  constexpr std::int64_t kSmall = std::int64_t{1} << 30;
  const bool areWhole = fields.facility.whole >= 0 && fields.cardID.whole >= 0;
  if (areWhole && fields.facility.whole < kSmall) {
    const auto sum =
        static_cast<std::uint64_t>((fields.facility.whole << facilityAt) + 2 * fields.cardID.whole);
    return GetBits(sum, 0, static_cast<int>(8 * count));
  }
  const double weight = std::ldexp(1.0, facilityAt);
  return NumberBytes(
      weight * fields.facility.number + (fields.cardID.number + fields.cardID.number), count);
}

/// Closes an encode: turns the card's bytes around when `IsCardArrayReversed` says so.
inline void TurnAround(const CCardFormatInfo& format, std::span<std::uint8_t> bytes) {
  if (format.IsCardArrayReversed) std::ranges::reverse(bytes);
}

/// Closes an encode with the bytes of the card value, widened to a full record and turned around. A
/// value of 8 bytes cannot exceed the record, so the message for that is never recorded.
inline void PutRecord(const CCardFormatInfo& format, std::uint64_t value, CardDataStruct& record) {
  std::ranges::copy(BytesOf(value), record.Bytes.begin());
  TurnAround(format, record.Bytes);
}

// --- decode ---

/// Fewest bytes of a read that the proximity formats take, whatever they need.
inline constexpr std::size_t kMinProximityBytes = 6;
/// The same for the smart-card formats that parse hexadecimal text.
inline constexpr std::size_t kMinSmartCardBytes = 16;

/// How often a decoder reads the raw bytes again, without using them. A host's frame sees, and may
/// refuse, each of these reads.
struct Rereads {
  int always;
  int whenReversed;
};

/// The bytes of a read, parsed from the frame's hexadecimal text; its byte array only says how
/// many. Nothing when `result` already is the answer: too few bytes ("Too Small Card Data" is
/// recorded on it) or a blank read (no error). Malformed or short text, or no byte array, is
/// fault 13.
std::optional<ByteArray> ReadBytes(const CCardFormatInfo& format, const ICardFrame& frame,
                                   std::size_t minBytes, Rereads rereads, CCardData& result);

/// The frame's raw bytes; fault 13 when it has no byte array.
std::span<const std::uint8_t> RequireRawBytes(const ICardFrame& frame);

/// Records "Too Small Card Data" on the result.
void MakeTooSmall(CCardData& result);

/// The pattern of a read without a card: all bytes 00 or all FF. No bytes are both.
bool IsBlank(std::span<const std::uint8_t> bytes);

/// Ends in fault 9 where a descriptor's count of occupied bytes is below what the decoder needs. A
/// larger one is none: what lies beyond the read is skipped.
void RequireBytes(std::int16_t count, int needed);

/// Writes the two numbers into the result, filled with zeros to the format's character counts.
void PutNumbers(const CCardFormatInfo& format, std::uint64_t facility, std::uint64_t cardID,
                CCardData& result);

}  // namespace vardel::steps
