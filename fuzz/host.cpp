#include "fuzz/support.h"
#include <vardel/core/byte_array_data.h>
#include <vardel/core/card_byte_data.h>
#include <vardel/core/card_frame.h>
#include <vardel/facade/card.h>
#include <vardel/facade/card_types.h>
#include <vardel/format/descriptor_members.h>

using namespace vardel;
using namespace vardel::fuzz;

namespace {

/// A host that calls anything and puts anything anywhere.
struct Host {
  Input in;
  std::shared_ptr<CCardFormatInfo> format =
      CardFormatClasses()[in.Byte() % CardFormatClasses().size()].Create();
  CCard facade{};
  CCardTypes types{};
  CCardByteData bytes{};
  CByteArrayData description{};
  CCardFrame frame{};
  std::shared_ptr<CCardType> entry = std::make_shared<CCardType>();
  std::shared_ptr<CError> error{};
  std::int32_t type = 0, subType = 0, code = 0;
  std::string key{};

  ErrorHolder& Holder() {
    ErrorHolder* const holders[] = {&*format, &types, &bytes, &description, &*entry};
    return *holders[in.Byte() % std::size(holders)];
  }
};

using Step = void (*)(Host&);

// The members of a format, by their interface.
#define FIELD(id, name, type) \
  [](Host& h) { h.format->name = h.in.Take<decltype(h.format->name)>(); },
#define PUT(id, name, type) FIELD(id, name, type)
#define GET(id, name, type)
#define ACCESSOR(id, name, type) \
  [](Host& h) { h.format->name(h.in.Take<std::decay_t<decltype(h.format->name())>>()); },
#define READONLY(id, name, type) [](Host& h) { h.format->name(); },
#define INIT(id, name) READONLY(id, name, )
#define VALIDATOR(id, name) [](Host& h) { h.format->name(h.in.Text()); },
#define ENCODER(id, name) [](Host& h) { h.format->name(h.in.Card()); },
#define DECODER(id, name) [](Host& h) { h.format->name(Frame(h.in)); },
constexpr Step kFormatSteps[] = {DESCRIPTOR_MEMBERS()};

constexpr Step kOtherSteps[] = {
    [](Host& h) {
      h.type = h.in.Type().CardType;
      h.subType = h.in.subType;
    },
    [](Host& h) { h.code = h.in.Int(), h.key = std::to_string(h.code); },
    [](Host& h) { h.key = h.in.Text(); },
    [](Host& h) {
      auto* const format = dynamic_cast<RevisionValidator*>(h.format.get());
      if (format != nullptr) format->IsRevisionValid(h.key);
    },
    // Error objects go from one owner to another.
    [](Host& h) { h.error = h.Holder().Error(); },
    [](Host& h) { h.Holder().Error(h.error); },
    [](Host& h) { h.Holder().Error(nullptr); },
    [](Host& h) { h.Holder().MakeErr(h.code, h.key); },
    [](Host& h) { h.Holder().InitErr(); },
    // The facade.
    [](Host& h) { h.format = h.facade.CardFormat(h.type, h.subType); },
    [](Host& h) { h.format = h.facade.CardFormatByCode(h.code); },
    [](Host& h) { h.facade.IsExisted(h.type, h.subType); },
    [](Host& h) { h.facade.IsCardMainType(h.type); },
    [](Host& h) { h.facade.IsCardType(h.type, h.subType); },
    [](Host& h) { h.facade.IsSmartCardData(h.key); },
    [](Host& h) { h.facade.IsSecurityCardData(h.key); },
    [](Host& h) { h.facade.ErrName = h.key, h.facade.ErrNumber = h.code; },
    [](Host& h) { h.facade.MakeCardData(nullptr); },
    [](Host& h) { h.facade.AnalyzeCardData(nullptr); },
    [](Host& h) { h.facade.AnalyzeCardData(Frame(h.in)); },
    [](Host& h) { h.bytes = h.facade.MakeCardData(h.in.Card()); },
    // The registry and its entries.
    [](Host& h) { h.types.Add(h.in.Take<bool>() ? h.entry : nullptr, h.code); },
    [](Host& h) { h.entry = std::make_shared<CCardType>(*h.entry); },
    [](Host& h) { h.entry = h.types.CardTypeByCode(h.code); },
    [](Host& h) { h.entry = h.types.CardTypeByType(h.type, h.subType); },
    [](Host& h) { h.entry = h.types.AllCardTypes().back(); },
    [](Host& h) { h.types.IsExisted(h.type, h.subType); },
    [](Host& h) {
      const auto count = static_cast<std::size_t>(h.types.Count());
      Check(h.types.CardTypeCodes().size() == count, "every entry has a code");
    },
    [](Host& h) { h.types.DefaultShortName(h.key), h.types.DefaultName(h.key); },
    [](Host& h) { h.types.ShortName(h.key), h.types.CardTypeName(h.key); },
    [](Host& h) { h.types.ShortName(h.key, h.in.Text()); },
    [](Host& h) { h.types.CardTypeName(h.key, h.in.Text()); },
    [](Host& h) { h.types.GetDefaultShortName(h.type, h.subType); },
    [](Host& h) { h.types.GetDefaultName(h.type, h.subType); },
    [](Host& h) { h.types.GetShortName(h.type, h.subType); },
    [](Host& h) { h.types.GetCardTypeName(h.type, h.subType); },
    [](Host& h) { h.types.LetShortName(h.type, h.subType, h.in.Text()); },
    [](Host& h) { h.types.LetCardTypeName(h.type, h.subType, h.in.Text()); },
    [](Host& h) { h.entry->initAll(); },
    // Records and their descriptions.
    [](Host& h) { h.bytes.InitCardData(h.code); },
    [](Host& h) { h.bytes.CardType(h.code); },
    [](Host& h) { h.bytes.CardSubType(h.in.Byte()); },
    [](Host& h) { h.bytes.CardArrDataByIndex(h.code, h.bytes.CardArrDataByIndex(h.type)); },
    [](Host& h) { h.description.ByteCount(h.code); },
    [](Host& h) { h.description.ByteOR(h.code); },
    [](Host& h) { h.description.ByteAND(h.code); },
    [](Host& h) { h.frame.RawCardHex(h.key); },
    [](Host& h) { h.frame.CardDataStruct(h.bytes.CardDataStruct); },
    [](Host& h) { h.format->AnalyzeCardData(h.frame); },
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  Host host{Input(data, size)};
  for (int i = 0; i < 256 && !host.in.IsEmpty(); ++i) {
    // Even numbers are those of format members.
    const std::size_t step = host.in.Byte();
    EndOf([&] {
      step % 2 == 0 ? kFormatSteps[step / 2 % std::size(kFormatSteps)](host)
                    : kOtherSteps[step / 2 % std::size(kOtherSteps)](host);
    });
  }
  return 0;
}
