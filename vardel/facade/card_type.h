#pragma once

#include <vardel/core/enumerations.h>
#include <vardel/core/error.h>

#include <cstdint>
#include <string>

namespace vardel {

/// An entry of the card type registry: a main type or a type pair, with its names. A new one is
/// available, has code 0 and no names.
class CCardType : public ErrorHolder {
 public:
  /// InitErr, then InitData.
  void initAll();
  /// Sets the code to 0, the four names to "" and the availability to true; the type pair stays.
  void InitData();

  /// Names that callers may change.
  std::string ShortName;
  std::string TypeName;

  const std::string& DefaultShortName() const { return defaultShortName_; }
  const std::string& DefaultName() const { return defaultName_; }
  /// CardType x 256 + CardSubType; 0 in a new entry, like the pair, which no put changes.
  std::int32_t TypeCode() const { return typeCode_; }
  std::int32_t CardType() const { return cardType_; }
  /// 0 for an entry that stands for a whole main type.
  std::int32_t CardSubType() const { return cardSubType_; }

  /// A real registered type, as against the answer to a failed CCardTypes::CardTypeByType.
  bool IsAvailable = true;

 private:
  friend class CCardTypes;

  std::string defaultShortName_;
  std::string defaultName_;
  std::int32_t typeCode_ = 0;
  std::int32_t cardType_ = CARD_UNKNOWN;
  std::int32_t cardSubType_ = 0;
};

}  // namespace vardel
