// The long run of the server: creates, uses and drops every class, a million objects in all unless
// the first argument says otherwise, and unloads the DLL now and then. Fails when memory or handles
// grow.

#include "tests/server/server.h"

#include <psapi.h>

#include <cstdio>
#include <cstdlib>
#include <iterator>

namespace vardel::server {
namespace {

const CLSID* const kClasses[] = {
    &CLSID_CError,
    &CLSID_CCardData,
    &CLSID_CCardByteData,
    &CLSID_CByteArrayData,
    &CLSID_CCardFormatInfo,
    &CLSID_CCardFormatEM,
    &CLSID_CCardFormatHIDStandard,
    &CLSID_CCardFormatBinary26,
    &CLSID_CCardFormat37Bits,
    &CLSID_CCardFormatHIDCorp1000,
    &CLSID_CCardFormat34Bits,
    &CLSID_CCardFormatUID32BIts,
    &CLSID_CCardFormatLG,
    &CLSID_CCardFormatWoori,
    &CLSID_CCardFormatDongSeo,
    &CLSID_CCard,
    &CLSID_CCardType,
    &CLSID_CCardTypes,
    &CLSID_CCardFrame,
};

struct Usage {
  std::size_t memory;
  DWORD handles;
};

Usage Measure() {
  PROCESS_MEMORY_COUNTERS counters{};
  DWORD handles = 0;
  K32GetProcessMemoryInfo(GetCurrentProcess(), &counters, sizeof(counters));
  GetProcessHandleCount(GetCurrentProcess(), &handles);
  return {counters.PagefileUsage, handles};
}

/// One object of each class; a card there and back, a fault and a late-bound call among them.
void UseAll(const ServerModule& module) {
  for (const CLSID* const id : kClasses) {
    const auto object = module.Create<IDispatch>(*id);
    ComPtr<ITypeInfo> info;
    object->GetTypeInfo(0, 0, info.out());
  }
  const auto facade = module.Create<::_CCard>(CLSID_CCard);
  const auto frame = module.Create<::_CCardFrame>(CLSID_CCardFrame);
  BSTR hex = SysAllocString(L"7360C8020000");
  frame->put_RawCardHex(hex);
  SysFreeString(hex);
  frame->put_FrameCardType(2);
  frame->put_FrameCardSubType(1);
  IDispatch* argument = frame.get();
  ComPtr<::_CCardData> card;
  facade->AnalyzeCardData(&argument, card.out());
  card->put_CardSubType(1);
  ::_CCardData* cardArgument = card.get();
  ComPtr<::_CCardByteData> raw;
  facade->MakeCardData(&cardArgument, raw.out());
  ComPtr<::_CCardFormatInfo> none;
  facade->CardFormatByCode(1, none.out());
  Variant count;
  Call(facade.get(), L"CardTypeCount", DISPATCH_PROPERTYGET, {}, &count);
}

/// Whether usage stays where it is after the first of ten rounds, by when every cache is filled.
template <class Round>
bool StaysLevel(const char* what, Round round) {
  Usage first{};
  Usage last{};
  for (int i = 0; i < 10; ++i) {
    round();
    SetErrorInfo(0, nullptr);
    last = Measure();
    if (i == 0) first = last;
    std::printf("%s %d of 10: %lu KiB, %lu handles\n", what, i + 1,
                static_cast<unsigned long>(last.memory / 1024),
                static_cast<unsigned long>(last.handles));
  }
  constexpr std::size_t kNoise = 1 << 18;
  return last.memory <= first.memory + kNoise && last.handles <= first.handles + 2;
}

int Run(long objects) {
  const auto use = [](const ServerModule& module, long count) {
    for (long made = 0; made < count; made += static_cast<long>(std::size(kClasses))) {
      UseAll(module);
    }
    if (module.CanUnloadNow() != S_OK) throw std::runtime_error("an object is left");
  };
  const ServerModule module;
  bool isLevel = StaysLevel("objects", [&] { use(module, objects / 10); });
  std::puts(isLevel ? "no growth" : "memory or handles grow");
  return isLevel ? 0 : 1;
}

}  // namespace
}  // namespace vardel::server

int main(int argc, char** argv) {
  CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
  return vardel::server::Run(argc > 1 ? std::atol(argv[1]) : 1'000'000);
}
