#pragma once

#include <vardel/core/card_byte_data.h>
#include <vardel/core/card_data.h>
#include <vardel/core/error.h>
#include <vardel/core/host_fault.h>
#include <vardel/facade/card_type.h>
#include <vardel/format/card_format_info.h>
#include <vardel/server/dispatch.h>
#include <vardel/server/foreign_objects.h>
#include <vardel/server/status.h>

#include <ocidl.h>
#include <vardel_idl.h>

#include <algorithm>
#include <array>
#include <concepts>
#include <cstdint>
#include <memory>
#include <string_view>
#include <utility>

namespace vardel::server {

/// One of these stands for each type of core object in this very module: another copy of the DLL in
/// the same process has others.
template <class Core>
inline const char coreTag = 0;

/// How our objects know each other.
MIDL_INTERFACE("7e5c0300-93ad-4c1f-8b26-d04fa1e37c58")
INativeObject : public IUnknown {
  /// The object's std::shared_ptr to its core object when that is of the tagged type, else null.
  STDMETHOD_(const void*, CoreOf)(const void* tag) = 0;
};

}  // namespace vardel::server
__CRT_UUID_DECL(vardel::server::INativeObject, 0x7e5c0300, 0x93ad, 0x4c1f, 0x8b, 0x26, 0xd0, 0x4f,
                0xa1, 0xe3, 0x7c, 0x58)

