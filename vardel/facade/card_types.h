#pragma once

#include <vardel/core/error.h>
#include <vardel/facade/card_type.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace vardel {

/// The registry of card types and their names: nine defaults in a fixed order, then what hosts add.
/// The conversions never look at it. Entries are shared: a lookup gives the stored object.
///
/// The key of an entry is its type code as decimal text. Members that take the code as text need
/// exactly that ("513", not "0513"); members that take a type pair end in fault 6 where type x 256
/// + sub-type overflows.
class CCardTypes : public ErrorHolder {
 public:
  CCardTypes();

  /// Adds an entry under a code of the caller's choice and clears the error. A code that is taken
  /// records "The card type code is already present", a null entry "No card type to add"; both give
  /// false and leave the registry unchanged.
  bool Add(std::shared_ptr<CCardType> NewCardType, std::int32_t InCardTypeCode);
  /// An entry is there under the pair's code. The error is left alone.
  bool IsExisted(std::int32_t InCardType, std::int32_t InCardSubType) const;

  /// A miss records "Unknown Card Type" and gives a new entry, IsAvailable true, that is not added;
  /// a hit leaves the error alone.
  std::shared_ptr<CCardType> CardTypeByCode(std::int32_t InCardTypeCode);
  /// A miss gives a new entry with IsAvailable false that is not added, and records nothing; a hit
  /// clears the error.
  std::shared_ptr<CCardType> CardTypeByType(std::int32_t InCardType, std::int32_t InCardSubType);

  // In the order of their addition. Each clears the error.
  std::vector<std::shared_ptr<CCardType>> AllCardTypes();
  std::vector<std::string> CardTypeCodes();
  std::int32_t Count();

  // Names by code. A hit clears the error; a miss gives "" and leaves the error alone.
  std::string DefaultShortName(std::string_view InCardTypeCode);
  std::string DefaultName(std::string_view InCardTypeCode);
  std::string ShortName(std::string_view InCardTypeCode);
  std::string CardTypeName(std::string_view InCardTypeCode);
  // Renaming by code. A hit stores the name, then clears the error; a miss records -1 with an empty
  // message.
  void ShortName(std::string_view InCardTypeCode, std::string_view name);
  void CardTypeName(std::string_view InCardTypeCode, std::string_view name);

  // The same by type pair. Renaming returns the ErrNumber it leaves: 0, or -1 for an unknown pair.
  std::string GetDefaultShortName(std::int32_t InCardType, std::int32_t InCardSubType);
  std::string GetDefaultName(std::int32_t InCardType, std::int32_t InCardSubType);
  std::string GetShortName(std::int32_t InCardType, std::int32_t InCardSubType);
  std::string GetCardTypeName(std::int32_t InCardType, std::int32_t InCardSubType);
  std::int32_t LetShortName(std::int32_t InCardType, std::int32_t InCardSubType,
                            std::string_view InName);
  std::int32_t LetCardTypeName(std::int32_t InCardType, std::int32_t InCardSubType,
                               std::string_view InName);

 private:
  struct Entry {
    std::int32_t code;
    std::shared_ptr<CCardType> cardType;
  };

  bool Insert(std::int32_t code, std::shared_ptr<CCardType> cardType);
  std::shared_ptr<CCardType> Find(std::int32_t code) const;
  std::shared_ptr<CCardType> Find(std::string_view key) const;
  /// Find for the reads by key text: a hit clears the error.
  std::shared_ptr<CCardType> FindToRead(std::string_view key);
  void Rename(std::string_view key, std::string CCardType::*member, std::string_view name);

  std::vector<Entry> entries_;
  std::unordered_map<std::int32_t, std::size_t> places_;  // code to index in entries_
};

}  // namespace vardel
