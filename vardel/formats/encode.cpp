#include <vardel/formats/encode.h>

#include <array>
#include <optional>

namespace vardel::encode {
namespace {

/// Parse for texts that are not plain digits.
bool ParseOther(std::string_view text, Field& field) {
  const std::optional<double> number = ParseAnyNumber(text);
  field = {.number = number.value_or(0)};
  return number.has_value();
}

bool Parse(std::string_view text, Field& field) {
  if (!ParseDigits(text, field.digits)) return ParseOther(text, field);
  field.number = static_cast<double>(field.digits);
  return true;
}

bool Accept(CCardFormatInfo& format, std::string_view text, double min, double max,
            std::string_view message, Field& field) {
  // Not the other way round: no comparison with a limit that is not a number holds.
  if (Parse(text, field) && !(field.number < min) && !(field.number > max)) return true;
  Reject(format, message);
  return false;
}

}  // namespace

bool AcceptCardID(CCardFormatInfo& format, const CCardData& card, Field& field) {
  return Accept(format, card.CardID, format.MinCardID, format.MaxCardID, message::kIncorrectCardID,
                field);
}

bool AcceptAnyFields(CCardFormatInfo& format, const CCardData& card, EachField each,
                     Fields& fields) {
  if (!Accept(format, card.Facility, format.MinFacility, format.MaxFacility,
              message::kIncorrectFacilityCode, fields.facility)) {
    return false;
  }
  if (each == EachField::IsConverted) RequireConvertible(fields.facility);
  if (!AcceptCardID(format, card, fields.cardID)) return false;
  if (each == EachField::IsConverted) RequireConvertible(fields.cardID);
  return true;
}

std::uint64_t LowBytesOf(double number, int count) {
  if (const auto whole = WholeNumber(number)) return bits::Get(*whole, 0, 8 * count);
  const ByteArray bytes = NumberToBytes(number);
  std::array<std::uint8_t, 8> low{};
  std::ranges::copy_n(bytes.begin(), std::min<std::ptrdiff_t>(std::ssize(bytes), count),
                      low.begin());
  return bits::FromBytes(std::span<const std::uint8_t, 8>(low));
}

}  // namespace vardel::encode