namespace vardel::server {

/// The automation objects of core objects, as long as any client holds them.
class ObjectMap {
 public:
  static void Add(const void* core, IUnknown* object);
  static void Remove(const void* core);
  /// With a reference of its own; empty when there is none.
  static ComPtr<IUnknown> Find(const void* core);
};

/// The core object of a host's argument: null stays null, an object without the interface is fault
/// 13.
template <class Core, class Interface>
std::shared_ptr<Core> FromHost(Interface* object) {
  if (object == nullptr) return nullptr;
  const auto shared = ComPtr<IUnknown>::Share(object);
  const auto native = shared.template As<INativeObject>();
  const void* const core = native ? native->CoreOf(&coreTag<Core>) : nullptr;
  if (core != nullptr) return *static_cast<const std::shared_ptr<Core>*>(core);
  // Careless hosts cast what has another interface.
  const auto foreign = shared.template As<Interface>();
  if (!foreign) throw HostFault(Fault::TypeMismatch);
  return FromElsewhere(*foreign.get());
}
/// The same for an argument by reference, whose reference may be null as well.
template <class Core, class Interface>
std::shared_ptr<Core> FromHost(Interface** object) {
  return object == nullptr ? nullptr : FromHost<Core>(*object);
}

// The automation object of a core object: the live one, or a new one.
ComPtr<IUnknown> ObjectOf(std::shared_ptr<vardel::CError> core);
ComPtr<IUnknown> ObjectOf(std::shared_ptr<vardel::CCardData> core);
ComPtr<IUnknown> ObjectOf(std::shared_ptr<vardel::CCardByteData> core);
ComPtr<IUnknown> ObjectOf(std::shared_ptr<vardel::CCardType> core);
ComPtr<IUnknown> ObjectOf(std::shared_ptr<vardel::CCardFormatInfo> core);

// --- results ---

inline void Assign(BSTR* out, std::string_view text) { *out = NewBstr(text); }
inline void Assign(LONG* out, std::int32_t value) { *out = value; }
inline void Assign(SHORT* out, std::int16_t value) { *out = value; }
inline void Assign(VARIANT_BOOL* out, bool value) { *out = value ? VARIANT_TRUE : VARIANT_FALSE; }
inline void Assign(unsigned char* out, std::uint8_t value) { *out = value; }
inline void Assign(double* out, double value) { *out = value; }
inline void Assign(::CardType* out, std::int32_t value) { *out = static_cast<::CardType>(value); }
inline void Assign(::CardDataStruct* out, const vardel::CardDataStruct& record) {
  std::ranges::copy(record.Bytes, out->Bytes);
}
/// An object, as an interface that it has; null for null.
template <class Interface, class Core>
void Assign(Interface** out, const std::shared_ptr<Core>& core) {
  if (core != nullptr) *out = ObjectOf(core).template As<Interface>().Detach();
}

inline vardel::CardDataStruct Record(const ::CardDataStruct& record) {
  vardel::CardDataStruct result;
  std::ranges::copy(record.Bytes, result.Bytes.begin());
  return result;
}

/// A dual interface describes itself, whichever of an object's it is.
template <std::derived_from<IDispatch> Interface>
class Implementation<Interface> : public Interface {
 public:
  STDMETHODIMP GetTypeInfo(UINT index, LCID /*locale*/, ITypeInfo** info) final {
    if (info == nullptr) return E_POINTER;
    *info = nullptr;
    return index == 0 ? GiveTypeInfo(__uuidof(Interface), info) : DISP_E_BADINDEX;
  }
};

/// An automation object: reference count, interfaces, late-bound calls, and the boundary around
/// every member. It has no state but its core object. The first interface is the default one.
template <class CoreType, class... Interfaces>
class Object
    : public ComObject<Interfaces..., ISupportErrorInfo, IProvideClassInfo, INativeObject> {
  using Base = ComObject<Interfaces..., ISupportErrorInfo, IProvideClassInfo, INativeObject>;
  using Base::Unknown;

 public:
  using Core = CoreType;
  using typename Base::Default;

  Object(const char* className, std::shared_ptr<Core> core)
      : className_(className), core_(std::move(core)) {
    ObjectMap::Add(core_.get(), Unknown());
  }
  ~Object() override { ObjectMap::Remove(core_.get()); }

  STDMETHODIMP QueryInterface(REFIID iid, void** object) override {
    return Base::QueryInterface(iid == IID_IDispatch ? __uuidof(Default) : iid, object);
  }

  STDMETHODIMP GetTypeInfoCount(UINT* count) override {
    if (count == nullptr) return E_POINTER;
    *count = 1;
    return S_OK;
  }
  STDMETHODIMP GetIDsOfNames(REFIID riid, LPOLESTR* names, UINT count, LCID /*locale*/,
                             DISPID* ids) override {
    HRESULT status = S_OK;
    const HRESULT guarded = Guard(
        className_, [&] { status = server::GetIDsOfNames(Targets(), riid, names, count, ids); });
    return FAILED(guarded) ? guarded : status;
  }
  STDMETHODIMP Invoke(DISPID id, REFIID riid, LCID /*locale*/, WORD flags, DISPPARAMS* params,
                      VARIANT* result, EXCEPINFO* exception, UINT* argumentError) override {
    const auto keep = ComPtr<IUnknown>::Share(Unknown());
    HRESULT status = S_OK;
    const HRESULT guarded = Guard(className_, [&] {
      status = server::Invoke(Targets(), id, riid, flags, params, result, exception, argumentError);
    });
    return FAILED(guarded) ? RaiseException(guarded, exception) : status;
  }

  STDMETHODIMP InterfaceSupportsErrorInfo(REFIID iid) override {
    return ((iid == __uuidof(Interfaces)) || ...) ? S_OK : S_FALSE;
  }
  STDMETHODIMP GetClassInfo(ITypeInfo** info) override {
    if (info == nullptr) return E_POINTER;
    *info = nullptr;
    return Guard(className_, [&] { *info = LoadClassInfo(Wide(className_)).Detach(); });
  }
  STDMETHODIMP_(const void*) CoreOf(const void* tag) override {
    return tag == &coreTag<Core> ? &core_ : nullptr;
  }

 protected:
  Core& core() const { return *core_; }
  const char* className() const { return className_; }

  /// Runs a member. The object outlives it, whatever a host's frame does meanwhile.
  template <class F>
  HRESULT Call(F&& call) {
    const auto keep = ComPtr<IUnknown>::Share(Unknown());
    return Guard(className_, call);
  }
  /// Runs a member with a result, which is cleared first.
  template <class T, class F>
  HRESULT Get(T* out, F&& result) {
    if (out == nullptr) return E_POINTER;
    *out = T();
    return Call([&] { Assign(out, result()); });
  }
  /// Runs a member whose result is an empty variant.
  template <class F>
  HRESULT GetEmpty(VARIANT* out, F&& call) {
    if (out == nullptr) return E_POINTER;
    VariantInit(out);
    return Call(call);
  }

 private:
  std::array<DispatchTarget, sizeof...(Interfaces)> Targets() {
    return {DispatchTarget{TableOf<Interfaces>(), static_cast<Interfaces*>(this)}...};
  }
  template <class Interface>
  static const TypeTable& TableOf() {
    static const TypeTable table(__uuidof(Interface));
    return table;
  }

  const char* className_;
  std::shared_ptr<Core> core_;
};

}  // namespace vardel::server
