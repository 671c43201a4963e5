#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

namespace vardel {

/// Values of the three fields of a card, in the order in which all tables list them.
template <class T>
struct PerField {
  T Facility{};
  T CardID{};
  T Revision{};
};

/// First and last raw byte of a field; -1 for no such field.
struct ByteRange {
  std::int16_t first;
  std::int16_t last;
};
inline constexpr ByteRange kNoBytes = {-1, -1};

/// Limits of the three fields.
template <class T>
struct Limits {
  T Facility;
  T CardID;
  std::int16_t Revision;
};
inline constexpr std::nullopt_t kAllBits = std::nullopt;

/// What a format object holds when it is made. CardName starts as the default name, the character
/// counts as the lengths of the masks, and CharCountTotal as their sum.
struct FormatParameters {
  bool IsSmartCard = false;
  std::int16_t CardType;
  std::int16_t CardSubType;
  std::string_view DefaultCardName;
  std::string_view DefaultChar = "0";
  std::int16_t DefaultByte;
  PerField<std::int16_t> BitCount;
  PerField<std::int16_t> OccupiedByte;
  std::int32_t BitCountTotal;
  std::int16_t ByteCountTotal;
  Limits<double> Min;
  /// kAllBits stands for 2^BitCount - 1.
  Limits<std::optional<double>> Max;
  PerField<std::string_view> Mask;
  PerField<ByteRange> Index;
};

}  // namespace vardel
