#pragma once

#include <vardel/core/card_data_struct.h>

#include <cstdint>
#include <span>
#include <string>
#include <string_view>

/// Fields that lie on the card as text: one character per byte, by its code in Windows-1252.
namespace vardel::characters {

/// How a text shorter than its field is filled up.
enum class Align { Left, Right };

/// To how many characters a text is filled up with which one. A text as long as that or longer
/// passes unchanged.
struct Filling {
  std::int16_t length;
  std::string_view padChar;
  Align align;
};

/// The bytes of a field, in the order of its characters: `count` of them, from `first` on in steps
/// of `step` (1 or -1).
struct Place {
  int first;
  int count;
  int step = 1;
};

/// What is on the card for a blank: its own code, or a zero byte, which then reads as a blank.
/// Where blanks keep their code, a zero byte reads as the character with code 0.
enum class BlankStoredAs { Blank, Zero };

/// Puts the first characters of a text, filled up, into a field. Fault 5 where the text ends before
/// the field, fault 6 for a character without a code, fault 9 where the field leaves the record.
void Put(CardDataStruct& record, const Place& place, std::string_view text, const Filling& filling,
         BlankStoredAs blank);

/// The text of a field. Fault 9 where the field leaves the bytes.
std::string Take(std::span<const std::uint8_t> bytes, const Place& place, BlankStoredAs blank);

}  // namespace vardel::characters
