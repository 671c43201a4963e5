#include <vardel/core/byte_array_data.h>
#include <vardel/core/card_frame.h>
#include <vardel/facade/card.h>
#include <vardel/facade/card_types.h>
#include <vardel/server/format_objects.h>
#include <vardel/server/frame_reader.h>
#include <vardel/server/object.h>
#include <vardel/server/objects.h>

#include <algorithm>
#include <vector>

namespace vardel::server {
namespace {

/// The members of a class with a contained CError.
template <class Base>
class WithError : public Base {
 public:
  using Base::Base;

  STDMETHODIMP put_ErrName(BSTR value) override {
    return this->Call([&] { this->core().ErrName(Utf8(value)); });
  }
  STDMETHODIMP get_ErrName(BSTR* value) override {
    return this->Get(value, [&] { return this->core().ErrName(); });
  }
  STDMETHODIMP put_ErrNumber(LONG value) override {
    return this->Call([&] { this->core().ErrNumber(value); });
  }
  STDMETHODIMP get_ErrNumber(LONG* value) override {
    return this->Get(value, [&] { return this->core().ErrNumber(); });
  }
  STDMETHODIMP putref_Error(::_CError* value) override {
    return this->Call([&] { this->core().Error(FromHost<vardel::CError>(value)); });
  }
  STDMETHODIMP get_Error(::_CError** value) override {
    return this->Get(value, [&] { return this->core().Error(); });
  }
  STDMETHODIMP InitErr() override {
    return this->Call([&] { this->core().InitErr(); });
  }
  STDMETHODIMP MakeErr(LONG code, BSTR message) override {
    return this->Call([&] { this->core().MakeErr(code, Utf8(message)); });
  }
};

/// The error pair of a class that keeps it as plain fields.
template <class Base>
class WithErrorFields : public Base {
 public:
  using Base::Base;

  STDMETHODIMP put_ErrName(BSTR value) override {
    return this->Call([&] { this->core().ErrName = Utf8(value); });
  }
  STDMETHODIMP get_ErrName(BSTR* value) override {
    return this->Get(value, [&] { return this->core().ErrName; });
  }
  STDMETHODIMP put_ErrNumber(LONG value) override {
    return this->Call([&] { this->core().ErrNumber = value; });
  }
  STDMETHODIMP get_ErrNumber(LONG* value) override {
    return this->Get(value, [&] { return this->core().ErrNumber; });
  }
};

class ErrorObject final : public WithErrorFields<Object<vardel::CError, ::_CError>> {
 public:
  using WithErrorFields::WithErrorFields;

  STDMETHODIMP InitErr() override {
    return Call([&] { core().InitErr(); });
  }
  STDMETHODIMP MakeErr(LONG code, BSTR message) override {
    return Call([&] { core().MakeErr(code, Utf8(message)); });
  }
};

class CardDataObject final : public WithErrorFields<Object<vardel::CCardData, ::_CCardData>> {
 public:
  using WithErrorFields::WithErrorFields;

  STDMETHODIMP put_CardType(::CardType value) override {
    return Call([&] { core().CardType = value; });
  }
  STDMETHODIMP get_CardType(::CardType* value) override {
    return Get(value, [&] { return core().CardType; });
  }
  STDMETHODIMP put_CardSubType(unsigned char value) override {
    return Call([&] { core().CardSubType = value; });
  }
  STDMETHODIMP get_CardSubType(unsigned char* value) override {
    return Get(value, [&] { return core().CardSubType; });
  }
  STDMETHODIMP put_Facility(BSTR value) override {
    return Call([&] { core().Facility = Utf8(value); });
  }
  STDMETHODIMP get_Facility(BSTR* value) override {
    return Get(value, [&] { return core().Facility; });
  }
  STDMETHODIMP put_CardID(BSTR value) override {
    return Call([&] { core().CardID = Utf8(value); });
  }
  STDMETHODIMP get_CardID(BSTR* value) override {
    return Get(value, [&] { return core().CardID; });
  }
  STDMETHODIMP put_Revision(BSTR value) override {
    return Call([&] { core().Revision = Utf8(value); });
  }
  STDMETHODIMP get_Revision(BSTR* value) override {
    return Get(value, [&] { return core().Revision; });
  }
};

class CardByteDataObject final : public WithError<Object<vardel::CCardByteData, ::_CCardByteData>> {
 public:
  using WithError::WithError;

