// The automation classes: what each adds to its core class, and the table of them all. Their
// members come from the lists that the IDL has them from.

#include <vardel/core/byte_array_data.h>
#include <vardel/core/card_byte_data.h>
#include <vardel/core/card_data.h>
#include <vardel/core/card_frame.h>
#include <vardel/facade/card.h>
#include <vardel/facade/card_matches.h>
#include <vardel/facade/card_types.h>
#include <vardel/format/descriptor_members.h>
#include <vardel/formats/card_formats.h>
#include <vardel/formats/format_table.h>
#include <vardel/server/class_members.h>
#include <vardel/server/frame_reader.h>
#include <vardel/server/object.h>
#include <vardel/server/objects.h>

#include <algorithm>
#include <optional>
#include <stdexcept>
#include <string>
#include <typeinfo>
#include <vector>

namespace vardel::server {

// In the lists of members these are the automation types.
using ::CardDataStruct;
using ::CardType;

namespace {

/// A new object around the core object that `make` makes.
template <class ObjectClass, class Make>
ComPtr<typename ObjectClass::Default> New(Make&& make, const char* className = ObjectClass::kName) {
  return ComPtr<typename ObjectClass::Default>::Adopt(new ObjectClass(className, make));
}

/// The same around one that others hold too.
template <class ObjectClass>
ComPtr<typename ObjectClass::Default> Around(const typename ObjectClass::CoreHolder& core) {
  return New<ObjectClass>([&] { return core; });
}

// --- what the library takes of a host's arguments ---

/// A value as the type of the library's member.
template <class Member>
std::remove_cvref_t<Member> As(auto value) {
  return static_cast<std::remove_cvref_t<Member>>(value);
}
template <class Member>
std::string As(BSTR value) {
  return Utf8(value);
}

template <class Value>
concept Number = std::is_arithmetic_v<Value> || std::is_enum_v<Value>;
template <Number Value>
Value In(Value value) {
  return value;
}
std::string In(BSTR text) { return Utf8(text); }
std::shared_ptr<vardel::CCardType> In(::_CCardType* entry) {
  return ShareOfHost<vardel::CCardType>(entry);
}
vardel::CardDataStruct In(CardDataStruct* record) {
  vardel::CardDataStruct result;
  std::ranges::copy(RequireObject(record).Bytes, result.Bytes.begin());
  return result;
}

/// An argument by reference, whose reference may be null as well.
template <class Core>
struct ObjectArgument {
  std::shared_ptr<Core> object;
  operator const Core*() const { return object.get(); }
};
ObjectArgument<vardel::CCardData> In(::_CCardData** card) {
  return {card == nullptr ? nullptr : FromHost<vardel::CCardData>(*card)};
}
ObjectArgument<vardel::ICardFrame> In(IDispatch** frame) { return {ReadFrame(frame)}; }
ObjectArgument<vardel::ICardFrame> In(IDispatch* frame) { return In(&frame); }

/// What a host's format object makes of a card.
vardel::CardDataStruct Encoded(::_CCardFormatInfo* format, ::_CCardData* card) {
  const auto encoder = ComPtr<IUnknown>::Share(&RequireObject(format)).As<::_CCardFormatInfo>();
  if (!encoder) throw HostFault(Fault::TypeMismatch);
  // A call by reference may put another object in the place of its argument.
  ::_CCardData* argument = ComPtr<::_CCardData>::Share(card).Detach();
  CardDataStruct record{};
  SetErrorInfo(0, nullptr);
  const HRESULT status = encoder->MakeCardData(&argument, &record);
  ComPtr<::_CCardData>::Adopt(argument);
  if (FAILED(status)) ThrowFailure(status, L"The format object failed");
  return In(&record);
}

// --- what a host gets of the library's results ---

void Assign(BSTR* out, std::string_view text) { *out = NewBstr(text); }
void Assign(LONG* out, std::int32_t value) { *out = value; }
void Assign(SHORT* out, std::int16_t value) { *out = value; }
void Assign(VARIANT_BOOL* out, bool value) { *out = value ? VARIANT_TRUE : VARIANT_FALSE; }
void Assign(unsigned char* out, std::uint8_t value) { *out = value; }
void Assign(double* out, double value) { *out = value; }
void Assign(CardType* out, std::int32_t value) { *out = static_cast<CardType>(value); }
void Assign(CardDataStruct* out, const vardel::CardDataStruct& record) {
  std::ranges::copy(record.Bytes, out->Bytes);
}

/// An array of what `assign` makes of each item.
template <class Element, class Items, class Put>
void AssignArray(VARIANT* out, VARTYPE type, const Items& items, Put assign) {
  Variant array;
  array.parray = SafeArrayCreateVector(type, 0, static_cast<ULONG>(items.size()));
  if (array.parray == nullptr) throw std::bad_alloc();
  array.vt = static_cast<VARTYPE>(VT_ARRAY | type);
  auto* element = static_cast<Element*>(array.parray->pvData);
  for (const auto& item : items) assign(item, *element++);
  *out = std::exchange(static_cast<VARIANT&>(array), {});
}
void Assign(VARIANT* out, vardel::RawBytes bytes) {
  AssignArray<std::uint8_t>(out, VT_UI1, *bytes,
                            [](std::uint8_t byte, std::uint8_t& element) { element = byte; });
}
void Assign(VARIANT* out, const std::vector<std::string>& texts) {
  AssignArray<VARIANT>(out, VT_VARIANT, texts, [](const std::string& text, VARIANT& element) {
    element.bstrVal = NewBstr(text);
    element.vt = VT_BSTR;
  });
}

class CardDataObject;
class CardByteDataObject;

/// Gives what `make` makes, new objects in their place.
template <class Out, class Make>
void Give(Out* out, Make&& make) {
  using Result = std::invoke_result_t<Make>;
  if constexpr (std::is_same_v<Result, vardel::CCardData>) {
    *out = New<CardDataObject>(make).Detach();
  } else if constexpr (std::is_same_v<Result, vardel::CCardByteData>) {
    *out = New<CardByteDataObject>(make).Detach();
  } else if constexpr (std::is_same_v<Result, std::optional<vardel::CCardData>>) {
    if (Result card = make()) Give(out, [&] { return *std::move(card); });
  } else {
    Assign(out, make());
  }
}

template <class Core>
ComPtr<::_CError> ErrorOf(Core& holder);

// --- the kinds of members in the lists ---

// NOLINTBEGIN(bugprone-macro-parentheses): types, which take none
// Gives what an expression on the core object results in; CPP_KEEP where a host's objects may be
// among the arguments.
#define CPP_GIVE(out, expression)                                                              \
  {                                                                                            \
    return this->Get(                                                                          \
        out, [&] { Give(out, [&]() -> decltype(auto) { return this->core().expression; }); }); \
  }
#define CPP_KEEP(out, expression)   \
  {                                 \
    const auto keep = this->Keep(); \
    CPP_GIVE(out, expression)       \
  }

#define CPP_PUT(n, name, type)                                         \
  STDMETHODIMP put_##name(type value) override {                       \
    using Member = decltype(this->core().name);                        \
    return this->Call([&] { this->core().name = As<Member>(value); }); \
  }
#define CPP_GET(n, name, type) STDMETHODIMP get_##name(type* value) override CPP_GIVE(value, name)
#define CPP_FIELD(n, name, type) CPP_PUT(n, name, type) CPP_GET(n, name, type)
#define CPP_ACCESSOR(n, name, type)                                   \
  STDMETHODIMP put_##name(type value) override {                      \
    using Member = decltype(this->core().name());                     \
    return this->Call([&] { this->core().name(As<Member>(value)); }); \
  }                                                                   \
  CPP_READONLY(n, name, type)
