// What a call through the automation server costs a host: through its vtables, by its own
// late-bound calls, and by the platform's dispatcher on the same vtables; and in two apartments at
// once against one. All of it is interleaved in one run; the argument is the number of repetitions.

#include <vardel/core/card_data.h>
#include <vardel/core/card_frame.h>
#include <vardel/facade/card.h>
#include <vardel/server/com.h>

#include <vardel_idl.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdlib>
#include <iomanip>
#include <iostream>
#include <memory>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

namespace vardel::server {

HINSTANCE moduleInstance = nullptr;

namespace {

void Require(HRESULT status) {
  if (FAILED(status)) throw std::runtime_error("a call failed");
}

ComPtr<IClassFactory> Factory(REFCLSID id) {
  static const HMODULE module = LoadLibraryW(L"vardel.dll");
  using GetClassObject = HRESULT(WINAPI*)(REFCLSID, REFIID, void**);
  static const auto get = reinterpret_cast<GetClassObject>(
      reinterpret_cast<void*>(GetProcAddress(module, "DllGetClassObject")));
  ComPtr<IClassFactory> factory;
  Require(get(id, IID_IClassFactory, reinterpret_cast<void**>(factory.out())));
  return factory;
}

template <class Interface>
ComPtr<Interface> Create(const ComPtr<IClassFactory>& factory) {
  ComPtr<Interface> object;
  Require(factory->CreateInstance(nullptr, __uuidof(Interface),
                                  reinterpret_cast<void**>(object.out())));
  return object;
}

struct TextArgument : Variant {
  explicit TextArgument(const char* text) {
    vt = VT_BSTR;
    bstrVal = NewBstr(text);
  }
};

/// An object, its type, and one of its members.
struct Member {
  Member(IDispatch* itsObject, const wchar_t* itsName) : object(itsObject), name(itsName) {
    Require(object->GetTypeInfo(0, 0, info.out()));
    id = IdByObject();
  }
  DISPID IdByObject() const {
    DISPID found = DISPID_UNKNOWN;
    auto* names = const_cast<wchar_t*>(name);
    Require(object->GetIDsOfNames(IID_NULL, &names, 1, LOCALE_USER_DEFAULT, &found));
    return found;
  }
  DISPID IdByPlatform() const {
    DISPID found = DISPID_UNKNOWN;
    auto* names = const_cast<wchar_t*>(name);
    Require(DispGetIDsOfNames(info.get(), &names, 1, &found));
    return found;
  }

  IDispatch* object;
  const wchar_t* name;
  ComPtr<ITypeInfo> info;
  DISPID id = DISPID_UNKNOWN;
};

enum class Dispatcher { Own, Platform };

void Invoke(Dispatcher dispatcher, const Member& member, WORD flags, VARIANT* argument) {
  DISPID put = DISPID_PROPERTYPUT;
  const bool isPut = flags == DISPATCH_PROPERTYPUT;
  DISPPARAMS params{argument, isPut ? &put : nullptr, argument != nullptr ? 1U : 0U,
                    isPut ? 1U : 0U};
  Variant result;
  VARIANT* const answer = isPut ? nullptr : &result;
  Require(dispatcher == Dispatcher::Own
              ? member.object->Invoke(member.id, IID_NULL, LOCALE_USER_DEFAULT, flags, &params,
                                      answer, nullptr, nullptr)
              : DispInvoke(member.object, member.info.get(), member.id, flags, &params, answer,
                           nullptr, nullptr));
}

constexpr char kRead[] = "7360C80200000000000000000000000000000000000000000000000000000000";

/// What one apartment has to measure with.
class Host {
 public:
  Host() {
    Require(card_->put_CardType(::CARD_HID));
    Require(card_->put_CardSubType(::CARD_SUB_HID_STD));
    Require(card_->put_Facility(TextArgument("100").bstrVal));
    Require(card_->put_CardID(number_.bstrVal));
    Require(frame_->put_FrameCardType(::CARD_HID));
    Require(frame_->put_FrameCardSubType(::CARD_SUB_HID_STD));
    Require(frame_->put_RawCardHex(TextArgument(kRead).bstrVal));
    library_.CardType = CARD_HID;
    library_.CardSubType = CARD_SUB_HID_STD;
    library_.Facility = "100";
    library_.CardID = "12345";
    cardArgument_.vt = frameArgument_.vt = VT_BYREF | VT_DISPATCH;
    cardArgument_.ppdispVal = reinterpret_cast<IDispatch**>(&cardObject_);
    frameArgument_.ppdispVal = &frameObject_;
  }

