#pragma once

#include <vardel/core/card_byte_data.h>
#include <vardel/core/card_data.h>
#include <vardel/core/frame.h>
#include <vardel/format/card_format_info.h>

#include <array>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

namespace vardel {

/// The entry point: picks the format of a card's type pair and converts with it. It makes one
/// object of each of its formats and keeps them; hosts keep one facade rather than make one per
/// card. Copies of a facade share its formats. No object of the library may be used by two threads
/// at once: each thread has a facade of its own, and the formats of that.
class CCard {
 public:
  CCard();

  /// Set by MakeCardData alone: ("Unknown Card Type", -1) or ("", 0).
  std::string ErrName;
  std::int32_t ErrNumber = 0;

  /// The format of a type pair: the same object every time, and the one that the conversions use.
  /// Fault 424 for a pair without a registered format, fault 6 where the type code overflows. The
  /// facade's error is left alone.
  std::shared_ptr<CCardFormatInfo> CardFormat(std::int32_t CardType,
                                              std::int32_t CardSubType) const;
  /// The same by type code (type x 256 + sub-type).
  std::shared_ptr<CCardFormatInfo> CardFormatByCode(std::int32_t CardTypeCode) const;

  /// A format is registered for the pair. HID/3 and HID/4 are, though IsCardType is false for them.
  /// Fault 6 where the type code overflows.
  bool IsExisted(std::int32_t CardType, std::int32_t CardSubType) const;
  /// The number of main card types, always 3; not the number of formats.
  std::int16_t CardTypeCount() const { return 3; }
  /// EM, HID or Mifare.
  bool IsCardMainType(std::int32_t InData) const;
  /// MakeCardData and AnalyzeCardData convert cards of this pair.
  bool IsCardType(std::int32_t InCardType, std::int32_t InCardSubType) const;
  /// Always end in fault 424: no format says how many digits its card data has.
  [[noreturn]] bool IsSmartCardData(std::string_view CardData) const;
  [[noreturn]] bool IsSecurityCardData(std::string_view CardData) const;

  /// Encodes a card. A pair that IsCardType refuses gives a blank result and "Unknown Card Type" on
  /// the facade, whose error is otherwise cleared. The format's error pair, an old one included, is
  /// copied onto the result. A null card is fault 91; faults of the format pass to the caller.
  CCardByteData MakeCardData(const CCardData& InCardData) { return MakeCardData(&InCardData); }
  CCardByteData MakeCardData(const CCardData* InCardData);

  /// Decodes a read with the format of its pair, or with EM standard when IsCardType refuses the
  /// pair and the frame says IsEMFrame; a read that is neither gives a blank card without an error.
  /// The facade's error is left alone, and so is that of the format. A null frame is fault 91;
  /// faults of the format and failures of the frame pass to the caller.
  CCardData AnalyzeCardData(const ICardFrame& UFrame) const { return AnalyzeCardData(&UFrame); }
  CCardData AnalyzeCardData(const ICardFrame* UFrame) const;

 private:
  /// The format that converts cards of the pair; null where IsCardType refuses it.
  CCardFormatInfo* Converter(std::int32_t cardType, std::int32_t cardSubType) const;

  /// One place for each pair of a main type and a sub-type; null where no format is registered.
  std::array<std::shared_ptr<CCardFormatInfo>, 32> formats_;
};

/// Values of the suite that come with the library: a text of zeros and its length. Every new facade
/// sets them for its thread. The library itself has no use for them; this is where hosts find them.
struct CardFiller {
  std::int32_t Length = 0;
  std::string_view Text;
};
const CardFiller& LibraryFiller();

}  // namespace vardel