#define CPP_READONLY(n, name, type) \
  STDMETHODIMP get_##name(type* value) override CPP_GIVE(value, name())
#define CPP_GET1(n, name, T1, N1, type) \
  STDMETHODIMP get_##name(T1 a, type* value) override CPP_GIVE(value, name(In(a)))
#define CPP_GET2(n, name, T1, N1, T2, N2, type) \
  STDMETHODIMP get_##name(T1 a, T2 b, type* value) override CPP_GIVE(value, name(In(a), In(b)))
#define CPP_INDEXED(n, name, T1, N1, type)                           \
  STDMETHODIMP put_##name(T1 a, type value) override {               \
    return this->Call([&] { this->core().name(In(a), In(value)); }); \
  }                                                                  \
  CPP_GET1(n, name, T1, N1, type)
#define CPP_ACTION(n, name)                          \
  STDMETHODIMP name() override {                     \
    return this->Call([&] { this->core().name(); }); \
  }
#define CPP_ACTION1(n, name, T1, N1)                      \
  STDMETHODIMP name(T1 a) override {                      \
    const auto keep = this->Keep();                       \
    return this->Call([&] { this->core().name(In(a)); }); \
  }
#define CPP_ACTION2(n, name, T1, N1, T2, N2)                     \
  STDMETHODIMP name(T1 a, T2 b) override {                       \
    return this->Call([&] { this->core().name(In(a), In(b)); }); \
  }
