#include <vardel/core/error.h>
#include <vardel/core/hex.h>
#include <vardel/core/host_fault.h>
#include <vardel/core/number.h>
#include <vardel/format/mod_card.h>
#include <vardel/formats/steps.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>
#include <string>

namespace vardel::steps {
namespace {

bool Accept(CCardFormatInfo& format, std::string_view text, double min, double max,
            std::string_view message, Field& field) {
  bool isNumber = ParseDigits(text, field.whole);
  if (isNumber) {
    field.number = static_cast<double>(field.whole);
  } else if (const auto number = ParseAnyNumber(text)) {
    field.number = *number;
    isNumber = true;
  }
  if (isNumber && !(field.number < min) && !(field.number > max)) return true;
  Reject(format, message);
  return false;
}

}  // namespace

std::uint64_t LittleEndian(std::span<const std::uint8_t> bytes) {
  std::uint64_t value = 0;
  for (std::size_t i = bytes.size(); i > 0; --i) value = value << 8 | bytes[i - 1];
  return value;
}

std::uint64_t LowBytes(const ByteArray& bytes, std::size_t count) {
  return LittleEndian(std::span(bytes).first(std::min(bytes.size(), count)));
}

CardDataStruct Reject(CCardFormatInfo& format, std::string_view message) {
  format.MakeErr(kContentError, message);
  return {};
}

bool AcceptCardID(CCardFormatInfo& format, const CCardData& card, Field& field) {
  return Accept(format, card.CardID, format.MinCardID, format.MaxCardID, message::kIncorrectCardID,
                field);
}

bool AcceptFields(CCardFormatInfo& format, const CCardData& card, Unused unused, Fields& fields) {
  if (!Accept(format, card.Facility, format.MinFacility, format.MaxFacility,
              message::kIncorrectFacilityCode, fields.facility)) {
    return false;
  }
  if (unused == Unused::Convert) CheckConversion(fields.facility);
  if (!AcceptCardID(format, card, fields.cardID)) return false;
  if (unused == Unused::Convert) CheckConversion(fields.cardID);
  return true;
}

bool AcceptType(CCardFormatInfo& format, const CCardData& card, CardType type, int subType) {
  const bool accepted = card.CardType == type && card.CardSubType == subType;
  if (!accepted) Reject(format, message::kIncorrectCardType);
  return accepted;
}

void CheckConversion(const Field& field) {
  if (field.whole == Field::kNotWhole) NumberToBytes(field.number);
}

std::uint64_t PackFields(const Fields& fields, int facilityAt, std::size_t count) {
  constexpr std::int64_t kSmall = std::int64_t{1} << 30;  // the sum stays below 2^53
  const bool areWhole = fields.facility.whole >= 0 && fields.cardID.whole >= 0;
  if (areWhole && fields.facility.whole < kSmall && fields.cardID.whole < kSmall) {
    const auto sum =
        static_cast<std::uint64_t>((fields.facility.whole << facilityAt) + 2 * fields.cardID.whole);
    return GetBits(sum, 0, static_cast<int>(8 * count));
  }
  const double weight = std::ldexp(1.0, facilityAt);
  return NumberBytes(
      weight * fields.facility.number + (fields.cardID.number + fields.cardID.number), count);
}

void PutRecord(const CCardFormatInfo& format, std::uint64_t value, CardDataStruct& record) {
  std::ranges::copy(BytesOf(value), record.Bytes.begin());
  if (format.IsCardArrayReversed) record = MakeCardDataStruct(record.Bytes, true);
}

std::optional<ByteArray> ReadBytes(const CCardFormatInfo& format, const ICardFrame& frame,
                                   std::size_t minBytes, Rereads rereads, CCardData& result) {
  ByteArray bytes(RequireRawBytes(frame).size());
  if (bytes.size() < minBytes) {
    MakeTooSmall(result);
    return std::nullopt;
  }
  ParseHex(frame.RawCardHex(), bytes);
  if (IsBlank(bytes)) return std::nullopt;
  const int count = rereads.always + (format.IsCardArrayReversed ? rereads.whenReversed : 0);
  for (int i = 0; i < count; ++i) RequireRawBytes(frame);
  return bytes;
}

std::span<const std::uint8_t> RequireRawBytes(const ICardFrame& frame) {
  const RawBytes bytes = frame.RawCardBytes();
  if (!bytes) throw HostFault(Fault::TypeMismatch);
  return *bytes;
}

void MakeTooSmall(CCardData& result) {
  result.ErrNumber = kContentError;
  result.ErrName = message::kTooSmallCardData;
}

bool IsBlank(std::span<const std::uint8_t> bytes) {
  // All bytes are alike, and like the first.
  if (bytes.empty()) return true;
  const std::uint8_t first = bytes.front();
  return (first == 0 || first == 0xFF) &&
         std::memcmp(bytes.data(), bytes.data() + 1, bytes.size() - 1) == 0;
}

int WorkBytes(std::int16_t count, int needed) {
  constexpr int kMax = sizeof(CardDataStruct);
  if (count < needed || count > kMax) throw HostFault(Fault::OutOfRange);
  return count;
}

void PutNumbers(const CCardFormatInfo& format, std::uint64_t facility, std::uint64_t cardID,
                CCardData& result) {
  AssignNumber(result.Facility, facility, format.CharCountFacility);
  AssignNumber(result.CardID, cardID, format.CharCountCardID);
}

}  // namespace vardel::steps
