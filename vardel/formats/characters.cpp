#include <vardel/core/host_fault.h>
#include <vardel/core/text.h>
#include <vardel/format/mod_card.h>
#include <vardel/formats/characters.h>

#include <algorithm>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>

namespace vardel::characters {
namespace {

/// The field's byte for character `i`; fault 9 when there is none among `size` bytes.
std::size_t IndexOf(const Place& place, int i, std::size_t size) {
  const int index = place.first + i * place.step;
  if (index < 0 || static_cast<std::size_t>(index) >= size) throw HostFault(Fault::OutOfRange);
  return static_cast<std::size_t>(index);
}

/// The bytes of a word from the last to the first.
std::uint64_t Reversed(std::uint64_t word) {
  constexpr std::uint64_t kBytes = 0x00FF00FF00FF00FF;
  constexpr std::uint64_t kPairs = 0x0000FFFF0000FFFF;
  word = (word >> 8 & kBytes) | (word & kBytes) << 8;
  word = (word >> 16 & kPairs) | (word & kPairs) << 16;
  return word >> 32 | word << 32;
}

/// The lowest `count` bytes (1 to 8) of a word.
constexpr std::uint64_t Mask(int count) { return ~std::uint64_t{0} >> (64 - 8 * count); }

/// Put for texts of one byte per character in fields of up to 8 bytes, in one word. False, with
/// nothing changed, for all others and where the general way ends in a fault.
bool PutWord(CardDataStruct& record, const Place& place, std::string_view text,
             const Filling& filling, Zero zero) {
  constexpr std::uint64_t kOnes = 0x0101010101010101;
  constexpr int kWord = sizeof(std::uint64_t);
  const auto size = static_cast<int>(std::min<std::size_t>(text.size(), INT16_MAX));
  const int total = std::max<int>(size, filling.length);
  if (std::endian::native != std::endian::little || zero != Zero::IsZero || size == 0 ||
      place.count < 1 || place.count > std::min(total, kWord) || filling.padChar.size() != 1) {
    return false;
  }
  const int lowest = place.step < 0 ? place.first - (place.count - 1) : place.first;
  const int room = static_cast<int>(record.Bytes.size()) - lowest;
  const int fillers = filling.align == Align::Right ? total - size : 0;
  if (lowest < 0 || room < place.count || fillers >= place.count) return false;

  std::uint64_t word = WordOf(text.substr(0, kWord));
  const auto filler = kOnes * static_cast<std::uint8_t>(filling.padChar.front());
  if (((word | filler) & kOnes * 0x80) != 0) return false;
  if (size > kWord && !IsAscii(text.substr(kWord))) return false;
  const std::uint64_t taken = Mask(std::min(size, kWord)) << 8 * fillers;
  word = (word << 8 * fillers & taken) | (filler & ~taken);
  if (place.step < 0) word = Reversed(word << 8 * (kWord - place.count));

  // A whole word of the record is written back, of which the field is a part.
  const int beside = std::max(kWord - room, 0);
  std::uint8_t* const bytes = &record.Bytes[static_cast<std::size_t>(lowest - beside)];
  const std::uint64_t field = Mask(place.count) << 8 * beside;
  std::uint64_t old = 0;
  std::memcpy(&old, bytes, sizeof(old));
  old = (old & ~field) | (word << 8 * beside & field);
  std::memcpy(bytes, &old, sizeof(old));
  return true;
}

}  // namespace

void Put(CardDataStruct& record, const Place& place, std::string_view text, const Filling& filling,
         Zero zero) {
  if (PutWord(record, place, text, filling, zero)) return;
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
