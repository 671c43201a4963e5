#pragma once

// The members of a card format descriptor in interface order: number, name, automation type. One
// list for every place that needs them all; the IDL compiler reads it too. P is what the names of
// the macros that stand for the kinds of members begin with:
//
//   FIELD        a plain value with put, then get
//   PUT, GET     one half of such a value, where the halves do not stand together
//   ACCESSOR     as FIELD, behind methods of the same name
//   READONLY     a get behind a method
//   INIT         no argument; gives an empty variant
//   VALIDATOR    text in, boolean out
//   ENCODER, DECODER

// One member a line.
// clang-format off

#define DESCRIPTOR_MEMBERS(P)                    \
  P##ACCESSOR(1, ErrName, BSTR)                  \
  P##ACCESSOR(2, ErrNumber, long)                \
  P##INIT(3, InitErr)                            \
  P##FIELD(4, IsCardArrayReversed, VARIANT_BOOL) \
  P##READONLY(5, IsSmartCard, VARIANT_BOOL)      \
  P##FIELD(6, MinRevision, short)                \
  P##FIELD(7, MinCardID, double)                 \
  P##FIELD(8, MinFacility, double)               \
  P##FIELD(9, CharCountRevision, short)          \
  P##FIELD(10, CharCountCardID, short)           \
  P##FIELD(11, CharCountFacility, short)         \
  P##FIELD(12, CharCountTotal, long)             \
  P##FIELD(13, ByteCountTotal, short)            \
  P##FIELD(14, MaskRevision, BSTR)               \
  P##FIELD(15, MaskCardID, BSTR)                 \
  P##FIELD(16, MaskFacility, BSTR)               \
  P##PUT(17, MaxRevision, short)                 \
  P##PUT(18, MaxCardID, double)                  \
  P##PUT(19, MaxFacility, double)                \
  P##GET(17, MaxRevision, short)                 \
  P##GET(18, MaxCardID, double)                  \
  P##GET(19, MaxFacility, double)                \
  P##FIELD(20, DefaultByte, short)               \
  P##FIELD(21, PromptChar, BSTR)                 \
  P##FIELD(22, BitCountTotal, long)              \
  P##FIELD(23, DefaultCardName, BSTR)            \
  P##FIELD(24, CardName, BSTR)                   \
  P##FIELD(25, CardType, short)                  \
  P##FIELD(26, CardSubType, short)               \
  P##FIELD(27, BitCountRevision, short)          \
  P##FIELD(28, BitCountCardID, short)            \
  P##FIELD(29, BitCountFacility, short)          \
  P##FIELD(30, OccupiedByteRevision, short)      \
  P##FIELD(31, OccupiedByteFacility, short)      \
  P##FIELD(32, OccupiedByteCardId, short)        \
  P##FIELD(33, DefaultChar, BSTR)                \
  P##FIELD(34, EidxRevision, short)              \
  P##FIELD(35, SidxRevision, short)              \
  P##FIELD(36, EidxCardID, short)                \
  P##FIELD(37, SidxCardID, short)                \
  P##FIELD(38, EidxFacility, short)              \
  P##FIELD(39, SidxFacility, short)              \
  P##VALIDATOR(40, IsFacilityValid)              \
  P##VALIDATOR(41, IsCardIDValid)                \
  P##ENCODER(42, MakeCardData)                   \
  P##DECODER(43, AnalyzeCardData)

// clang-format on
