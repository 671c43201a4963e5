#pragma once

#include <vardel/core/enumerations.h>

#include <cstdint>
#include <string>

namespace vardel {

/// A card as an operator sees it, to be encoded or decoded. Every member is a plain value: no put
/// validates, none touches the error pair. Texts are UTF-8, here and in the whole library, and
/// lengths of texts count characters.
class CCardData {
 public:
  /// 0 = no error, -1 = the decoder recorded a content error, whose message is ErrName. Encoders
  /// neither read nor write the pair.
  std::int32_t ErrNumber = 0;
  std::string ErrName;
  /// A vardel::CardType; any number is kept.
  std::int32_t CardType = CARD_UNKNOWN;
  /// One of the sub-type enumerations, within CardType.
  std::uint8_t CardSubType = 0;
  /// Facility (site) code: a decimal number in the proximity formats, any characters in LG and
  /// Woori Bank. Formats without it do not read it.
  std::string Facility;
  /// Card number: a decimal number in the proximity formats and Mifare UID, exact up to 15 digits;
  /// any characters in the others.
  std::string CardID;
  /// Issue number, in LG, Woori Bank and DongSeo alone: the last two characters go on the card.
  std::string Revision;
};

}  // namespace vardel