#define CPP_METHOD1(n, name, T1, N1, type) \
  STDMETHODIMP name(T1 a, type* result) override CPP_KEEP(result, name(In(a)))
#define CPP_METHOD2(n, name, T1, N1, T2, N2, type) \
  STDMETHODIMP name(T1 a, T2 b, type* result) override CPP_KEEP(result, name(In(a), In(b)))
#define CPP_METHOD3(n, name, T1, N1, T2, N2, T3, N3, type)                    \
  STDMETHODIMP name(T1 a, T2 b, T3 c, type* result) override CPP_KEEP(result, \
                                                                      name(In(a), In(b), In(c)))
#define CPP_INIT(n, name)                                   \
  STDMETHODIMP name(VARIANT* result) override {             \
    return this->Get(result, [&] { this->core().name(); }); \
  }
#define CPP_INIT_TYPE(n, name)                                                              \
  STDMETHODIMP name(CardType* type, VARIANT* result) override {                             \
    return this->Get(result,                                                                \
                     [&] { this->core().name(type == nullptr ? ::CARD_UNKNOWN : *type); }); \
  }
#define CPP_VALIDATOR(n, name) CPP_METHOD1(n, name, BSTR, InData, VARIANT_BOOL)
#define CPP_CONVERSION(n, name, T1, N1, type) CPP_METHOD1(n, name, T1, N1, type)
#define CPP_ENCODER(n, name) CPP_METHOD1(n, name, ::_CCardData**, CardData, CardDataStruct)
#define CPP_DECODER(n, name) CPP_METHOD1(n, name, IDispatch**, UserInfo, ::_CCardData*)
#define CPP_PUT_RECORD(n, name)                               \
  STDMETHODIMP put_##name(CardDataStruct* value) override {   \
    return this->Call([&] { this->core().name(In(value)); }); \
  }
#define CPP_FRAME_ENCODER(n, name)                                                  \
  STDMETHODIMP name(::_CCardFormatInfo* format, ::_CCardData* card) override {      \
    const auto keep = this->Keep();                                                 \
    return this->Call([&] { this->core().CardDataStruct(Encoded(format, card)); }); \
  }
#define CPP_RECORD(n, name)                                    \
  STDMETHODIMP put_##name(CardDataStruct* value) override {    \
    return this->Call([&] { this->core().name = In(value); }); \
  }                                                            \
  CPP_GET(n, name, CardDataStruct)
#define CPP_ERROR_OBJECT(n, name)                                                      \
  STDMETHODIMP putref_##name(::_CError* value) override {                              \
    const auto keep = this->Keep();                                                    \
    return this->Call([&] { this->core().name(ShareOfHost<vardel::CError>(value)); }); \
  }                                                                                    \
  STDMETHODIMP get_##name(::_CError** value) override {                                \
    return this->Get(value, [&] { *value = ErrorOf(this->core()).Detach(); });         \
  }
// NOLINTEND(bugprone-macro-parentheses)

// --- the classes ---

class ErrorObject final : public Object<vardel::CError, ::_CError> {
 public:
  static constexpr char kName[] = "CError";
  using Object::Object;
  ERROR_MEMBERS(CPP_)
};

class CardDataObject final : public Object<vardel::CCardData, ::_CCardData> {
 public:
  static constexpr char kName[] = "CCardData";
  using Object::Object;
  CARD_DATA_MEMBERS(CPP_)
};

class CardByteDataObject final : public Object<vardel::CCardByteData, ::_CCardByteData> {
 public:
  static constexpr char kName[] = "CCardByteData";
  using Object::Object;
  CARD_BYTE_DATA_MEMBERS(CPP_)
};

