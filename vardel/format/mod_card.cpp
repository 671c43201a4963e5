#include <vardel/core/hex.h>
#include <vardel/core/host_fault.h>
#include <vardel/core/number.h>
#include <vardel/core/text.h>
#include <vardel/format/mod_card.h>
#include <vardel/formats/card_formats.h>

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <cstddef>

namespace vardel {
namespace {

/// The largest double has 1024 bits.
constexpr std::size_t kMaxNumberBytes = 128;

}  // namespace

bool IsValidTypePair(std::int32_t CardType, std::int32_t CardSubType) {
  return std::ranges::any_of(CardFormatClasses(), [&](const CardFormatClass& row) {
    return row.IsConverted && row.CardType == CardType && row.CardSubType == CardSubType;
  });
}

bool IsByteArrayVariant(std::uint16_t variantTypeCode) {
  constexpr std::uint16_t kArrayOfBytes = 8192 + 17;
  return variantTypeCode == kArrayOfBytes;
}

std::string PadText(std::string_view Source, std::int16_t Length, std::string_view PadChar,
                    std::int16_t Side) {
  const bool rightAligned = Side == 1;
  const std::size_t count = CharCount(Source);
  if (Length < 0) throw HostFault(Fault::InvalidCall);
  const auto length = static_cast<std::size_t>(Length);
  if (count >= length) {
    return std::string(rightAligned ? LastChars(Source, length) : FirstChars(Source, length));
  }
  if (PadChar.empty()) throw HostFault(Fault::InvalidCall);
  const std::string_view filler = FirstChars(PadChar, 1);
  std::string text;
  if (!rightAligned) text = Source;
  for (std::size_t i = count; i < length; ++i) text += filler;
  if (rightAligned) text += Source;
  return text;
}

std::optional<double> ByteArrayToNumber(std::span<const std::uint8_t> Bytes) {
  if (Bytes.empty() || Bytes.size() > kMaxNumberBytes) return std::nullopt;
  double sum = 0;
  double weight = 1;
  while (!Bytes.empty() && Bytes.back() == 0) Bytes = Bytes.first(Bytes.size() - 1);  // add nothing
  for (const std::uint8_t byte : Bytes) {
    sum += byte * weight;
    weight *= 256;
  }
  return std::isfinite(sum) ? std::optional(sum) : std::nullopt;
}

std::string ByteArrayToNumberText(std::span<const std::uint8_t> Bytes) {
  const auto number = ByteArrayToNumber(Bytes);
  return number ? NumberText(*number) : std::string();
}

ByteArray NumberToBytesByByte(double Value) {
  if (auto whole = WholeNumber(Value)) {
    // Nothing to round: the bytes are those of the integer.
    const auto bits = static_cast<std::size_t>(std::bit_width(*whole));
    ByteArray bytes(std::max<std::size_t>((bits + 7) / 8, 1));
    for (std::uint8_t& byte : bytes) {
      byte = static_cast<std::uint8_t>(*whole);
      *whole >>= 8;
    }
    return bytes;
  }
  if (!std::isfinite(Value)) throw HostFault(Fault::Overflow);
  std::array<std::uint8_t, kMaxNumberBytes> bytes{};
  std::size_t count = 0;
  for (; Value != 0; ++count) {
    const double quotient = std::trunc(Value / 256);
    bytes[count] = ToByte(Value - quotient * 256);
    Value = quotient;
  }
  return ByteArray(std::span(bytes).first(count));
}

ByteArray NumberToBytesByByte(std::string_view Value) {
  return NumberToBytesByByte(RequireNumber(Value));
}

// Sixteen times the upper digit is even, so rounding the lower digit to even rounds the byte to
// even.
ByteArray NumberToBytes(double Value) { return NumberToBytesByByte(Value); }

ByteArray NumberToBytes(std::string_view Value) { return NumberToBytesByByte(Value); }

ByteArray ReverseBytes(std::span<const std::uint8_t> Bytes) {
  ByteArray reversed(Bytes);
  std::ranges::reverse(reversed);
  return reversed;
}

CardDataStruct MakeCardDataStruct(std::span<const std::uint8_t> Bytes, bool Reversed) {
  CardDataStruct record;
  const auto used = Bytes.first(std::min(Bytes.size(), record.Bytes.size()));
  if (Reversed) {
    std::ranges::reverse_copy(used, record.Bytes.begin());
  } else {
    std::ranges::copy(used, record.Bytes.begin());
  }
  return record;
}

CByteArrayData MakeByteArrayData(RawBytes Bytes) {
  CByteArrayData data;
  if (!Bytes) return data;
  data.ByteCount(static_cast<std::int32_t>(Bytes->size()));
  for (const std::uint8_t byte : *Bytes) {
    AppendCharOfByte(data.ChrString, byte == 0 ? std::uint8_t{' '} : byte);
    data.ByteOR(data.ByteOR() | byte);
    data.ByteAND(data.ByteAND() & byte);
  }
  data.HexString = HexText(*Bytes);
  return data;
}

}  // namespace vardel
