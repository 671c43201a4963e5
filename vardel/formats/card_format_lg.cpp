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
    .blank = characters::Zero::IsZero,
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
    .BitCount = {.Facility = 48, .CardID = 64, .Revision = 16},
    .OccupiedByte = {.Facility = 6, .CardID = 8, .Revision = 2},
    .BitCountTotal = 128,
    .ByteCountTotal = 16,
    .Min = {.Facility = 1, .CardID = 1, .Revision = 1},
    .Max = {.Facility = 999999, .CardID = 99999999, .Revision = 99},
    .Mask = {.Facility = "AAAAAA", .CardID = "AAAAAAAA", .Revision = "99"},
    .Index = {.Facility = {0, 5}, .CardID = {6, 13}, .Revision = {14, 15}},
};

}  // namespace

CCardFormatLG::CCardFormatLG() : TextFormat(kParameters, kLayout) {}

}  // namespace vardel