class ByteArrayDataObject final : public Object<vardel::CByteArrayData, ::_CByteArrayData> {
 public:
  static constexpr char kName[] = "CByteArrayData";
  using Object::Object;
  BYTE_ARRAY_DATA_MEMBERS(CPP_)
};

class CardFrameObject final : public Object<vardel::CCardFrame, ::_CCardFrame, ::ICardFrame> {
 public:
  static constexpr char kName[] = "CCardFrame";
  using Object::Object;
  CARD_FRAME_MEMBERS(CPP_)
};

class CardTypeObject final : public Object<std::shared_ptr<vardel::CCardType>, ::_CCardType> {
 public:
  static constexpr char kName[] = "CCardType";
  using Object::Object;
  CARD_TYPE_MEMBERS(CPP_)
};

ComPtr<::_CCardFormatInfo> NewFormatObject(const std::shared_ptr<vardel::CCardFormatInfo>& format);

class CardObject final : public Object<vardel::CCard, ::_CCard> {
 public:
  static constexpr char kName[] = "CCard";
  using Object::Object;
  CARD_MEMBERS(CPP_)

 private:
  template <class Out, class Make>
  void Give(Out* out, Make&& make) {
    if constexpr (std::is_same_v<Out, ::_CCardFormatInfo*>) {
      *out = formats_.Of(make(), NewFormatObject).Detach();
    } else {
      server::Give(out, make);
    }
  }

  KeptObjects<::_CCardFormatInfo> formats_;
};

class CardTypesObject final : public Object<vardel::CCardTypes, ::_CCardTypes> {
 public:
  static constexpr char kName[] = "CCardTypes";
  using Object::Object;
  CARD_TYPES_MEMBERS(CPP_)

 private:
  using Entry = std::shared_ptr<vardel::CCardType>;

  template <class Out, class Make>
  void Give(Out* out, Make&& make) {
    using Result = std::invoke_result_t<Make>;
    if constexpr (std::is_same_v<Result, Entry>) {
      *out = ObjectOf(make()).Detach();
    } else if constexpr (std::is_same_v<Result, std::vector<Entry>>) {
      AssignArray<VARIANT>(out, VT_VARIANT, make(), [&](const Entry& entry, VARIANT& element) {
        element.pdispVal = ObjectOf(entry).Detach();
        element.vt = VT_DISPATCH;
      });
    } else {
      server::Give(out, make);
    }
  }
  ComPtr<::_CCardType> ObjectOf(const Entry& entry) {
    return entries_.Of(entry, Around<CardTypeObject>);
  }

  KeptObjects<::_CCardType> entries_;
};

class CardMatchObject final : public Object<std::shared_ptr<vardel::CCardMatch>, ::_CCardMatch> {
 public:
  static constexpr char kName[] = "CCardMatch";
  using Object::Object;
  CARD_MATCH_MEMBERS(CPP_)
};

class CardMatchesObject final : public Object<vardel::CCardMatches, ::_CCardMatches> {
 public:
  static constexpr char kName[] = "CCardMatches";
  using Object::Object;
  CARD_MATCHES_MEMBERS(CPP_)

 private:
  template <class Out, class Make>
  void Give(Out* out, Make&& make) {
    if constexpr (std::is_same_v<Out, ::_CCardMatch*>) {
      const std::shared_ptr<vardel::CCardMatch> match = make();
      // Those of an earlier answer are nobody's but their holders'.
      if (match.owner_before(answer_) || answer_.owner_before(match)) matches_ = {};
      answer_ = match;
      *out = matches_.Of(match, Around<CardMatchObject>).Detach();
    } else {
      server::Give(out, make);
    }
  }

  std::weak_ptr<vardel::CCardMatch> answer_;
  KeptObjects<::_CCardMatch> matches_;
};

// --- the format classes ---

using Format = std::shared_ptr<vardel::CCardFormatInfo>;

template <class... Interfaces>
class FormatObject : public Object<Format, Interfaces...> {
 public:
  using Object<Format, Interfaces...>::Object;
  DESCRIPTOR_MEMBERS(CPP_)

 protected:
  bool IsRevision(BSTR data) {
    return dynamic_cast<RevisionValidator&>(this->core()).IsRevisionValid(Utf8(data));
  }
};