  void Put() { Require(card_->put_CardID(number_.bstrVal)); }
  template <Dispatcher kBy>
  void PutBy() {
    Invoke(kBy, text_, DISPATCH_PROPERTYPUT, &number_);
  }
  void Get() {
    BSTR text = nullptr;
    Require(card_->get_CardID(&text));
    SysFreeString(text);
  }
  template <Dispatcher kBy>
  void GetBy() {
    Invoke(kBy, text_, DISPATCH_PROPERTYGET, nullptr);
  }
  void Encode() {
    ComPtr<::_CCardByteData> raw;
    Require(facade_->MakeCardData(&cardObject_, raw.out()));
  }
  template <Dispatcher kBy>
  void EncodeBy() {
    Invoke(kBy, encode_, DISPATCH_METHOD, &cardArgument_);
  }
  void Decode() {
    ComPtr<::_CCardData> card;
    Require(facade_->AnalyzeCardData(&frameObject_, card.out()));
  }
  template <Dispatcher kBy>
  void DecodeBy() {
    Invoke(kBy, decode_, DISPATCH_METHOD, &frameArgument_);
  }
  void Make() { server::Create<::_CCardData>(factory_); }
  void FindName() { ofFormat_.IdByObject(); }
  void FindNameByPlatform() { ofFormat_.IdByPlatform(); }
  // What two threads can do at once on this machine, and on this platform: the library alone shares
  // nothing, and a text is the platform's.
  void EncodeWithoutServer() {
    if (libraryFacade_.MakeCardData(library_).ErrNumber() != 0) throw std::runtime_error("encode");
  }
  void DecodeWithoutServer() {
    if (libraryFacade_.AnalyzeCardData(read_).ErrNumber != 0) throw std::runtime_error("decode");
  }
  void MakeText() { SysFreeString(SysAllocStringLen(nullptr, 5)); }

 private:
  ComPtr<IClassFactory> factory_ = Factory(CLSID_CCardData);
  ComPtr<::_CCard> facade_ = server::Create<::_CCard>(Factory(CLSID_CCard));
  ComPtr<IDispatch> format_ = server::Create<IDispatch>(Factory(CLSID_CCardFormatHIDStandard));
  ComPtr<::_CCardData> card_ = server::Create<::_CCardData>(factory_);
  ComPtr<::_CCardFrame> frame_ = server::Create<::_CCardFrame>(Factory(CLSID_CCardFrame));
  Member text_{card_.get(), L"CardID"};
  Member encode_{facade_.get(), L"MakeCardData"};
  Member decode_{facade_.get(), L"AnalyzeCardData"};
  TextArgument number_{"12345"};
  ::_CCardData* cardObject_ = card_.get();
  IDispatch* frameObject_ = frame_.get();
  Member ofFormat_{format_.get(), L"CCardFormatInfo_MakeCardData"};
  VARIANT cardArgument_{};
  VARIANT frameArgument_{};
  vardel::CCard libraryFacade_;
  vardel::CCardData library_;
  vardel::CCardFrame read_{CARD_HID, CARD_SUB_HID_STD, kRead};
};

using Call = void (Host::*)();

using Clock = std::chrono::steady_clock;
using Nanoseconds = std::chrono::duration<double, std::nano>;

/// A call, how many of them make a measurement, and what one took in each.
struct Cell {
  explicit Cell(Call itsCall) : call(itsCall) {}

  /// When the calls are done.
  Clock::time_point Repeat(Host& host) const {
    for (int i = 0; i < calls; ++i) (host.*call)();
    return Clock::now();
  }
  void Add(Clock::time_point begin, Clock::time_point end) {
    times.push_back(Nanoseconds(end - begin).count() / calls);
  }
  void Measure(Host& host) {
    const auto begin = Clock::now();
    Add(begin, Repeat(host));
  }
  /// Measures for about half a millisecond from now on: longer ones are disturbed more often.
  void Adjust(Host& host) {
    constexpr double kNanoseconds = 5e5;
    Measure(host);
    calls = static_cast<int>(std::clamp(kNanoseconds / times.back(), 10.0, 1e5));
    times.clear();
  }

  double Least() const { return std::ranges::min(times); }
  double Median() const {
    std::vector<double> sorted = times;
    std::ranges::nth_element(sorted, sorted.begin() + sorted.size() / 2);
    return sorted[sorted.size() / 2];
  }

