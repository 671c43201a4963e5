#pragma once

#include <vardel/core/bits.h>

#include <cstdint>
#include <limits>
#include <span>
#include <string_view>

namespace vardel {

class CCardFormatInfo;

/// First and last raw byte of a field; -1 for no such field.
struct ByteRange {
  std::int16_t first;
  std::int16_t last;
};
inline constexpr ByteRange kNoBytes = {-1, -1};

/// As the largest value of a field: 2^Bits - 1.
inline constexpr double kAllBits = std::numeric_limits<double>::infinity();

struct FieldParameters {
  std::int16_t Bits;
  /// Raw bytes that the field touches.
  std::int16_t Bytes;
  double Min;
  double Max;
  std::string_view Mask;
  ByteRange Index;
};

/// The facility code of the 37-bit layout, which HID Corporate 1000 announces as well.
inline constexpr FieldParameters k37BitFacility = {
    .Bits = 16, .Bytes = 3, .Min = 1, .Max = kAllBits, .Mask = "99999", .Index = {1, 3}};

/// What of a read a decoder goes by. The objects of a format share one of these, which outlives
/// them.
struct CardLayout {
  /// So many bits, from bit 0 of byte 0 on.
  int Bits;
  /// Those of them that are parity.
  std::span<const bits::Parity> Parity = {};
  /// The frame's byte array counts, not its text.
  bool IsByteArray = false;
};
/// As the bits of a layout: all that a read has.
inline constexpr int kWholeRead = std::numeric_limits<int>::max();

/// What a format object holds when it is made. CardName starts as the default name, the character
/// counts as the lengths of the masks, and CharCountTotal as their sum.
struct FormatParameters {
  bool IsSmartCard = false;
  std::int16_t CardType;
  std::int16_t CardSubType;
  std::string_view DefaultCardName;
  std::string_view DefaultChar = "0";
  std::int16_t DefaultByte;
  std::int32_t BitCountTotal;
  std::int16_t ByteCountTotal;
  FieldParameters Facility;
  FieldParameters CardID;
  FieldParameters Revision;
  CardLayout Layout;
};

/// The layout of a format object, which has to be one of the format classes'.
const CardLayout& LayoutOf(const CCardFormatInfo& format);

}  // namespace vardel