  STDMETHODIMP InitCardData(::CardType* type, VARIANT* result) override {
    return GetEmpty(result, [&] {
      core().InitCardData(type == nullptr ? 0 : static_cast<std::int32_t>(*type));
    });
  }
  STDMETHODIMP put_CardType(::CardType value) override {
    return Call([&] { core().CardType(value); });
  }
  STDMETHODIMP get_CardType(::CardType* value) override {
    return Get(value, [&] { return core().CardType(); });
  }
  STDMETHODIMP put_CardSubType(unsigned char value) override {
    return Call([&] { core().CardSubType(value); });
  }
  STDMETHODIMP get_CardSubType(unsigned char* value) override {
    return Get(value, [&] { return core().CardSubType(); });
  }
  STDMETHODIMP get_CardDataByteCount(LONG* value) override {
    return Get(value, [&] { return core().CardDataByteCount(); });
  }
  STDMETHODIMP put_CardArrDataByIndex(LONG index, unsigned char value) override {
    return Call([&] { core().CardArrDataByIndex(index, value); });
  }
  STDMETHODIMP get_CardArrDataByIndex(LONG index, unsigned char* value) override {
    return Get(value, [&] { return core().CardArrDataByIndex(index); });
  }
  STDMETHODIMP put_CardDataStruct(::CardDataStruct* value) override {
    return Call([&] { core().CardDataStruct = Record(RequireObject(value)); });
  }
  STDMETHODIMP get_CardDataStruct(::CardDataStruct* value) override {
    return Get(value, [&] { return core().CardDataStruct; });
  }
};

class ByteArrayDataObject final
    : public WithError<Object<vardel::CByteArrayData, ::_CByteArrayData>> {
 public:
  using WithError::WithError;

  STDMETHODIMP InitData() override {
    return Call([&] { core().InitData(); });
  }
  STDMETHODIMP put_ByteCount(LONG value) override {
    return Call([&] { core().ByteCount(value); });
  }
  STDMETHODIMP get_ByteCount(LONG* value) override {
    return Get(value, [&] { return core().ByteCount(); });
  }
  STDMETHODIMP get_HexCharCount(LONG* value) override {
    return Get(value, [&] { return core().HexCharCount(); });
  }
  STDMETHODIMP get_LastArrayIndex(LONG* value) override {
    return Get(value, [&] { return core().LastArrayIndex(); });
  }
  STDMETHODIMP put_ByteOR(LONG value) override {
    return Call([&] { core().ByteOR(value); });
  }
  STDMETHODIMP get_ByteOR(LONG* value) override {
    return Get(value, [&] { return core().ByteOR(); });
  }
  STDMETHODIMP put_ByteAND(LONG value) override {
    return Call([&] { core().ByteAND(value); });
  }
  STDMETHODIMP get_ByteAND(LONG* value) override {
    return Get(value, [&] { return core().ByteAND(); });
  }
  STDMETHODIMP put_HexString(BSTR value) override {
    return Call([&] { core().HexString = Utf8(value); });
  }
  STDMETHODIMP get_HexString(BSTR* value) override {
    return Get(value, [&] { return core().HexString; });
  }
  STDMETHODIMP put_ChrString(BSTR value) override {
    return Call([&] { core().ChrString = Utf8(value); });
  }
  STDMETHODIMP get_ChrString(BSTR* value) override {
    return Get(value, [&] { return core().ChrString; });
  }
  STDMETHODIMP get_IsAvailable(VARIANT_BOOL* value) override {
    return Get(value, [&] { return core().IsAvailable(); });
  }
};

/// The bytes of a frame as a new byte array.
VARIANT ByteArrayVariant(std::span<const std::uint8_t> bytes) {
  SAFEARRAY* const array = SafeArrayCreateVector(VT_UI1, 0, static_cast<ULONG>(bytes.size()));
  if (array == nullptr) throw std::bad_alloc();
  std::ranges::copy(bytes, static_cast<std::uint8_t*>(array->pvData));
  VARIANT value{};
  value.vt = VT_ARRAY | VT_UI1;
  value.parray = array;
  return value;
}

class CardFrameObject final : public Object<vardel::CCardFrame, ::_CCardFrame, ::ICardFrame> {
 public:
  using Object::Object;

