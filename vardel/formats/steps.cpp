#include <vardel/core/error.h>
#include <vardel/core/hex.h>
#include <vardel/core/host_fault.h>
#include <vardel/core/number.h>
#include <vardel/format/mod_card.h>
#include <vardel/formats/steps.h>

#include <algorithm>
#include <cstring>

namespace vardel::steps {
namespace {

bool Accept(CCardFormatInfo& format, std::string_view text, double min, double max,
            std::string_view message, Field& field) {
  bool isNumber = ParseDigits(text, field);
  if (!isNumber) {
    const auto number = ParseAnyNumber(text);
    isNumber = number.has_value();
    field = {.number = number.value_or(0)};
  }
  if (isNumber && IsWithin(field, min, max)) return true;
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

void Reject(CCardFormatInfo& format, std::string_view message) {
  format.MakeErr(kContentError, message);
}

bool AcceptCardID(CCardFormatInfo& format, const CCardData& card, Field& field) {
  return Accept(format, card.CardID, format.MinCardID, format.MaxCardID, message::kIncorrectCardID,
                field);
}

bool AcceptAnyFields(CCardFormatInfo& format, const CCardData& card, Unused unused,
                     Fields& fields) {
  if (!Accept(format, card.Facility, format.MinFacility, format.MaxFacility,
              message::kIncorrectFacilityCode, fields.facility)) {
    return false;
  }
  if (unused == Unused::Convert) CheckConversion(fields.facility);
  if (!AcceptCardID(format, card, fields.cardID)) return false;
  if (unused == Unused::Convert) CheckConversion(fields.cardID);
  return true;
}

void CheckConversion(const Field& field) {
  if (field.whole == Field::kNotWhole) NumberToBytes(field.number);
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

void RequireBytes(std::int16_t count, int needed) {
  if (count < needed) throw HostFault(Fault::OutOfRange);
}

void PutNumbers(const CCardFormatInfo& format, std::uint64_t facility, std::uint64_t cardID,
                CCardData& result) {
  AssignNumber(result.Facility, facility, format.CharCountFacility);
  AssignNumber(result.CardID, cardID, format.CharCountCardID);
}

}  // namespace vardel::steps
