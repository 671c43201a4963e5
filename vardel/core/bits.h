#pragma once

#include <algorithm>
#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <span>
#include <utility>

/// A card value, held in 64 bits: bit 0 of the value is bit 0 of byte 0.
namespace vardel::bits {

/// `width` bits from `position` on, moved down to bit 0.
constexpr std::uint64_t Get(std::uint64_t value, int position, int width) {
  return (value >> position) & ((std::uint64_t{1} << width) - 1);
}

/// Ones in the bits from `first` to `last`.
constexpr std::uint64_t Range(int first, int last) {
  return Get(~std::uint64_t{0}, 0, last - first + 1) << first;
}

/// FromBytes by the indexes of the bytes, which compilers turn into one load.
template <std::size_t Count, std::size_t... kIndex>
constexpr std::uint64_t FromBytes(std::span<const std::uint8_t, Count> bytes,
                                  std::index_sequence<kIndex...> /*indexes*/) {
  return (... | (std::uint64_t{bytes[kIndex]} << 8 * kIndex));
}

/// The value of `Count` bytes (at most 8).
template <std::size_t Count>
constexpr std::uint64_t FromBytes(std::span<const std::uint8_t, Count> bytes) {
  static_assert(Count <= 8);
  return FromBytes(bytes, std::make_index_sequence<Count>());
}

/// The bytes of a value.
constexpr std::array<std::uint8_t, 8> ToBytes(std::uint64_t value) {
  if constexpr (std::endian::native == std::endian::little) {
    return std::bit_cast<std::array<std::uint8_t, 8>>(value);
  }
  std::array<std::uint8_t, 8> bytes{};
  for (std::uint8_t& byte : bytes) {
    byte = static_cast<std::uint8_t>(value);
    value >>= 8;
  }
  return bytes;
}

/// A parity bit of a layout: together with the bits that it covers it makes an odd or an even
/// number of ones.
struct Parity {
  int position;
  std::uint64_t covered;
  bool isOdd;

  constexpr std::uint64_t Of(std::uint64_t value) const {
    const bool isOddWithout = std::popcount(value & covered) % 2 != 0;
    return static_cast<std::uint64_t>(isOddWithout != isOdd) << position;
  }
};

/// A layout's parity bits for a value, in their order: a later one may cover an earlier one.
template <std::size_t Count>
constexpr std::uint64_t ParityOf(std::uint64_t value, const std::array<Parity, Count>& layout) {
  std::uint64_t all = 0;
  for (const Parity& parity : layout) all |= parity.Of(value | all);
  return all;
}

/// Whether a value holds the parity bits that its layout asks for.
constexpr bool HasParity(std::uint64_t value, std::span<const Parity> layout) {
  return std::ranges::all_of(layout, [value](const Parity& parity) {
    return parity.Of(value) == (value & std::uint64_t{1} << parity.position);
  });
}

}  // namespace vardel::bits