// Their own interfaces have the same members under prefixed names.
// NOLINTBEGIN(bugprone-macro-parentheses): types, which take none
#define OWN_PUT(n, name, type) \
  STDMETHODIMP put_CCardFormatInfo_##name(type value) override { return this->put_##name(value); }
#define OWN_GET(n, name, type) \
  STDMETHODIMP get_CCardFormatInfo_##name(type* value) override { return this->get_##name(value); }
// NOLINTEND(bugprone-macro-parentheses)
#define OWN_FIELD(n, name, type) OWN_PUT(n, name, type) OWN_GET(n, name, type)
#define OWN_ACCESSOR(n, name, type) OWN_FIELD(n, name, type)
#define OWN_READONLY(n, name, type) OWN_GET(n, name, type)
#define OWN_INIT(n, name) \
  STDMETHODIMP CCardFormatInfo_##name(VARIANT* result) override { return this->name(result); }
#define OWN_VALIDATOR(n, name)                                                    \
  STDMETHODIMP CCardFormatInfo_##name(BSTR data, VARIANT_BOOL* result) override { \
    return this->name(data, result);                                              \
  }
#define OWN_ENCODER(n, name)                                                                  \
  STDMETHODIMP CCardFormatInfo_##name(::_CCardData** card, CardDataStruct* result) override { \
    return this->name(card, result);                                                          \
  }
#define OWN_DECODER(n, name)                                                               \
  STDMETHODIMP CCardFormatInfo_##name(IDispatch** frame, ::_CCardData** result) override { \
    return this->name(frame, result);                                                      \
  }

/// A proximity format: all the descriptor's members.
template <class Own>
class ProximityObject : public FormatObject<Own, ::_CCardFormatInfo> {
 public:
  using FormatObject<Own, ::_CCardFormatInfo>::FormatObject;
  DESCRIPTOR_MEMBERS(OWN_)
};

/// A smart-card format: most parameters are read-only here.
template <class Own>
class SmartCardObject final : public FormatObject<Own, ::_CCardFormatInfo> {
 public:
  using FormatObject<Own, ::_CCardFormatInfo>::FormatObject;
  SMART_CARD_MEMBERS(OWN_)
  OWN_ENCODER(42, MakeCardData)
  OWN_DECODER(43, AnalyzeCardData)
  STDMETHODIMP IsRevisionValid(BSTR data, VARIANT_BOOL* result) override {
    return this->Get(result, [&] { Assign(result, this->IsRevision(data)); });
  }
};

template <class Own>
class Corp1000Object final : public ProximityObject<Own> {
 public:
  using ProximityObject<Own>::ProximityObject;

  STDMETHODIMP get_Sidx2ndCardID(SHORT* value) override {
    return this->Get(value, [&] { Assign(value, format().Sidx2ndCardID()); });
  }
  STDMETHODIMP get_Eidx2ndCardID(SHORT* value) override {
    return this->Get(value, [&] { Assign(value, format().Eidx2ndCardID()); });
  }

 private:
  CCardFormatHIDCorp1000& format() { return dynamic_cast<CCardFormatHIDCorp1000&>(this->core()); }
};

template <class Own>
class Bits34Object final : public ProximityObject<Own> {
 public:
  using ProximityObject<Own>::ProximityObject;

  STDMETHODIMP CCardFormatInfo_IsRevisionValid(BSTR data, VARIANT_BOOL* result) override {
    return this->Get(result, [&] { Assign(result, this->IsRevision(data)); });
  }
};

// --- the table of classes ---

struct Row : Class {
  // Of a format's class: its sub-type, whether a format is of it, and a new object around the
  // format.
  std::int32_t subType = 0;
  bool (*isOf)(const vardel::CCardFormatInfo& format) = nullptr;
  ComPtr<IUnknown> (*wrap)(const Format& format, const char* className) = nullptr;
};

template <class ObjectClass>
constexpr Row Plain(const CLSID& id) {
  using Core = typename ObjectClass::CoreHolder;
  return {{ObjectClass::kName, id, [](const char*) -> ComPtr<IUnknown> {
             return New<ObjectClass>([] {
               if constexpr (requires { typename Core::element_type; }) {
                 return std::make_shared<typename Core::element_type>();
               } else {
                 return Core();
               }
             });
           }}};
}

template <class ObjectClass>
ComPtr<IUnknown> Wrap(const Format& format, const char* className) {
  return New<ObjectClass>([&] { return format; }, className);
}

