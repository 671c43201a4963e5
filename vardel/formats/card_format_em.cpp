#include <vardel/core/enumerations.h>
#include <vardel/formats/card_formats.h>
#include <vardel/formats/layout_26bit.h>
#include <vardel/formats/steps.h>

namespace vardel {
namespace {

constexpr FormatParameters kParameters =
    layout_26bit::Parameters(CARD_EM, CARD_SUB_EM_STD_26BITS, "EM");

}  // namespace

CCardFormatEM::CCardFormatEM() : LimitCheckedFormat(kParameters) {}

void CCardFormatEM::Encode(const CCardData& card, vardel::CardDataStruct& record) {
  steps::Fields fields;
  if (!steps::AcceptFields(*this, card, steps::Unused::Convert, fields)) return;
  layout_26bit::Encode(*this, fields, record);
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
