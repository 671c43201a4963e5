#pragma once

#include <vardel/core/host_fault.h>
#include <vardel/server/dispatch.h>
#include <vardel/server/foreign_objects.h>
#include <vardel/server/status.h>

#include <ocidl.h>
#include <vardel_idl.h>

#include <array>
#include <concepts>
#include <memory>
#include <type_traits>
#include <utility>
#include <vector>

namespace vardel::server {

/// One of these stands for each type of core object in this very module: another copy of the DLL in
/// the same process has others.
template <class Core>
inline const char coreTag = 0;

/// How our objects know each other.
MIDL_INTERFACE("7e5c0300-93ad-4c1f-8b26-d04fa1e37c58")
INativeObject : public IUnknown {
  /// The object's core object when that is of the tagged type, else null.
  STDMETHOD_(void*, CoreOf)(const void* tag) = 0;
};

}  // namespace vardel::server
__CRT_UUID_DECL(vardel::server::INativeObject, 0x7e5c0300, 0x93ad, 0x4c1f, 0x8b, 0x26, 0xd0, 0x4f,
                0xa1, 0xe3, 0x7c, 0x58)

namespace vardel::server {

/// The core object of a host's argument, for as long as the host holds the argument: null stays
/// null, an object without the interface is fault 13.
template <class Core, class Interface>
std::shared_ptr<Core> FromHost(Interface* object) {
  if (object == nullptr) return nullptr;
  ComPtr<INativeObject> native;
  object->QueryInterface(__uuidof(INativeObject), reinterpret_cast<void**>(native.out()));
  if (void* const core = native ? native->CoreOf(&coreTag<Core>) : nullptr) {
    return {std::shared_ptr<Core>(), static_cast<Core*>(core)};
  }
  // Careless hosts cast what has another interface.
  const auto foreign = ComPtr<IUnknown>::Share(object).template As<Interface>();
  if (!foreign) throw HostFault(Fault::TypeMismatch);
  return FromElsewhere(*foreign.get());
}

/// As what a core object's last share is given back to: keeps the automation object.
struct Keeper {
  ComPtr<IUnknown> object;
  void operator()(const void* /*core*/) { object = {}; }
};

/// The same to keep: a share in the core object keeps its automation object, too, so that whoever
/// has the one finds the other.
template <class Core, class Interface>
std::shared_ptr<Core> ShareOfHost(Interface* object) {
  const auto core = FromHost<Core>(object);
  if (core == nullptr) return nullptr;
  return std::shared_ptr<Core>(core.get(), Keeper{ComPtr<IUnknown>::Share(object)});
}

/// The automation objects of core objects that others give out again and again, each for as long as
/// this: the same core object is always the same automation object.
template <class Interface>
class KeptObjects {
 public:
  /// The object of a core object, which `make` makes where there is none. One that is nobody else's
  /// is new, and is not kept.
  template <class Core, class Make>
  ComPtr<Interface> Of(const std::shared_ptr<Core>& core, Make&& make) {
    if (core == nullptr) return {};
    if (const auto* const keeper = std::get_deleter<Keeper>(core)) {
      return keeper->object.template As<Interface>();
    }
    for (const auto& [known, object] : kept_) {
      if (known == core.get()) return object;
    }
    const bool isShared = core.use_count() > 1;
    ComPtr<Interface> object = make(core);
    if (isShared) kept_.emplace_back(core.get(), object);
    return object;
  }

 private:
  std::vector<std::pair<const void*, ComPtr<Interface>>> kept_;
};

template <class Core>
Core& CoreIn(Core& own) {
  return own;
}
template <class Core>
Core& CoreIn(std::shared_ptr<Core>& shared) {
  return *shared;
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
/// every member. Its core object is a part of it, or a std::shared_ptr where others hold that too.
/// The first interface is the default one.
template <class CoreType, class... Interfaces>
class Object
    : public ComObject<Interfaces..., ISupportErrorInfo, IProvideClassInfo, INativeObject> {
  using Base = ComObject<Interfaces..., ISupportErrorInfo, IProvideClassInfo, INativeObject>;
  using Base::Unknown;

 public:
  using Core = std::remove_reference_t<decltype(CoreIn(std::declval<CoreType&>()))>;
  using CoreHolder = CoreType;
  using typename Base::Default;

  template <class Make>
  Object(const char* className, Make&& make) : className_(className), core_(make()) {}

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
    const auto keep = Keep();
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
  STDMETHODIMP_(void*) CoreOf(const void* tag) override {
    return tag == &coreTag<Core> ? &core() : nullptr;
  }

 protected:
  Core& core() { return CoreIn(core_); }

  /// For a member that gets a host's objects: whatever these do meanwhile, the object outlives it.
  ComPtr<IUnknown> Keep() { return ComPtr<IUnknown>::Share(Unknown()); }

  /// Runs a member.
  template <class F>
  HRESULT Call(F&& call) {
    return Guard(className_, call);
  }
  /// Runs a member with a result, which is cleared first.
  template <class T, class F>
  HRESULT Get(T* out, F&& call) {
    if (out == nullptr) return E_POINTER;
    *out = T();
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
  CoreType core_;
};

}  // namespace vardel::server
