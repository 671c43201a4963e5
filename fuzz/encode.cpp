#include "fuzz/support.h"
#include <vardel/core/card_frame.h>
#include <vardel/core/error.h>
#include <vardel/facade/card.h>

#include <cmath>

using namespace vardel;
using namespace vardel::fuzz;

namespace {

struct Encoded {
  int end = 0;
  CardDataStruct record;
  std::int32_t errNumber = 0;
  std::string errName;

  bool operator==(const Encoded&) const = default;
};

Encoded Encode(CCardFormatInfo& format, const CCardData& card) {
  Encoded result;
  result.end = EndOf([&] { result.record = format.MakeCardData(card); });
  result.errNumber = format.ErrNumber();
  result.errName = format.ErrName();
  return result;
}

/// The value of a numeric text, not by way of the library.
std::optional<double> Number(std::string text) {
  if (text.find_first_not_of(" \t+-.0123456789eEdD") != std::string::npos) return {};
  text.erase(0, text.find_first_not_of(" \t"));
  text.erase(text.find_last_not_of(" \t") + 1);
  std::ranges::replace(text, 'd', 'e');
  std::ranges::replace(text, 'D', 'e');
  char* end = nullptr;
  const double value = std::strtod(text.c_str(), &end);
  if (text.empty() || end != text.c_str() + text.size() || !std::isfinite(value)) return {};
  return value;
}

bool IsWhole(std::optional<double> value) { return value && *value == std::floor(*value); }

/// EM, HID standard, 37-bit, Corporate 1000, 34-bit and UID, with the record not turned around.
void CheckNumbers(const CardFormatClass& row, CCardFormatInfo& format, const CCardData& card,
                  const Encoded& made) {
  const bool isUid = format.IsSmartCard();
  const auto facility = isUid ? 1.0 : Number(card.Facility);
  const auto cardID = Number(card.CardID);
  const bool areWhole = IsWhole(facility) && IsWhole(cardID);
  bool isFacility = true, isCardID = true;
  if (!isUid) {
    isFacility = facility && *facility >= format.MinFacility && *facility <= format.MaxFacility;
    isCardID = cardID && *cardID >= format.MinCardID && *cardID <= format.MaxCardID;
    Check(format.IsFacilityValid(card.Facility) == isFacility, "IsFacilityValid");
    Check(format.IsCardIDValid(card.CardID) == isCardID, "IsCardIDValid");
  }
  if (made.end == 13) {
    Check(isUid && !cardID, "only a UID that is no number is fault 13");
  } else if (made.end != 0) {
    Check(made.end == 6 && isFacility && !(areWhole && *cardID >= 0),
          "only fractions and negative numbers do not fit");
  } else if (made.errNumber != 0) {
    Check(!isFacility || !isCardID, "a card within the limits is accepted");
    const auto name = isFacility ? message::kIncorrectCardID : message::kIncorrectFacilityCode;
    Check(made.errName == name, "the facility code is tested first");
  } else {
    Check(isFacility && isCardID && cardID, "a card outside the limits is refused");
    if (!areWhole) return;
    CCardFrame frame;
    frame.CardDataStruct(made.record);
    const CCardData decoded = row.Create()->AnalyzeCardData(frame).value();
    const bool isCorporate = row.CardSubType == CARD_SUB_HID_CORPORATES1000;
    const double given = std::fmod(*facility, isCorporate ? 4096 : 65536);
    Check(isUid || std::stod(decoded.Facility) == given, "the facility code comes back");
    const bool isBlank = made.record == CardDataStruct();
    Check((isBlank ? 0 : std::stod(decoded.CardID)) == std::fmod(*cardID, 4294967296.0),
          "the card number comes back");
  }
}

void CheckFormat(const CardFormatClass& row, bool isReversed, const CCardData& card) {
  const auto format = row.Create();
  format->IsCardArrayReversed = isReversed;
  Encoded made = Encode(*format, card);
  Check(Encode(*format, card) == made, "a second encode gives the same");
  Check(made.errNumber == (made.errName.empty() ? 0 : -1), "ErrNumber is 0 or -1");
  const int code = row.CardType * 256 + row.CardSubType;
  const bool isOwn = card.CardType == row.CardType && card.CardSubType == row.CardSubType;
  const bool isRefused = format->IsSmartCard() && !isOwn;
  Check((made.errName == message::kIncorrectCardType) == isRefused,
        "smart cards are of the format");
  if (made.errNumber != 0 && (isRefused || code != 773))
    Check(made.end == 0 && made.record == CardDataStruct(), "an error goes with a blank record");
  if (isRefused || code > 769) return;  // the rest are texts

  if (isReversed && code != 517)
    std::reverse(made.record.Bytes.begin(), made.record.Bytes.begin() + (code == 769 ? 4 : 32));
  if (code != 514) CheckNumbers(row, *format, card, made);
  Check(code != 514 || made.end != 0 || made.errNumber != 0, "full binary makes no record");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  Input in(data, size);
  const CardFormatClass* const row = in.Format();
  const bool isReversed = in.Take<bool>();
  const CCardData card = in.Card();
  if (row != nullptr) {
    CheckFormat(*row, isReversed, card);
    return 0;
  }

  CCard facade;
  Encoded made, expected;
  made.end = EndOf([&] {
    const CCardByteData bytes = facade.MakeCardData(card);
    made = {0, bytes.CardDataStruct, bytes.ErrNumber(), bytes.ErrName()};
  });
  const bool isType = facade.IsCardType(card.CardType, card.CardSubType);
  for (const CardFormatClass& each : CardFormatClasses()) {
    if (isType && card.CardType == each.CardType && card.CardSubType == each.CardSubType)
      expected = Encode(*each.Create(), card);
  }
  if (made.end != 0) made = {made.end, {}, expected.errNumber, expected.errName};
  Check(made == expected, "the facade encodes as its format");
  Check((facade.ErrName == message::kUnknownCardType) == !isType, "an unknown card is recorded");
  return 0;
}