  STDMETHODIMP put_FrameCardType(LONG value) override {
    return Call([&] { core().FrameCardType(value); });
  }
  STDMETHODIMP get_FrameCardType(LONG* value) override {
    return Get(value, [&] { return core().FrameCardType(); });
  }
  STDMETHODIMP put_FrameCardSubType(LONG value) override {
    return Call([&] { core().FrameCardSubType(value); });
  }
  STDMETHODIMP get_FrameCardSubType(LONG* value) override {
    return Get(value, [&] { return core().FrameCardSubType(); });
  }
  STDMETHODIMP put_IsEMFrame(VARIANT_BOOL value) override {
    return Call([&] { core().IsEMFrame(value != VARIANT_FALSE); });
  }
  STDMETHODIMP get_IsEMFrame(VARIANT_BOOL* value) override {
    return Get(value, [&] { return core().IsEMFrame(); });
  }
  STDMETHODIMP get_RawCardBytes(VARIANT* value) override {
    return GetEmpty(value, [&] { *value = ByteArrayVariant(*core().RawCardBytes()); });
  }
  STDMETHODIMP put_RawCardHex(BSTR value) override {
    return Call([&] { core().RawCardHex(Utf8(value)); });
  }
  STDMETHODIMP get_RawCardHex(BSTR* value) override {
    return Get(value, [&] { return core().RawCardHex(); });
  }
  STDMETHODIMP put_CardDataStruct(::CardDataStruct* value) override {
    return Call([&] { core().CardDataStruct(Record(RequireObject(value))); });
  }
  STDMETHODIMP MakeCardData(::_CCardFormatInfo* format, ::_CCardData* card) override {
    return Call([&] {
      const auto encoder = ComPtr<IUnknown>::Share(&RequireObject(format)).As<::_CCardFormatInfo>();
      if (!encoder) throw HostFault(Fault::TypeMismatch);
      // A call by reference may put another object in the place of its argument.
      ::_CCardData* argument = ComPtr<::_CCardData>::Share(card).Detach();
      ::CardDataStruct record{};
      SetErrorInfo(0, nullptr);
      const HRESULT status = encoder->MakeCardData(&argument, &record);
      ComPtr<::_CCardData>::Adopt(argument);
      if (FAILED(status)) ThrowFailure(status, L"The format object failed");
      core().CardDataStruct(Record(record));
    });
  }
};

class CardObject final : public WithErrorFields<Object<vardel::CCard, ::_CCard>> {
 public:
  using WithErrorFields::WithErrorFields;

  STDMETHODIMP CardFormat(LONG type, LONG subType, ::_CCardFormatInfo** result) override {
    return Get(result, [&] { return core().CardFormat(type, subType); });
  }
  STDMETHODIMP CardFormatByCode(LONG code, ::_CCardFormatInfo** result) override {
    return Get(result, [&] { return core().CardFormatByCode(code); });
  }
  STDMETHODIMP get_IsExisted(LONG type, LONG subType, VARIANT_BOOL* value) override {
    return Get(value, [&] { return core().IsExisted(type, subType); });
  }
  STDMETHODIMP get_CardTypeCount(SHORT* value) override {
    return Get(value, [&] { return core().CardTypeCount(); });
  }
  STDMETHODIMP IsCardMainType(::CardType type, VARIANT_BOOL* result) override {
    return Get(result, [&] { return core().IsCardMainType(type); });
  }
  STDMETHODIMP IsCardType(::CardType type, LONG subType, VARIANT_BOOL* result) override {
    return Get(result, [&] { return core().IsCardType(type, subType); });
  }
  STDMETHODIMP IsSmartCardData(BSTR data, VARIANT_BOOL* result) override {
    return Get(result, [&] { return core().IsSmartCardData(Utf8(data)); });
  }
  STDMETHODIMP IsSecurityCardData(BSTR data, VARIANT_BOOL* result) override {
    return Get(result, [&] { return core().IsSecurityCardData(Utf8(data)); });
  }
  STDMETHODIMP MakeCardData(::_CCardData** card, ::_CCardByteData** result) override {
    return Get(result, [&] {
      const auto data = FromHost<vardel::CCardData>(card);
      return std::make_shared<vardel::CCardByteData>(core().MakeCardData(data.get()));
    });
  }
  STDMETHODIMP AnalyzeCardData(IDispatch** frame, ::_CCardData** result) override {
    return Get(result, [&] {
      const auto read = ReadFrame(frame);
      return std::make_shared<vardel::CCardData>(core().AnalyzeCardData(read.get()));
    });
  }
};

class CardTypeObject final : public WithError<Object<vardel::CCardType, ::_CCardType>> {
 public:
  using WithError::WithError;

