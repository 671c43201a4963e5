#include <vardel/core/error.h>
#include <vardel/core/hex.h>
#include <vardel/core/host_fault.h>
#include <vardel/core/number.h>
#include <vardel/format/mod_card.h>
#include <vardel/formats/steps.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <string>

namespace vardel::steps {
namespace {

bool Accept(CCardFormatInfo& format, std::string_view text, double min, double max,
            std::string_view message, double& value) {
  bool isNumber = ParseDigits(text, value);
  if (!isNumber) {
    if (const auto number = ParseNumber(text)) {
      value = *number;
      isNumber = true;
    }
  }
  if (isNumber && !(value < min) && !(value > max)) return true;
  Reject(format, message);
  return false;
}

std::string FieldText(std::optional<double> value, std::int16_t charCount) {
  std::string text = NumberText(value.value_or(0), charCount);  // checks the count in any case
  if (!value) text.clear();
  return text;
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

bool AcceptCardID(CCardFormatInfo& format, const CCardData& card, double& value) {
  return Accept(format, card.CardID, format.MinCardID, format.MaxCardID, message::kIncorrectCardID,
                value);
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

void CheckConversion(double number) {
  if (!WholeNumber(number)) NumberToBytes(number);
}

CardDataStruct MakeRecord(CCardFormatInfo& format, std::span<const std::uint8_t> bytes) {
  std::array<std::uint8_t, sizeof(CardDataStruct)> wide{};
  if (bytes.size() > wide.size() + 1) return Reject(format, message::kExceedLimit);
  std::ranges::copy(bytes.first(std::min(bytes.size(), wide.size())), wide.begin());
  return MakeCardDataStruct(wide, format.IsCardArrayReversed);
}

CardDataStruct MakeRecord(const CCardFormatInfo& format, std::uint64_t value) {
  CardDataStruct record;
  std::ranges::copy(BytesOf(value), record.Bytes.begin());
  return format.IsCardArrayReversed ? MakeCardDataStruct(record.Bytes, true) : record;
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

void PutNumbers(const CCardFormatInfo& format, std::optional<double> facility,
                std::optional<double> cardID, CCardData& result) {
  result.Facility = FieldText(facility, format.CharCountFacility);
  result.CardID = FieldText(cardID, format.CharCountCardID);
}

}  // namespace vardel::steps
