#include <vardel/core/enumerations.h>
#include <vardel/core/number.h>
#include <vardel/core/text.h>
#include <vardel/formats/card_formats.h>
#include <vardel/formats/steps.h>
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
  if (!steps::AcceptType(*this, card, CARD_MIFARE, layout_.subType)) return;

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
  steps::TurnAround(*this, record.Bytes);
}

bool TextFormat::Decode(const ICardFrame& frame, CCardData& result) {
  using characters::Zero;
  // Type and sub-type stay 0.
  constexpr steps::Rereads kRereads = {.always = 1, .whenReversed = 0};
  if (const auto bytes =
          steps::ReadBytes(*this, frame, steps::kMinSmartCardBytes, kRereads, result)) {
    result.Facility = characters::Take(*bytes, layout_.facility, Zero::IsBlank);
    result.CardID = characters::Take(*bytes, layout_.cardID, Zero::IsBlank);
    result.Revision = characters::Take(*bytes, layout_.revision, Zero::IsBlank);
  }
  return true;
}

}  // namespace vardel
