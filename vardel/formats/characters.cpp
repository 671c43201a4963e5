#include <vardel/core/host_fault.h>
#include <vardel/core/text.h>
#include <vardel/format/mod_card.h>
#include <vardel/formats/characters.h>

#include <cstddef>

namespace vardel::characters {
namespace {

/// The field's byte for character `i`; fault 9 when there is none among `size` bytes.
std::size_t IndexOf(Place place, int i, std::size_t size) {
  const int index = place.first + i * place.step;
  if (index < 0 || static_cast<std::size_t>(index) >= size) throw HostFault(Fault::OutOfRange);
  return static_cast<std::size_t>(index);
}

}  // namespace

std::string Fill(std::string_view text, std::int16_t length, std::string_view padChar,
                 Align align) {
  const auto count = static_cast<std::ptrdiff_t>(CharCount(text));
  if (count >= length) return std::string(text);
  return PadText(text, length, padChar, static_cast<std::int16_t>(align));
}

void Put(CardDataStruct& record, Place place, std::string_view text, Zero zero) {
  for (int i = 0; i < place.count; ++i) {
    if (text.empty()) throw HostFault(Fault::InvalidCall);
    const std::uint8_t code = ByteOfChar(TakeChar(text));
    const bool isZero = zero == Zero::IsBlank && code == ' ';
    record.Bytes[IndexOf(place, i, record.Bytes.size())] = isZero ? std::uint8_t{0} : code;
  }
}

std::string Take(std::span<const std::uint8_t> bytes, Place place, Zero zero) {
  std::string text;
  for (int i = 0; i < place.count; ++i) {
    const std::uint8_t code = bytes[IndexOf(place, i, bytes.size())];
    const bool isBlank = zero == Zero::IsBlank && code == 0;
    AppendCharOfByte(text, isBlank ? std::uint8_t{' '} : code);
  }
  return text;
}

}  // namespace vardel::characters
