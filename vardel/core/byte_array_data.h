#pragma once

#include <vardel/core/error.h>

#include <cstdint>
#include <string>

namespace vardel {

/// Describes a run of card bytes; it does not keep the bytes themselves.
class CByteArrayData : public ErrorHolder {
 public:
  /// Sets the three counts back (0, 0, -1); OR, AND and the texts stay.
  void InitData();

  std::int32_t ByteCount() const { return byteCount_; }
  /// Starts the description of `count` bytes: ByteAND becomes 255, ByteOR 0. A negative count
  /// records "Incorrect Byte Count" and is stored all the same; the most negative one ends in fault
  /// 6. A valid count does not clear an earlier error.
  void ByteCount(std::int32_t count);

  /// Always 0: callers take the length from HexString itself.
  std::int32_t HexCharCount() const { return 0; }
  /// ByteCount - 1, so -1 for no bytes.
  std::int32_t LastArrayIndex() const { return lastArrayIndex_; }

  /// Bitwise OR of the bytes, 0..255. Putting a value outside that range is fault 6.
  std::int32_t ByteOR() const { return byteOr_; }
  void ByteOR(std::int32_t value);
  /// Bitwise AND of the bytes, 0..255. Putting a value outside that range is fault 6.
  std::int32_t ByteAND() const { return byteAnd_; }
  void ByteAND(std::int32_t value);

  /// The bytes as upper-case hexadecimal text, two digits per byte, first byte first.
  std::string HexString;
  /// The bytes as characters, by their codes in Windows-1252.
  std::string ChrString;

  /// The bytes are neither all 00 nor all FF, the two patterns of a read without a card.
  bool IsAvailable() const { return byteAnd_ < 255 && byteOr_ != 0; }

 private:
  std::int32_t byteCount_ = 0;
  std::int32_t lastArrayIndex_ = -1;
  std::uint8_t byteOr_ = 0;
  std::uint8_t byteAnd_ = 0;
};

}  // namespace vardel
