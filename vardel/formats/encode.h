#pragma once

#include <vardel/core/bits.h>
#include <vardel/core/card_data.h>
#include <vardel/core/card_data_struct.h>
#include <vardel/core/enumerations.h>
#include <vardel/core/error.h>
#include <vardel/core/number.h>
#include <vardel/format/card_format_info.h>
#include <vardel/format/mod_card.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>

/// The steps that several encoders share.
namespace vardel::encode {

/// Records a content error on the format.
inline void Reject(CCardFormatInfo& format, std::string_view message) {
  format.MakeErr(kContentError, message);
}

/// Whether the card is of the format's own type pair; otherwise the error is recorded on the
/// format.
inline bool AcceptType(CCardFormatInfo& format, const CCardData& card, CardType type, int subType) {
  if (card.CardType == type && card.CardSubType == subType) return true;
  Reject(format, message::kIncorrectCardType);
  return false;
}

/// An accepted number. Nearly all are plain digits: those have an integer beside the double.
struct Field {
  double number = 0;
  std::int64_t digits = kNoDigits;

  static constexpr std::int64_t kNoDigits = -1;
};

struct Fields {
  Field facility;
  Field cardID;
};

/// Whether the card number is numeric and not outside the format's limits; then `field` is set.
/// Otherwise the error is recorded on the format. A limit that is not a number excludes nothing.
bool AcceptCardID(CCardFormatInfo& format, const CCardData& card, Field& field);

/// What becomes of a field as soon as it is accepted. EM, HID 37-bit and HID Corporate 1000 convert
/// it into bytes by itself, which only HID 37-bit uses: a number that does not fit its bytes ends
/// the encode there, before the next field is looked at. HID standard does not.
enum class EachField { IsOnlySummed, IsConverted };

/// AcceptFields without the short way.
bool AcceptAnyFields(CCardFormatInfo& format, const CCardData& card, EachField each,
                     Fields& fields);

/// Sets `field` where the text is plain digits within the limits.
inline bool AcceptDigits(std::string_view text, double min, double max, Field& field) {
  if (!ParseDigits(text, field.digits)) return false;
  field.number = static_cast<double>(field.digits);
  return min <= field.number && field.number <= max;
}

/// As AcceptCardID, for the facility code and then the card number.
inline bool AcceptFields(CCardFormatInfo& format, const CCardData& card, EachField each,
                         Fields& fields) {
  // Digits within the limits leave nothing to record and nothing that a conversion could refuse.
  return (AcceptDigits(card.Facility, format.MinFacility, format.MaxFacility, fields.facility) &&
          AcceptDigits(card.CardID, format.MinCardID, format.MaxCardID, fields.cardID)) ||
         AcceptAnyFields(format, card, each, fields);
}

/// Converts a number into bytes that nobody uses, for the fault of one that does not fit them.
inline void RequireConvertible(const Field& field) {
  if (field.digits == Field::kNoDigits) NumberToBytes(field.number);
}

/// The lowest `count` bytes (at most 7) that NumberToBytes gives for a number, as a card value.
std::uint64_t LowBytesOf(double number, int count);

/// The lowest `count` bytes of 2^facilityAt x facility code + 2 x card number. Computed in doubles,
/// so that fractions travel through; plain digits give the same in integers.
inline std::uint64_t Sum(const Fields& fields, int facilityAt, int count) {
  // With any card number, which has 15 digits at most, the sum stays below 2^53.
  constexpr std::int64_t kSmall = std::int64_t{1} << 30;
  const std::int64_t facility = fields.facility.digits;
  const std::int64_t cardID = fields.cardID.digits;
  if (facility >= 0 && facility < kSmall && cardID >= 0) {
    const auto sum = static_cast<std::uint64_t>((facility << facilityAt) + 2 * cardID);
    return bits::Get(sum, 0, 8 * count);
  }
  const double weight = std::ldexp(1.0, facilityAt);
  return LowBytesOf(weight * fields.facility.number + (fields.cardID.number + fields.cardID.number),
                    count);
}

/// Turns the card's bytes around when `IsCardArrayReversed` says so.
inline void TurnAround(const CCardFormatInfo& format, std::span<std::uint8_t> bytes) {
  if (format.IsCardArrayReversed) std::ranges::reverse(bytes);
}

/// Closes an encode with the bytes of the card value, widened to a full record and turned around. A
/// value of 8 bytes cannot exceed the record, so the message for that is never recorded.
inline void PutRecord(const CCardFormatInfo& format, std::uint64_t value, CardDataStruct& record) {
  std::ranges::copy(bits::ToBytes(value), record.Bytes.begin());
  TurnAround(format, record.Bytes);
}

}  // namespace vardel::encode
