#pragma once

#include <vardel/core/enumerations.h>

#include <cstdint>
#include <string>

namespace vardel {

/// A decoded card, as an operator sees it. Every member is a plain value: no put validates, none
/// touches the error pair.
class CCardData {
 public:
  /// 0 = no error, -1 = the decoder recorded a content error.
  std::int32_t ErrNumber = 0;
  std::string ErrName;
  /// A vardel::CardType; any number is kept.
  std::int32_t CardType = CARD_UNKNOWN;
  /// One of the sub-type enumerations, within CardType.
  std::uint8_t CardSubType = 0;
  /// Facility (site) code, as decimal text in the proximity formats.
  std::string Facility;
  /// Card number, as decimal text in the proximity formats; at most 15 digits are exact.
  std::string CardID;
  /// Issue number, as text.
  std::string Revision;
};

}  // namespace vardel