  STDMETHODIMP initAll() override {
    return Call([&] { core().initAll(); });
  }
  STDMETHODIMP InitData(VARIANT* result) override {
    return GetEmpty(result, [&] { core().InitData(); });
  }
  STDMETHODIMP put_ShortName(BSTR value) override {
    return Call([&] { core().ShortName = Utf8(value); });
  }
  STDMETHODIMP get_ShortName(BSTR* value) override {
    return Get(value, [&] { return core().ShortName; });
  }
  STDMETHODIMP put_TypeName(BSTR value) override {
    return Call([&] { core().TypeName = Utf8(value); });
  }
  STDMETHODIMP get_TypeName(BSTR* value) override {
    return Get(value, [&] { return core().TypeName; });
  }
  STDMETHODIMP get_DefaultShortName(BSTR* value) override {
    return Get(value, [&] { return core().DefaultShortName(); });
  }
  STDMETHODIMP get_DefaultName(BSTR* value) override {
    return Get(value, [&] { return core().DefaultName(); });
  }
  STDMETHODIMP get_TypeCode(LONG* value) override {
    return Get(value, [&] { return core().TypeCode(); });
  }
  STDMETHODIMP get_CardType(LONG* value) override {
    return Get(value, [&] { return core().CardType(); });
  }
  STDMETHODIMP get_CardSubType(LONG* value) override {
    return Get(value, [&] { return core().CardSubType(); });
  }
  STDMETHODIMP put_IsAvailable(VARIANT_BOOL value) override {
    return Call([&] { core().IsAvailable = value != VARIANT_FALSE; });
  }
  STDMETHODIMP get_IsAvailable(VARIANT_BOOL* value) override {
    return Get(value, [&] { return core().IsAvailable; });
  }
};

/// A variant array of what `put` makes of each item.
template <class Item, class Put>
VARIANT VariantArray(const std::vector<Item>& items, Put put) {
  SAFEARRAY* const array = SafeArrayCreateVector(VT_VARIANT, 0, static_cast<ULONG>(items.size()));
  if (array == nullptr) throw std::bad_alloc();
  VARIANT value{};
  value.vt = VT_ARRAY | VT_VARIANT;
  value.parray = array;
  try {
    auto* element = static_cast<VARIANT*>(array->pvData);
    for (const Item& item : items) put(item, *element++);
  } catch (...) {
    VariantClear(&value);
    throw;
  }
  return value;
}

class CardTypesObject final : public WithError<Object<vardel::CCardTypes, ::_CCardTypes>> {
 public:
  using WithError::WithError;

