#include <vardel/core/enumerations.h>
#include <vardel/formats/card_formats.h>
#include <vardel/formats/layout_26bit.h>
#include <vardel/formats/steps.h>

namespace vardel {
namespace {

constexpr FormatParameters kParameters =
    layout_26bit::Parameters(CARD_HID, CARD_SUB_HID_STD, "HID STANDARD");

}  // namespace

CCardFormatHIDStandard::CCardFormatHIDStandard() : LimitCheckedFormat(kParameters) {}

void CCardFormatHIDStandard::Encode(const CCardData& card, vardel::CardDataStruct& record) {
  steps::Fields fields;
  if (!steps::AcceptFields(*this, card, steps::Unused::Skip, fields)) return;
  layout_26bit::Encode(*this, fields, record);
}

bool CCardFormatHIDStandard::Decode(const ICardFrame& frame, CCardData& result) {
  result.CardType = CARD_HID;  // the sub-type stays 0
  constexpr steps::Rereads kRereads = {.always = 0, .whenReversed = 1};
  if (const auto bytes =
          steps::ReadBytes(*this, frame, steps::kMinProximityBytes, kRereads, result)) {
    layout_26bit::PutFields(*this, *bytes, result);
  }
  return true;
}

}  // namespace vardel
