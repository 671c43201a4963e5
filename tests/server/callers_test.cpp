#include "tests/server/server.h"
#include "tests/server/test_frame.h"

#include <gtest/gtest.h>

#include <functional>
#include <thread>

// What callers do wrong, and what their own objects do: a status, never a crash.
namespace vardel::server {
namespace {

constexpr HRESULT Fault(int number) { return static_cast<HRESULT>(0x800A0000U + number); }

class Callers : public testing::Test {
 protected:
  ~Callers() override { EXPECT_EQ(module_.CanUnloadNow(), S_OK) << "an object is left"; }

  template <class Interface>
  ComPtr<Interface> Create(REFCLSID id) const {
    return module_.Create<Interface>(id);
  }
  ComPtr<::_CCardFormatInfo> Format(long code) const {
    ComPtr<::_CCardFormatInfo> format;
    EXPECT_EQ(facade()->CardFormatByCode(code, format.out()), S_OK);
    return format;
  }
  ComPtr<::_CCard> facade() const { return Create<::_CCard>(CLSID_CCard); }

  ServerModule module_;
};

/// Another library's object: it knows IDispatch and nothing else.
HostFrame Foreign() { return HostFrame(HostFrame::Kind::Names); }

TEST_F(Callers, GetAStatusForWrongClassesInterfacesAndPointers) {
  void* object = this;
  EXPECT_EQ(module_.GetClassObject(IID_IUnknown, IID_IClassFactory, &object),
            CLASS_E_CLASSNOTAVAILABLE);
  EXPECT_EQ(object, nullptr);
  EXPECT_EQ(module_.GetClassObject(CLSID_CCard, IID_IClassFactory, nullptr), E_POINTER);
  EXPECT_EQ(module_.GetClassObject(CLSID_CCard, IID_IDispatch, &object), E_NOINTERFACE);

  ComPtr<IClassFactory> factory;
  ASSERT_EQ(module_.GetClassObject(CLSID_CCard, IID_IClassFactory,
                                   reinterpret_cast<void**>(factory.out())),
            S_OK);
  EXPECT_EQ(module_.CanUnloadNow(), S_FALSE);
  EXPECT_EQ(factory->CreateInstance(nullptr, IID_IUnknown, nullptr), E_POINTER);
  EXPECT_EQ(factory->CreateInstance(factory.get(), IID_IUnknown, &object), CLASS_E_NOAGGREGATION);
  EXPECT_EQ(factory->CreateInstance(nullptr, __uuidof(::_CError), &object), E_NOINTERFACE);
  EXPECT_EQ(object, nullptr);
  EXPECT_EQ(factory->LockServer(TRUE), S_OK);
  factory = {};
  EXPECT_EQ(module_.CanUnloadNow(), S_FALSE) << "locked";
  ASSERT_EQ(module_.GetClassObject(CLSID_CCard, IID_IClassFactory,
                                   reinterpret_cast<void**>(factory.out())),
            S_OK);
  EXPECT_EQ(factory->LockServer(FALSE), S_OK);

  const auto card = facade();
  EXPECT_EQ(card->QueryInterface(IID_IUnknown, nullptr), E_POINTER);
  EXPECT_EQ(card->QueryInterface(__uuidof(::_CError), &object), E_NOINTERFACE);
  EXPECT_EQ(card->GetTypeInfoCount(nullptr), E_POINTER);
  EXPECT_EQ(card->GetTypeInfo(0, 0, nullptr), E_POINTER);
  ComPtr<ITypeInfo> info;
  EXPECT_EQ(card->GetTypeInfo(1, 0, info.out()), DISP_E_BADINDEX);
  EXPECT_EQ(card->GetTypeInfo(0, 0, info.out()), S_OK);
}

TEST_F(Callers, SeeOneIdentityPerObject) {
  const auto card = facade();
  ComPtr<::_CCardFormatInfo> first, second;
  card->CardFormat(2, 1, first.out());
  card->CardFormatByCode(513, second.out());
  EXPECT_EQ(first.get(), second.get());
  const auto own = first.As<::_CCardFormatHIDStandard>();
  ASSERT_TRUE(own);
  EXPECT_EQ(own.As<IUnknown>().get(), first.As<IUnknown>().get());
  EXPECT_EQ(own.As<IDispatch>().get(), first.As<IDispatch>().get());
  EXPECT_FALSE(first.As<::_CCardFormatEM>());
  const auto errorInfo = first.As<ISupportErrorInfo>();
  EXPECT_EQ(errorInfo->InterfaceSupportsErrorInfo(__uuidof(::_CCardFormatInfo)), S_OK);
  EXPECT_EQ(errorInfo->InterfaceSupportsErrorInfo(IID_IClassFactory), S_FALSE);

  // A format outlives its facade, and keeps its values when no client holds it.
  first->put_MaxFacility(300);
  first = second = {};
  double max = 0;
  card->CardFormat(2, 1, first.out());
  first->get_MaxFacility(&max);
  EXPECT_EQ(max, 300);

  const auto raw = Create<::_CCardByteData>(CLSID_CCardByteData);
  const auto bytes = Create<::_CByteArrayData>(CLSID_CByteArrayData);
  ComPtr<::_CError> error;
  raw->get_Error(error.out());
  bytes->putref_Error(error.get());
  bytes->put_ByteCount(-1);
  long number = 0;
  raw->get_ErrNumber(&number);
  EXPECT_EQ(number, -1) << "both have one error";
}

TEST_F(Callers, GetAFaultForObjectsOfAnotherKind) {
  HostFrame foreign = Foreign();
  const auto frame = Create<::_CCardFrame>(CLSID_CCardFrame);
  const auto format = Format(513);
  ::CardDataStruct record{};
  for (IDispatch* const wrong :
       {static_cast<IDispatch*>(&foreign), static_cast<IDispatch*>(frame.get())}) {
    auto* card = reinterpret_cast<::_CCardData*>(wrong);  // as a careless host would cast it
    EXPECT_EQ(format->MakeCardData(&card, &record), Fault(13));
    ComPtr<::_CCardByteData> raw;
    EXPECT_EQ(facade()->MakeCardData(&card, raw.out()), Fault(13));
    const auto registry = Create<::_CCardTypes>(CLSID_CCardTypes);
    VARIANT_BOOL added = VARIANT_TRUE;
    EXPECT_EQ(registry->Add(reinterpret_cast<::_CCardType*>(wrong), 515, &added), Fault(13));
    EXPECT_EQ(registry->putref_Error(reinterpret_cast<::_CError*>(wrong)), Fault(13));
  }
  ::_CCardData* none = nullptr;
  EXPECT_EQ(format->MakeCardData(&none, &record), Fault(91));
  EXPECT_EQ(format->MakeCardData(nullptr, nullptr), E_POINTER);
  IDispatch* noFrame = nullptr;
  ComPtr<::_CCardData> card;
  EXPECT_EQ(format->AnalyzeCardData(&noFrame, card.out()), Fault(91));
  EXPECT_EQ(facade()->AnalyzeCardData(nullptr, card.out()), Fault(91));
}

TEST_F(Callers, GetTheFailuresOfTheirOwnFrames) {
  struct Row {
    const char* what;
    long code;
    std::function<void(HostFrame&)> prepare;
    long fault;  // 0: a blank card
  };
  const Row rows[] = {
      {"its text fails", 513, [](HostFrame& f) { f.failure = Fault(1234); }, Fault(1234)},
      {"fails with a status", 513, [](HostFrame& f) { f.failure = E_ACCESSDENIED; },
       E_ACCESSDENIED},
      {"text for bytes", 513, [](HostFrame& f) { f.bytes.reset(); }, Fault(13)},
      {"text for bytes, 34 bits", 517, [](HostFrame& f) { f.bytes.reset(); }, 0},
      {"text for bytes, raw", 773, [](HostFrame& f) { f.bytes.reset(); }, Fault(13)},
      {"no bytes, 34 bits", 517, [](HostFrame& f) { f.bytes->clear(); }, 0},
      {"short text", 513, [](HostFrame& f) { f.hex = L"01"; }, Fault(13)},
  };
  for (const Row& row : rows) {
    for (const auto kind : {HostFrame::Kind::Names, HostFrame::Kind::Interface}) {
      SCOPED_TRACE(row.what);
      HostFrame frame(kind);
      frame.bytes.emplace(16, std::uint8_t{1});
      frame.hex = std::wstring(32, L'1');
      row.prepare(frame);
      IDispatch* argument = &frame;
      ComPtr<::_CCardData> card;
      EXPECT_EQ(Format(row.code)->AnalyzeCardData(&argument, card.out()), row.fault);
      ComPtr<IErrorInfo> info;
      if (row.fault == 0) continue;
      ASSERT_EQ(GetErrorInfo(0, info.out()), S_OK);
      BSTR description = nullptr;
      info->GetDescription(&description);
      const bool isOwn = FAILED(frame.failure) && kind == HostFrame::Kind::Names;
      EXPECT_EQ(Utf8(description) == "the frame's own failure", isOwn);
      SysFreeString(description);
    }
  }
  HostFrame lacking(HostFrame::Kind::Names);
  lacking.missing = L"IsEMFrame";
  IDispatch* argument = &lacking;
  ComPtr<::_CCardData> card;
  EXPECT_EQ(facade()->AnalyzeCardData(&argument, card.out()), Fault(438));
  // A read too short to decode is a content error, even where the array is empty.
  HostFrame empty(HostFrame::Kind::Names);
  empty.bytes.emplace();
  argument = &empty;
  ASSERT_EQ(Format(513)->AnalyzeCardData(&argument, card.out()), S_OK);
  BSTR message = nullptr;
  card->get_ErrName(&message);
  EXPECT_EQ(Utf8(message), "Too Small Card Data");
  SysFreeString(message);
}

TEST_F(Callers, GetAStatusForWrongLateBoundCalls) {
  const auto card = facade();
  const auto call = [&](const wchar_t* name, WORD flags,
                        std::initializer_list<VARIANT*> arguments) {
    Variant result;
    const Outcome outcome = Call(card.get(), name, flags, arguments, &result);
    EXPECT_TRUE(outcome.fault == 0 || Utf8(outcome.source) == "Vardel.CCard");
    return outcome.fault == 0 ? outcome.status : Fault(static_cast<int>(outcome.fault));
  };
  Variant one, text, object, null, nowhere, missing;
  one.vt = VT_I4;
  one.lVal = 1;
  text.vt = VT_BSTR;
  text.bstrVal = SysAllocString(L"not a number");
  HostFrame foreign = Foreign();
  object.vt = VT_DISPATCH;
  object.pdispVal = &foreign;
  null.vt = VT_NULL;
  nowhere.vt = VT_BYREF | VT_I4;
  missing.vt = VT_ERROR;
  missing.scode = DISP_E_PARAMNOTFOUND;
  constexpr WORD kMethod = DISPATCH_METHOD | DISPATCH_PROPERTYGET;
  EXPECT_EQ(call(L"NoSuchMember", kMethod, {}), DISP_E_UNKNOWNNAME);
  EXPECT_EQ(call(L"cardformat", kMethod, {&one}), DISP_E_BADPARAMCOUNT);
  EXPECT_EQ(call(L"CardFormat", kMethod, {&one, &one, &one}), DISP_E_BADPARAMCOUNT);
  EXPECT_EQ(call(L"CardFormat", kMethod, {&one, &text}), Fault(13));
  EXPECT_EQ(call(L"CardFormat", kMethod, {&one, &object}), Fault(13));
  EXPECT_EQ(call(L"CardFormat", kMethod, {&one, &nowhere}), Fault(13));
  EXPECT_EQ(call(L"CardFormat", kMethod, {&one, &missing}), DISP_E_PARAMNOTOPTIONAL);
  EXPECT_EQ(call(L"CardTypeCount", DISPATCH_PROPERTYPUT, {&one}), DISP_E_MEMBERNOTFOUND);
  EXPECT_EQ(call(L"MakeCardData", kMethod, {&object}), Fault(13));
  EXPECT_EQ(call(L"MakeCardData", kMethod, {&one}), Fault(13));
  EXPECT_EQ(call(L"MakeCardData", kMethod, {&null}), Fault(91));

  const auto raw = Create<::_CCardByteData>(CLSID_CCardByteData);
  Variant big;
  big.vt = VT_I4;
  big.lVal = 256;
  EXPECT_EQ(Call(raw.get(), L"CardSubType", DISPATCH_PROPERTYPUT, {&big}, nullptr).fault, 6);
  EXPECT_EQ(Call(raw.get(), L"CardDataStruct", DISPATCH_PROPERTYPUT, {&big}, nullptr).fault, 13);
  EXPECT_EQ(Call(raw.get(), L"InitCardData", DISPATCH_METHOD, {}, nullptr).status, S_OK);
  EXPECT_EQ(Call(raw.get(), L"InitCardData", DISPATCH_METHOD, {&missing}, nullptr).status, S_OK);

  DISPPARAMS none{};
  EXPECT_EQ(
      card->Invoke(1, IID_IUnknown, 0, DISPATCH_PROPERTYGET, &none, nullptr, nullptr, nullptr),
      DISP_E_UNKNOWNINTERFACE);
  EXPECT_EQ(card->Invoke(1, IID_NULL, 0, DISPATCH_PROPERTYGET, nullptr, nullptr, nullptr, nullptr),
            E_POINTER);
  EXPECT_EQ(card->Invoke(1, IID_NULL, 0, DISPATCH_PROPERTYGET, &none, nullptr, nullptr, nullptr),
            S_OK);
  EXPECT_EQ(card->Invoke(9999, IID_NULL, 0, DISPATCH_METHOD, &none, nullptr, nullptr, nullptr),
            DISP_E_MEMBERNOTFOUND);
  EXPECT_EQ(card->GetIDsOfNames(IID_NULL, nullptr, 1, 0, nullptr), E_POINTER);
  object.vt = VT_EMPTY;  // the frame lives on the stack
}

TEST_F(Callers, NameArgumentsAndReachBothKindsOfMemberNames) {
  const auto card = facade();
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
  Variant format;
  ASSERT_EQ(card->Invoke(ids[0], IID_NULL, 0, DISPATCH_METHOD, &params, &format, nullptr, nullptr),
            S_OK);
  for (const wchar_t* name : {L"BitCountTotal", L"CCardFormatInfo_BitCountTotal"}) {
    Variant bits;
    EXPECT_EQ(Call(format.pdispVal, name, DISPATCH_PROPERTYGET, {}, &bits).status, S_OK);
    EXPECT_EQ(bits.lVal, 37);
  }
}

TEST_F(Callers, KeepRecordsBeyondTheirObjectsAndTheModuleWithThem) {
  Variant record;
  {
    const auto raw = Create<::_CCardByteData>(CLSID_CCardByteData);
    raw->put_CardArrDataByIndex(5, 0x77);
    ASSERT_EQ(Call(raw.get(), L"CardDataStruct", DISPATCH_PROPERTYGET, {}, &record).status, S_OK);
  }
  ASSERT_EQ(record.vt, VT_RECORD);
  EXPECT_EQ(module_.CanUnloadNow(), S_FALSE) << "a record is left";
  Variant copy;
  ASSERT_EQ(VariantCopy(&copy, &record), S_OK);
  Variant bytes;
  ASSERT_EQ(copy.pRecInfo->GetField(copy.pvRecord, L"bytes", &bytes), S_OK);
  ASSERT_EQ(bytes.vt, VT_ARRAY | VT_UI1);
  EXPECT_EQ(static_cast<unsigned char*>(bytes.parray->pvData)[5], 0x77);
  static_cast<unsigned char*>(bytes.parray->pvData)[31] = 0x11;
  EXPECT_EQ(copy.pRecInfo->PutField(0, copy.pvRecord, L"Bytes", &bytes), S_OK);
  EXPECT_EQ(static_cast<unsigned char*>(copy.pvRecord)[31], 0x11);
  EXPECT_EQ(static_cast<unsigned char*>(record.pvRecord)[31], 0);
  EXPECT_EQ(copy.pRecInfo->PutField(0, copy.pvRecord, L"Other", &bytes), DISP_E_UNKNOWNNAME);
  EXPECT_TRUE(copy.pRecInfo->IsMatchingType(record.pRecInfo));
}

TEST_F(Callers, WorkInSeveralApartmentsAtOnce) {
  const auto work = [this] {
    CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
    {
      const auto card = facade();
      const auto frame = Create<::_CCardFrame>(CLSID_CCardFrame);
      BSTR hex = SysAllocString(L"7360C8020000");
      for (int i = 0; i < 2000; ++i) {
        frame->put_RawCardHex(hex);
        frame->put_FrameCardType(2);
        frame->put_FrameCardSubType(1);
        IDispatch* argument = frame.get();
        ComPtr<::_CCardData> decoded;
        ASSERT_EQ(card->AnalyzeCardData(&argument, decoded.out()), S_OK);
        BSTR cardID = nullptr;
        decoded->get_CardID(&cardID);
        ASSERT_STREQ(cardID, L"12345");
        SysFreeString(cardID);
      }
      SysFreeString(hex);
    }
    CoUninitialize();
  };
  std::thread other(work);
  work();
  other.join();
}

}  // namespace
}  // namespace vardel::server
