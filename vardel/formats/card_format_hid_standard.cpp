#include <vardel/core/enumerations.h>
#include <vardel/formats/card_formats.h>
#include <vardel/formats/decode.h>
#include <vardel/formats/encode.h>
#include <vardel/formats/layout_26bit.h>

namespace vardel {
namespace {

constexpr FormatParameters kParameters =
    layout_26bit::Parameters(CARD_HID, CARD_SUB_HID_STD, "HID STANDARD");

}  // namespace

CCardFormatHIDStandard::CCardFormatHIDStandard() : LimitCheckedFormat(kParameters) {}

void CCardFormatHIDStandard::Encode(const CCardData& card, vardel::CardDataStruct& record) {
  encode::Fields fields;
  if (!encode::AcceptFields(*this, card, encode::EachField::IsOnlySummed, fields)) return;
  layout_26bit::Encode(*this, fields, record);
}

bool CCardFormatHIDStandard::Decode(const ICardFrame& frame, CCardData& result) {
  result.CardType = CARD_HID;  // the sub-type stays 0
  constexpr decode::IdleReads kIdleReads = {.always = 0, .whenReversed = 1};
  if (const auto bytes =
          decode::ReadBytes(*this, frame, decode::kLeastProximityBytes, kIdleReads, result)) {
    layout_26bit::PutFields(*this, *bytes, result);
  }
  return true;
}

}  // namespace vardel
