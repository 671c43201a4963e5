#include <vardel/core/enumerations.h>
#include <vardel/core/error.h>
#include <vardel/core/number.h>
#include <vardel/core/text.h>
#include <vardel/format/format_parameters.h>
#include <vardel/format/mod_card.h>
#include <vardel/formats/card_formats.h>
#include <vardel/formats/characters.h>
#include <vardel/formats/decode.h>
#include <vardel/formats/encode.h>

#include <cstddef>
#include <iterator>

namespace vardel {
namespace {

// Text, one character per byte, each field with its last character first:
//
//     byte  0 ......... 7 | 8 .... 9 | 10 ... 31
//            card number  | revision |     0
//
// The parameters do not quite match: the four-digit mask stands at the facility code, which the
// card does not have, and the revision has no character count, so nothing fills a short one up.
constexpr FormatParameters kParameters = {
    .IsSmartCard = true,
    .CardType = CARD_MIFARE,
    .CardSubType = CARD_SUB_MI_DONGSEO,
    .DefaultCardName = "KyungHee Univ. DongSeo Hospital",
    .DefaultByte = 0,
    .BitCountTotal = 64,
    .ByteCountTotal = 8,
    .Facility = {.Bits = 0, .Bytes = 0, .Min = 0, .Max = 0, .Mask = "9999", .Index = {0, 0}},
    .CardID = {.Bits = 64,
               .Bytes = 8,
               .Min = 1,
               .Max = 1e16,
               .Mask = "CCCCCCCCCCCCCCCC",
               .Index = {0, 3}},
    .Revision = {.Bits = 16, .Bytes = 2, .Min = 1, .Max = 9999, .Mask = "", .Index = {0, 0}},
    .Layout = {.Bits = 80, .IsByteArray = true},
};

/// A field of `count` bytes from `start` on, its last character first.
constexpr characters::Place Backwards(int start, int count) {
  return {.first = start + count - 1, .count = count, .step = -1};
}

}  // namespace

CCardFormatDongSeo::CCardFormatDongSeo() : FormatWithoutFacility(kParameters) {}

bool CCardFormatDongSeo::IsCardIDValid(std::string_view InData) const {
  if (std::int64_t digits = 0; ParseDigits(InData, digits)) {
    return digits != 0 && std::ssize(InData) <= CharCountCardID;
  }
  const std::string_view text = TrimBlanks(InData);
  if (text.empty()) return false;
  if (static_cast<std::ptrdiff_t>(CharCount(text)) > CharCountCardID) return false;
  return !IsNumberWithin(text, 0, 0);  // letters pass, and so do negative numbers
}

bool CCardFormatDongSeo::IsRevisionValid(std::string_view InData) const {
  return IsNumberWithin(InData, MinRevision, MaxRevision);
}

vardel::CardDataStruct CCardFormatDongSeo::MakeCardData(const CCardData* CardData) {
  InitErr();
  return CCardFormatInfo::MakeCardData(CardData);
}

void CCardFormatDongSeo::Encode(const CCardData& card, vardel::CardDataStruct& record) {
  using characters::Align;
  using characters::BlankStoredAs;
  InitErr();
  if (!encode::AcceptType(*this, card, CARD_MIFARE, CARD_SUB_MI_DONGSEO)) return;

  // A bad card number leaves its bytes 0, and the record is still made; a bad revision leaves its
  // bytes 0 and is not even recorded.
  if (IsCardIDValid(card.CardID)) {
    characters::Put(record, Backwards(0, OccupiedByteCardId), card.CardID,
                    {OccupiedByteCardId, "0", Align::Right}, BlankStoredAs::Blank);
  } else {
    encode::Reject(*this, message::kIncorrectCardID);
  }
  if (IsRevisionValid(card.Revision)) {
    characters::Put(
        record, Backwards(OccupiedByteFacility + OccupiedByteCardId, OccupiedByteRevision),
        LastChars(card.Revision, 2), {CharCountRevision, "0", Align::Right}, BlankStoredAs::Blank);
  }
  encode::TurnAround(*this, record.Bytes);
}

bool CCardFormatDongSeo::Decode(const ICardFrame& frame, CCardData& result) {
  using characters::BlankStoredAs;
  result.CardType = CARD_MIFARE;
  result.CardSubType = CARD_SUB_MI_DONGSEO;
  // The raw bytes count here, not their text. Nine bytes pass this test and end in fault 9 below.
  const auto raw = decode::RequireRawBytes(frame);
  if (raw.size() < 9) {
    decode::RecordTooSmall(result);
    return true;
  }
  const ByteArray bytes = IsCardArrayReversed ? ReverseBytes(raw) : ByteArray(raw);
  if (decode::IsBlank(bytes)) return true;
  result.CardID = characters::Take(bytes, Backwards(0, OccupiedByteCardId), BlankStoredAs::Blank);
  result.Revision = characters::Take(
      bytes, Backwards(OccupiedByteFacility + OccupiedByteCardId, OccupiedByteRevision),
      BlankStoredAs::Zero);
  return true;
}

}  // namespace vardel
