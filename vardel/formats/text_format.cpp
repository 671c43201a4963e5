#include <vardel/core/enumerations.h>
#include <vardel/core/number.h>
#include <vardel/core/text.h>
#include <vardel/formats/card_formats.h>
#include <vardel/formats/decode.h>
#include <vardel/formats/encode.h>
#include <vardel/formats/text_layout.h>

#include <string>

namespace vardel {
namespace {

bool IsFilled(std::string_view text) {
  std::string filled(text);
  std::erase(filled, ' ');
  return !filled.empty() && filled != "0";
}

}  // namespace

TextFormat::TextFormat(const FormatParameters& parameters, const TextLayout& layout)
    : CCardFormatInfo(parameters), layout_(layout) {}

bool TextFormat::IsFacilityValid(std::string_view InData) const { return IsFilled(InData); }

bool TextFormat::IsCardIDValid(std::string_view InData) const { return IsFilled(InData); }

bool TextFormat::IsRevisionValid(std::string_view InData) const {
  return IsNumberWithin(InData, MinRevision, MaxRevision);
}

void TextFormat::Encode(const CCardData& card, vardel::CardDataStruct& record) {
  using characters::Align;
  if (!encode::AcceptType(*this, card, CARD_MIFARE, layout_.subType)) return;

  int next = 0;
  const auto put = [&](std::string_view text, std::int16_t width, std::int16_t count,
                       std::string_view filler, Align align) {
    characters::Put(record, {.first = next, .count = count}, text, {width, filler, align},
                    layout_.blank);
    next += count;
  };
  const bool isFixed = !layout_.filler.empty();
  put(card.Facility, OccupiedByteFacility, OccupiedByteFacility, "0", Align::Right);
  put(card.CardID, OccupiedByteCardId, OccupiedByteCardId, isFixed ? layout_.filler : DefaultChar,
      layout_.align);
  put(LastChars(card.Revision, 2), CharCountRevision, OccupiedByteRevision,
      isFixed ? layout_.filler : " ", layout_.align);
  encode::TurnAround(*this, record.Bytes);
}

bool TextFormat::Decode(const ICardFrame& frame, CCardData& result) {
  using characters::BlankStoredAs;
  // Type and sub-type stay 0.
  constexpr decode::IdleReads kIdleReads = {.always = 1, .whenReversed = 0};
  if (const auto bytes =
          decode::ReadBytes(*this, frame, decode::kLeastSmartCardBytes, kIdleReads, result)) {
    result.Facility = characters::Take(*bytes, layout_.facility, BlankStoredAs::Zero);
    result.CardID = characters::Take(*bytes, layout_.cardID, BlankStoredAs::Zero);
    result.Revision = characters::Take(*bytes, layout_.revision, BlankStoredAs::Zero);
  }
  return true;
}

}  // namespace vardel
