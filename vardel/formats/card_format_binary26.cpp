#include <vardel/core/enumerations.h>
#include <vardel/core/host_fault.h>
#include <vardel/core/number.h>
#include <vardel/format/format_parameters.h>
#include <vardel/format/mod_card.h>
#include <vardel/formats/card_formats.h>
#include <vardel/formats/decode.h>
#include <vardel/formats/encode.h>

namespace vardel {
namespace {

// The whole card value is the card number, without facility code or parity:
//
//     bit  25 ............ 0
//           card number
//
// The byte count and the mask are wider than 26 bits need.
constexpr FormatParameters kParameters = {
    .CardType = CARD_HID,
    .CardSubType = CARD_SUB_HID_FULL_BIN,
    .DefaultCardName = "Binary 26Bits",
    .DefaultByte = 72,
    .BitCountTotal = 26,
    .ByteCountTotal = 5,
    .Facility = {.Bits = 0, .Bytes = 0, .Min = 0, .Max = kAllBits, .Mask = "", .Index = kNoBytes},
    .CardID = {.Bits = 26,
               .Bytes = 5,
               .Min = 1,
               .Max = kAllBits,
               .Mask = "999999999999999",
               .Index = {0, 4}},
    .Revision = {.Bits = 0, .Bytes = 0, .Min = -1, .Max = 0, .Mask = "", .Index = kNoBytes},
    .Layout = {.Bits = kWholeRead},
};

}  // namespace

CCardFormatBinary26::CCardFormatBinary26() : FormatWithoutFacility(kParameters) {}

bool CCardFormatBinary26::IsCardIDValid(std::string_view /*InData*/) const { return true; }

void CCardFormatBinary26::Encode(const CCardData& card, vardel::CardDataStruct& /*record*/) {
  encode::Field cardID;
  if (!encode::AcceptCardID(*this, card, cardID)) return;
  encode::RequireConvertible(cardID);
  // Cards are only ever read in this format: hosts expect this fault for a number that is accepted.
  throw HostFault(Fault::OutOfRange);
}

bool CCardFormatBinary26::Decode(const ICardFrame& frame, CCardData& result) {
  // Type and sub-type stay 0.
  constexpr decode::IdleReads kIdleReads = {.always = 0, .whenReversed = 1};
  if (const auto bytes =
          decode::ReadBytes(*this, frame, decode::kLeastProximityBytes, kIdleReads, result)) {
    // All bytes of the read count, not just 26 bits. There is no facility code to write, yet a
    // negative character count of it is fault 5.
    if (CharCountFacility < 0) throw HostFault(Fault::InvalidCall);
    const auto number = ByteArrayToNumber(*bytes);
    AssignNumber(result.CardID, number.value_or(0), CharCountCardID);
    if (!number) result.CardID.clear();
  }
  return true;
}

}  // namespace vardel
