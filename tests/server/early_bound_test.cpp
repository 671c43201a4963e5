#include "tests/server/server.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <iterator>

// Every member of every interface, called through its vtable as compiled hosts do.
namespace vardel::server {
namespace {

constexpr HRESULT kFault9 = static_cast<HRESULT>(0x800A0009);

class EarlyBound : public testing::Test {
 protected:
  ~EarlyBound() override { EXPECT_EQ(module_.CanUnloadNow(), S_OK) << "an object is left"; }

  ServerModule module_;
};

/// A text in and out.
struct Bstr {
  explicit Bstr(std::string_view value = "") : text(NewBstr(value)) {}
  Bstr(const Bstr&) = delete;
  Bstr& operator=(const Bstr&) = delete;
  ~Bstr() { SysFreeString(text); }
  BSTR text;
};

// A value of each type that tells a swapped or cut one apart.
void Sample(short& value) { value = -12345; }
void Sample(long& value) { value = -123456789; }
void Sample(double& value) { value = 123456789012345.5; }
void Sample(unsigned char& value) { value = 0xA5; }
void Sample(::CardType& value) { value = ::CARD_MIFARE; }

/// Puts a value and expects to get it back.
template <class Interface, class T>
void RoundTrip(Interface* object, HRESULT (STDMETHODCALLTYPE Interface::*put)(T),
               HRESULT (STDMETHODCALLTYPE Interface::*get)(T*), const char* name) {
  SCOPED_TRACE(name);
  if constexpr (std::is_same_v<T, BSTR>) {
    const std::string text =
        "\xC3\xA9\xE2\x82\xAC" + std::string(name) + std::string(1, '\0') + "x";
    const Bstr sample(text);
    Bstr back;
    EXPECT_EQ((object->*put)(sample.text), S_OK);
    SysFreeString(std::exchange(back.text, nullptr));
    EXPECT_EQ((object->*get)(&back.text), S_OK);
    EXPECT_EQ(Utf8(back.text), text);
  } else {
    T sample{};
    Sample(sample);
    if (std::string_view(name).starts_with("Is")) sample = static_cast<T>(VARIANT_TRUE);
    T back{};
    EXPECT_EQ((object->*put)(sample), S_OK);
    EXPECT_EQ((object->*get)(&back), S_OK);
    EXPECT_EQ(back, sample);
  }
  EXPECT_EQ((object->*get)(nullptr), E_POINTER);
}

/// Gets a read-only value and compares it.
template <class Interface, class T>
void Expect(Interface* object, HRESULT (STDMETHODCALLTYPE Interface::*get)(T*), T expected) {
  T value{};
  EXPECT_EQ((object->*get)(&value), S_OK);
  EXPECT_EQ(value, expected);
  EXPECT_EQ((object->*get)(nullptr), E_POINTER);
}

/// The same value under a prefixed and under its own name.
template <class Own, class T>
void SameValue(Own* own, HRESULT (STDMETHODCALLTYPE Own::*ownGet)(T*), ::_CCardFormatInfo* info,
               HRESULT (STDMETHODCALLTYPE ::_CCardFormatInfo::*get)(T*)) {
  T left{};
  T right{};
  EXPECT_EQ((own->*ownGet)(&left), S_OK);
  EXPECT_EQ((info->*get)(&right), S_OK);
  if constexpr (std::is_same_v<T, BSTR>) {
    EXPECT_EQ(Utf8(left), Utf8(right));
    SysFreeString(left);
    SysFreeString(right);
  } else {
    EXPECT_EQ(left, right);
  }
}

#define FIELD(n, name, type) \
  RoundTrip(object, &Itf::MEMBER(put_, name), &Itf::MEMBER(get_, name), #name);
#define ACCESSOR(n, name, type) FIELD(n, name, type)
#define GET(n, name, type) FIELD(n, name, type)
#define PUT(n, name, type)
#define READONLY(n, name, type)
#define INIT(n, name)                                  \
  {                                                    \
    Variant nothing;                                   \
    EXPECT_EQ(object->MEMBER(, name)(&nothing), S_OK); \
    EXPECT_EQ(nothing.vt, VT_EMPTY);                   \
  }
#define VALIDATOR(n, name)                                          \
  {                                                                 \
    VARIANT_BOOL valid = VARIANT_TRUE;                              \
    EXPECT_EQ(object->MEMBER(, name)(nullptr, &valid), S_OK);       \
    EXPECT_EQ(object->MEMBER(, name)(nullptr, nullptr), E_POINTER); \
  }
#define ENCODER(n, name)                                                \
  {                                                                     \
    ::CardDataStruct record;                                            \
    EXPECT_EQ(object->MEMBER(, name)(nullptr, &record), kObjectNotSet); \
  }
#define DECODER(n, name)                                              \
  {                                                                   \
    ::_CCardData* card = nullptr;                                     \
    EXPECT_EQ(object->MEMBER(, name)(nullptr, &card), kObjectNotSet); \
    EXPECT_EQ(card, nullptr);                                         \
  }

constexpr HRESULT kObjectNotSet = static_cast<HRESULT>(0x800A0000 + 91);

#define MEMBER(kind, name) kind##name
void ExerciseDescriptor(::_CCardFormatInfo* object) {
  using Itf = ::_CCardFormatInfo;
#include <vardel/format/descriptor_members.inc>
}
#undef MEMBER
#define MEMBER(kind, name) kind##CCardFormatInfo_##name
template <class Itf>
void ExerciseProximity(Itf* object) {
#include <vardel/format/descriptor_members.inc>
}
#undef GET
#define GET(n, name, type) \
  SameValue(object, &Itf::MEMBER(get_, name), info, &::_CCardFormatInfo::get_##name);
template <class Itf>
void ExerciseSmartCard(Itf* object, ::_CCardFormatInfo* info) {
  RoundTrip(object, &Itf::put_CCardFormatInfo_ErrName, &Itf::get_CCardFormatInfo_ErrName,
            "ErrName");
  RoundTrip(object, &Itf::put_CCardFormatInfo_ErrNumber, &Itf::get_CCardFormatInfo_ErrNumber,
            "Err");
  RoundTrip(object, &Itf::put_CCardFormatInfo_IsCardArrayReversed,
            &Itf::get_CCardFormatInfo_IsCardArrayReversed, "IsCardArrayReversed");
#include <vardel/server/smart_card_members.inc>
  ENCODER(42, MakeCardData)
  DECODER(43, AnalyzeCardData)
  VARIANT_BOOL valid = VARIANT_FALSE;
  EXPECT_EQ(object->IsRevisionValid(Bstr("1").text, &valid), S_OK);
  EXPECT_EQ(valid, VARIANT_TRUE);
}

TEST_F(EarlyBound, FormatsHaveAllMembersUnderBothKindsOfNames) {
  const auto exercise = [this]<class Own>(REFCLSID id, Own*, auto&& run) {
    const auto own = module_.Create<Own>(id);
    const auto info = own.template As<::_CCardFormatInfo>();
    Expect(info.get(), &::_CCardFormatInfo::get_IsSmartCard,
           std::is_invocable_v<decltype(run), Own*, ::_CCardFormatInfo*> ? VARIANT_TRUE
                                                                         : VARIANT_FALSE);
    if constexpr (std::is_invocable_v<decltype(run), Own*>) {
      run(own.get());
    } else {
      run(own.get(), info.get());
    }
    ExerciseDescriptor(info.get());
  };
#define PROXIMITY(name) \
  exercise(CLSID_##name, static_cast<::_##name*>(nullptr), ExerciseProximity<::_##name>)
#define SMART_CARD(name) \
  exercise(CLSID_##name, static_cast<::_##name*>(nullptr), ExerciseSmartCard<::_##name>)
  PROXIMITY(CCardFormatEM);
  PROXIMITY(CCardFormatHIDStandard);
  PROXIMITY(CCardFormatBinary26);
  PROXIMITY(CCardFormat37Bits);
  PROXIMITY(CCardFormatHIDCorp1000);
  PROXIMITY(CCardFormat34Bits);
  SMART_CARD(CCardFormatUID32BIts);
  SMART_CARD(CCardFormatLG);
  SMART_CARD(CCardFormatWoori);
  SMART_CARD(CCardFormatDongSeo);
  ExerciseDescriptor(module_.Create<::_CCardFormatInfo>(CLSID_CCardFormatInfo).get());

  const auto corp = module_.Create<::_CCardFormatHIDCorp1000>(CLSID_CCardFormatHIDCorp1000);
  Expect(corp.get(), &::_CCardFormatHIDCorp1000::get_Sidx2ndCardID, short{3});
  Expect(corp.get(), &::_CCardFormatHIDCorp1000::get_Eidx2ndCardID, short{4});
  VARIANT_BOOL valid = VARIANT_FALSE;
  module_.Create<::_CCardFormat34Bits>(CLSID_CCardFormat34Bits)
      ->CCardFormatInfo_IsRevisionValid(nullptr, &valid);
  EXPECT_EQ(valid, VARIANT_TRUE);
}

/// The members of a contained error, and that its object is shared.
template <class Itf>
void ExerciseError(Itf* object, ::_CError* error) {
  RoundTrip(object, &Itf::put_ErrName, &Itf::get_ErrName, "ErrName");
  RoundTrip(object, &Itf::put_ErrNumber, &Itf::get_ErrNumber, "ErrNumber");
  EXPECT_EQ(object->putref_Error(error), S_OK);
  EXPECT_EQ(object->MakeErr(7, Bstr("seven").text), S_OK);
  Expect(error, &::_CError::get_ErrNumber, 7L);
  ::_CError* back = nullptr;
  EXPECT_EQ(object->get_Error(&back), S_OK);
  EXPECT_EQ(back, error) << "the same object";
  back->Release();
  EXPECT_EQ(object->InitErr(), S_OK);
  Expect(error, &::_CError::get_ErrNumber, 0L);
  EXPECT_EQ(object->putref_Error(nullptr), S_OK);
  EXPECT_EQ(object->InitErr(), kObjectNotSet);
  EXPECT_EQ(object->get_Error(&back), S_OK);
  EXPECT_EQ(back, nullptr);
  EXPECT_EQ(object->putref_Error(error), S_OK);
}

TEST_F(EarlyBound, RecordsAndErrorsHaveAllTheirMembers) {
  const auto error = module_.Create<::_CError>(CLSID_CError);
  RoundTrip(error.get(), &::_CError::put_ErrName, &::_CError::get_ErrName, "ErrName");
  RoundTrip(error.get(), &::_CError::put_ErrNumber, &::_CError::get_ErrNumber, "ErrNumber");
  EXPECT_EQ(error->MakeErr(5, Bstr("five").text), S_OK);
  Expect(error.get(), &::_CError::get_ErrNumber, 5L);
  EXPECT_EQ(error->InitErr(), S_OK);

  using Data = ::_CCardData;
  const auto data = module_.Create<Data>(CLSID_CCardData);
  RoundTrip(data.get(), &Data::put_ErrNumber, &Data::get_ErrNumber, "ErrNumber");
  RoundTrip(data.get(), &Data::put_ErrName, &Data::get_ErrName, "ErrName");
  RoundTrip(data.get(), &Data::put_CardType, &Data::get_CardType, "CardType");
  RoundTrip(data.get(), &Data::put_CardSubType, &Data::get_CardSubType, "CardSubType");
  RoundTrip(data.get(), &Data::put_Facility, &Data::get_Facility, "Facility");
  RoundTrip(data.get(), &Data::put_CardID, &Data::get_CardID, "CardID");
  RoundTrip(data.get(), &Data::put_Revision, &Data::get_Revision, "Revision");

  using Raw = ::_CCardByteData;
  const auto raw = module_.Create<Raw>(CLSID_CCardByteData);
  ExerciseError(raw.get(), error.get());
  RoundTrip(raw.get(), &Raw::put_CardType, &Raw::get_CardType, "CardType");
  RoundTrip(raw.get(), &Raw::put_CardSubType, &Raw::get_CardSubType, "CardSubType");
  Expect(raw.get(), &Raw::get_CardDataByteCount, 32L);
  ::CardDataStruct record{};
  std::ranges::generate(record.Bytes,
                        [n = 1]() mutable { return static_cast<unsigned char>(n++); });
  EXPECT_EQ(raw->put_CardDataStruct(&record), S_OK);
  EXPECT_EQ(raw->put_CardArrDataByIndex(1, 0xEE), S_OK);
  unsigned char byte = 0;
  EXPECT_EQ(raw->get_CardArrDataByIndex(31, &byte), S_OK);
  EXPECT_EQ(byte, 32);
  ::CardDataStruct back{};
  EXPECT_EQ(raw->get_CardDataStruct(&back), S_OK);
  EXPECT_EQ(back.Bytes[1], 0xEE);
  Variant nothing;
  EXPECT_EQ(raw->InitCardData(nullptr, &nothing), S_OK);
  Expect(raw.get(), &Raw::get_ErrNumber, -1L);
  ::CardType type = ::CARD_HID;
  EXPECT_EQ(raw->InitCardData(&type, &nothing), S_OK);
  EXPECT_EQ(raw->get_CardDataStruct(&back), S_OK);
  EXPECT_EQ(back.Bytes[1], 0);

  using Bytes = ::_CByteArrayData;
  const auto bytes = module_.Create<Bytes>(CLSID_CByteArrayData);
  ExerciseError(bytes.get(), error.get());
  EXPECT_EQ(bytes->put_ByteCount(4), S_OK);
  Expect(bytes.get(), &Bytes::get_ByteCount, 4L);
  Expect(bytes.get(), &Bytes::get_LastArrayIndex, 3L);
  Expect(bytes.get(), &Bytes::get_HexCharCount, 0L);
  EXPECT_EQ(bytes->put_ByteOR(0x12), S_OK);
  EXPECT_EQ(bytes->put_ByteOR(256), static_cast<HRESULT>(0x800A0006));
  Expect(bytes.get(), &Bytes::get_ByteOR, 0x12L);
  EXPECT_EQ(bytes->put_ByteAND(0), S_OK);
  Expect(bytes.get(), &Bytes::get_ByteAND, 0L);
  Expect(bytes.get(), &Bytes::get_IsAvailable, VARIANT_TRUE);
  RoundTrip(bytes.get(), &Bytes::put_HexString, &Bytes::get_HexString, "HexString");
  RoundTrip(bytes.get(), &Bytes::put_ChrString, &Bytes::get_ChrString, "ChrString");
  EXPECT_EQ(bytes->InitData(), S_OK);
  Expect(bytes.get(), &Bytes::get_LastArrayIndex, -1L);
}

TEST_F(EarlyBound, FacadeAndFramesHaveAllTheirMembers) {
  using Frame = ::_CCardFrame;
  const auto frame = module_.Create<Frame>(CLSID_CCardFrame);
  RoundTrip(frame.get(), &Frame::put_FrameCardType, &Frame::get_FrameCardType, "FrameCardType");
  RoundTrip(frame.get(), &Frame::put_FrameCardSubType, &Frame::get_FrameCardSubType, "SubType");
  RoundTrip(frame.get(), &Frame::put_IsEMFrame, &Frame::get_IsEMFrame, "IsEMFrame");
  EXPECT_EQ(frame->put_RawCardHex(Bstr("xx").text), static_cast<HRESULT>(0x800A000D));
  EXPECT_EQ(frame->put_RawCardHex(Bstr("7360C8020000").text), S_OK);
  const auto read = frame.As<::ICardFrame>();
  Variant array;
  EXPECT_EQ(read->get_RawCardBytes(&array), S_OK);
  ASSERT_EQ(array.vt, VT_ARRAY | VT_UI1);
  EXPECT_EQ(array.parray->rgsabound[0].cElements, 6U);
  Expect(read.get(), &::ICardFrame::get_IsEMFrame, VARIANT_TRUE);
  EXPECT_EQ(frame->put_FrameCardType(2), S_OK);
  EXPECT_EQ(frame->put_FrameCardSubType(1), S_OK);

  using Facade = ::_CCard;
  const auto facade = module_.Create<Facade>(CLSID_CCard);
  RoundTrip(facade.get(), &Facade::put_ErrName, &Facade::get_ErrName, "ErrName");
  RoundTrip(facade.get(), &Facade::put_ErrNumber, &Facade::get_ErrNumber, "ErrNumber");
  ComPtr<::_CCardFormatInfo> format, byCode;
  EXPECT_EQ(facade->CardFormat(2, 1, format.out()), S_OK);
  EXPECT_EQ(facade->CardFormatByCode(513, byCode.out()), S_OK);
  EXPECT_EQ(format.get(), byCode.get());
  ::_CCardFormatInfo* none = format.get();
  EXPECT_EQ(facade->CardFormat(9, 9, &none), static_cast<HRESULT>(0x800A0000 + 424));
  EXPECT_EQ(none, nullptr) << "a failed call leaves nothing behind";
  VARIANT_BOOL flag = VARIANT_FALSE;
  EXPECT_EQ(facade->get_IsExisted(2, 3, &flag), S_OK);
  EXPECT_EQ(flag, VARIANT_TRUE);
  Expect(facade.get(), &Facade::get_CardTypeCount, short{3});
  EXPECT_EQ(facade->IsCardMainType(::CARD_UNKNOWN, &flag), S_OK);
  EXPECT_EQ(flag, VARIANT_FALSE);
  EXPECT_EQ(facade->IsCardType(::CARD_HID, 5, &flag), S_OK);
  EXPECT_EQ(flag, VARIANT_TRUE);
  EXPECT_EQ(facade->IsSmartCardData(nullptr, &flag), static_cast<HRESULT>(0x800A0000 + 424));
  EXPECT_EQ(facade->IsSecurityCardData(nullptr, &flag), static_cast<HRESULT>(0x800A0000 + 424));

  IDispatch* argument = frame.get();
  ComPtr<::_CCardData> card;
  EXPECT_EQ(facade->AnalyzeCardData(&argument, card.out()), S_OK);
  ::_CCardData* cardArgument = card.get();
  EXPECT_EQ(cardArgument->put_CardSubType(1), S_OK);
  ComPtr<::_CCardByteData> raw;
  EXPECT_EQ(facade->MakeCardData(&cardArgument, raw.out()), S_OK);
  ::CardDataStruct record{};
  EXPECT_EQ(raw->get_CardDataStruct(&record), S_OK);
  EXPECT_EQ(record.Bytes[2], 0xC8);
  EXPECT_EQ(frame->put_CardDataStruct(&record), S_OK);
  EXPECT_EQ(read->get_RawCardBytes(&array), S_OK);
  EXPECT_EQ(array.parray->rgsabound[0].cElements, 32U);

  ::CardDataStruct direct{};
  EXPECT_EQ(format->MakeCardData(&cardArgument, &direct), S_OK);
  EXPECT_TRUE(std::ranges::equal(direct.Bytes, record.Bytes));
  ComPtr<::_CCardData> bare;
  EXPECT_EQ(module_.Create<::_CCardFormatInfo>(CLSID_CCardFormatInfo)
                ->AnalyzeCardData(&argument, bare.out()),
            S_OK);
  EXPECT_EQ(bare.get(), nullptr);
  const auto binary = module_.Create<::_CCardFormatBinary26>(CLSID_CCardFormatBinary26);
  EXPECT_EQ(binary->CCardFormatInfo_MakeCardData(&cardArgument, &direct), kFault9);
}

TEST_F(EarlyBound, RegistryHasAllItsMembers) {
  using Entry = ::_CCardType;
  const auto error = module_.Create<::_CError>(CLSID_CError);
  const auto entry = module_.Create<Entry>(CLSID_CCardType);
  ExerciseError(entry.get(), error.get());
  RoundTrip(entry.get(), &Entry::put_ShortName, &Entry::get_ShortName, "ShortName");
  RoundTrip(entry.get(), &Entry::put_TypeName, &Entry::get_TypeName, "TypeName");
  RoundTrip(entry.get(), &Entry::put_IsAvailable, &Entry::get_IsAvailable, "IsAvailable");
  Expect(entry.get(), &Entry::get_TypeCode, 0L);
  Expect(entry.get(), &Entry::get_CardType, 0L);
  Expect(entry.get(), &Entry::get_CardSubType, 0L);
  Variant nothing;
  EXPECT_EQ(entry->InitData(&nothing), S_OK);
  EXPECT_EQ(entry->initAll(), S_OK);

  using Registry = ::_CCardTypes;
  const auto registry = module_.Create<Registry>(CLSID_CCardTypes);
  ExerciseError(registry.get(), error.get());
  VARIANT_BOOL flag = VARIANT_FALSE;
  EXPECT_EQ(registry->Add(entry.get(), 515, &flag), S_OK);
  EXPECT_EQ(flag, VARIANT_TRUE);
  EXPECT_EQ(registry->get_IsExisted(2, 3, &flag), S_OK);
  EXPECT_EQ(flag, VARIANT_TRUE);
  ComPtr<Entry> byCode, byType;
  EXPECT_EQ(registry->CardTypeByCode(515, byCode.out()), S_OK);
  EXPECT_EQ(registry->get_CardTypeByType(2, 3, byType.out()), S_OK);
  EXPECT_EQ(byCode.get(), entry.get());
  EXPECT_EQ(byType.get(), entry.get());
  Expect(registry.get(), &Registry::get_Count, 10L);
  Variant all, codes;
  EXPECT_EQ(registry->get_AllCardTypes(&all), S_OK);
  ASSERT_EQ(all.vt, VT_ARRAY | VT_VARIANT);
  EXPECT_EQ(static_cast<VARIANT*>(all.parray->pvData)[9].pdispVal, entry.get());
  EXPECT_EQ(registry->get_CardTypeCodes(&codes), S_OK);
  EXPECT_STREQ(static_cast<VARIANT*>(codes.parray->pvData)[9].bstrVal, L"515");

  const Bstr code("513"), name("N");
  const auto text = [&](auto&& get) {
    Bstr value;
    SysFreeString(std::exchange(value.text, nullptr));
    EXPECT_EQ(get(&value.text), S_OK);
    return Utf8(value.text);
  };
  EXPECT_EQ(registry->put_ShortName(code.text, name.text), S_OK);
  EXPECT_EQ(text([&](BSTR* v) { return registry->get_ShortName(code.text, v); }), "N");
  EXPECT_EQ(text([&](BSTR* v) { return registry->GetShortName(2, 1, v); }), "N");
  EXPECT_EQ(registry->put_CardTypeName(code.text, name.text), S_OK);
  EXPECT_EQ(text([&](BSTR* v) { return registry->get_CardTypeName(code.text, v); }), "N");
  EXPECT_EQ(text([&](BSTR* v) { return registry->GetCardTypeName(2, 1, v); }), "N");
  EXPECT_EQ(text([&](BSTR* v) { return registry->get_DefaultName(code.text, v); }), "HID Standard");
  EXPECT_EQ(text([&](BSTR* v) { return registry->GetDefaultName(2, 1, v); }), "HID Standard");
  EXPECT_EQ(text([&](BSTR* v) { return registry->get_DefaultShortName(code.text, v); }), "HID STD");
  EXPECT_EQ(text([&](BSTR* v) { return registry->GetDefaultShortName(2, 1, v); }), "HID STD");
  EXPECT_EQ(text([&](BSTR* v) { return byCode->get_DefaultName(v); }), "");
  EXPECT_EQ(text([&](BSTR* v) { return byCode->get_DefaultShortName(v); }), "");
  long left = 0;
  EXPECT_EQ(registry->LetShortName(9, 9, name.text, &left), S_OK);
  EXPECT_EQ(left, -1);
  EXPECT_EQ(registry->LetCardTypeName(2, 1, name.text, &left), S_OK);
  EXPECT_EQ(left, 0);
}

}  // namespace
}  // namespace vardel::server
