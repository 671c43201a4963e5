#pragma once

// The members of the classes in interface order, for the IDL compiler and the C++ compiler: number,
// name, automation types. P is what the names of the macros that stand for the kinds of members
// begin with. Beside the kinds of the descriptor's list these are:
//
//   ACTION       no argument, no result
//   ACTION1..2   so many arguments, no result
//   METHOD1..3   so many arguments, each a type and a name; then the result's type
//   GET1, GET2   as METHOD, a get with arguments
//   INDEXED      put, then get, of a value with one argument
//   CONVERSION   one argument that comes by reference; then the result's type
//   RECORD       a plain value with put, then get; a record is put by reference
//   PUT_RECORD   a put of a record behind a method
//   FRAME_ENCODER
//                a put of the record that a format makes of a card
//   INIT_TYPE    INIT with a card type that may be omitted
//   ERROR_OBJECT the contained CError

// One member a line.
// clang-format off

#define ERROR_MEMBERS(P)       \
  P##FIELD(1, ErrName, BSTR)   \
  P##FIELD(2, ErrNumber, long) \
  P##ACTION(3, InitErr)        \
  P##ACTION2(4, MakeErr, long, ErrCode, BSTR, ErrMsg)

// What the interface of every class with a contained CError begins with.
#define ERROR_HOLDER_MEMBERS(P)   \
  P##ACCESSOR(1, ErrName, BSTR)   \
  P##ACCESSOR(2, ErrNumber, long) \
  P##ERROR_OBJECT(3, Error)       \
  P##ACTION(4, InitErr)           \
  P##ACTION2(5, MakeErr, long, ErrCode, BSTR, ErrMsg)

#define CARD_DATA_MEMBERS(P)              \
  P##FIELD(1, ErrNumber, long)            \
  P##FIELD(2, ErrName, BSTR)              \
  P##FIELD(3, CardType, CardType)         \
  P##FIELD(4, CardSubType, unsigned char) \
  P##FIELD(5, Facility, BSTR)             \
  P##FIELD(6, CardID, BSTR)               \
  P##FIELD(7, Revision, BSTR)

#define CARD_BYTE_DATA_MEMBERS(P)                                   \
  ERROR_HOLDER_MEMBERS(P)                                           \
  P##INIT_TYPE(6, InitCardData)                                     \
  P##ACCESSOR(7, CardType, CardType)                                \
  P##ACCESSOR(8, CardSubType, unsigned char)                        \
  P##READONLY(9, CardDataByteCount, long)                           \
  P##INDEXED(10, CardArrDataByIndex, long, ArrIndex, unsigned char) \
  P##RECORD(11, CardDataStruct)

#define BYTE_ARRAY_DATA_MEMBERS(P)     \
  ERROR_HOLDER_MEMBERS(P)              \
  P##ACTION(6, InitData)               \
  P##ACCESSOR(7, ByteCount, long)      \
  P##READONLY(8, HexCharCount, long)   \
  P##READONLY(9, LastArrayIndex, long) \
  P##ACCESSOR(10, ByteOR, long)        \
  P##ACCESSOR(11, ByteAND, long)       \
  P##FIELD(12, HexString, BSTR)        \
  P##FIELD(13, ChrString, BSTR)        \
  P##READONLY(14, IsAvailable, VARIANT_BOOL)

#define CARD_FRAME_MEMBERS(P)             \
  P##ACCESSOR(1, FrameCardType, long)     \
  P##ACCESSOR(2, FrameCardSubType, long)  \
  P##ACCESSOR(3, IsEMFrame, VARIANT_BOOL) \
  P##ACCESSOR(5, RawCardHex, BSTR)        \
  P##READONLY(4, RawCardBytes, VARIANT)   \
  P##PUT_RECORD(6, CardDataStruct)        \
  P##FRAME_ENCODER(7, MakeCardData)

#define CARD_MEMBERS(P)                                                              \
  P##FIELD(1, ErrName, BSTR)                                                         \
  P##FIELD(2, ErrNumber, long)                                                       \
  P##METHOD2(3, CardFormat, long, CardType, long, CardSubType, _CCardFormatInfo*)    \
  P##METHOD1(4, CardFormatByCode, long, CardTypeCode, _CCardFormatInfo*)             \
  P##GET2(5, IsExisted, long, CardType, long, CardSubType, VARIANT_BOOL)             \
  P##READONLY(6, CardTypeCount, short)                                               \
  P##METHOD1(7, IsCardMainType, CardType, InData, VARIANT_BOOL)                      \
  P##METHOD2(8, IsCardType, CardType, InCardType, long, InCardSubType, VARIANT_BOOL) \
  P##METHOD1(9, IsSmartCardData, BSTR, CardData, VARIANT_BOOL)                       \
  P##METHOD1(10, IsSecurityCardData, BSTR, CardData, VARIANT_BOOL)                   \
  P##CONVERSION(11, MakeCardData, _CCardData**, InCardData, _CCardByteData*)         \
  P##CONVERSION(12, AnalyzeCardData, IDispatch**, UFrame, _CCardData*)

#define CARD_TYPE_MEMBERS(P)              \
  ERROR_HOLDER_MEMBERS(P)                 \
  P##ACTION(6, initAll)                   \
  P##INIT(7, InitData)                    \
  P##FIELD(8, ShortName, BSTR)            \
  P##FIELD(9, TypeName, BSTR)             \
  P##READONLY(10, DefaultShortName, BSTR) \
  P##READONLY(11, DefaultName, BSTR)      \
  P##READONLY(12, TypeCode, long)         \
  P##READONLY(13, CardType, long)         \
  P##READONLY(14, CardSubType, long)      \
  P##FIELD(15, IsAvailable, VARIANT_BOOL)

