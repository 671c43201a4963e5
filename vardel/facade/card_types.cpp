#include <vardel/core/type_code.h>
#include <vardel/facade/card_types.h>

#include <charconv>
#include <system_error>
#include <utility>

namespace vardel {
namespace {

struct DefaultEntry {
  std::int32_t cardType;
  std::int32_t cardSubType;
  std::string_view name;
  std::string_view shortName;
};

constexpr DefaultEntry kDefaults[] = {
    {CARD_EM, 0, "EM", "EM"},
    {CARD_EM, CARD_SUB_EM_STD_26BITS, "EM Standard", "EM STD"},
    {CARD_HID, 0, "HID", "HID"},
    {CARD_HID, CARD_SUB_HID_STD, "HID Standard", "HID STD"},
    {CARD_HID, CARD_SUB_HID_FULL_BIN, "HID Binary", "HID BIN"},
    {CARD_HID, CARD_SUB_HID_34BITS, "HID 34Bits", "HID 34Bits"},
    {CARD_MIFARE, 0, "Mifare", "MI"},
    {CARD_MIFARE, CARD_SUB_MI_UID_32BITS, "Mifare 32 Bits UID", "MI UID 32Bits"},
    {CARD_MIFARE, CARD_SUB_MI_DONGSEO, "KyungHee Univ. DongSeo Hospital", "MI DongSeo 64Bits"},
};

std::string Key(std::int32_t code) { return std::to_string(code); }

std::string Key(std::int32_t cardType, std::int32_t cardSubType) {
  return Key(TypeCode(cardType, cardSubType));
}

}  // namespace

CCardTypes::CCardTypes() {
  for (const DefaultEntry& row : kDefaults) {
    auto entry = std::make_shared<CCardType>();
    entry->cardType_ = row.cardType;
    entry->cardSubType_ = row.cardSubType;
    entry->typeCode_ = TypeCode(row.cardType, row.cardSubType);
    entry->defaultName_ = row.name;
    entry->defaultShortName_ = row.shortName;
    entry->TypeName = row.name;
    entry->ShortName = row.shortName;
    Insert(entry->typeCode_, entry);
  }
}

bool CCardTypes::Insert(std::int32_t code, std::shared_ptr<CCardType> cardType) {
  // Room comes first: without memory for it nothing changes, and with it the last step cannot fail.
  if (entries_.size() == entries_.capacity()) entries_.reserve(2 * entries_.size() + 1);
  if (!places_.emplace(code, entries_.size()).second) return false;
  entries_.push_back({code, std::move(cardType)});
  return true;
}

std::shared_ptr<CCardType> CCardTypes::Find(std::int32_t code) const {
  const auto place = places_.find(code);
  return place == places_.end() ? nullptr : entries_[place->second].cardType;
}

std::shared_ptr<CCardType> CCardTypes::Find(std::string_view key) const {
  std::int32_t code = 0;
  const auto [end, error] = std::from_chars(key.data(), key.data() + key.size(), code);
  // Only the one text that the code itself is written as.
  if (error != std::errc() || Key(code) != key) return nullptr;
  return Find(code);
}

std::shared_ptr<CCardType> CCardTypes::FindToRead(std::string_view key) {
  auto entry = Find(key);
  if (entry) InitErr();
  return entry;
}

void CCardTypes::Rename(std::string_view key, std::string CCardType::*member,
                        std::string_view name) {
  const auto entry = Find(key);
  if (!entry) return MakeErr(kContentError, "");
  // The name first: it stays also where there is no error object to clear.
  (*entry).*member = name;
  InitErr();
}

bool CCardTypes::Add(std::shared_ptr<CCardType> NewCardType, std::int32_t InCardTypeCode) {
  if (NewCardType == nullptr) {
    MakeErr(kContentError, message::kNoCardTypeToAdd);
    return false;
  }
  if (!Insert(InCardTypeCode, std::move(NewCardType))) {
    MakeErr(kContentError, message::kCardTypeCodePresent);
    return false;
  }
  InitErr();
  return true;
}

bool CCardTypes::IsExisted(std::int32_t InCardType, std::int32_t InCardSubType) const {
  return places_.contains(TypeCode(InCardType, InCardSubType));
}

std::shared_ptr<CCardType> CCardTypes::CardTypeByCode(std::int32_t InCardTypeCode) {
  if (auto entry = Find(InCardTypeCode)) return entry;
  MakeErr(kContentError, message::kUnknownCardType);
  return std::make_shared<CCardType>();
}

std::shared_ptr<CCardType> CCardTypes::CardTypeByType(std::int32_t InCardType,
                                                      std::int32_t InCardSubType) {
  if (auto entry = Find(TypeCode(InCardType, InCardSubType))) {
    InitErr();
    return entry;
  }
  auto missing = std::make_shared<CCardType>();
  missing->IsAvailable = false;
  return missing;
}

std::vector<std::shared_ptr<CCardType>> CCardTypes::AllCardTypes() {
  InitErr();
  std::vector<std::shared_ptr<CCardType>> all;
  for (const Entry& entry : entries_) all.push_back(entry.cardType);
  return all;
}

std::vector<std::string> CCardTypes::CardTypeCodes() {
  InitErr();
  std::vector<std::string> codes;
  for (const Entry& entry : entries_) codes.push_back(Key(entry.code));
  return codes;
}

std::int32_t CCardTypes::Count() {
  InitErr();
  return static_cast<std::int32_t>(entries_.size());
}

std::string CCardTypes::DefaultShortName(std::string_view InCardTypeCode) {
  const auto entry = FindToRead(InCardTypeCode);
  return entry ? entry->DefaultShortName() : std::string();
}

std::string CCardTypes::DefaultName(std::string_view InCardTypeCode) {
  const auto entry = FindToRead(InCardTypeCode);
  return entry ? entry->DefaultName() : std::string();
}

std::string CCardTypes::ShortName(std::string_view InCardTypeCode) {
  const auto entry = FindToRead(InCardTypeCode);
  return entry ? entry->ShortName : std::string();
}

std::string CCardTypes::CardTypeName(std::string_view InCardTypeCode) {
  const auto entry = FindToRead(InCardTypeCode);
  return entry ? entry->TypeName : std::string();
}

void CCardTypes::ShortName(std::string_view InCardTypeCode, std::string_view name) {
  Rename(InCardTypeCode, &CCardType::ShortName, name);
}

void CCardTypes::CardTypeName(std::string_view InCardTypeCode, std::string_view name) {
  Rename(InCardTypeCode, &CCardType::TypeName, name);
}

std::string CCardTypes::GetDefaultShortName(std::int32_t InCardType, std::int32_t InCardSubType) {
  return DefaultShortName(Key(InCardType, InCardSubType));
}

std::string CCardTypes::GetDefaultName(std::int32_t InCardType, std::int32_t InCardSubType) {
  return DefaultName(Key(InCardType, InCardSubType));
}

std::string CCardTypes::GetShortName(std::int32_t InCardType, std::int32_t InCardSubType) {
  return ShortName(Key(InCardType, InCardSubType));
}

std::string CCardTypes::GetCardTypeName(std::int32_t InCardType, std::int32_t InCardSubType) {
  return CardTypeName(Key(InCardType, InCardSubType));
}

std::int32_t CCardTypes::LetShortName(std::int32_t InCardType, std::int32_t InCardSubType,
                                      std::string_view InName) {
  ShortName(Key(InCardType, InCardSubType), InName);
  return ErrNumber();
}

std::int32_t CCardTypes::LetCardTypeName(std::int32_t InCardType, std::int32_t InCardSubType,
                                         std::string_view InName) {
  CardTypeName(Key(InCardType, InCardSubType), InName);
  return ErrNumber();
}

}  // namespace vardel
