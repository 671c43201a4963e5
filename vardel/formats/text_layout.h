#pragma once

#include <vardel/formats/characters.h>

#include <cstdint>
#include <string_view>

namespace vardel {

/// In what the formats of TextFormat differ, apart from their parameters.
struct TextLayout {
  std::int32_t subType;
  /// How card number and revision are filled up; the facility code always with "0" on the left.
  characters::Align align;
  /// The character for that; without one, the descriptor's DefaultChar for the card number and a
  /// blank for the revision.
  std::string_view filler;
  /// How the encoder stores a blank. A zero byte is decoded as a blank in any case.
  characters::BlankStoredAs blank;

  // Where the decoder finds the fields. The encoder goes by the descriptor's occupied bytes.
  characters::Place facility;
  characters::Place cardID;
  characters::Place revision;
};

}  // namespace vardel
