#include "tests/server/client.h"
#include "tests/server/test_frame.h"

#include <gtest/gtest.h>

#include <ocidl.h>

#include <functional>

// What callers do wrong, and what their own objects do: a status, never a crash.
namespace vardel::server {
namespace {

constexpr HRESULT Fault(int number) { return static_cast<HRESULT>(0x800A0000U + number); }

class Callers : public testing::Test, protected Client {
 protected:
  Callers() : Client(Binding::Names) {}

  ComPtr<::_CCard> Facade() const { return module_.Create<::_CCard>(CLSID_CCard); }
  ComPtr<IClassFactory> Factory() const {
    ComPtr<IClassFactory> factory;
    Require(module_.GetClassObject(CLSID_CCard, IID_IClassFactory,
                                   reinterpret_cast<void**>(factory.out())));
    return factory;
  }

  ServerModule module_;
};

TEST_F(Callers, GetAStatusForWrongClassesInterfacesAndPointers) {
  void* object = this;
  EXPECT_EQ(module_.GetClassObject(IID_IUnknown, IID_IClassFactory, &object),
            CLASS_E_CLASSNOTAVAILABLE);
  EXPECT_EQ(object, nullptr);
  EXPECT_EQ(module_.GetClassObject(CLSID_CCard, IID_IClassFactory, nullptr), E_POINTER);
  EXPECT_EQ(module_.GetClassObject(CLSID_CCard, IID_IDispatch, &object), E_NOINTERFACE);
  ComPtr<IClassFactory> factory = Factory();
  EXPECT_EQ(module_.CanUnloadNow(), S_FALSE);
  EXPECT_EQ(factory->CreateInstance(nullptr, IID_IUnknown, nullptr), E_POINTER);
  EXPECT_EQ(factory->CreateInstance(factory.get(), IID_IUnknown, &object), CLASS_E_NOAGGREGATION);
  EXPECT_EQ(factory->CreateInstance(nullptr, __uuidof(::_CError), &object), E_NOINTERFACE);
  EXPECT_EQ(object, nullptr);
  EXPECT_EQ(factory->LockServer(TRUE), S_OK);
  factory = {};
  EXPECT_EQ(module_.CanUnloadNow(), S_FALSE) << "locked";
  EXPECT_EQ(Factory()->LockServer(FALSE), S_OK);

  const auto card = Facade();
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

TEST_F(Callers, SeeOneIdentityPerObject) {
  ComPtr<::_CCardFormatInfo> format;
  Facade()->CardFormat(2, 1, format.out());
  const auto own = format.As<::_CCardFormatHIDStandard>();
  ASSERT_TRUE(own);
  EXPECT_EQ(own.As<IUnknown>().get(), format.As<IUnknown>().get());
  EXPECT_EQ(own.As<IDispatch>().get(), format.As<IDispatch>().get());
  EXPECT_FALSE(format.As<::_CCardFormatEM>());
  const auto errorInfo = format.As<ISupportErrorInfo>();
  EXPECT_EQ(errorInfo->InterfaceSupportsErrorInfo(__uuidof(::_CCardFormatInfo)), S_OK);
  EXPECT_EQ(errorInfo->InterfaceSupportsErrorInfo(IID_IClassFactory), S_FALSE);
}

TEST_F(Callers, MayPassObjectsOfAnotherLibraryAndFramesThatFail) {
  const Client client(Binding::Vtables);
  HostFrame foreign;  // for a card, as a careless host casts it
  EXPECT_EQ(client.Ask(client.New("CCard"), "MakeCardData", {&foreign}), "fault 13");

  const std::tuple<const char*, int, std::function<void(HostFrame&)>, long> rows[] = {
      {"its text fails", 513, [](HostFrame& f) { f.failure = Fault(1234); }, 1234},
      {"a status", 513, [](HostFrame& f) { f.failure = E_ACCESSDENIED; }, E_ACCESSDENIED},
      {"text for bytes", 513, [](HostFrame& f) { f.bytes.reset(); }, 13},
      {"text for bytes, 34 bits", 517, [](HostFrame& f) { f.bytes.reset(); }, 0},
      {"no bytes", 513, [](HostFrame& f) { f.bytes->clear(); }, 0},
      {"no bytes, 34 bits", 517, [](HostFrame& f) { f.bytes->clear(); }, 0},
      {"short text", 513, [](HostFrame& f) { f.hex = L"01"; }, 13},
  };
  for (const auto& [what, code, prepare, fault] : rows) {
    SCOPED_TRACE(what);
    HostFrame frame;
    frame.bytes.emplace(16, std::uint8_t{1});
    frame.hex = std::wstring(32, L'1');
    prepare(frame);
    const Value format = client.Take(client.New("CCard"), "CardFormatByCode", {code});
    for (const Value& argument : {Value(&frame), Value(frame.ByNames().get())}) {
      Value card;
      const auto outcome = client.Try(format, "AnalyzeCardData", Client::kGets, {argument}, &card);
      EXPECT_EQ(outcome.fault, fault);
      EXPECT_EQ(outcome.status, fault == 0 ? S_OK : DISP_E_EXCEPTION);
      EXPECT_EQ(outcome.description == L"the frame's own failure", FAILED(frame.failure));
    }
  }
}

TEST_F(Callers, NameArgumentsAndAreToldWhichIsWrong) {
  const auto card = Facade();
  wchar_t member[] = L"CardFormat", type[] = L"CardType", subType[] = L"cardsubtype",
          other[] = L"X";
  wchar_t *names[] = {member, subType, type, other}, *none[] = {member, nullptr};
  DISPID ids[4], inOrder[] = {0, 1};
  EXPECT_EQ(card->GetIDsOfNames(IID_NULL, none, 2, 0, ids), E_INVALIDARG);
  EXPECT_EQ(card->GetIDsOfNames(IID_NULL, names, 4, 0, ids), DISP_E_UNKNOWNNAME);
  EXPECT_EQ(ids[3], DISPID_UNKNOWN);
  ASSERT_EQ(card->GetIDsOfNames(IID_NULL, names, 3, 0, ids), S_OK);
  VARIANT right[2]{}, wrong[2]{}, nowhere{};
  right[0].vt = right[1].vt = wrong[0].vt = VT_I4;
  right[0].lVal = 4;  // sub-type
  right[1].lVal = 2;
  wrong[1].vt = VT_BSTR;  // an empty text is no number
  const std::tuple<DISPPARAMS, HRESULT, UINT> rows[] = {
      {{right, &ids[1], 2, 2}, S_OK, 9},
      {{wrong, nullptr, 2, 0}, DISP_E_EXCEPTION, 1},
      {{wrong, inOrder, 2, 2}, DISP_E_EXCEPTION, 1},
      {{nullptr, nullptr, 2, 0}, E_INVALIDARG, 9},
      {{wrong, nullptr, 2, 2}, E_INVALIDARG, 9},
      {{wrong, inOrder, 2, 3}, DISP_E_BADPARAMCOUNT, 9},
      {{wrong, inOrder, ~0U, 0}, DISP_E_BADPARAMCOUNT, 9},
  };
  for (auto [params, status, wrongOne] : rows) {
    Variant format;
    UINT argument = 9;
    EXPECT_EQ(
        card->Invoke(ids[0], IID_NULL, 0, DISPATCH_METHOD, &params, &format, nullptr, &argument),
        status);
    EXPECT_EQ(argument, wrongOne) << params.cArgs << " " << params.cNamedArgs;
    const auto corp1000 = ComPtr<IDispatch>::Share(format.pdispVal).As<::_CCardFormatHIDCorp1000>();
    EXPECT_EQ(corp1000.get() != nullptr, status == S_OK);
  }
  nowhere.vt = VT_BYREF | VT_I4;
  EXPECT_EQ(Ask(New("CCard"), "CardFormatByCode", {nowhere}), "fault 13");
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
  Variant bytes;
  ASSERT_EQ(copy.vt, VT_RECORD);
  ASSERT_EQ(copy.pRecInfo->GetField(copy.pvRecord, L"bytes", &bytes), S_OK);
  ASSERT_EQ(bytes.vt, VT_ARRAY | VT_UI1);
  auto* const array = static_cast<unsigned char*>(bytes.parray->pvData);
  EXPECT_EQ(std::exchange(array[5], static_cast<unsigned char>(0x11)), 0x77);
  EXPECT_EQ(copy.pRecInfo->PutField(0, copy.pvRecord, L"Bytes", &bytes), S_OK);
  EXPECT_EQ(static_cast<unsigned char*>(copy.pvRecord)[5], 0x11);
  EXPECT_EQ(static_cast<unsigned char*>(record.pvRecord)[5], 0x77);
  EXPECT_EQ(copy.pRecInfo->PutField(0, copy.pvRecord, L"Other", &bytes), DISP_E_UNKNOWNNAME);
  EXPECT_TRUE(copy.pRecInfo->IsMatchingType(record.pRecInfo));
}

/// Says that it is the given record, of another size.
ComPtr<IRecordInfo> Emptied(IRecordInfo* info) {
  GUID id{};
  wchar_t name[] = L"Empty";
  ComPtr<ICreateTypeLib2> library;
  ComPtr<ICreateTypeInfo> type;
  ComPtr<IRecordInfo> empty;
  Require(info->GetGuid(&id));
  Require(CreateTypeLib2(SYS_WIN32, L"empty.tlb", library.out()));
  Require(library->CreateTypeInfo(name, TKIND_RECORD, type.out()));
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
    EXPECT_EQ(Call(raw.pdispVal, L"CardDataStruct", DISPATCH_PROPERTYPUT, {each}, nullptr).fault,
              13);
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

  struct Raising final : ComObject<IDispatch> {
    STDMETHODIMP GetTypeInfoCount(UINT*) override { return E_NOTIMPL; }
    STDMETHODIMP GetTypeInfo(UINT, LCID, ITypeInfo**) override { return E_NOTIMPL; }
    STDMETHODIMP GetIDsOfNames(REFIID, LPOLESTR*, UINT, LCID, DISPID* id) override {
      return *id = 1, S_OK;
    }
    STDMETHODIMP Invoke(DISPID, REFIID, LCID, WORD, DISPPARAMS*, VARIANT*, EXCEPINFO* exception,
                        UINT*) override {
      exception->scode = S_FALSE;
      return DISP_E_EXCEPTION;
    }
  } raising;
  IDispatch* frame = &raising;
  ComPtr<::_CCardData> read;
  const HRESULT status = Facade()->AnalyzeCardData(&frame, read.out());
  EXPECT_EQ(status, E_FAIL);
  EXPECT_NE(EarlyOutcome(status).description, L"");
}

TEST_F(Callers, SeeEachInterfaceAndItsClassDescribed) {
  const auto name = [](const ComPtr<ITypeInfo>& info) {
    Variant text;
    text.vt = VT_BSTR;
    EXPECT_EQ(info->GetDocumentation(MEMBERID_NIL, &text.bstrVal, nullptr, nullptr, nullptr), S_OK);
    return Utf8(text.bstrVal);
  };
  const auto described = [&](IDispatch* object) {
    ComPtr<ITypeInfo> info, ofClass;
    const auto provider = ComPtr<IDispatch>::Share(object).As<IProvideClassInfo>();
    EXPECT_EQ(object->GetTypeInfo(0, 0, info.out()), S_OK);
    if (!provider) return name(info);
    EXPECT_EQ(provider->GetClassInfo(nullptr), E_POINTER);
    EXPECT_EQ(provider->GetClassInfo(ofClass.out()), S_OK);
    return name(info) + " " + name(ofClass);
  };
  const auto format = module_.Create<::_CCardFormatInfo>(CLSID_CCardFormatLG);
  EXPECT_EQ(described(format.get()), "_CCardFormatInfo CCardFormatLG");
  const auto own = format.As<IDispatch>();
  EXPECT_EQ(described(own.get()), "_CCardFormatLG CCardFormatLG");
  EXPECT_EQ(described(module_.Create<::ICardFrame>(CLSID_CCardFrame).get()),
            "ICardFrame CCardFrame");

  // A platform's dispatcher needs the default of an omitted argument.
  const auto raw = module_.Create<::_CCardByteData>(CLSID_CCardByteData);
  ComPtr<ITypeInfo> info;
  DISPPARAMS none{};
  Variant empty;
  ASSERT_EQ(raw->GetTypeInfo(0, 0, info.out()), S_OK);
  EXPECT_EQ(DispInvoke(raw.get(), info.get(), 6, DISPATCH_METHOD, &none, &empty, nullptr, nullptr),
            S_OK);
}

TEST_F(Callers, LeaveNoTypeLibraryInAModuleThatMayGo) {
  ComPtr<ITypeInfo> info;
  ComPtr<ITypeLib> library;
  UINT index = 0;
  ASSERT_EQ(Facade()->GetTypeInfo(0, 0, info.out()), S_OK);
  ASSERT_EQ(info->GetContainingTypeLib(library.out(), &index), S_OK);
  info = {};
  EXPECT_EQ(module_.CanUnloadNow(), S_OK);
  EXPECT_EQ(library.Detach()->Release(), 0U);
  ASSERT_EQ(Facade()->GetTypeInfo(0, 0, info.out()), S_OK) << "loaded again";
}

}  // namespace
}  // namespace vardel::server
