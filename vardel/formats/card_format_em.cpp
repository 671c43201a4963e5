#include <vardel/core/enumerations.h>
#include <vardel/formats/card_formats.h>
#include <vardel/formats/decode.h>
#include <vardel/formats/encode.h>
#include <vardel/formats/layout_26bit.h>

namespace vardel {
namespace {

constexpr FormatParameters kParameters =
    layout_26bit::Parameters(CARD_EM, CARD_SUB_EM_STD_26BITS, "EM");

}  // namespace

CCardFormatEM::CCardFormatEM() : LimitCheckedFormat(kParameters) {}

void CCardFormatEM::Encode(const CCardData& card, vardel::CardDataStruct& record) {
  encode::Fields fields;
  if (!encode::AcceptFields(*this, card, encode::EachField::IsConverted, fields)) return;
  layout_26bit::Encode(*this, fields, record);
}

bool CCardFormatEM::Decode(const ICardFrame& frame, CCardData& result) {
  result.CardType = CARD_EM;
  result.CardSubType = CARD_SUB_EM_STD_26BITS;
  constexpr decode::IdleReads kIdleReads = {.always = 1, .whenReversed = 1};
  if (const auto bytes =
          decode::ReadBytes(*this, frame, decode::kLeastProximityBytes, kIdleReads, result)) {
    layout_26bit::PutFields(*this, *bytes, result);
  }
  return true;
}

}  // namespace vardel
