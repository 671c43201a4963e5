#pragma once

#include <vardel/core/byte_array.h>
#include <vardel/core/card_data_struct.h>
#include <vardel/core/enumerations.h>
#include <vardel/core/frame.h>

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace vardel {

/// A ready frame for hosts that have none of their own. A new one has type pair (0, 0) and no data.
class CCardFrame final : public ICardFrame {
 public:
  CCardFrame() = default;
  /// `rawCardHex` as in the put of RawCardHex, fault 13 included.
  CCardFrame(std::int32_t cardType, std::int32_t cardSubType, std::string_view rawCardHex,
             bool isEMFrame = false);
  /// A copy of another frame's bytes, nothing where those are, and of its text, each read once. The
  /// type pair stays (0, 0). What the frame throws passes.
  static CCardFrame DataOf(const ICardFrame& frame);

  std::int32_t FrameCardType() const override { return cardType_; }
  void FrameCardType(std::int32_t value) { cardType_ = value; }
  std::int32_t FrameCardSubType() const override { return cardSubType_; }
  void FrameCardSubType(std::int32_t value) { cardSubType_ = value; }
  bool IsEMFrame() const override { return isEMFrame_; }
  void IsEMFrame(bool value) { isEMFrame_ = value; }

  /// The bytes of the text, or, in DataOf, of the other frame.
  RawBytes RawCardBytes() const override { return bytes_; }
  std::string_view RawCardHex() const override { return hex_; }
  /// Sets the text, of any length and in either case, and the bytes, first byte first. Text that is
  /// not whole pairs of hexadecimal digits is fault 13 and changes nothing.
  void RawCardHex(std::string_view hex);
  /// Sets the text and the bytes to all 32 of an encoded record.
  void CardDataStruct(const vardel::CardDataStruct& record);

 private:
  std::int32_t cardType_ = CARD_UNKNOWN;
  std::int32_t cardSubType_ = 0;
  bool isEMFrame_ = false;
  std::optional<ByteArray> bytes_ = ByteArray();
  std::string hex_;
};

}  // namespace vardel
