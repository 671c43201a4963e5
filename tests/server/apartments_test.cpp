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

// What is left cannot be asked here: Wine keeps the class objects that it makes for such hosts.
TEST_F(Apartments, AreNoMatterToHostsThatHaveNone) {
  InApartment(COINIT_MULTITHREADED, [] {
    const auto facade = New<::_CCard>(CLSID_CCard);
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
