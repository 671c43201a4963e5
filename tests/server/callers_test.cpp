#include "tests/server/client.h"

#include <gtest/gtest.h>

#include <functional>

// What callers do wrong, and what their own objects do: a status, never a crash.
namespace vardel::server {
namespace {

class Callers : public testing::Test, protected Client {};

TEST_F(Callers, GetAStatusForWrongClassesInterfacesAndPointers) {
  void* object = this;
  ComPtr<IClassFactory> factory;
  EXPECT_EQ(module_.GetClassObject(IID_IUnknown, IID_IClassFactory, &object),
            CLASS_E_CLASSNOTAVAILABLE);
  EXPECT_EQ(object, nullptr);
  EXPECT_EQ(module_.GetClassObject(CLSID_CCard, IID_IClassFactory, nullptr), E_POINTER);
  EXPECT_EQ(module_.GetClassObject(CLSID_CCard, IID_IDispatch, &object), E_NOINTERFACE);
  ASSERT_EQ(module_.GetClassObject(CLSID_CCard, IID_PPV_ARGS(factory.out())), S_OK);
  EXPECT_EQ(module_.CanUnloadNow(), S_FALSE);
  EXPECT_EQ(factory->CreateInstance(nullptr, IID_IUnknown, nullptr), E_POINTER);
  EXPECT_EQ(factory->CreateInstance(factory.get(), IID_IUnknown, &object), CLASS_E_NOAGGREGATION);
  EXPECT_EQ(factory->CreateInstance(nullptr, __uuidof(::_CError), &object), E_NOINTERFACE);
  EXPECT_EQ(object, nullptr);
  EXPECT_EQ(factory->LockServer(TRUE), S_OK);
  factory = {};
  EXPECT_EQ(module_.CanUnloadNow(), S_FALSE) << "locked";
  ASSERT_EQ(module_.GetClassObject(CLSID_CCard, IID_PPV_ARGS(factory.out())), S_OK);
  EXPECT_EQ(factory->LockServer(FALSE), S_OK);

  const auto card = module_.Create<IDispatch>(CLSID_CCard);
  ComPtr<ITypeInfo> info;
  DISPPARAMS none{};
  EXPECT_EQ(card->QueryInterface(IID_IUnknown, nullptr), E_POINTER);
  EXPECT_EQ(card->QueryInterface(__uuidof(::_CError), &object), E_NOINTERFACE);
  EXPECT_EQ(card->GetTypeInfoCount(nullptr), E_POINTER);
  EXPECT_EQ(card->GetTypeInfo(0, 0, nullptr), E_POINTER);
  EXPECT_EQ(card->GetTypeInfo(1, 0, info.out()), DISP_E_BADINDEX);
  EXPECT_EQ(card->GetIDsOfNames(IID_NULL, nullptr, 1, 0, nullptr), E_POINTER);
  const auto invoke = [&](DISPID id, REFIID iid, WORD flags, DISPPARAMS* params) {
    return card->Invoke(id, iid, 0, flags, params, nullptr, nullptr, nullptr);
  };
  EXPECT_EQ(invoke(1, IID_IUnknown, DISPATCH_PROPERTYGET, &none), DISP_E_UNKNOWNINTERFACE);
  EXPECT_EQ(invoke(1, IID_NULL, DISPATCH_PROPERTYGET, nullptr), E_POINTER);
  EXPECT_EQ(invoke(1, IID_NULL, DISPATCH_PROPERTYGET, &none), S_OK);
  EXPECT_EQ(invoke(9999, IID_NULL, DISPATCH_METHOD, &none), DISP_E_MEMBERNOTFOUND);
}

TEST_F(Callers, MayPassObjectsOfAnotherLibraryAndFramesThatFail) {
  HostFrame foreign;  // for a card, as a careless host casts it
  auto* notACard = reinterpret_cast<::_CCardData*>(static_cast<::ICardFrame*>(&foreign));
  ComPtr<::_CCardByteData> none;
  const auto facade = module_.Create<::_CCard>(CLSID_CCard);
  EXPECT_EQ(EarlyOutcome(facade->MakeCardData(&notACard, none.out())).failure, "fault 13");

  const std::tuple<const char*, int, std::function<void(HostFrame&)>, std::string> rows[] = {
      {"its text fails", 513, [](HostFrame& f) { f.failure = 0x800A04D2; }, "fault 1234"},
      {"a status", 513, [](HostFrame& f) { f.failure = E_ACCESSDENIED; }, "fault -2147024891"},
      {"text for bytes", 513, [](HostFrame& f) { f.bytes.reset(); }, "fault 13"},
      {"text for bytes, 34 bits", 517, [](HostFrame& f) { f.bytes.reset(); }, ""},
      {"no bytes", 513, [](HostFrame& f) { f.bytes->clear(); }, ""},
      {"no bytes, 34 bits", 517, [](HostFrame& f) { f.bytes->clear(); }, ""},
      {"short text", 513, [](HostFrame& f) { f.hex = L"01"; }, "fault 13"}};
  for (const auto& [what, code, prepare, failure] : rows) {
    SCOPED_TRACE(what);
    HostFrame frame;
    frame.bytes.emplace(16, std::uint8_t{1});
    frame.hex = std::wstring(32, L'1');
    prepare(frame);
    const Value format = Take(New("CCard"), "CardFormatByCode", {code});
    for (const Value& argument : {Value(&frame), frame.ByNames()}) {
      Value card;
      const auto outcome = Try(format, "AnalyzeCardData", kGets, {argument}, &card);
      EXPECT_EQ(outcome.failure, failure);
      EXPECT_EQ(outcome.description == "the frame's own failure", FAILED(frame.failure));
    }
  }
}

TEST_F(Callers, GetArgumentsConvertedOrRefused) {
  const Value facade = New("CCard"), card = New("CCardData"), raw = New("CCardByteData");
  VARIANT nowhere{}, missing{};
  nowhere.vt = VT_BYREF | VT_I4;
  missing.vt = VT_ERROR;
  missing.scode = DISP_E_PARAMNOTFOUND;
  const std::tuple<const char*, Values, const char*> asked[] = {
      {"CardFormatByCode", {"513"}, "an object"}, {"CardFormatByCode", {513.4}, "an object"},
      {"CardFormatByCode", {3e9}, "fault 6"},     {"CardFormatByCode", {nowhere}, "fault 13"},
      {"CardFormat", {2, card}, "fault 13"},      {"CardFormat", {"two", 1}, "fault 13"},
      {"IsCardType", {true, 1}, "False"},         {"MakeCardData", {1}, "fault 13"},
      {"NoSuchMember", {}, "status 6"},           {"CardFormat", {2}, "status 14"},
      {"CardFormat", {2, 1, 1}, "status 14"},     {"CardFormat", {2, missing}, "status 15"}};
  for (const auto& [member, arguments, answer] : asked) {
    EXPECT_EQ(Ask(facade, member, arguments), answer) << member;
  }
  const std::tuple<Value, const char*, Value, const char*> puts[] = {
      {card, "CardSubType", 256, "fault 6"},       {card, "CardSubType", -1, "fault 6"},
      {card, "CardSubType", "one", "fault 13"},    {card, "CardSubType", kNothing, "status 3"},
      {raw, "CardDataStruct", "0102", "fault 13"}, {raw, "CardDataStruct", raw, "status 3"},
      {facade, "CardTypeCount", 1, "status 3"},    {card, "CardID", 12345, ""}};
  for (const auto& [object, member, value, answer] : puts) {
    EXPECT_EQ(Put(object, member, {value}), answer) << member << " " << value.Text();
  }
  EXPECT_EQ(Ask(card, "CardSubType") + "/" + Ask(card, "CardID"), "0/12345");
}

TEST_F(Callers, NameArgumentsAndAreToldWhichIsWrong) {
  const auto card = module_.Create<IDispatch>(CLSID_CCard);
  std::wstring texts[] = {L"CardFormat", L"cardsubtype", L"CardType", L"X"};
  wchar_t* names[] = {texts[0].data(), texts[1].data(), texts[2].data(), texts[3].data()};
  wchar_t* none[] = {names[0], nullptr};
  DISPID ids[4], inOrder[] = {0, 1};
  EXPECT_EQ(card->GetIDsOfNames(IID_NULL, none, 2, 0, ids), E_INVALIDARG);
  EXPECT_EQ(card->GetIDsOfNames(IID_NULL, names, 4, 0, ids), DISP_E_UNKNOWNNAME);
  EXPECT_EQ(ids[3], DISPID_UNKNOWN);
  ASSERT_EQ(card->GetIDsOfNames(IID_NULL, names, 3, 0, ids), S_OK);
  Value right[] = {4, 2}, wrong[] = {4, ""};  // sub-type and type; an empty text is no number
  const std::tuple<DISPPARAMS, HRESULT, UINT> rows[] = {
      {{right, &ids[1], 2, 2}, S_OK, 9},
      {{wrong, nullptr, 2, 0}, DISP_E_EXCEPTION, 1},
      {{wrong, inOrder, 2, 2}, DISP_E_EXCEPTION, 1},
      {{nullptr, nullptr, 2, 0}, E_INVALIDARG, 9},
      {{wrong, nullptr, 2, 2}, E_INVALIDARG, 9},
      {{wrong, inOrder, 2, 3}, DISP_E_BADPARAMCOUNT, 9},
      {{wrong, inOrder, ~0U, 0}, DISP_E_BADPARAMCOUNT, 9}};
  for (auto [params, status, wrongOne] : rows) {
    Value format;
    UINT argument = 9;
    EXPECT_EQ(
        card->Invoke(ids[0], IID_NULL, 0, DISPATCH_METHOD, &params, &format, nullptr, &argument),
        status);
    EXPECT_EQ(argument, wrongOne) << params.cArgs << " " << params.cNamedArgs;
    EXPECT_EQ(status == S_OK ? Ask(format, "CardSubType") : "4", "4");
  }
}

TEST_F(Callers, KeepRecordsBeyondTheirObjectsAndTheModuleWithThem) {
  Value record;
  {
    const Value raw = New("CCardByteData");
    Put(raw, "CardArrDataByIndex", {5, 0x77});
    record = Take(raw, "CardDataStruct");
  }
  EXPECT_EQ(module_.CanUnloadNow(), S_FALSE) << "a record is left";
  const Value copy = record;
  Value bytes;
  ASSERT_EQ(copy.vt, VT_RECORD);
  ASSERT_EQ(copy.pRecInfo->GetField(copy.pvRecord, L"bytes", &bytes), S_OK);
  ASSERT_EQ(bytes.Text(), "000000000077");
  bytes.Elements<unsigned char>()[5] = 0x11;
  EXPECT_EQ(copy.pRecInfo->PutField(0, copy.pvRecord, L"Bytes", &bytes), S_OK);
  EXPECT_EQ(copy.Text() + " " + record.Text(), "000000000011 000000000077");
  EXPECT_EQ(copy.pRecInfo->PutField(0, copy.pvRecord, L"Other", &bytes), DISP_E_UNKNOWNNAME);
  EXPECT_TRUE(copy.pRecInfo->IsMatchingType(record.pRecInfo));
}

/// A description with the given one's id, of a record of another size.
ComPtr<IRecordInfo> Emptied(IRecordInfo* info) {
  GUID id{};
  ComPtr<ICreateTypeLib2> library;
  ComPtr<ICreateTypeInfo> type;
  ComPtr<IRecordInfo> empty;
  Require(info->GetGuid(&id));
  Require(CreateTypeLib2(SYS_WIN32, L"empty.tlb", library.out()));
  Require(library->CreateTypeInfo(std::wstring(L"Empty").data(), TKIND_RECORD, type.out()));
  Require(type->SetGuid(id));
  Require(GetRecordInfoFromTypeInfo(type.As<ITypeInfo>().get(), empty.out()));
  return empty;
}

Value Array(VARTYPE type, ULONG size, UINT dimensions = 1) {
  Value value;
  value.vt = static_cast<VARTYPE>(VT_ARRAY | type);
  SAFEARRAYBOUND bounds[2] = {{size, 5}, {1, 0}};
  value.parray = SafeArrayCreate(type, dimensions, bounds);
  if (type != VT_VARIANT) return value;
  for (VARIANT& each : value.Elements<VARIANT>()) each.vt = VT_R8, each.dblVal = 7;
  return value;
}

TEST_F(Callers, MaySendAnyValueForARecord) {
  const Value raw = New("CCardByteData"), record = Take(raw, "CardDataStruct");
  const auto other = Emptied(record.pRecInfo);
  VARIANT small = record, none = record, nothing{}, ring{};
  small.pRecInfo = other.get();
  none.pvRecord = nullptr;
  for (VARIANT* each : {&small, &none}) {
    const auto outcome =
        Call(raw.pdispVal, "CardDataStruct", DISPATCH_PROPERTYPUT, {each}, nullptr);
    EXPECT_EQ(outcome.failure, "fault 13");
  }
  nothing.vt = VT_BYREF | VT_ARRAY | VT_UI1;
  ring.vt = VT_BYREF | VT_VARIANT;
  ring.pvarVal = &ring;
  const Value wrong = Array(VT_VARIANT, 32), big = Array(VT_VARIANT, 32);
  wrong.Elements<VARIANT>()[31] = ring;
  big.Elements<VARIANT>()[0].dblVal = 256;
  EXPECT_EQ(Put(raw, "CardDataStruct", {Array(VT_UI1, 32)}), "");
  EXPECT_EQ(Put(raw, "CardDataStruct", {Array(VT_VARIANT, 32)}), "");
  EXPECT_EQ(Put(raw, "CardDataStruct", {big}), "fault 6");
  for (const Value& value : {Value(nothing), Value(ring), Array(VT_UI1, 31), Array(VT_UI1, 32, 2),
                             Array(VT_VARIANT, 33), Array(VT_I2, 32), wrong}) {
    EXPECT_EQ(Put(raw, "CardDataStruct", {value}), "fault 13") << std::hex << value.vt;
  }
  EXPECT_EQ(Ask(raw, "CardArrDataByIndex", {0}) + Ask(raw, "CardArrDataByIndex", {31}), "77");
}

TEST_F(Callers, MayHaveADecimalCommaAndFramesThatRaiseNoFailure) {
  wchar_t point[4];
  GetLocaleInfoW(LOCALE_USER_DEFAULT, LOCALE_SDECIMAL, point, 4);
  SetLocaleInfoW(LOCALE_USER_DEFAULT, LOCALE_SDECIMAL, L",");
  const Value card = New("CCardData");
  EXPECT_EQ(Put(card, "CardID", {12.5}), "");
  SetLocaleInfoW(LOCALE_USER_DEFAULT, LOCALE_SDECIMAL, point);
  EXPECT_EQ(Ask(card, "CardID"), "12.5");

  HostFrame raising;
  raising.raises = true;
  EXPECT_EQ(Ask(New("CCard"), "AnalyzeCardData", {&raising}), "fault " + std::to_string(E_FAIL));
}

TEST_F(Callers, LeaveNoTypeLibraryInAModuleThatMayGo) {
  const ServerModule copy = ServerModule::Copy(L"vardel_idle.dll");  // nobody else has its library
  ComPtr<ITypeInfo> info;
  ComPtr<ITypeLib> library;
  UINT index = 0;
  ASSERT_EQ(copy.Create<IDispatch>(CLSID_CCard)->GetTypeInfo(0, 0, info.out()), S_OK);
  ASSERT_EQ(info->GetContainingTypeLib(library.out(), &index), S_OK);
  info = {};
  EXPECT_EQ(copy.CanUnloadNow(), S_OK);
  EXPECT_EQ(library.Detach()->Release(), 0U);
  ASSERT_EQ(copy.Create<IDispatch>(CLSID_CCard)->GetTypeInfo(0, 0, info.out()), S_OK);
}

}  // namespace
}  // namespace vardel::server
