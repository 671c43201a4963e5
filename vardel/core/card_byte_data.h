#pragma once

#include <vardel/core/card_data_struct.h>
#include <vardel/core/enumerations.h>
#include <vardel/core/error.h>
#include <vardel/core/type_code.h>

#include <cstdint>

namespace vardel {

/// A raw card: type, sub-type and 32 card bytes. A new one has type 0, sub-type 0, all bytes 0 and
/// no error.
class CCardByteData : public ErrorHolder {
 public:
  /// Starts over for a card of the given type: clears the error, puts the type and, when that is
  /// valid, zeroes the bytes. Records "Incorrect Card Type" for any type but 1, 2 and 3, the
  /// default included, and then keeps bytes and type. Nothing is thrown: without an error object it
  /// does nothing, and without memory for the message it records "Out of memory".
  void InitCardData(std::int32_t ParamCardType = CARD_UNKNOWN);

  std::int32_t CardType() const { return cardType_; }
  /// Clears the error and stores 1, 2 or 3. Records "Incorrect Card Type" for every other value, 0
  /// included, and keeps the old type.
  void CardType(std::int32_t cardType) {
    if (IsValidMainType(cardType)) {
      InitErr();
      cardType_ = cardType;
    } else {
      MakeErr(kContentError, message::kIncorrectCardType);
    }
  }

  std::uint8_t CardSubType() const { return cardSubType_; }
  /// Clears the error and stores.
  void CardSubType(std::uint8_t cardSubType) {
    InitErr();
    cardSubType_ = cardSubType;
  }

  /// Always 32, however many bytes the format uses.
  std::int32_t CardDataByteCount() const;

  /// Card byte `ArrIndex` (0..31); 0 for any other index.
  std::uint8_t CardArrDataByIndex(std::int32_t ArrIndex) const;
  /// Clears the error and stores card byte `ArrIndex` (0..31); any other index is ignored.
  void CardArrDataByIndex(std::int32_t ArrIndex, std::uint8_t value);

  /// The card bytes themselves.
  vardel::CardDataStruct CardDataStruct;

 private:
  std::int32_t cardType_ = CARD_UNKNOWN;
  std::uint8_t cardSubType_ = 0;
};

}  // namespace vardel
