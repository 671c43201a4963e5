// Creates, uses and drops every class in two apartments at once, 50,000 objects in all unless the
// argument says otherwise. Fails when memory or handles grow, or an object is left.

#include "tests/server/server.h"

#include <psapi.h>

#include <cstdlib>
#include <iostream>
#include <thread>

namespace vardel::server {
namespace {

/// One object of each class; late-bound calls, a card there and back, and faults.
void UseAll(const ServerModule& module, const std::map<std::string, CLSID>& classes) {
  for (const auto& [name, id] : classes) {
    ComPtr<ITypeInfo> info;
    Require(module.Create<IDispatch>(id)->GetTypeInfo(0, 0, info.out()));
  }
  const auto facade = module.Create<::_CCard>(CLSID_CCard);
  const auto frame = module.Create<::_CCardFrame>(CLSID_CCardFrame);
  Variant hex;
  hex.vt = VT_BSTR;
  hex.bstrVal = NewBstr("7360C8020000");
  const Outcome put = Call(frame.get(), "RawCardHex", DISPATCH_PROPERTYPUT, {&hex}, nullptr);
  if (!put.failure.empty()) throw std::runtime_error("a put failed");
  Require(frame->put_FrameCardType(CARD_HID));
  Require(frame->put_FrameCardSubType(CARD_SUB_HID_STD));
  IDispatch* read = frame.get();
  ComPtr<::_CCardData> card;
  Require(facade->AnalyzeCardData(&read, card.out()));
  Require(card->put_CardSubType(CARD_SUB_HID_STD));
  ::_CCardData* argument = card.get();
  ComPtr<::_CCardByteData> raw;
  Require(facade->MakeCardData(&argument, raw.out()));
  // Records that nobody gets: nobody wants the first one, and HID full binary has none.
  Variant passed;
  passed.vt = VT_DISPATCH;
  passed.pdispVal = card.As<IDispatch>().Detach();
  const auto encode = [&](LONG code) {
    ComPtr<::_CCardFormatInfo> format;
    Require(facade->CardFormatByCode(code, format.out()));
    return Call(format.get(), "MakeCardData", DISPATCH_METHOD, {&passed}, nullptr);
  };
  if (!encode(513).failure.empty()) throw std::runtime_error("an encode failed");
  if (encode(514).failure != "fault 9") throw std::runtime_error("no fault in an encode");
  ComPtr<::_CCardFormatInfo> none;
  if (SUCCEEDED(facade->CardFormatByCode(1, none.out()))) throw std::runtime_error("no fault");
  SetErrorInfo(0, nullptr);
}

/// Ten rounds; after the first one every cache is filled, and usage has to stay where it is.
bool StaysLevel(std::size_t objects) {
  constexpr SIZE_T kNoise = 1 << 16;
  const ServerModule module;
  const auto classes = LibraryClasses();
  PROCESS_MEMORY_COUNTERS memory{};
  DWORD handles = 0;
  SIZE_T memoryLimit = 0;
  DWORD handleLimit = 0;
  for (int round = 1; round <= 10; ++round) {
    const auto work = [&] {
      CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
      for (std::size_t i = 0; i < objects / 20; i += classes.size()) UseAll(module, classes);
      CoUninitialize();
    };
    std::thread other(work);
    work();
    other.join();
    if (module.CanUnloadNow() != S_OK) throw std::runtime_error("an object is left");
    K32GetProcessMemoryInfo(GetCurrentProcess(), &memory, sizeof(memory));
    GetProcessHandleCount(GetCurrentProcess(), &handles);
    if (round == 1) memoryLimit = memory.PagefileUsage + kNoise;
    if (round == 1) handleLimit = handles + 2;
    std::cout << memory.PagefileUsage / 1024 << " KiB, " << handles << " handles" << std::endl;
  }
  return memory.PagefileUsage <= memoryLimit && handles <= handleLimit;
}

}  // namespace
}  // namespace vardel::server

int main(int argc, char** argv) {
  return vardel::server::StaysLevel(argc > 1 ? std::strtoul(argv[1], nullptr, 10) : 50'000) ? 0 : 1;
}
