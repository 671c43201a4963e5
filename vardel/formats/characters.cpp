#include <vardel/core/host_fault.h>
#include <vardel/core/text.h>
#include <vardel/formats/characters.h>

#include <cstddef>
#include <cstdint>

namespace vardel::characters {
namespace {

/// The field's byte for character `i`; fault 9 when there is none among `size` bytes.
std::size_t IndexOf(const Place& place, int i, std::size_t size) {
  const int index = place.first + i * place.step;
  if (index < 0 || static_cast<std::size_t>(index) >= size) throw HostFault(Fault::OutOfRange);
  return static_cast<std::size_t>(index);
}

}  // namespace

void Put(CardDataStruct& record, const Place& place, std::string_view text, const Filling& filling,
         BlankStoredAs blank) {
  std::ptrdiff_t fillers = filling.length - static_cast<std::ptrdiff_t>(CharCount(text));
  std::string_view padChar = filling.padChar;
  if (fillers > 0 && padChar.empty()) throw HostFault(Fault::InvalidCall);
  const char32_t filler = fillers > 0 ? TakeChar(padChar) : 0;

  for (int i = 0; i < place.count; ++i) {
    const bool isFilled = fillers > 0 && (filling.align == Align::Right || text.empty());
    if (!isFilled && text.empty()) throw HostFault(Fault::InvalidCall);
    const std::uint8_t code = ByteOfChar(isFilled ? filler : TakeChar(text));
    if (isFilled) --fillers;
    const bool isZero = blank == BlankStoredAs::Zero && code == ' ';
    record.Bytes[IndexOf(place, i, record.Bytes.size())] = isZero ? std::uint8_t{0} : code;
  }
}

std::string Take(std::span<const std::uint8_t> bytes, const Place& place, BlankStoredAs blank) {
  std::string text;
  for (int i = 0; i < place.count; ++i) {
    const std::uint8_t code = bytes[IndexOf(place, i, bytes.size())];
    const bool isBlank = blank == BlankStoredAs::Zero && code == 0;
    AppendCharOfByte(text, isBlank ? std::uint8_t{' '} : code);
  }
  return text;
}

}  // namespace vardel::characters