template <class Core, class ObjectClass>
constexpr Row OfFormat(const char* name, const CLSID& id, std::int32_t subType) {
  return {{name, id,
           [](const char* className) {
             return Wrap<ObjectClass>(std::make_shared<Core>(), className);
           }},
          subType,
          [](const vardel::CCardFormatInfo& format) { return typeid(format) == typeid(Core); },
          Wrap<ObjectClass>};
}

// NOLINTBEGIN(bugprone-macro-parentheses): a template, which takes none
// With the sub-type as automation knows it.
#define FORMAT_CLASS(name, object, subType) \
  OfFormat<vardel::name, object<::_##name>>(#name, CLSID_##name, ::subType)
// NOLINTEND(bugprone-macro-parentheses)

constexpr Row kRows[] = {
    Plain<ErrorObject>(CLSID_CError),
    Plain<CardDataObject>(CLSID_CCardData),
    Plain<CardByteDataObject>(CLSID_CCardByteData),
    Plain<ByteArrayDataObject>(CLSID_CByteArrayData),
    Plain<CardFrameObject>(CLSID_CCardFrame),
    Plain<CardObject>(CLSID_CCard),
    Plain<CardTypeObject>(CLSID_CCardType),
    Plain<CardTypesObject>(CLSID_CCardTypes),
    Plain<CardMatchObject>(CLSID_CCardMatch),
    Plain<CardMatchesObject>(CLSID_CCardMatches),
    FORMAT_CLASS(CCardFormatInfo, FormatObject, CARD_UNKNOWN),
    FORMAT_CLASS(CCardFormatEM, ProximityObject, CARD_SUB_EM_STD_26BITS),
    FORMAT_CLASS(CCardFormatHIDStandard, ProximityObject, CARD_SUB_HID_STD),
    FORMAT_CLASS(CCardFormatBinary26, ProximityObject, CARD_SUB_HID_FULL_BIN),
    FORMAT_CLASS(CCardFormat37Bits, ProximityObject, CARD_SUB_HID_37BITS),
    FORMAT_CLASS(CCardFormatHIDCorp1000, Corp1000Object, CARD_SUB_HID_CORPORATES1000),
    FORMAT_CLASS(CCardFormat34Bits, Bits34Object, CARD_SUB_HID_34BITS),
    FORMAT_CLASS(CCardFormatUID32BIts, SmartCardObject, CARD_SUB_MI_UID_32BITS),
    FORMAT_CLASS(CCardFormatLG, SmartCardObject, CARD_SUB_MI_LG),
    FORMAT_CLASS(CCardFormatWoori, SmartCardObject, CARD_SUB_MI_WOORI_BANK),
    FORMAT_CLASS(CCardFormatDongSeo, SmartCardObject, CARD_SUB_MI_DONGSEO),
};

constexpr bool HasRow(const CardFormatClass& format) {
  return std::ranges::any_of(kRows, [&](const Row& row) {
    return format.ClassName == row.name && format.CardSubType == row.subType;
  });
}
static_assert(std::ranges::all_of(kFormatTable, HasRow), "a format has no row here");

ComPtr<::_CCardFormatInfo> NewFormatObject(const Format& format) {
  const auto* const row = std::ranges::find_if(
      kRows, [&](const Row& each) { return each.isOf != nullptr && each.isOf(*format); });
  return row->wrap(format, row->name).As<::_CCardFormatInfo>();
}

/// The object of the contained CError. One that the library made for itself gives its content to a
/// CError that knows its automation object.
template <class Core>
ComPtr<::_CError> ErrorOf(Core& holder) {
  const std::shared_ptr<vardel::CError> error = holder.Error();
  if (error == nullptr) return {};
  if (const auto* const keeper = std::get_deleter<Keeper>(error)) {
    return keeper->object.template As<::_CError>();
  }
  auto object = New<ErrorObject>([&] { return *error; });
  holder.Error(ShareOfHost<vardel::CError>(object.get()));
  return object;
}

}  // namespace

const Class* FindClass(REFCLSID id) {
  const auto* const row =
      std::ranges::find_if(kRows, [&](const Row& each) { return each.id == id; });
  return row == std::end(kRows) ? nullptr : row;
}

}  // namespace vardel::server
