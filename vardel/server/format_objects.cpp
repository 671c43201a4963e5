#include <vardel/formats/card_formats.h>
#include <vardel/server/format_objects.h>
#include <vardel/server/frame_reader.h>
#include <vardel/server/object.h>

#include <algorithm>
#include <string>

namespace vardel::server {
namespace {

void Store(std::string& member, BSTR value) { member = Utf8(value); }
void Store(bool& member, VARIANT_BOOL value) { member = value != VARIANT_FALSE; }
void Store(std::int16_t& member, SHORT value) { member = value; }
void Store(std::int32_t& member, LONG value) { member = value; }
void Store(double& member, double value) { member = value; }

bool IsRevision(const vardel::CCardFormatInfo& format, BSTR data) {
  return dynamic_cast<const RevisionValidator&>(format).IsRevisionValid(Utf8(data));
}

/// The members of _CCardFormatInfo.
template <class Base>
class Descriptor : public Base {
 public:
  using Base::Base;

// NOLINTBEGIN(bugprone-macro-parentheses): types, which take none
#define FIELD(n, name, type) PUT(n, name, type) GET(n, name, type)
#define PUT(n, name, type)                                       \
  STDMETHODIMP put_##name(type value) override {                 \
    return this->Call([&] { Store(this->core().name, value); }); \
  }
#define GET(n, name, type)                                      \
  STDMETHODIMP get_##name(type* value) override {               \
    return this->Get(value, [&] { return this->core().name; }); \
  }
#define ACCESSOR(n, name, type)                                     \
  STDMETHODIMP put_##name(type value) override {                    \
    return this->Call([&] { this->core().name(Argument(value)); }); \
  }                                                                 \
  READONLY(n, name, type)
#define READONLY(n, name, type)                                   \
  STDMETHODIMP get_##name(type* value) override {                 \
    return this->Get(value, [&] { return this->core().name(); }); \
  }
#define INIT(n, name)                                            \
  STDMETHODIMP name(VARIANT* result) override {                  \
    return this->GetEmpty(result, [&] { this->core().name(); }); \
  }
#define VALIDATOR(n, name)                                                   \
  STDMETHODIMP name(BSTR data, VARIANT_BOOL* result) override {              \
    return this->Get(result, [&] { return this->core().name(Utf8(data)); }); \
  }
#define ENCODER(n, name)                                                      \
  STDMETHODIMP name(::_CCardData** card, ::CardDataStruct* result) override { \
    return this->Get(result, [&] {                                            \
      const auto data = FromHost<vardel::CCardData>(card);                    \
      return this->core().name(data.get());                                   \
    });                                                                       \
  }
#define DECODER(n, name)                                                 \
  STDMETHODIMP name(IDispatch** frame, ::_CCardData** result) override { \
    return this->Get(result, [&] {                                       \
      const auto read = ReadFrame(frame);                                \
      return Shared(this->core().name(read.get()));                      \
    });                                                                  \
  }
// NOLINTEND(bugprone-macro-parentheses)
#include <vardel/format/descriptor_members.inc>
#undef PUT
#undef GET
#undef ACCESSOR
#undef READONLY
#undef INIT
#undef VALIDATOR
#undef ENCODER
#undef DECODER

 private:
  static std::string Argument(BSTR value) { return Utf8(value); }
  static std::int32_t Argument(LONG value) { return value; }
  static std::shared_ptr<vardel::CCardData> Shared(std::optional<vardel::CCardData> card) {
    return card ? std::make_shared<vardel::CCardData>(*std::move(card)) : nullptr;
  }
};

// The format classes' own interfaces have the same members under prefixed names.
// NOLINTBEGIN(bugprone-macro-parentheses): types, which take none
#define PUT(n, name, type) \
  STDMETHODIMP put_CCardFormatInfo_##name(type value) override { return this->put_##name(value); }
#define GET(n, name, type) \
  STDMETHODIMP get_CCardFormatInfo_##name(type* value) override { return this->get_##name(value); }
// NOLINTEND(bugprone-macro-parentheses)
#define ACCESSOR(n, name, type) FIELD(n, name, type)
#define READONLY(n, name, type) GET(n, name, type)
#define INIT(n, name) \
  STDMETHODIMP CCardFormatInfo_##name(VARIANT* result) override { return this->name(result); }
#define VALIDATOR(n, name)                                                        \
  STDMETHODIMP CCardFormatInfo_##name(BSTR data, VARIANT_BOOL* result) override { \
    return this->name(data, result);                                              \
  }
#define ENCODER(n, name)                                                                        \
  STDMETHODIMP CCardFormatInfo_##name(::_CCardData** card, ::CardDataStruct* result) override { \
    return this->name(card, result);                                                            \
  }
#define DECODER(n, name)                                                                   \
  STDMETHODIMP CCardFormatInfo_##name(IDispatch** frame, ::_CCardData** result) override { \
    return this->name(frame, result);                                                      \
  }

