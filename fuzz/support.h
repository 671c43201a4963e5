#pragma once

#include <vardel/core/frame.h>
#include <vardel/core/host_fault.h>
#include <vardel/formats/card_formats.h>

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <optional>
#include <string>
#include <string_view>
#include <type_traits>
#include <vector>

/// What the fuzz targets have in common.
namespace vardel::fuzz {

inline void Check(bool holds, const char* claim) {
  if (holds) return;
  std::fprintf(stderr, "does not hold: %s\n", claim);
  std::abort();
}

/// An input, taken from front to back. Behind its end everything is 0 and empty.
class Input {
 public:
  Input(const std::uint8_t* data, std::size_t size)
      : rest_(reinterpret_cast<const char*>(data), size) {}

  bool IsEmpty() const { return rest_.empty(); }
  std::string Bytes(std::size_t count) {
    const std::string_view bytes = rest_.substr(0, count);
    rest_.remove_prefix(bytes.size());
    return std::string(bytes);
  }
  /// A number, truth value or text.
  template <class T>
  T Take() {
    if constexpr (std::is_same_v<T, std::string>) {
      return Text();
    } else if constexpr (std::is_same_v<T, bool>) {
      return Take<std::uint8_t>() % 2 != 0;
    } else {
      T value{};
      const std::string bytes = Bytes(sizeof(T));
      std::memcpy(&value, bytes.data(), bytes.size());
      return value;
    }
  }
  std::uint8_t Byte() { return Take<std::uint8_t>(); }
  std::int32_t Int() { return Take<std::int32_t>(); }

  /// Any bytes, the digits of a number, what numbers are written with, or a long run.
  std::string Text() {
    constexpr std::string_view kNumerals = "0123456789012345.e+- \tEdD1x";
    const int kind = Byte() % 4;
    const std::size_t length = Byte();
    if (kind == 1) return std::to_string(Take<std::uint32_t>() >> length % 32);
    if (kind == 3) return std::string(length * 256, Take<char>());
    std::string text = Bytes(length);
    if (kind == 2) {
      for (char& c : text) c = kNumerals[static_cast<std::uint8_t>(c) % kNumerals.size()];
    }
    return text;
  }

  /// One of the formats, or null for the facade.
  const CardFormatClass* Format() {
    const auto rows = CardFormatClasses();
    const std::size_t index = Byte() % (rows.size() + 1);
    return index < rows.size() ? &rows[index] : nullptr;
  }

  /// A card without texts, of a format's type pair or any other.
  CCardData Type() {
    const auto rows = CardFormatClasses();
    const std::size_t index = Byte();
    const bool isKnown = index < rows.size();
    CCardData card;
    card.CardType = isKnown ? rows[index].CardType : Int();
    subType = isKnown ? rows[index].CardSubType : Int();
    card.CardSubType = static_cast<std::uint8_t>(subType);
    return card;
  }
  /// All bits of the sub-type that Type gave last.
  std::int32_t subType = 0;

  CCardData Card() {
    CCardData card = Type();
    for (auto field : {&CCardData::Facility, &CCardData::CardID, &CCardData::Revision})
      card.*field = Text();
    return card;
  }

 private:
  std::string_view rest_;
};

/// A host's frame that helps as little as it may: each read ends the life of what the one before
/// gave, and may give fewer bytes or throw.
class Frame final : public ICardFrame {
 public:
  struct Failure {};
  enum Flag { kIsEM = 1, kShrinks = 2, kFails = 4, kNoBytes = 8, kOwnText = 16, kLowerCase = 32 };

  explicit Frame(Input& in) : type_(in.Type().CardType), subType_(in.subType), flags_(in.Byte()) {
    if (flags_ & kFails) failAt_ = in.Byte() % 8;
    if (!(flags_ & kNoBytes)) bytes_ = in.Bytes(in.Byte());
    if (!bytes_ || flags_ & kOwnText) {
      text_ = in.Text();
      return;
    }
    const char* const digits = flags_ & kLowerCase ? "0123456789abcdef" : "0123456789ABCDEF";
    for (const char c : *bytes_)
      for (const int digit : {c >> 4 & 15, c & 15}) text_ += digits[digit];
  }

  /// As it was before the first read.
  void Restart() const { reads_ = 0; }
  /// The bytes, when they and the text agree and every read gives all of them.
  std::optional<std::string> Steady() const {
    return flags_ & (kShrinks | kFails | kNoBytes | kOwnText) ? std::nullopt : bytes_;
  }

  std::int32_t FrameCardType() const override { return type_; }
  std::int32_t FrameCardSubType() const override { return subType_; }
  bool IsEMFrame() const override { return flags_ & kIsEM; }
  RawBytes RawCardBytes() const override {
    const std::size_t earlier = Count();
    if (!bytes_) return std::nullopt;
    const std::size_t lost = flags_ & kShrinks ? std::min(earlier, bytes_->size()) : 0;
    given_ = {bytes_->begin(), bytes_->end() - static_cast<std::ptrdiff_t>(lost)};
    return given_;
  }
  std::string_view RawCardHex() const override {
    Count();
    givenText_ = std::vector<char>(text_.begin(), text_.end());
    return {givenText_.data(), givenText_.size()};
  }

 private:
  std::size_t Count() const {
    if (reads_ + 1 == failAt_) throw Failure();
    return reads_++;
  }

  std::int32_t type_, subType_;
  int flags_;
  std::size_t failAt_ = 0;
  std::optional<std::string> bytes_;
  std::string text_;
  mutable std::size_t reads_ = 0;
  mutable std::vector<std::uint8_t> given_;
  mutable std::vector<char> givenText_;
};

/// How a call ends: 0 as it should, -1 in the frame's failure, otherwise in that host fault.
/// Anything else that leaves the library ends the program.
template <class Call>
int EndOf(const Call& call) try {
  call();
  return 0;
} catch (const HostFault& fault) {
  const int number = static_cast<int>(fault.Number());
  for (const int known : {5, 6, 9, 13, 91, 424}) {
    if (number == known) return number;
  }
  std::abort();
} catch (const Frame::Failure&) {
  return -1;
}

}  // namespace vardel::fuzz
