#pragma once

#include <vardel/core/card_frame.h>
#include <vardel/core/text.h>
#include <vardel/formats/card_formats.h>

#include <bitset>
#include <exception>
#include <random>
#include <tuple>
#include <utility>
#include <vector>

/// Cards with the record and the decoded card that they must give, drawn from the rulers of the
/// formats: no encoder, no decoder and no byte mask of the library takes part.
namespace vardel {

using Random = std::mt19937_64;

struct Sample {
  CCardData card, decoded;
  CardDataStruct record;
};

/// A bit that makes the ones over itself and the bits k from `first` to `last`, earlier parities
/// included, an odd or even number; bits with k mod 3 = `skipped` do not count.
struct Parity {
  std::size_t at;
  bool isOdd;
  std::size_t first, last, skipped = 3;
};
using Parities = std::vector<Parity>;
inline const Parities k26 = {{0, true, 1, 12}, {25, false, 13, 24}};
inline const Parities k37 = {{0, true, 1, 18}, {36, false, 19, 35}};
inline const Parities kCorp = {{33, false, 1, 32, 0}, {0, true, 2, 33, 1}, {34, true, 0, 33}};
inline const Parities k34 = {{0, true, 1, 16}, {33, false, 17, 32}};

struct NumberLayout {
  std::string_view name;  // of the class, after "CCardFormat"
  std::int32_t decodedType;
  std::uint8_t decodedSubType;
  std::uint64_t maxFacility, maxCardID;
  std::size_t facilityDigits, cardIDDigits;  // 0: there is none
  // From bit 0 up, the bits of card number (c) and facility code (f), each from its lowest one.
  std::string_view ruler;
  Parities parities;
};
inline const NumberLayout kNumberLayouts[] = {
    {"HIDStandard", 2, 0, 255, 65535, 3, 5, "-ccccccccccccccccffffffff-", k26},
    {"EM", 1, 1, 255, 65535, 3, 5, "-ccccccccccccccccffffffff-", k26},
    {"37Bits", 0, 0, 65535, 524287, 5, 6, "-ccccccccffffffffffffffffccccccccccc-", k37},
    {"HIDCorp1000", 0, 0, 4095, 524287, 5, 6, "-ccccccccccccccccccccffffffffffff--", kCorp},
    {"34Bits", 2, 5, 65535, 65535, 5, 5, "-ccccccccffffffffccccccccffffffff-", k34},
    {"UID32BIts", 3, 1, 1, 0xFFFFFFFF, 0, 1, "cccccccccccccccccccccccccccccccc", {}}};

inline std::string Digits(std::uint64_t number, std::size_t digits) {
  const std::string text = std::to_string(number);
  return std::string(digits > text.size() ? digits - text.size() : 0, '0') + text;
}

inline Sample NumberCard(const NumberLayout& layout, std::uint64_t facility, std::uint64_t id) {
  const auto text = layout.facilityDigits == 0 ? "" : Digits(facility, layout.facilityDigits);
  const auto number = Digits(id, layout.cardIDDigits);
  const CCardData card{0, "", layout.decodedType, layout.decodedSubType, text, number, ""};
  Sample sample{card, card, {}};
  std::bitset<40> bits;
  for (std::size_t k = 0; k < layout.ruler.size(); ++k) {
    if (layout.ruler[k] == 'c') bits[k] = std::exchange(id, id / 2) % 2;
    if (layout.ruler[k] == 'f') bits[k] = std::exchange(facility, facility / 2) % 2;
  }
  for (const Parity& parity : layout.parities) {
    bits[parity.at] = parity.isOdd;
    for (std::size_t k = parity.first; k <= parity.last; ++k) {
      if (k % 3 != parity.skipped && bits[k]) bits.flip(parity.at);
    }
  }
  for (std::size_t i = 0; i < 5; ++i)
    sample.record.Bytes[i] = static_cast<std::uint8_t>(bits.to_ullong() >> 8 * i);
  return sample;
}

/// Any characters at all. The ruler gives the field of each byte; that of DongSeo starts with the
/// last byte, and its revision has to be a number.
inline Sample TextCard(std::uint8_t subType, std::string_view ruler, Random& random) {
  constexpr std::string CCardData::*kFields[] = {&CCardData::Facility, &CCardData::CardID,
                                                 &CCardData::Revision};
  const bool isDongSeo = subType == CARD_SUB_MI_DONGSEO;
  Sample sample{{0, "", CARD_MIFARE, subType, "", "", ""}, {}, {}};
  for (std::size_t i = 0; i < ruler.size(); ++i) {
    const auto field = kFields[std::string_view("fcr").find(ruler[i])];
    auto byte = static_cast<std::uint8_t>(random() >> 56);
    if (isDongSeo && ruler[i] == 'r') byte = static_cast<std::uint8_t>('1' + byte % 9);
    AppendCharOfByte(sample.card.*field, byte);
    if (byte == ' ' && subType == CARD_SUB_MI_WOORI_BANK) byte = 0;
    sample.record.Bytes[isDongSeo ? 9 - i : i] = byte;
    AppendCharOfByte(sample.decoded.*field, byte == 0 ? ' ' : byte);
  }
  if (isDongSeo) sample.decoded = sample.card;  // keeps zero bytes
  return sample;
}

/// A random card of any format but Binary26, which does not encode.
inline Sample DrawCard(std::string_view name, Random& random) {
  if (name == "LG") return TextCard(CARD_SUB_MI_LG, "ffffffccccccccrr", random);
  if (name == "Woori") return TextCard(CARD_SUB_MI_WOORI_BANK, "fcccccccccccccrr", random);
  if (name == "DongSeo") return TextCard(CARD_SUB_MI_DONGSEO, "rrcccccccc", random);
  const auto draw = [&random](auto max) { return random() % 16 == 0 ? max : 1 + random() % max; };
  for (const NumberLayout& layout : kNumberLayouts) {
    if (layout.name != name) continue;
    const auto facility = draw(layout.maxFacility);
    return NumberCard(layout, facility, draw(layout.maxCardID));
  }
  return {};  // a format without a ruler, which is a mismatch
}

/// What goes wrong on the card's way there and back; "" when nothing does.
inline std::string Mismatch(CCardFormatInfo& format, const Sample& sample) try {
  const CardDataStruct record = format.MakeCardData(sample.card);
  CCardFrame frame;
  frame.CardDataStruct(record);
  const CCardData card = format.AnalyzeCardData(frame).value();
  const auto values = [](const CCardData& c) {
    return std::tie(c.CardType, c.CardSubType, c.Facility, c.CardID, c.Revision, c.ErrName);
  };
  if (record == sample.record && values(card) == values(sample.decoded) && format.ErrName().empty())
    return "";
  std::string text(frame.RawCardHex());
  frame.CardDataStruct(sample.record);
  text.append(" instead of ").append(frame.RawCardHex()).append("; given, decoded, expected:");
  for (const CCardData* c : {&sample.card, &card, &sample.decoded}) {
    text += "\n" + std::to_string(c->CardType * 256 + c->CardSubType) + " '" + c->Facility + "' '" +
            c->CardID + "' '" + c->Revision + "' " + c->ErrName;
  }
  return text + " " + format.ErrName();
} catch (const std::exception& failure) {
  return "card number '" + sample.card.CardID + "': " + failure.what();
}

}  // namespace vardel