template <class Own>
using FormatObject = Descriptor<Object<vardel::CCardFormatInfo, Own, ::_CCardFormatInfo>>;

/// A proximity format: all the descriptor's members.
template <class Own>
class ProximityObject : public FormatObject<Own> {
 public:
  using FormatObject<Own>::FormatObject;
#include <vardel/format/descriptor_members.inc>
};

/// A smart-card format: most parameters are read-only here.
template <class Own>
class SmartCardObject : public FormatObject<Own> {
 public:
  using FormatObject<Own>::FormatObject;
#include <vardel/server/smart_card_members.inc>
  ENCODER(42, MakeCardData)
  DECODER(43, AnalyzeCardData)
  STDMETHODIMP IsRevisionValid(BSTR data, VARIANT_BOOL* result) override {
    return this->Get(result, [&] { return IsRevision(this->core(), data); });
  }
};

class Corp1000Object final : public ProximityObject<::_CCardFormatHIDCorp1000> {
 public:
  using ProximityObject::ProximityObject;

  STDMETHODIMP get_Sidx2ndCardID(SHORT* value) override {
    return Get(value, [&] { return format().Sidx2ndCardID(); });
  }
  STDMETHODIMP get_Eidx2ndCardID(SHORT* value) override {
    return Get(value, [&] { return format().Eidx2ndCardID(); });
  }

 private:
  vardel::CCardFormatHIDCorp1000& format() const {
    return dynamic_cast<vardel::CCardFormatHIDCorp1000&>(core());
  }
};

class Bits34Object final : public ProximityObject<::_CCardFormat34Bits> {
 public:
  using ProximityObject::ProximityObject;

  STDMETHODIMP CCardFormatInfo_IsRevisionValid(BSTR data, VARIANT_BOOL* result) override {
    return Get(result, [&] { return IsRevision(core(), data); });
  }
};

using BareObject = Descriptor<Object<vardel::CCardFormatInfo, ::_CCardFormatInfo>>;

struct FormatClass {
  const char* name;
  bool (*isOf)(const vardel::CCardFormatInfo& core);
  std::shared_ptr<vardel::CCardFormatInfo> (*makeCore)();
  ComPtr<IUnknown> (*wrap)(const char* name, std::shared_ptr<vardel::CCardFormatInfo> core);
};

template <class Core, class ObjectClass>
constexpr FormatClass Row(const char* name) {
  return {
      name,
      [](const vardel::CCardFormatInfo& core) { return typeid(core) == typeid(Core); },
      []() -> std::shared_ptr<vardel::CCardFormatInfo> { return std::make_shared<Core>(); },
      [](const char* className, std::shared_ptr<vardel::CCardFormatInfo> core) {
        auto* const object = new ObjectClass(className, std::move(core));
        return ComPtr<IUnknown>::Adopt(static_cast<typename ObjectClass::Default*>(object));
      },
  };
}

constexpr FormatClass kClasses[] = {
    Row<vardel::CCardFormatInfo, BareObject>("CCardFormatInfo"),
    Row<CCardFormatEM, ProximityObject<::_CCardFormatEM>>("CCardFormatEM"),
    Row<CCardFormatHIDStandard, ProximityObject<::_CCardFormatHIDStandard>>(
        "CCardFormatHIDStandard"),
    Row<CCardFormatBinary26, ProximityObject<::_CCardFormatBinary26>>("CCardFormatBinary26"),
    Row<CCardFormat37Bits, ProximityObject<::_CCardFormat37Bits>>("CCardFormat37Bits"),
    Row<CCardFormatHIDCorp1000, Corp1000Object>("CCardFormatHIDCorp1000"),
    Row<CCardFormat34Bits, Bits34Object>("CCardFormat34Bits"),
    Row<CCardFormatUID32BIts, SmartCardObject<::_CCardFormatUID32BIts>>("CCardFormatUID32BIts"),
    Row<CCardFormatLG, SmartCardObject<::_CCardFormatLG>>("CCardFormatLG"),
    Row<CCardFormatWoori, SmartCardObject<::_CCardFormatWoori>>("CCardFormatWoori"),
    Row<CCardFormatDongSeo, SmartCardObject<::_CCardFormatDongSeo>>("CCardFormatDongSeo"),
};

}  // namespace

ComPtr<IUnknown> NewFormatObject(std::shared_ptr<vardel::CCardFormatInfo> core) {
  const auto* const row =
      std::ranges::find_if(kClasses, [&](const FormatClass& c) { return c.isOf(*core); });
  return row->wrap(row->name, std::move(core));
}

ComPtr<IUnknown> CreateFormatObject(std::string_view className) {
  const auto* const row = std::ranges::find(kClasses, className, &FormatClass::name);
  return row == std::end(kClasses) ? ComPtr<IUnknown>() : row->wrap(row->name, row->makeCore());
}

}  // namespace vardel::server
