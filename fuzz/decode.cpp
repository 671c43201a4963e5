#include "fuzz/support.h"
#include <vardel/facade/card.h>

using namespace vardel;
using namespace vardel::fuzz;

namespace {

struct Decoded {
  int end = 0;
  std::int32_t type = 0, subType = 0, errNumber = 0;
  std::string errName, facility, cardID, revision;

  bool operator==(const Decoded&) const = default;
};

/// Decodes twice, which has to give the same.
template <class Call>
Decoded Decode(const Frame& frame, const Call& call) {
  const auto once = [&] {
    Decoded result;
    frame.Restart();
    result.end = EndOf([&] {
      const CCardData c = call();
      result = {0,         c.CardType, c.CardSubType, c.ErrNumber,
                c.ErrName, c.Facility, c.CardID,      c.Revision};
    });
    return result;
  };
  Decoded result = once();
  Check(result == once(), "a second decode gives the same");
  return result;
}

Decoded Decode(const CardFormatClass& row, bool isReversed, const Frame& frame) {
  const auto format = row.Create();
  format->IsCardArrayReversed = isReversed;
  const Decoded card = Decode(frame, [&] { return format->AnalyzeCardData(frame).value(); });
  const bool isEmpty = (card.facility + card.cardID + card.revision).empty();
  Check(card.errNumber == (card.errName.empty() ? 0 : -1), "ErrNumber is 0 or -1");
  Check(card.errNumber == 0 || isEmpty, "an error goes with empty fields");
  Check(format->ErrNumber() == 0, "a decode leaves the format's error alone");
  const auto bytes = frame.Steady();
  if (!bytes || bytes->size() < 16) return card;

  Check(card.end == 0 && card.errNumber == 0, "a steady read of 16 bytes decodes");
  const bool isBlank = *bytes == std::string(bytes->size(), bytes->front()) &&
                       (bytes->front() == '\0' || bytes->front() == '\xFF');
  // Full binary has no number where all bytes together are too large for a double.
  if (bytes->size() < 128) Check(isEmpty == isBlank, "only blank reads have empty fields");
  const auto checkNumber = [](const std::string& text, std::int16_t charCount) {
    Check(text.find_first_not_of("0123456789") == std::string::npos &&
              static_cast<std::ptrdiff_t>(text.size()) >= charCount,
          "numbers are filled up with zeros");
  };
  if (!isEmpty && !format->IsSmartCard()) {
    checkNumber(card.facility, format->CharCountFacility);
    checkNumber(card.cardID, format->CharCountCardID);
  }
  return card;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  Input in(data, size);
  const CardFormatClass* const row = in.Format();
  const bool isReversed = in.Take<bool>();
  const Frame frame(in);
  if (row != nullptr) {
    Decode(*row, isReversed, frame);
    return 0;
  }

  CCard facade;
  const bool isType = facade.IsCardType(frame.FrameCardType(), frame.FrameCardSubType());
  Decoded expected;
  for (const CardFormatClass& each : CardFormatClasses().first(8)) {
    facade.CardFormat(each.CardType, each.CardSubType)->IsCardArrayReversed = isReversed;
    if (isType
            ? each.CardType == frame.FrameCardType() && each.CardSubType == frame.FrameCardSubType()
            : each.CardType == CARD_EM && frame.IsEMFrame())
      expected = Decode(each, isReversed, frame);
  }
  Check(Decode(frame, [&] { return facade.AnalyzeCardData(frame); }) == expected,
        "the facade decodes as its format");
  return 0;
}
