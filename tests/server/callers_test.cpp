#include "tests/server/server.h"
#include "tests/server/test_frame.h"

#include <gtest/gtest.h>

#include <ocidl.h>

#include <functional>

// What callers do wrong, and what their own objects do: a status, never a crash.
namespace vardel::server {
namespace {

constexpr HRESULT Fault(int number) { return static_cast<HRESULT>(0x800A0000U + number); }

class Callers : public testing::Test {
 protected:
  ~Callers() override {
    SetErrorInfo(0, nullptr);
    EXPECT_EQ(module_.CanUnloadNow(), S_OK) << "an object is left";
  }

  ComPtr<::_CCard> Facade() const { return module_.Create<::_CCard>(CLSID_CCard); }
  ComPtr<IClassFactory> Factory() const {
    ComPtr<IClassFactory> factory;
    EXPECT_EQ(module_.GetClassObject(CLSID_CCard, IID_IClassFactory,
                                     reinterpret_cast<void**>(factory.out())),
              S_OK);
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
  HostFrame foreign;
  auto* cardArgument = reinterpret_cast<::_CCardData*>(&foreign);  // as a careless host casts it
  ComPtr<::_CCardByteData> raw;
  EXPECT_EQ(Facade()->MakeCardData(&cardArgument, raw.out()), Fault(13));

  struct Row {
    const char* what;
    long code;
    std::function<void(HostFrame&)> prepare;
    HRESULT status;
  };
  const Row rows[] = {
      {"its text fails", 513, [](HostFrame& f) { f.failure = Fault(1234); }, Fault(1234)},
      {"a status", 513, [](HostFrame& f) { f.failure = E_ACCESSDENIED; }, E_ACCESSDENIED},
      {"text for bytes", 513, [](HostFrame& f) { f.bytes.reset(); }, Fault(13)},
      {"text for bytes, 34 bits", 517, [](HostFrame& f) { f.bytes.reset(); }, S_OK},
      {"text for bytes, raw", 773, [](HostFrame& f) { f.bytes.reset(); }, Fault(13)},
      {"no bytes", 513, [](HostFrame& f) { f.bytes->clear(); }, S_OK},
      {"no bytes, 34 bits", 517, [](HostFrame& f) { f.bytes->clear(); }, S_OK},
      {"short text", 513, [](HostFrame& f) { f.hex = L"01"; }, Fault(13)},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.what);
    HostFrame frame;
    frame.bytes.emplace(16, std::uint8_t{1});
    frame.hex = std::wstring(32, L'1');
    row.prepare(frame);
    const ComPtr<IDispatch> byNames = frame.ByNames();
    for (IDispatch* argument : {byNames.get(), static_cast<IDispatch*>(&frame)}) {
      ComPtr<::_CCardFormatInfo> format;
      ComPtr<::_CCardData> result;
      EXPECT_EQ(Facade()->CardFormatByCode(row.code, format.out()), S_OK);
      const HRESULT status = format->AnalyzeCardData(&argument, result.out());
      EXPECT_EQ(status, row.status);
      EXPECT_EQ(EarlyOutcome(status).description == L"the frame's own failure",
                FAILED(frame.failure));
    }
  }
}

TEST_F(Callers, NameArgumentsAndPassReferences) {
  const auto card = Facade();
  wchar_t member[] = L"CardFormat", type[] = L"CardType", subType[] = L"cardsubtype",
          other[] = L"X";
  wchar_t* names[] = {member, subType, type, other};
  DISPID ids[4];
  EXPECT_EQ(card->GetIDsOfNames(IID_NULL, names, 4, 0, ids), DISP_E_UNKNOWNNAME);
  EXPECT_EQ(ids[3], DISPID_UNKNOWN);
  ASSERT_EQ(card->GetIDsOfNames(IID_NULL, names, 3, 0, ids), S_OK);
  VARIANT arguments[2]{};
  arguments[0].vt = arguments[1].vt = VT_I2;
  arguments[0].iVal = 4;  // sub-type
  arguments[1].iVal = 2;
  DISPPARAMS params{arguments, &ids[1], 2, 2};
  Variant format, nowhere;
  ASSERT_EQ(card->Invoke(ids[0], IID_NULL, 0, DISPATCH_METHOD, &params, &format, nullptr, nullptr),
            S_OK);
  EXPECT_TRUE(ComPtr<IDispatch>::Share(format.pdispVal).As<::_CCardFormatHIDCorp1000>());
  nowhere.vt = VT_BYREF | VT_I4;
  EXPECT_EQ(Call(card.get(), L"CardFormatByCode", DISPATCH_METHOD, {&nowhere}, nullptr).fault, 13);
}

TEST_F(Callers, KeepRecordsBeyondTheirObjectsAndTheModuleWithThem) {
  Variant record, copy, bytes;
  {
    const auto raw = module_.Create<::_CCardByteData>(CLSID_CCardByteData);
    raw->put_CardArrDataByIndex(5, 0x77);
    ASSERT_EQ(Call(raw.get(), L"CardDataStruct", DISPATCH_PROPERTYGET, {}, &record).status, S_OK);
  }
  EXPECT_EQ(module_.CanUnloadNow(), S_FALSE) << "a record is left";
  ASSERT_EQ(VariantCopy(&copy, &record), S_OK);
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

/// Says that it is a card record, of another size.
class OtherRecord final : public IRecordInfo {
 public:
  explicit OtherRecord(IRecordInfo& card) : card_(card) {}
  STDMETHODIMP QueryInterface(REFIID, void**) override { return E_NOINTERFACE; }
  STDMETHODIMP_(ULONG) AddRef() override { return 2; }
  STDMETHODIMP_(ULONG) Release() override { return 1; }
  STDMETHODIMP RecordInit(PVOID) override { return E_NOTIMPL; }
  STDMETHODIMP RecordClear(PVOID) override { return S_OK; }
  STDMETHODIMP RecordCopy(PVOID, PVOID) override { return E_NOTIMPL; }
  STDMETHODIMP GetGuid(GUID* guid) override { return card_.GetGuid(guid); }
  STDMETHODIMP GetName(BSTR*) override { return E_NOTIMPL; }
  STDMETHODIMP GetSize(ULONG* size) override { return *size = 8, S_OK; }
  STDMETHODIMP GetTypeInfo(ITypeInfo**) override { return E_NOTIMPL; }
  STDMETHODIMP GetField(PVOID, LPCOLESTR, VARIANT*) override { return E_NOTIMPL; }
  STDMETHODIMP GetFieldNoCopy(PVOID, LPCOLESTR, VARIANT*, PVOID*) override { return E_NOTIMPL; }
  STDMETHODIMP PutField(ULONG, PVOID, LPCOLESTR, VARIANT*) override { return E_NOTIMPL; }
  STDMETHODIMP PutFieldNoCopy(ULONG, PVOID, LPCOLESTR, VARIANT*) override { return E_NOTIMPL; }
  STDMETHODIMP GetFieldNames(ULONG*, BSTR*) override { return E_NOTIMPL; }
  STDMETHODIMP_(WINBOOL) IsMatchingType(IRecordInfo*) override { return TRUE; }
  STDMETHODIMP_(PVOID) RecordCreate() override { return nullptr; }
  STDMETHODIMP RecordCreateCopy(PVOID, PVOID*) override { return E_NOTIMPL; }
  STDMETHODIMP RecordDestroy(PVOID) override { return S_OK; }

 private:
  IRecordInfo& card_;
};

VARIANT Array(VARTYPE type, ULONG size, ULONG dimensions = 1) {
  VARIANT value{};
  value.vt = static_cast<VARTYPE>(VT_ARRAY | type);
  SAFEARRAYBOUND bounds[2] = {{size, 5}, {1, 0}};
  value.parray = SafeArrayCreate(type, dimensions, bounds);
  if (type == VT_VARIANT) {
    for (auto* each = static_cast<VARIANT*>(value.parray->pvData); size > 0; --size) {
      each->vt = VT_R8;
      (each++)->dblVal = 7;
    }
  }
  return value;
}

TEST_F(Callers, MaySendAnyValueForARecord) {
  const auto raw = module_.Create<::_CCardByteData>(CLSID_CCardByteData);
  Variant record;
  ASSERT_EQ(Call(raw.get(), L"CardDataStruct", DISPATCH_PROPERTYGET, {}, &record).status, S_OK);
  OtherRecord other(*record.pRecInfo);
  VARIANT small = record, none = record, nothing{}, ring{}, wrong = Array(VT_VARIANT, 32),
          big = Array(VT_VARIANT, 32);
  small.pRecInfo = &other;
  none.pvRecord = nullptr;
  nothing.vt = VT_BYREF | VT_ARRAY | VT_UI1;
  ring.vt = VT_BYREF | VT_VARIANT;
  ring.pvarVal = &ring;
  auto* const last = static_cast<VARIANT*>(wrong.parray->pvData) + 31;
  *last = ring;
  static_cast<VARIANT*>(big.parray->pvData)->dblVal = 256;
  const auto expectFault = [&](int number, VARIANT value) {
    EXPECT_EQ(Call(raw.get(), L"CardDataStruct", DISPATCH_PROPERTYPUT, {&value}, nullptr).fault,
              number)
        << std::hex << value.vt;
    if (value.vt != VT_RECORD && (value.vt & VT_BYREF) == 0) VariantClear(&value);
  };
  expectFault(0, Array(VT_UI1, 32));
  expectFault(0, Array(VT_VARIANT, 32));
  unsigned char byte = 0;
  raw->get_CardArrDataByIndex(31, &byte);
  EXPECT_EQ(byte, 7);
  for (const VARIANT& value : {small, none, nothing, ring, Array(VT_UI1, 31), Array(VT_UI1, 32, 2),
                               Array(VT_VARIANT, 33), Array(VT_I2, 32), wrong}) {
    expectFault(13, value);
  }
  expectFault(6, big);
  raw->get_CardArrDataByIndex(0, &byte);
  EXPECT_EQ(byte, 7);
}

TEST_F(Callers, AreToldWhichArgumentIsWrong) {
  const auto card = Facade();
  VARIANT arguments[2]{};
  arguments[0].vt = VT_I4;
  arguments[1].vt = VT_BSTR;  // an empty text is no number
  DISPID names[] = {0, 1};
  wchar_t member[] = L"CardFormat";
  wchar_t* twice[] = {member, nullptr};
  DISPID ids[2];
  EXPECT_EQ(card->GetIDsOfNames(IID_NULL, twice, 2, 0, ids), E_INVALIDARG);
  struct Row {
    DISPPARAMS params;
    HRESULT status;
    UINT argument;
  };
  const Row rows[] = {
      {{arguments, nullptr, 2, 0}, DISP_E_EXCEPTION, 1},
      {{arguments, names, 2, 2}, DISP_E_EXCEPTION, 1},
      {{nullptr, nullptr, 2, 0}, E_INVALIDARG, 9},
      {{arguments, nullptr, 2, 2}, E_INVALIDARG, 9},
      {{arguments, names, 2, 3}, DISP_E_BADPARAMCOUNT, 9},
      {{arguments, names, ~0U, 0}, DISP_E_BADPARAMCOUNT, 9},
  };
  for (Row row : rows) {
    UINT argument = 9;
    EXPECT_EQ(
        card->Invoke(3, IID_NULL, 0, DISPATCH_METHOD, &row.params, nullptr, nullptr, &argument),
        row.status);
    EXPECT_EQ(argument, row.argument) << row.params.cArgs << " " << row.params.cNamedArgs;
  }
}

TEST_F(Callers, MayHaveADecimalCommaAndFramesThatRaiseNoFailure) {
  wchar_t point[4];
  GetLocaleInfoW(LOCALE_USER_DEFAULT, LOCALE_SDECIMAL, point, 4);
  SetLocaleInfoW(LOCALE_USER_DEFAULT, LOCALE_SDECIMAL, L",");
  const auto card = module_.Create<::_CCardData>(CLSID_CCardData);
  Variant number, text;
  number.vt = VT_R8;
  number.dblVal = 12.5;
  Call(card.get(), L"CardID", DISPATCH_PROPERTYPUT, {&number}, nullptr);
  SetLocaleInfoW(LOCALE_USER_DEFAULT, LOCALE_SDECIMAL, point);
  Call(card.get(), L"CardID", DISPATCH_PROPERTYGET, {}, &text);
  EXPECT_EQ(Utf8(text.bstrVal), "12.5");

  struct Raising final : IDispatch {
    STDMETHODIMP QueryInterface(REFIID iid, void** object) override {
      *object = iid == IID_IUnknown || iid == IID_IDispatch ? this : nullptr;
      return *object == nullptr ? E_NOINTERFACE : S_OK;
    }
    STDMETHODIMP_(ULONG) AddRef() override { return 2; }
    STDMETHODIMP_(ULONG) Release() override { return 1; }
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
