#include "tests/server/library_types.h"
#include "tests/server/server_host.h"

#include <gtest/gtest.h>

#include <thread>

// Objects used from other apartments than their own, without registration.
namespace vardel::server {
namespace {

/// What the manifest beside the DLL says, for this thread.
class Activation {
 public:
  Activation() {
    ACTCTXW source{};
    source.cbSize = sizeof(source);
    source.lpSource = L"Vardel.Server.manifest";
    context_ = CreateActCtxW(&source);
    EXPECT_TRUE(context_ != INVALID_HANDLE_VALUE && ActivateActCtx(context_, &cookie_) != FALSE);
  }
  Activation(const Activation&) = delete;
  Activation& operator=(const Activation&) = delete;
  ~Activation() {
    DeactivateActCtx(0, cookie_);
    ReleaseActCtx(context_);
  }

 private:
  HANDLE context_;
  ULONG_PTR cookie_ = 0;
};

/// Runs something in a new apartment, to whose calls this thread's answers meanwhile.
void InApartment(COINIT kind, const std::function<void()>& run) {
  HANDLE done = CreateEventW(nullptr, TRUE, FALSE, nullptr);
  std::thread thread([&] {
    CoInitializeEx(nullptr, kind);
    {
      const Activation manifest;
      run();
    }
    CoUninitialize();
    SetEvent(done);
  });
  DWORD index = 0;
  CoWaitForMultipleHandles(0, INFINITE, 1, &done, &index);
  thread.join();
  CloseHandle(done);
}

IStream* Send(IUnknown* object, REFIID iid) {
  IStream* stream = nullptr;
  EXPECT_EQ(CoMarshalInterThreadInterfaceInStream(iid, object, &stream), S_OK);
  return stream;
}
template <class Interface>
ComPtr<Interface> Receive(IStream* stream) {
  ComPtr<Interface> object;
  EXPECT_EQ(CoGetInterfaceAndReleaseStream(stream, __uuidof(Interface),
                                           reinterpret_cast<void**>(object.out())),
            S_OK);
  return object;
}
template <class Interface>
ComPtr<Interface> New(REFCLSID id) {
  ComPtr<Interface> object;
  EXPECT_EQ(CoCreateInstance(id, nullptr, CLSCTX_INPROC_SERVER, __uuidof(Interface),
                             reinterpret_cast<void**>(object.out())),
            S_OK);
  return object;
}

/// Encodes through a proxy or directly: what stands behind the reference is the call's to replace.
HRESULT Encode(::_CCardFormatInfo* format, ComPtr<::_CCardData> card, ::CardDataStruct* record) {
  ::_CCardData* argument = card.Detach();
  const HRESULT status = format->MakeCardData(&argument, record);
  ComPtr<::_CCardData>::Adopt(argument);
  return status;
}

/// HID standard, 100/12345.
void Fill(::_CCardData* card) {
  const BSTR facility = NewBstr("100"), number = NewBstr("12345");
  EXPECT_EQ(card->put_CardType(CARD_HID), S_OK);
  EXPECT_EQ(card->put_CardSubType(CARD_SUB_HID_STD), S_OK);
  EXPECT_EQ(card->put_Facility(facility), S_OK);
  EXPECT_EQ(card->put_CardID(number), S_OK);
  SysFreeString(facility);
  SysFreeString(number);
}

/// Uses a card as an argument of objects that are not its own apartment's, or its own DLL's, and
/// the others where they would have to be shared.
void ExpectLent(const ServerModule& module, const ComPtr<::_CCardData>& card,
                const ComPtr<::_CError>& error, const ComPtr<::_CCardType>& entry) {
  Fill(card.get());
  Variant argument, result;
  argument.vt = VT_DISPATCH;
  argument.pdispVal = card.As<IDispatch>().Detach();
  const auto facade = module.Create<::_CCard>(CLSID_CCard);
  ASSERT_EQ(Call(facade.get(), L"MakeCardData", DISPATCH_METHOD, {&argument}, &result).status,
            S_OK);
  const auto raw = ComPtr<IDispatch>::Share(result.pdispVal).As<::_CCardByteData>();
  unsigned char byte = 0;
  EXPECT_EQ(raw->get_CardArrDataByIndex(3, &byte), S_OK);
  EXPECT_EQ(byte, 0x02);

  VARIANT_BOOL isAdded = VARIANT_FALSE;
  const auto expectFault = [](HRESULT status) {
    const Outcome outcome = EarlyOutcome(status);
    EXPECT_EQ(outcome.fault, 13);
    EXPECT_NE(outcome.description.find(L"cannot be shared"), std::wstring::npos);
  };
  expectFault(raw->putref_Error(error.get()));
  expectFault(module.Create<::_CCardTypes>(CLSID_CCardTypes)->Add(entry.get(), 515, &isAdded));
}

class Apartments : public testing::Test {
 protected:
  Apartments() {
    CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
    Forget();
  }
  ~Apartments() override {
    Forget();
    CoUninitialize();
  }
  /// Wine registers a library that it finds by a manifest.
  static void Forget() {
    UnRegisterTypeLib(LIBID_Vardel, 1, 0, 0, sizeof(void*) == 8 ? SYS_WIN64 : SYS_WIN32);
  }

