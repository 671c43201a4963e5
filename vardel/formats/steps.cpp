#include <vardel/core/error.h>
#include <vardel/core/hex.h>
#include <vardel/core/host_fault.h>
#include <vardel/core/number.h>
#include <vardel/format/mod_card.h>
#include <vardel/formats/steps.h>

#include <algorithm>
#include <array>
#include <bit>
#include <string>

namespace vardel::steps {
namespace {

std::optional<double> Accept(CCardFormatInfo& format, std::string_view text, double min, double max,
                             std::string_view message) {
  const std::optional<double> value = ParseNumber(text);
  if (value && !(*value < min) && !(*value > max)) return value;
  Reject(format, message);
  return std::nullopt;
}

std::string FieldText(std::optional<double> value, std::int16_t charCount) {
  std::string text = NumberText(value.value_or(0), charCount);  // checks the count in any case
  if (!value) text.clear();
  return text;
}

}  // namespace

std::uint64_t Parity(std::uint64_t bits) {
  return static_cast<std::uint64_t>(std::popcount(bits)) & 1;
}

std::uint64_t LittleEndian(std::span<const std::uint8_t> bytes) {
  std::uint64_t value = 0;
  for (std::size_t i = bytes.size(); i > 0; --i) value = value << 8 | bytes[i - 1];
  return value;
}

std::uint64_t LowBytes(const ByteArray& bytes, std::size_t count) {
  return LittleEndian(std::span(bytes).first(std::min(bytes.size(), count)));
}

std::array<std::uint8_t, 8> BytesOf(std::uint64_t value) {
  std::array<std::uint8_t, 8> bytes;
  for (std::uint8_t& byte : bytes) {
    byte = static_cast<std::uint8_t>(value);
    value >>= 8;
  }
  return bytes;
}

CardDataStruct Reject(CCardFormatInfo& format, std::string_view message) {
  format.MakeErr(kContentError, message);
  return {};
}

std::optional<double> AcceptFacility(CCardFormatInfo& format, const CCardData& card) {
  return Accept(format, card.Facility, format.MinFacility, format.MaxFacility,
                message::kIncorrectFacilityCode);
}

std::optional<double> AcceptCardID(CCardFormatInfo& format, const CCardData& card) {
  return Accept(format, card.CardID, format.MinCardID, format.MaxCardID, message::kIncorrectCardID);
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
  std::uint8_t all = 0xFF;
  std::uint8_t any = 0;
  for (const std::uint8_t byte : bytes) {
    all &= byte;
    any |= byte;
  }
  return any == 0 || all == 0xFF;
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
