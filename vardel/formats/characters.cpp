#include <vardel/core/host_fault.h>
#include <vardel/core/text.h>
#include <vardel/format/mod_card.h>
#include <vardel/formats/characters.h>

#include <algorithm>
#include <cstddef>

namespace vardel::characters {
namespace {

/// The field's byte for character `i`; fault 9 when there is none among `size` bytes.
std::size_t IndexOf(const Place& place, int i, std::size_t size) {
  const int index = place.first + i * place.step;
  if (index < 0 || static_cast<std::size_t>(index) >= size) throw HostFault(Fault::OutOfRange);
  return static_cast<std::size_t>(index);
}

/// Put for texts of one byte per character, which need not be filled up in order to be taken apart.
/// False, with nothing changed, for all others and where the general way ends in a fault.
bool PutAscii(CardDataStruct& record, const Place& place, std::string_view text,
              const Filling& filling, Zero zero) {
  const auto size = static_cast<int>(std::min<std::size_t>(text.size(), INT16_MAX));
  const int total = std::max<int>(size, filling.length);
  const auto isInside = [&](int index) {
    return index >= 0 && static_cast<std::size_t>(index) < record.Bytes.size();
  };
  if (place.count < 1 || place.count > total || filling.padChar.size() != 1 ||
      !isInside(place.first) || !isInside(place.first + (place.count - 1) * place.step) ||
      !IsAscii(text) || !IsAscii(filling.padChar.front())) {
    return false;
  }
  const char blank = zero == Zero::IsBlank ? '\0' : ' ';
  int index = place.first;
  const auto put = [&, step = place.step](char code) {
    record.Bytes[static_cast<std::size_t>(index)] =
        static_cast<std::uint8_t>(code == ' ' ? blank : code);
    index += step;
  };
  const char filler = filling.padChar.front();
  int left = place.count;
  if (filling.align == Align::Right) {
    for (int fillers = total - size; fillers > 0 && left > 0; --fillers, --left) put(filler);
  }
  const std::string_view taken = text.substr(0, static_cast<std::size_t>(left));
  for (const char code : taken) put(code);
  for (left -= static_cast<int>(taken.size()); left > 0; --left) put(filler);
  return true;
}

}  // namespace

void Put(CardDataStruct& record, const Place& place, std::string_view text, const Filling& filling,
         Zero zero) {
  if (PutAscii(record, place, text, filling, zero)) return;
  std::string filled;
  if (static_cast<std::ptrdiff_t>(CharCount(text)) < filling.length) {
    filled =
        PadText(text, filling.length, filling.padChar, static_cast<std::int16_t>(filling.align));
    text = filled;
  }
  for (int i = 0; i < place.count; ++i) {
    if (text.empty()) throw HostFault(Fault::InvalidCall);
    const std::uint8_t code = ByteOfChar(TakeChar(text));
    const bool isZero = zero == Zero::IsBlank && code == ' ';
    record.Bytes[IndexOf(place, i, record.Bytes.size())] = isZero ? std::uint8_t{0} : code;
  }
}

std::string Take(std::span<const std::uint8_t> bytes, const Place& place, Zero zero) {
  std::string text;
  for (int i = 0; i < place.count; ++i) {
    const std::uint8_t code = bytes[IndexOf(place, i, bytes.size())];
    const bool isBlank = zero == Zero::IsBlank && code == 0;
    AppendCharOfByte(text, isBlank ? std::uint8_t{' '} : code);
  }
  return text;
}

}  // namespace vardel::characters