  ServerModule module_;
};

TEST_F(Apartments, AreCrossedByEveryInterfaceOfEveryClass) {
  const Activation manifest;
  std::vector<std::pair<std::string, IStream*>> sent;
  for (const auto& [name, id] : LibraryClasses()) {
    const auto object = module_.Create<IDispatch>(id);
    for (const DualInterface& dual : InterfacesOf(object.get())) {
      sent.emplace_back(name + "." + dual.name, Send(object.get(), dual.id));
      ASSERT_NE(sent.back().second, nullptr) << sent.back().first;
    }
  }
  EXPECT_EQ(sent.size(), 19U + 11U);  // formats and CCardFrame have two
  InApartment(COINIT_MULTITHREADED, [&] {
    UINT count = 0;
    for (const auto& [name, stream] : sent) {
      EXPECT_EQ(Receive<IDispatch>(stream)->GetTypeInfoCount(&count), S_OK) << name;
    }
  });
  EXPECT_EQ(module_.CanUnloadNow(), S_OK) << "an object is left";
}

TEST_F(Apartments, AndCopiesOfTheLibraryLendCardsButShareNothing) {
  {
    const Activation manifest;
    const auto send = [&](REFCLSID id, REFIID iid) {
      return Send(module_.Create<IDispatch>(id).get(), iid);
    };
    IStream* const card = send(CLSID_CCardData, __uuidof(::_CCardData));
    IStream* const error = send(CLSID_CError, __uuidof(::_CError));
    IStream* const entry = send(CLSID_CCardType, __uuidof(::_CCardType));
    InApartment(COINIT_APARTMENTTHREADED, [&] {
      ExpectLent(module_, Receive<::_CCardData>(card), Receive<::_CError>(error),
                 Receive<::_CCardType>(entry));
    });
  }
  ASSERT_NE(CopyFileW(L"vardel.dll", L"vardel_copy.dll", FALSE), FALSE);
  {
    const ServerModule copy(L"vardel_copy.dll");
    ExpectLent(module_, copy.Create<::_CCardData>(CLSID_CCardData),
               copy.Create<::_CError>(CLSID_CError), copy.Create<::_CCardType>(CLSID_CCardType));
    EXPECT_EQ(copy.CanUnloadNow(), S_OK) << "an object is left";
  }
  DeleteFileW(L"vardel_copy.dll");
  SetErrorInfo(0, nullptr);
  EXPECT_EQ(module_.CanUnloadNow(), S_OK) << "an object is left";
}

// What is left cannot be asked here: Wine keeps the class objects that it makes for such hosts.
TEST_F(Apartments, AreNoMatterToHostsThatHaveNone) {
  InApartment(COINIT_MULTITHREADED, [] {
    CLSID id{};
    EXPECT_EQ(CLSIDFromProgID(L"Vardel.CCard.1", &id), S_OK);
    const auto facade = New<::_CCard>(id);
    const auto card = New<::_CCardData>(CLSID_CCardData);
    const auto frame = New<::_CCardFrame>(CLSID_CCardFrame);
    ASSERT_TRUE(facade && card && frame);
    Fill(card.get());
    IStream* stream = Send(facade.get(), __uuidof(::_CCard));
    InApartment(COINIT_APARTMENTTHREADED, [&] {
      ComPtr<::_CCardFormatInfo> format;
      EXPECT_EQ(Receive<::_CCard>(stream)->CardFormatByCode(513, format.out()), S_OK);
      stream = Send(format.get(), __uuidof(::_CCardFormatInfo));
    });
    const auto format = Receive<::_CCardFormatInfo>(stream);
    ::CardDataStruct record{};
    EXPECT_EQ(Encode(format.get(), card, &record), S_OK);
    EXPECT_EQ(record.Bytes[0], 0x73);
    Variant bytes;
    bytes.vt = VT_ARRAY | VT_UI1;
    bytes.parray = SafeArrayCreateVector(VT_UI1, 0, 32);
    memcpy(bytes.parray->pvData, record.Bytes, 32);
    EXPECT_EQ(Call(frame.get(), L"CardDataStruct", DISPATCH_PROPERTYPUT, {&bytes}, nullptr).status,
              S_OK);
    EXPECT_EQ(frame->put_CardDataStruct(&record), S_OK);
    IDispatch* argument = frame.As<IDispatch>().Detach();
    ComPtr<::_CCardData> read;
    Variant number;
    EXPECT_EQ(format->AnalyzeCardData(&argument, read.out()), S_OK);
    ComPtr<IDispatch>::Adopt(argument);
    EXPECT_EQ(Call(read.get(), L"CardID", DISPATCH_PROPERTYGET, {}, &number).status, S_OK);
    EXPECT_EQ(Utf8(number.bstrVal), "12345");
  });
}

}  // namespace
}  // namespace vardel::server