  STDMETHODIMP Add(::_CCardType* entry, LONG code, VARIANT_BOOL* result) override {
    return Get(result, [&] { return core().Add(FromHost<vardel::CCardType>(entry), code); });
  }
  STDMETHODIMP get_IsExisted(LONG type, LONG subType, VARIANT_BOOL* value) override {
    return Get(value, [&] { return core().IsExisted(type, subType); });
  }
  STDMETHODIMP CardTypeByCode(LONG code, ::_CCardType** result) override {
    return Get(result, [&] { return core().CardTypeByCode(code); });
  }
  STDMETHODIMP get_CardTypeByType(LONG type, LONG subType, ::_CCardType** value) override {
    return Get(value, [&] { return core().CardTypeByType(type, subType); });
  }
  STDMETHODIMP get_AllCardTypes(VARIANT* value) override {
    return GetEmpty(value, [&] {
      *value = VariantArray(core().AllCardTypes(), [](const auto& entry, VARIANT& element) {
        element.vt = VT_DISPATCH;
        element.pdispVal = ObjectOf(entry).template As<IDispatch>().Detach();
      });
    });
  }
  STDMETHODIMP get_CardTypeCodes(VARIANT* value) override {
    return GetEmpty(value, [&] {
      *value = VariantArray(core().CardTypeCodes(), [](const auto& code, VARIANT& element) {
        element.bstrVal = NewBstr(code);
        element.vt = VT_BSTR;
      });
    });
  }
  STDMETHODIMP get_Count(LONG* value) override {
    return Get(value, [&] { return core().Count(); });
  }
  STDMETHODIMP GetDefaultShortName(LONG type, LONG subType, BSTR* result) override {
    return Get(result, [&] { return core().GetDefaultShortName(type, subType); });
  }
  STDMETHODIMP GetDefaultName(LONG type, LONG subType, BSTR* result) override {
    return Get(result, [&] { return core().GetDefaultName(type, subType); });
  }
  STDMETHODIMP get_DefaultShortName(BSTR code, BSTR* value) override {
    return Get(value, [&] { return core().DefaultShortName(Utf8(code)); });
  }
  STDMETHODIMP get_DefaultName(BSTR code, BSTR* value) override {
    return Get(value, [&] { return core().DefaultName(Utf8(code)); });
  }
  STDMETHODIMP put_ShortName(BSTR code, BSTR value) override {
    return Call([&] { core().ShortName(Utf8(code), Utf8(value)); });
  }
  STDMETHODIMP get_ShortName(BSTR code, BSTR* value) override {
    return Get(value, [&] { return core().ShortName(Utf8(code)); });
  }
  STDMETHODIMP LetShortName(LONG type, LONG subType, BSTR name, LONG* result) override {
    return Get(result, [&] { return core().LetShortName(type, subType, Utf8(name)); });
  }
  STDMETHODIMP GetShortName(LONG type, LONG subType, BSTR* result) override {
    return Get(result, [&] { return core().GetShortName(type, subType); });
  }
  STDMETHODIMP put_CardTypeName(BSTR code, BSTR value) override {
    return Call([&] { core().CardTypeName(Utf8(code), Utf8(value)); });
  }
  STDMETHODIMP get_CardTypeName(BSTR code, BSTR* value) override {
    return Get(value, [&] { return core().CardTypeName(Utf8(code)); });
  }
  STDMETHODIMP LetCardTypeName(LONG type, LONG subType, BSTR name, LONG* result) override {
    return Get(result, [&] { return core().LetCardTypeName(type, subType, Utf8(name)); });
  }
  STDMETHODIMP GetCardTypeName(LONG type, LONG subType, BSTR* result) override {
    return Get(result, [&] { return core().GetCardTypeName(type, subType); });
  }
};

/// The live object of a core object, or a new one of class `ObjectClass`.
template <class ObjectClass>
ComPtr<IUnknown> FindOrMake(const char* className,
                            std::shared_ptr<typename ObjectClass::Core> core) {
  if (auto live = ObjectMap::Find(core.get())) return live;
  auto* const object = new ObjectClass(className, std::move(core));
  return ComPtr<IUnknown>::Adopt(static_cast<typename ObjectClass::Default*>(object));
}

template <class ObjectClass>
ComPtr<IUnknown> Create(const char* className) {
  return FindOrMake<ObjectClass>(className, std::make_shared<typename ObjectClass::Core>());
}

struct PlainClass {
  const char* name;
  ComPtr<IUnknown> (*create)(const char* className);
};

constexpr PlainClass kPlainClasses[] = {
    {"CError", Create<ErrorObject>},
    {"CCardData", Create<CardDataObject>},
    {"CCardByteData", Create<CardByteDataObject>},
    {"CByteArrayData", Create<ByteArrayDataObject>},
    {"CCardFrame", Create<CardFrameObject>},
    {"CCard", Create<CardObject>},
    {"CCardType", Create<CardTypeObject>},
    {"CCardTypes", Create<CardTypesObject>},
};

}  // namespace

ComPtr<IUnknown> ObjectOf(std::shared_ptr<vardel::CError> core) {
  return FindOrMake<ErrorObject>("CError", std::move(core));
}

ComPtr<IUnknown> ObjectOf(std::shared_ptr<vardel::CCardData> core) {
  return FindOrMake<CardDataObject>("CCardData", std::move(core));
}

ComPtr<IUnknown> ObjectOf(std::shared_ptr<vardel::CCardByteData> core) {
  return FindOrMake<CardByteDataObject>("CCardByteData", std::move(core));
}

ComPtr<IUnknown> ObjectOf(std::shared_ptr<vardel::CCardType> core) {
  return FindOrMake<CardTypeObject>("CCardType", std::move(core));
}

ComPtr<IUnknown> ObjectOf(std::shared_ptr<vardel::CCardFormatInfo> core) {
  if (auto live = ObjectMap::Find(core.get())) return live;
  return NewFormatObject(std::move(core));
}

ComPtr<IUnknown> CreateObject(std::string_view className) {
  for (const PlainClass& row : kPlainClasses) {
    if (className == row.name) return row.create(row.name);
  }
  return CreateFormatObject(className);
}

}  // namespace vardel::server