#define CARD_TYPES_MEMBERS(P)                                                                \
  ERROR_HOLDER_MEMBERS(P)                                                                    \
  P##METHOD2(6, Add, _CCardType*, NewCardType, long, InCardTypeCode, VARIANT_BOOL)           \
  P##GET2(7, IsExisted, long, InCardType, long, InCardSubType, VARIANT_BOOL)                 \
  P##METHOD1(8, CardTypeByCode, long, InCardTypeCode, _CCardType*)                           \
  P##GET2(9, CardTypeByType, long, InCardType, long, InCardSubType, _CCardType*)             \
  P##READONLY(10, AllCardTypes, VARIANT)                                                     \
  P##READONLY(11, CardTypeCodes, VARIANT)                                                    \
  P##READONLY(12, Count, long)                                                               \
  P##METHOD2(13, GetDefaultShortName, long, InCardType, long, InCardSubType, BSTR)           \
  P##METHOD2(14, GetDefaultName, long, InCardType, long, InCardSubType, BSTR)                \
  P##GET1(15, DefaultShortName, BSTR, InCardTypeCode, BSTR)                                  \
  P##GET1(16, DefaultName, BSTR, InCardTypeCode, BSTR)                                       \
  P##INDEXED(17, ShortName, BSTR, InCardTypeCode, BSTR)                                      \
  P##METHOD3(18, LetShortName, long, InCardType, long, InCardSubType, BSTR, InName, long)    \
  P##METHOD2(19, GetShortName, long, InCardType, long, InCardSubType, BSTR)                  \
  P##INDEXED(20, CardTypeName, BSTR, InCardTypeCode, BSTR)                                   \
  P##METHOD3(21, LetCardTypeName, long, InCardType, long, InCardSubType, BSTR, InName, long) \
  P##METHOD2(22, GetCardTypeName, long, InCardType, long, InCardSubType, BSTR)

#define CARD_MATCH_MEMBERS(P)           \
  P##GET(1, ClassName, BSTR)            \
  P##GET(2, CardType, long)             \
  P##GET(3, CardSubType, long)          \
  P##GET(4, HasParity, VARIANT_BOOL)    \
  P##GET(5, ParityHolds, long)          \
  P##GET(6, UnusedSet, long)            \
  P##GET(7, BeyondLimits, long)         \
  P##READONLY(8, CardCount, long)       \
  P##GET1(9, CardData, long, Index, _CCardData*)

#define CARD_MATCHES_MEMBERS(P)         \
  P##ACTION1(1, Add, IDispatch*, Read)  \
  P##ACTION(2, Clear)                   \
  P##READONLY(3, ReadCount, long)       \
  P##READONLY(4, BlankCount, long)      \
  P##READONLY(5, Count, long)           \
  P##GET1(6, Item, long, Index, _CCardMatch*)

// The members that the smart-card format classes' own interfaces share. They are numbered and typed
// as in the descriptor's list; the error pair and the reversal flag have get before put, everything
// else is read-only.
#define SMART_CARD_MEMBERS(P)                  \
  P##GET(1, ErrName, BSTR)                     \
  P##PUT(1, ErrName, BSTR)                     \
  P##GET(2, ErrNumber, long)                   \
  P##PUT(2, ErrNumber, long)                   \
  P##INIT(3, InitErr)                          \
  P##GET(4, IsCardArrayReversed, VARIANT_BOOL) \
  P##PUT(4, IsCardArrayReversed, VARIANT_BOOL) \
  P##GET(5, IsSmartCard, VARIANT_BOOL)         \
  P##GET(13, ByteCountTotal, short)            \
  P##GET(14, MaskRevision, BSTR)               \
  P##GET(15, MaskCardID, BSTR)                 \
  P##GET(16, MaskFacility, BSTR)               \
  P##GET(6, MinRevision, short)                \
  P##GET(7, MinCardID, double)                 \
  P##GET(8, MinFacility, double)               \
  P##GET(17, MaxRevision, short)               \
  P##GET(18, MaxCardID, double)                \
  P##GET(19, MaxFacility, double)              \
  P##GET(20, DefaultByte, short)               \
  P##GET(21, PromptChar, BSTR)                 \
  P##GET(22, BitCountTotal, long)              \
  P##GET(23, DefaultCardName, BSTR)            \
  P##GET(24, CardName, BSTR)                   \
  P##GET(25, CardType, short)                  \
  P##GET(26, CardSubType, short)               \
  P##GET(27, BitCountRevision, short)          \
  P##GET(28, BitCountCardID, short)            \
  P##GET(29, BitCountFacility, short)          \
  P##GET(30, OccupiedByteRevision, short)      \
  P##GET(31, OccupiedByteFacility, short)      \
  P##GET(32, OccupiedByteCardId, short)        \
  P##GET(33, DefaultChar, BSTR)                \
  P##GET(9, CharCountRevision, short)          \
  P##GET(10, CharCountCardID, short)           \
  P##GET(11, CharCountFacility, short)         \
  P##GET(12, CharCountTotal, long)             \
  P##GET(34, EidxRevision, short)              \
  P##GET(35, SidxRevision, short)              \
  P##GET(36, EidxCardID, short)                \
  P##GET(37, SidxCardID, short)                \
  P##GET(38, EidxFacility, short)              \
  P##GET(39, SidxFacility, short)              \
  P##VALIDATOR(40, IsFacilityValid)            \
  P##VALIDATOR(41, IsCardIDValid)

// clang-format on
