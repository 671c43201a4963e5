#include "tests/server/client.h"

#include <gtest/gtest.h>

#include <thread>

// Objects used from other apartments than their own, without registration.
namespace vardel::server {
namespace {

/// Runs something in a new apartment, with what the manifest beside the DLL says, and answers its
/// calls meanwhile.
void InApartment(COINIT kind, const std::function<void()>& run) {
  HANDLE done = CreateEventW(nullptr, TRUE, FALSE, nullptr);
  std::thread thread([&] {
    ACTCTXW source{};
    source.cbSize = sizeof(source);
    source.lpSource = L"Vardel.Server.manifest";
    const HANDLE context = CreateActCtxW(&source);
    ULONG_PTR cookie = 0;
    EXPECT_TRUE(context != INVALID_HANDLE_VALUE && ActivateActCtx(context, &cookie) != FALSE);
    CoInitializeEx(nullptr, kind);
    run();
    CoUninitialize();
    DeactivateActCtx(0, cookie);
    ReleaseActCtx(context);
    SetEvent(done);
  });
  DWORD index = 0;
  CoWaitForMultipleHandles(0, INFINITE, 1, &done, &index);
  thread.join();
  // Wine registers a library that it finds by a manifest.
  UnRegisterTypeLib(LIBID_Vardel, 1, 0, 0, sizeof(void*) == 8 ? SYS_WIN64 : SYS_WIN32);
  CloseHandle(done);
}

IStream* Send(const Value& object, REFIID iid) {
  IStream* stream = nullptr;
  EXPECT_EQ(CoMarshalInterThreadInterfaceInStream(iid, object.pdispVal, &stream), S_OK);
  return stream;
}
Value Receive(IStream* stream) {
  ComPtr<IDispatch> object;
  EXPECT_EQ(
      CoGetInterfaceAndReleaseStream(stream, IID_IDispatch, reinterpret_cast<void**>(object.out())),
      S_OK);
  return object.get();
}
template <class Interface>
ComPtr<Interface> As(const Value& object) {
  return ComPtr<IDispatch>::Share(object.pdispVal).As<Interface>();
}

Value New(const std::string& progId) {
  CLSID id{};
  ComPtr<IDispatch> object;
  EXPECT_EQ(CLSIDFromProgID(Wide(progId).c_str(), &id), S_OK) << progId;
  EXPECT_EQ(CoCreateInstance(id, nullptr, CLSCTX_INPROC_SERVER, IID_IDispatch,
                             reinterpret_cast<void**>(object.out())),
            S_OK)
      << progId;
  return object.get();
}

/// HID standard, 100/12345.
void Fill(const Client& client, const Value& card) {
  EXPECT_EQ(client.Put(card, "CardType", {2}), "");
  EXPECT_EQ(client.Put(card, "CardSubType", {1}), "");
  EXPECT_EQ(client.Put(card, "Facility", {"100"}), "");
  EXPECT_EQ(client.Put(card, "CardID", {"12345"}), "");
}

/// Uses a card where another apartment, or another DLL, asks for one, and what would be shared.
void ExpectLent(const Client& client, const Value& card, const Value& error, const Value& entry) {
  Fill(client, card);
  const Value raw = client.Take(client.New("CCard"), "MakeCardData", {card});
  EXPECT_EQ(client.Ask(raw, "CardArrDataByIndex", {3}), "2");

  const auto expectFault = [](const Outcome& outcome) {
    EXPECT_EQ(outcome.fault, 13);
    EXPECT_NE(outcome.description.find(L"cannot be shared"), std::wstring::npos);
  };
  expectFault(client.Try(raw, "Error", Client::kPuts, {error}, nullptr));
  expectFault(client.Try(client.New("CCardTypes"), "Add", Client::kGets, {entry, 515}, nullptr));
}

TEST(Apartments, AndCopiesOfTheLibraryLendCardsButShareNothing) {
  const Client client(Binding::Names);
  InApartment(COINIT_APARTMENTTHREADED, [&] {
    std::map<std::string, IStream*> sent;
    for (const auto& each : LibraryClasses()) {
      const Value object = client.New(each.first);
      for (const DualInterface& dual : InterfacesOf(object.pdispVal)) {
        IStream* const stream = sent[each.first + "." + dual.name] = Send(object, dual.id);
        ASSERT_NE(stream, nullptr) << each.first << "." << dual.name;
      }
    }
    EXPECT_EQ(sent.size(), 21U + 11U);  // formats and CCardFrame have two
    InApartment(COINIT_APARTMENTTHREADED, [&] {
      std::map<std::string, Value> received;
      for (const auto& [name, stream] : sent) {
        UINT count = 0;
        received[name] = Receive(stream);
        EXPECT_EQ(received[name].pdispVal->GetTypeInfoCount(&count), S_OK) << name;
      }
      ExpectLent(client, received["CCardData._CCardData"], received["CError._CError"],
                 received["CCardType._CCardType"]);
    });
  });

  ASSERT_NE(CopyFileW(L"vardel.dll", L"vardel_copy.dll", FALSE), FALSE);
  {
    const ServerModule copy(L"vardel_copy.dll");
    const auto create = [&](REFCLSID id) { return Value(copy.Create<IDispatch>(id).get()); };
    ExpectLent(client, create(CLSID_CCardData), create(CLSID_CError), create(CLSID_CCardType));
    EXPECT_EQ(copy.CanUnloadNow(), S_OK) << "an object is left";
  }
  DeleteFileW(L"vardel_copy.dll");
}

TEST(Apartments, AreNoMatterToHostsThatHaveNone) {
  // Never ends: Wine keeps the class objects that it makes for such hosts.
  const Client& client = *new Client(Binding::Names);
  InApartment(COINIT_MULTITHREADED, [&] {
    for (const auto& each : LibraryClasses()) New("Vardel." + each.first);
    const Value card = New("Vardel.CCardData"), frame = New("Vardel.CCardFrame");
    IStream* stream = Send(New("Vardel.CCard.1"), __uuidof(::_CCard));
    InApartment(COINIT_APARTMENTTHREADED, [&] {
      const Value format = client.Take(Receive(stream), "CardFormatByCode", {513});
      stream = Send(format, __uuidof(::_CCardFormatInfo));
    });
    const Value format = Receive(stream);
    Fill(client, card);
    // Early-bound: what stands behind the reference is the call's to replace.
    ::_CCardData* argument = As<::_CCardData>(card).Detach();
    ::CardDataStruct record{};
    EXPECT_EQ(As<::_CCardFormatInfo>(format)->MakeCardData(&argument, &record), S_OK);
    ComPtr<::_CCardData>::Adopt(argument);
    EXPECT_EQ(record.Bytes[0], 0x73);
    Value bytes;
    bytes.vt = VT_ARRAY | VT_UI1;
    bytes.parray = SafeArrayCreateVector(VT_UI1, 0, 32);
    memcpy(bytes.parray->pvData, record.Bytes, 32);
    EXPECT_EQ(client.Put(frame, "CardDataStruct", {bytes}), "");
    EXPECT_EQ(As<::_CCardFrame>(frame)->put_CardDataStruct(&record), S_OK);
    const Value read = client.Take(format, "AnalyzeCardData", {frame});
    EXPECT_EQ(client.Ask(read, "CardID"), "12345");
  });
}

}  // namespace
}  // namespace vardel::server
