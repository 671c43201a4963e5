#include <vardel/core/enumerations.h>
#include <vardel/format/format_parameters.h>
#include <vardel/formats/card_formats.h>
#include <vardel/formats/layout_26bit.h>
#include <vardel/formats/steps.h>

namespace vardel {
namespace {

constexpr FormatParameters kParameters = {
    .CardType = CARD_EM,
    .CardSubType = CARD_SUB_EM_STD_26BITS,
    .DefaultCardName = "EM",
    .DefaultByte = 72,
    .BitCount = {.Facility = 8, .CardID = 16, .Revision = 0},
    .OccupiedByte = {.Facility = 2, .CardID = 3, .Revision = 0},
    .BitCountTotal = 26,
    .ByteCountTotal = 4,
    .Min = {.Facility = 1, .CardID = 1, .Revision = -1},
    .Max = {.Facility = kAllBits, .CardID = kAllBits, .Revision = -1},
    .Mask = {.Facility = "999", .CardID = "99999", .Revision = ""},
    .Index = {.Facility = {2, 3}, .CardID = {0, 2}, .Revision = kNoBytes},
};

}  // namespace

CCardFormatEM::CCardFormatEM() : LimitCheckedFormat(kParameters) {}

CardDataStruct CCardFormatEM::Encode(const CCardData& card) {
  double facility = 0;
  if (!steps::AcceptFacility(*this, card, facility)) return {};
  steps::CheckConversion(facility);
  double cardID = 0;
  if (!steps::AcceptCardID(*this, card, cardID)) return {};
  steps::CheckConversion(cardID);
  return layout_26bit::Encode(*this, facility, cardID);
}

bool CCardFormatEM::Decode(const ICardFrame& frame, CCardData& result) {
  result.CardType = CARD_EM;
  result.CardSubType = CARD_SUB_EM_STD_26BITS;
  constexpr steps::Rereads kRereads = {.always = 1, .whenReversed = 1};
  if (const auto bytes =
          steps::ReadBytes(*this, frame, steps::kMinProximityBytes, kRereads, result)) {
    layout_26bit::PutFields(*this, *bytes, result);
  }
  return true;
}

}  // namespace vardel
