#include "tests/server/client.h"

#include <gtest/gtest.h>

#include <functional>
#include <thread>

// Objects used from other apartments than their own, without registration.
namespace vardel::server {
namespace {

/// Wine registers a library that it finds by a manifest, and with it all interfaces.
void UnregisterLibrary() {
  UnRegisterTypeLib(LIBID_Vardel, 1, 0, 0, sizeof(void*) == 8 ? SYS_WIN64 : SYS_WIN32);
}

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
  UnregisterLibrary();
  CloseHandle(done);
}

IStream* Send(const Value& object, REFIID iid) {
  IStream* stream = nullptr;
  UnregisterLibrary();
  EXPECT_EQ(CoMarshalInterThreadInterfaceInStream(iid, object.pdispVal, &stream), S_OK);
  return stream;
}
Value Receive(IStream* stream) {
  ComPtr<IDispatch> object;
  EXPECT_EQ(CoGetInterfaceAndReleaseStream(stream, IID_PPV_ARGS(object.out())), S_OK);
  return object.get();
}

Value New(const std::string& progId) {
  CLSID id{};
  ComPtr<IDispatch> object;
  EXPECT_EQ(CLSIDFromProgID(Wide(progId).c_str(), &id), S_OK) << progId;
  EXPECT_EQ(CoCreateInstance(id, nullptr, CLSCTX_INPROC_SERVER, IID_PPV_ARGS(object.out())), S_OK)
      << progId;
  return object.get();
}

const CCardData kCard{0, "", CARD_HID, CARD_SUB_HID_STD, "100", "12345", ""};

/// Uses a card where another apartment, or another DLL, asks for one, and what would be shared.
void ExpectLent(const Client& client, const Value& card, const Value& error, const Value& entry) {
  client.Fill(card, kCard);
  const Value raw = client.Take(client.New("CCard"), "MakeCardData", {card});
  EXPECT_EQ(client.Ask(raw, "CardDataStruct"), "7360C802");

  const auto expectFault = [](const Outcome& outcome) {
    EXPECT_EQ(outcome.failure, "fault 13");
    EXPECT_NE(outcome.description.find("cannot be shared"), std::string::npos);
  };
  expectFault(client.Try(raw, "Error", DISPATCH_PROPERTYPUTREF, {error}, nullptr));
  expectFault(client.Try(client.New("CCardTypes"), "Add", DISPATCH_METHOD, {entry, 515}, nullptr));
}

TEST(Apartments, AndCopiesOfTheLibraryLendCardsButShareNothing) {
  const Client client;
  InApartment(COINIT_APARTMENTTHREADED, [&] {
    std::map<std::string, IStream*> sent;
    for (const auto& each : LibraryClasses()) {
      const Value object = client.New(each.first);
      for (const LibraryType& type : InterfacesOf(object.pdispVal)) {
        const std::string name = each.first + "." + type.name;
        ASSERT_NE(sent[name] = Send(object, type.attributes.guid), nullptr) << name;
      }
    }
    EXPECT_GT(sent.size(), LibraryClasses().size()) << "formats have two";
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

  const ServerModule copy = ServerModule::Copy(L"vardel_copy.dll");
  const auto create = [&](REFCLSID id) { return Value(copy.Create<IDispatch>(id).get()); };
  ExpectLent(client, create(CLSID_CCardData), create(CLSID_CError), create(CLSID_CCardType));
  EXPECT_EQ(copy.CanUnloadNow(), S_OK) << "an object is left";
}

TEST(Apartments, AreNoMatterToHostsThatHaveNone) {
  // Never ends: Wine keeps the class objects that it makes for such hosts.
  const Client& client = *new Client;
  InApartment(COINIT_MULTITHREADED, [&] {
    for (const auto& each : LibraryClasses()) New("Vardel." + each.first);
    const Value card = New("Vardel.CCardData"), frame = New("Vardel.CCardFrame");
    IStream* stream = Send(New("Vardel.CCard.1"), __uuidof(::_CCard));
    InApartment(COINIT_APARTMENTTHREADED, [&] {
      const Value format = client.Take(Receive(stream), "CardFormatByCode", {513});
      stream = Send(format, __uuidof(::_CCardFormatInfo));
    });
    const Value format = Receive(stream);
    client.Fill(card, kCard);
    auto argument = card.As<::_CCardData>();  // the call's to replace
    ::CardDataStruct record{};
    EXPECT_EQ(format.As<::_CCardFormatInfo>()->MakeCardData(argument.out(), &record), S_OK);
    EXPECT_EQ(record.Bytes[0], 0x73);
    EXPECT_EQ(client.Put(frame, "CardDataStruct", {NewByteArray(record.Bytes)}), "");
    EXPECT_EQ(frame.As<::_CCardFrame>()->put_CardDataStruct(&record), S_OK);
    const Value read = client.Take(format, "AnalyzeCardData", {frame});
    EXPECT_EQ(client.Ask(read, "CardID"), "12345");
  });
}

}  // namespace
}  // namespace vardel::server
