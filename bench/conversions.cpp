#include "bench/allocations.h"
#include "bench/floor.h"
#include "bench/reference.h"
#include <vardel/core/card_frame.h>
#include <vardel/core/host_fault.h>
#include <vardel/facade/card.h>
#include <vardel/facade/card_types.h>
#include <vardel/format/mod_card.h>
#include <vardel/formats/card_formats.h>

#include <benchmark/benchmark.h>

#include <algorithm>
#include <memory>
#include <random>
#include <string>
#include <vector>

namespace vardel {
namespace {

/// Runs a call over and over; the counter is its heap allocations.
template <class F>
void Measure(benchmark::State& state, F&& call) {
  call();
  const std::size_t before = AllocationCount();
  for (auto _ : state) call();
  state.counters["allocations"] = benchmark::Counter(
      static_cast<double>(AllocationCount() - before), benchmark::Counter::kAvgIterations);
}

/// A format, the largest fields that its samples take, and what it is held against.
struct Format {
  const char* name;
  std::int32_t type;
  std::uint8_t subType;
  std::uint32_t maxFacility;
  std::uint32_t maxCardID;
  const char* reference = "HIDStandard";
};

constexpr Format kFormats[] = {
    {"HIDStandard", 2, 1, 255, 65535, "floor26"},
    {"EM", 1, 1, 255, 65535, "floor26"},
    {"HIDCorp1000", 2, 4, 4095, 524287, "floor35"},
    {"37Bits", 2, 3, 65535, 524287},
    {"34Bits", 2, 5, 65535, 65535},
    {"Binary26", 2, 2, 0, 67108863},
    {"UID32BIts", 3, 1, 0, 4294967294},
    {"DongSeo", 3, 5, 0, 99999999},
    {"LG", 3, 3, 999999, 99999999},
    {"Woori", 3, 4, 9, 99999999},
};

std::shared_ptr<CCardFormatInfo> Create(const Format& format) {
  return std::ranges::find(CardFormatClasses(), "CCardFormat" + std::string(format.name),
                           &CardFormatClass::ClassName)
      ->Create();
}

/// Cards as they come, one after the other: the same card over and over would flatter every branch.
constexpr std::size_t kCards = 1024;

std::vector<CCardData> Cards(const Format& format) {
  std::mt19937 random(1);
  std::vector<CCardData> cards(kCards);
  for (CCardData& card : cards) {
    card.CardType = format.type;
    card.CardSubType = format.subType;
    card.Facility = std::to_string(1 + random() % std::max(1U, format.maxFacility));
    card.CardID = std::to_string(1 + random() % format.maxCardID);
    card.Revision = std::to_string(10 + random() % 90);
  }
  return cards;
}

/// The format's own records of such cards, as a reader delivers them.
std::vector<CCardFrame> Reads(const Format& format) {
  const auto encoder = Create(format);
  std::mt19937 random(2);
  std::vector<CCardFrame> reads;
  for (const CCardData& card : Cards(format)) {
    CCardFrame frame(format.type, format.subType, "");
    const bool canEncode = std::string_view(format.name) != "Binary26";
    frame.CardDataStruct(
        canEncode ? encoder->MakeCardData(card)
                  : MakeCardDataStruct(NumberToBytes(static_cast<double>(random() % 67108863 + 1)),
                                       false));
    reads.push_back(frame);
  }
  return reads;
}

/// Measures a conversion of one item after the other.
template <class Item, class F>
void MeasureAll(benchmark::State& state, const std::vector<Item>& items, F&& convert) {
  std::size_t next = 0;
  Measure(state, [&] { convert(items[next++ % kCards]); });
}

void Encode(benchmark::State& state, const Format& format) {
  CCard facade;
  const auto encoder = Create(format);
  const bool isDirect = facade.IsCardType(format.type, format.subType);
  MeasureAll(state, Cards(format), [&](const CCardData& card) {
    if (isDirect) {
      benchmark::DoNotOptimize(facade.MakeCardData(card));
    } else {
      benchmark::DoNotOptimize(encoder->MakeCardData(card));
    }
  });
}

/// Every encode of HID full binary ends in a fault, at the price of a C++ exception.
void EncodeFault(benchmark::State& state, const Format& format) {
  CCard facade;
  MeasureAll(state, Cards(format), [&](const CCardData& card) {
    try {
      benchmark::DoNotOptimize(facade.MakeCardData(card));
    } catch (const HostFault& fault) {
      benchmark::DoNotOptimize(fault.Number());
    }
  });
}

void Decode(benchmark::State& state, const Format& format) {
  const CCard facade;
  const auto decoder = Create(format);
  const bool isDirect = facade.IsCardType(format.type, format.subType);
  MeasureAll(state, Reads(format), [&](const CCardFrame& read) {
    if (isDirect) {
      benchmark::DoNotOptimize(facade.AnalyzeCardData(read));
    } else {
      benchmark::DoNotOptimize(decoder->AnalyzeCardData(read));
    }
  });
}

template <bool (*Convert)(std::string_view, std::string_view, floor_of::Record&)>
void EncodeFloor(benchmark::State& state, const Format& format) {
  MeasureAll(state, Cards(format), [&](const CCardData& card) {
    floor_of::Record record;
    benchmark::DoNotOptimize(Convert(card.Facility, card.CardID, record));
    benchmark::DoNotOptimize(record);
  });
}

template <bool (*Convert)(std::string_view, floor_of::Fields&)>
void DecodeFloor(benchmark::State& state, const Format& format) {
  MeasureAll(state, Reads(format), [&](const CCardFrame& read) {
    floor_of::Fields fields;
    benchmark::DoNotOptimize(Convert(read.RawCardHex(), fields));
    benchmark::DoNotOptimize(fields);
  });
}

void Lookup(benchmark::State& state) {
  CCardTypes types;
  Measure(state, [&] { benchmark::DoNotOptimize(types.CardTypeByCode(773)); });
}

void ShortNameLookup(benchmark::State& state) {
  CCardTypes types;
  Measure(state, [&] { benchmark::DoNotOptimize(types.ShortName("773")); });
}

void MakeFacade(benchmark::State& state) {
  Measure(state, [] {
    CCard facade;
    benchmark::DoNotOptimize(facade);
  });
}

const int registered = [] {
  const auto add = [](const std::string& name, const Format& format, auto function) {
    benchmark::RegisterBenchmark(
        name.c_str(), [&format, function](benchmark::State& state) { function(state, format); });
  };
  add("encode/floor26", kFormats[0], EncodeFloor<floor_of::Encode26>);
  add("encode/floor35", kFormats[2], EncodeFloor<floor_of::Encode35>);
  for (const Format& format : kFormats) {
    const bool ends = std::string_view(format.name) == "Binary26";
    add(std::string("encode/") + format.name, format, ends ? EncodeFault : Encode);
  }
  add("decode/floor26", kFormats[0], DecodeFloor<floor_of::Decode26>);
  add("decode/floor35", kFormats[2], DecodeFloor<floor_of::Decode35>);
  for (const Format& format : kFormats) add(std::string("decode/") + format.name, format, Decode);
  benchmark::RegisterBenchmark("registry/CardTypeByCode", Lookup);
  benchmark::RegisterBenchmark("registry/ShortName", ShortNameLookup);
  benchmark::RegisterBenchmark("create/CCard", MakeFacade);
  return 0;
}();

}  // namespace

std::string Reference(const std::string& name) {
  const std::size_t slash = name.find('/');
  const auto format = std::ranges::find(kFormats, name.substr(slash + 1), &Format::name);
  return format == std::end(kFormats) ? "" : name.substr(0, slash + 1) + format->reference;
}

}  // namespace vardel