  Call call;
  int calls = 100;
  std::vector<double> times = {};
};

struct Row {
  const char* name;
  Cell early, late, platform;
};

struct PairRow {
  std::string name;
  Cell one, two;
};

/// Measures each call in two apartments at once, from when both are there until both are done.
void MeasurePairs(Host& host, std::vector<PairRow>& pairs) {
  using Times = std::vector<Clock::time_point>;
  std::atomic<std::size_t> arrived = 0;
  Times begins[2], ends[2];
  const auto repeatAll = [&](Host& mine, int place) {
    for (const PairRow& row : pairs) {
      begins[place].push_back(Clock::now());
      ++arrived;
      while (arrived < 2 * begins[place].size()) std::this_thread::yield();
      ends[place].push_back(row.two.Repeat(mine));
    }
  };
  std::thread other([&] {
    CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
    repeatAll(*std::make_unique<Host>(), 1);
    CoUninitialize();
  });
  repeatAll(host, 0);
  other.join();
  for (std::size_t i = 0; i < pairs.size(); ++i) {
    pairs[i].two.Add(std::max(begins[0][i], begins[1][i]), std::max(ends[0][i], ends[1][i]));
  }
}

void Measure(std::vector<Row>& rows, std::vector<PairRow>& pairs, int repetitions) {
  Host host;
  std::vector<Cell*> cells;
  for (Row& row : rows) {
    for (Cell* cell : {&row.early, &row.late, &row.platform}) {
      if (cell->call != nullptr) cells.push_back(cell);
    }
  }
  for (PairRow& row : pairs) cells.push_back(&row.one);
  for (Cell* cell : cells) cell->Adjust(host);
  for (PairRow& row : pairs) row.two.calls = row.one.calls;
  for (int i = 0; i < repetitions; ++i) {
    for (Cell* cell : cells) cell->Measure(host);
    MeasurePairs(host, pairs);
  }
}

void Print(const Cell& cell) {
  if (cell.times.empty()) {
    std::cout << std::setw(16) << "-";
  } else {
    std::cout << std::setw(8) << cell.Least() << std::setw(8) << cell.Median();
  }
}

void PrintRatio(const Cell& cell, const Cell& to) {
  if (cell.times.empty() || to.times.empty()) return;
  std::cout << std::setprecision(2) << std::setw(8) << cell.Least() / to.Least() << std::setw(6)
            << cell.Median() / to.Median() << std::setprecision(0);
}

void Run(int repetitions) {
  using enum Dispatcher;
  std::vector<Row> rows = {
      {"put a text", Cell(&Host::Put), Cell(&Host::PutBy<Own>), Cell(&Host::PutBy<Platform>)},
      {"get a text", Cell(&Host::Get), Cell(&Host::GetBy<Own>), Cell(&Host::GetBy<Platform>)},
      {"encode", Cell(&Host::Encode), Cell(&Host::EncodeBy<Own>), Cell(&Host::EncodeBy<Platform>)},
      {"decode", Cell(&Host::Decode), Cell(&Host::DecodeBy<Own>), Cell(&Host::DecodeBy<Platform>)},
      {"find a name", Cell(nullptr), Cell(&Host::FindName), Cell(&Host::FindNameByPlatform)},
      {"create", Cell(&Host::Make), Cell(nullptr), Cell(nullptr)},
  };
  std::vector<PairRow> pairs = {
      {"library's encode alone", Cell(&Host::EncodeWithoutServer),
       Cell(&Host::EncodeWithoutServer)},
      {"library's decode alone", Cell(&Host::DecodeWithoutServer),
       Cell(&Host::DecodeWithoutServer)},
      {"platform's text alone", Cell(&Host::MakeText), Cell(&Host::MakeText)}};
  for (const Row& row : rows) {
    if (row.early.call != nullptr) pairs.push_back({row.name, row.early, row.early});
    if (row.late.call != nullptr) {
      pairs.push_back({std::string(row.name) + ", late", row.late, row.late});
    }
  }
  Measure(rows, pairs, repetitions);

  const Cell& platformGet = rows[1].platform;
  std::cout << std::fixed << std::setprecision(0)
            << "ns a call: least, median         early            late        platform"
               "   late/platform  early/platform's get\n";
  for (const Row& row : rows) {
    std::cout << std::setw(24) << std::left << row.name << std::right;
    for (const Cell* cell : {&row.early, &row.late, &row.platform}) Print(*cell);
    std::cout << "  ";
    PrintRatio(row.late, row.platform);
    std::cout << "      ";
    PrintRatio(row.early, platformGet);
    std::cout << '\n';
  }
  std::cout << "\napartments                         one     two at once      one/two\n";
  for (const PairRow& row : pairs) {
    std::cout << std::setw(24) << std::left << row.name << std::right;
    Print(row.one);
    Print(row.two);
    PrintRatio(row.one, row.two);
    std::cout << '\n';
  }
}

}  // namespace
}  // namespace vardel::server

int main(int argc, char** argv) try {
  CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
  vardel::server::Run(argc > 1 ? std::atoi(argv[1]) : 200);
} catch (const std::exception& failure) {
  std::cerr << failure.what() << '\n';
  return 1;
}
