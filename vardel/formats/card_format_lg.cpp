#include <vardel/core/enumerations.h>
#include <vardel/format/format_parameters.h>
#include <vardel/formats/card_formats.h>
#include <vardel/formats/text_layout.h>

namespace vardel {
namespace {

// Text, one character per byte, each field filled with "0" on the left:
//
//     byte  0 ..... 5 | 6 ........ 13 | 14 ... 15 | 16 ... 31
//           facility  |  card number  |  revision |     0
constexpr TextLayout kLayout = {
    .subType = CARD_SUB_MI_LG,
    .align = characters::Align::Right,
    .filler = "0",
    .blank = characters::BlankStoredAs::Blank,
    .facility = {.first = 0, .count = 6},
    .cardID = {.first = 6, .count = 8},
    .revision = {.first = 14, .count = 2},
};

constexpr FormatParameters kParameters = {
    .IsSmartCard = true,
    .CardType = CARD_MIFARE,
    .CardSubType = CARD_SUB_MI_LG,
    .DefaultCardName = "LG Smart Card",
    .DefaultByte = 72,
    .BitCountTotal = 128,
    .ByteCountTotal = 16,
    .Facility =
        {.Bits = 48, .Bytes = 6, .Min = 1, .Max = 999999, .Mask = "AAAAAA", .Index = {0, 5}},
    .CardID =
        {.Bits = 64, .Bytes = 8, .Min = 1, .Max = 99999999, .Mask = "AAAAAAAA", .Index = {6, 13}},
    .Revision = {.Bits = 16, .Bytes = 2, .Min = 1, .Max = 99, .Mask = "99", .Index = {14, 15}},
    .Layout = {.Bits = 128},
};

}  // namespace

CCardFormatLG::CCardFormatLG() : TextFormat(kParameters, kLayout) {}

}  // namespace vardel
