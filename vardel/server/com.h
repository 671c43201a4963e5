#pragma once

// Windows types by value: what the rest of the server needs of the platform, with its ownership.

#ifndef WIN32_LEAN_AND_MEAN
#define WIN32_LEAN_AND_MEAN
#endif
#include <oaidl.h>
#include <oleauto.h>
#include <windows.h>

#include <atomic>
#include <concepts>
#include <cstddef>
#include <new>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <tuple>
#include <type_traits>
#include <utility>

namespace vardel::server {

/// Holds one reference to an interface.
template <class Interface>
class ComPtr {
 public:
  ComPtr() = default;
  ComPtr(const ComPtr& other) : pointer_(other.pointer_) {
    if (pointer_ != nullptr) pointer_->AddRef();
  }
  ComPtr(ComPtr&& other) noexcept : pointer_(std::exchange(other.pointer_, nullptr)) {}
  template <std::derived_from<Interface> Derived>
  ComPtr(ComPtr<Derived> other) : pointer_(other.Detach()) {}
  ComPtr& operator=(ComPtr other) noexcept {
    std::swap(pointer_, other.pointer_);
    return *this;
  }
  ~ComPtr() {
    if (pointer_ != nullptr) pointer_->Release();
  }

  /// Adds a reference of its own.
  static ComPtr Share(Interface* pointer) {
    if (pointer != nullptr) pointer->AddRef();
    return Adopt(pointer);
  }
  /// Takes over the caller's reference.
  static ComPtr Adopt(Interface* pointer) {
    ComPtr result;
    result.pointer_ = pointer;
    return result;
  }

  Interface* get() const { return pointer_; }
  Interface* operator->() const { return pointer_; }
  explicit operator bool() const { return pointer_ != nullptr; }
  /// For functions that hand out a reference; only while empty.
  Interface** out() { return &pointer_; }
  Interface* Detach() { return std::exchange(pointer_, nullptr); }

  /// The same object's other interface; empty when it has none such.
  template <class Other>
  ComPtr<Other> As() const {
    ComPtr<Other> other;
    if (pointer_ != nullptr) {
      pointer_->QueryInterface(__uuidof(Other), reinterpret_cast<void**>(other.out()));
    }
    return other;
  }

 private:
  Interface* pointer_ = nullptr;
};

/// A VARIANT that clears itself.
struct Variant : VARIANT {
  Variant() : VARIANT{} { vt = VT_EMPTY; }
  Variant(const Variant&) = delete;
  Variant& operator=(const Variant&) = delete;
  ~Variant() {
    if (vt != VT_EMPTY) VariantClear(this);
  }
};

/// Converts a value. Numbers and texts convert alike wherever a host runs: as in US English,
/// whatever the user has changed in it.
HRESULT ChangeType(VARIANT& to, const VARIANT& from, VARTYPE type);

/// The value of a variant by reference, or of any other the variant itself. Null where the
/// reference leads nowhere, or to a variant by reference once more, which could be the first.
const VARIANT* ValueOf(const VARIANT& variant);

/// The elements of an array of one dimension, which may be by reference; nothing for any other
/// value.
template <class Element>
std::optional<std::span<const Element>> ElementsOf(const VARIANT& value, VARTYPE type) {
  if ((value.vt & ~VT_BYREF) != (VT_ARRAY | type)) return std::nullopt;
  const SAFEARRAY* const array = (value.vt & VT_BYREF) != 0 ? *value.pparray : value.parray;
  if (array == nullptr || array->pvData == nullptr) return std::span<const Element>();
  if (array->cDims != 1 || array->cbElements != sizeof(Element)) return std::nullopt;
  return std::span(static_cast<const Element*>(array->pvData), array->rgsabound[0].cElements);
}

/// UTF-8 of a BSTR's text; null is "". Unpaired surrogates pass in their three-byte form, so that
/// text which is only stored comes back as it was.
std::string Utf8(std::wstring_view text);
std::string Utf8(BSTR text);
/// A new BSTR of a UTF-8 text; throws std::bad_alloc.
BSTR NewBstr(std::string_view text);
std::wstring Wide(std::string_view text);

/// Counts what keeps the DLL loaded: objects, locks, records in hosts' variables. Each thread
/// counts in a place of its own, so that none waits for another, and what was counted in a place
/// leaves it there: a use that lasts is seen, whatever else comes and goes meanwhile.
unsigned PlaceOfThread();
void AddModuleUse(unsigned place);
void ReleaseModuleUse(unsigned place);
bool IsModuleInUse();

/// Memory of objects. Most live for a call or two: what a thread gives back waits for the thread's
/// next object of about that size, without the process's heap and its lock.
void* TakeMemory(std::size_t size);
void GiveBackMemory(void* memory, std::size_t size) noexcept;
/// Lets go of what waits, before the DLL is unloaded.
void DropMemory() noexcept;

/// An interface with those of its members that every object implements alike.
template <class Interface>
class Implementation : public Interface {};

/// An object with a reference count and the given interfaces, the first of which is its identity.
/// It keeps the DLL loaded.
template <class... Interfaces>
class ComObject : public Implementation<Interfaces>... {
 public:
  using Default = std::tuple_element_t<0, std::tuple<Interfaces...>>;

  ComObject() { AddModuleUse(place_); }
  ComObject(const ComObject&) = delete;
  ComObject& operator=(const ComObject&) = delete;
  virtual ~ComObject() { ReleaseModuleUse(place_); }

  // NOLINTNEXTLINE(misc-new-delete-overloads): the delete that knows the size is its match
  static void* operator new(std::size_t size) { return TakeMemory(size); }
  static void operator delete(void* memory, std::size_t size) { GiveBackMemory(memory, size); }

  STDMETHODIMP QueryInterface(REFIID iid, void** object) override {
    if (object == nullptr) return E_POINTER;
    *object = nullptr;
    if (iid == IID_IUnknown) *object = Unknown();
    ((iid == __uuidof(Interfaces) ? void(*object = static_cast<Interfaces*>(this)) : void()), ...);
    if (*object == nullptr) return E_NOINTERFACE;
    AddRef();
    return S_OK;
  }
  STDMETHODIMP_(ULONG) AddRef() override { return ++references_; }
  STDMETHODIMP_(ULONG) Release() override {
    const ULONG left = --references_;
    if (left == 0) delete this;
    return left;
  }

 protected:
  IUnknown* Unknown() { return static_cast<Default*>(this); }

 private:
  std::atomic<ULONG> references_{1};
  const unsigned place_ = PlaceOfThread();
};

extern HINSTANCE moduleInstance;
/// The DLL's own path.
std::wstring ModulePath();

}  // namespace vardel::server
