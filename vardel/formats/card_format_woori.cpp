#include <vardel/core/enumerations.h>
#include <vardel/format/format_parameters.h>
#include <vardel/formats/card_formats.h>
#include <vardel/formats/text_layout.h>

namespace vardel {
namespace {

// Text, one character per byte; the facility code is filled with "0" on the left, the other fields
// with blanks on the right, and blanks are stored as 0:
//
//     byte     0     | 1 ........ 13 | 14 ... 15 | 16 ... 31
//           facility |  card number  |  revision |     0
constexpr TextLayout kLayout = {
    .subType = CARD_SUB_MI_WOORI_BANK,
    .align = characters::Align::Left,
    .filler = "",
    .blank = characters::BlankStoredAs::Zero,
    .facility = {.first = 0, .count = 1},
    .cardID = {.first = 1, .count = 13},
    .revision = {.first = 14, .count = 2},
};

constexpr FormatParameters kParameters = {
    .IsSmartCard = true,
    .CardType = CARD_MIFARE,
    .CardSubType = CARD_SUB_MI_WOORI_BANK,
    .DefaultCardName = "Woori Bank Smart Card",
    .DefaultChar = " ",
    .DefaultByte = 0,
    .BitCountTotal = 128,
    .ByteCountTotal = 16,
    .Facility = {.Bits = 8, .Bytes = 1, .Min = 0, .Max = 9, .Mask = "C", .Index = {0, 0}},
    .CardID = {.Bits = 104,
               .Bytes = 13,
               .Min = 1,
               .Max = 9999999999999,
               .Mask = "CCCCCCCCCCCCC",
               .Index = {1, 13}},
    .Revision = {.Bits = 16, .Bytes = 2, .Min = 0, .Max = 99, .Mask = "99", .Index = {14, 15}},
    .Layout = {.Bits = 128},
};

}  // namespace

CCardFormatWoori::CCardFormatWoori() : TextFormat(kParameters, kLayout) {
  // Two hexadecimal digits per byte of these fields. CharCountTotal keeps the sum of the mask
  // lengths.
  CharCountFacility = 2;
  CharCountCardID = 26;
}

}  // namespace vardel
