#pragma once

#include <vardel/server/com.h>

#include <vardel_idl.h>

#include <algorithm>
#include <cstdint>
#include <map>
#include <span>
#include <stdexcept>
#include <string>
#include <vector>

/// The DLL beside the test program, asked for its classes without any registry, and its types.
namespace vardel::server {

inline void Require(HRESULT status) {
  if (FAILED(status)) throw std::runtime_error("a call failed that should not");
}

class ServerModule {
 public:
  explicit ServerModule(const wchar_t* file = L"vardel.dll") : module_(LoadLibraryW(file)) {
    if (module_ == nullptr) throw std::runtime_error("the DLL does not load");
  }
  /// Loads a copy, which shares nothing with the one that it is of.
  static ServerModule Copy(const wchar_t* file) {
    Require(CopyFileW(L"vardel.dll", file, FALSE) != FALSE ? S_OK : E_FAIL);
    return ServerModule(file);
  }
  ServerModule(const ServerModule&) = delete;
  ServerModule& operator=(const ServerModule&) = delete;
  ~ServerModule() { FreeLibrary(module_); }

  /// Calls one of the DLL's functions.
  template <class... Parameters>
  HRESULT Call(const char* name, Parameters... arguments) const {
    auto* const function = reinterpret_cast<void*>(GetProcAddress(module_, name));
    return reinterpret_cast<HRESULT(WINAPI*)(Parameters...)>(function)(arguments...);
  }
  HRESULT GetClassObject(REFCLSID id, REFIID iid, void** object) const {
    return Call<REFCLSID, REFIID, void**>("DllGetClassObject", id, iid, object);
  }
  HRESULT CanUnloadNow() const { return Call("DllCanUnloadNow"); }

  template <class Interface>
  ComPtr<Interface> Create(REFCLSID id) const {
    ComPtr<IClassFactory> factory;
    ComPtr<Interface> object;
    Require(GetClassObject(id, IID_PPV_ARGS(factory.out())));
    Require(factory->CreateInstance(nullptr, IID_PPV_ARGS(object.out())));
    return object;
  }

 private:
  HMODULE module_;
};

/// The object's interface of that id; empty when it has none such.
inline ComPtr<IDispatch> Query(IUnknown* object, REFIID iid) {
  ComPtr<IDispatch> found;
  object->QueryInterface(iid, reinterpret_cast<void**>(found.out()));
  return found;
}

/// As in "{7e5c0001-...}", in upper case.
inline std::wstring Text(REFGUID id) {
  wchar_t text[40] = {};
  StringFromGUID2(id, text, 40);
  return text;
}

inline SAFEARRAY* NewByteArray(std::span<const std::uint8_t> bytes) {
  SAFEARRAY* const array = SafeArrayCreateVector(VT_UI1, 0, static_cast<ULONG>(bytes.size()));
  std::ranges::copy(bytes, static_cast<std::uint8_t*>(array->pvData));
  return array;
}

/// What a call came to.
struct Outcome {
  std::string failure = {};  // "fault 6", "status 3" with a status's lower half, or "" for none
  std::string description = {};
};
/// Of an early-bound call: its status, or the error information that goes with it.
Outcome EarlyOutcome(HRESULT status);
/// Late-bound calls as script engines make them: every argument is a variant by reference.
Outcome Call(IDispatch* object, const std::string& name, WORD flags,
             const std::vector<VARIANT*>& arguments, VARIANT* result);

// --- the types of its type library ---

/// The name of a type or a library, or of a type's member.
std::string Name(const auto& source, MEMBERID member = MEMBERID_NIL) {
  Variant name;
  name.vt = VT_BSTR;
  Require(source->GetDocumentation(member, &name.bstrVal, nullptr, nullptr, nullptr));
  return Utf8(name.bstrVal);
}

inline TYPEATTR AttributesOf(const ComPtr<ITypeInfo>& info) {
  TYPEATTR* lent = nullptr;
  Require(info->GetTypeAttr(&lent));
  const TYPEATTR attributes = *lent;
  info->ReleaseTypeAttr(lent);
  return attributes;
}
inline ComPtr<ITypeInfo> Referred(const ComPtr<ITypeInfo>& info, HREFTYPE reference) {
  ComPtr<ITypeInfo> referred;
  Require(info->GetRefTypeInfo(reference, referred.out()));
  return referred;
}
/// Of a dual interface, which the library lists by its dispatch side, -1 is the vtable side.
inline ComPtr<ITypeInfo> Implemented(const ComPtr<ITypeInfo>& info, int index) {
  HREFTYPE reference = 0;
  Require(info->GetRefTypeOfImplType(static_cast<UINT>(index), &reference));
  return Referred(info, reference);
}

/// An operation of a dual interface, whose description is lent for good.
struct Operation {
  ComPtr<ITypeInfo> info;  // the vtable side of its interface
  const FUNCDESC* description;
  std::string name = Name(info, description->memid);

  const FUNCDESC* operator->() const { return description; }
};
/// In vtable order.
inline std::vector<Operation> OperationsOf(const ComPtr<ITypeInfo>& info) {
  std::vector<Operation> operations;
  FUNCDESC* lent = nullptr;
  for (UINT i = 0; SUCCEEDED(info->GetFuncDesc(i, &lent)); ++i) operations.push_back({info, lent});
  return operations;
}
inline bool IsResult(const ELEMDESC& parameter) {
  return (parameter.paramdesc.wParamFlags & PARAMFLAG_FRETVAL) != 0;
}

inline ComPtr<ITypeLib> TypeLibrary() {
  ComPtr<ITypeLib> library;
  Require(LoadTypeLibEx(L"vardel.dll", REGKIND_NONE, library.out()));
  return library;
}

struct LibraryType {
  ComPtr<ITypeInfo> info;
  std::string name = Name(info);
  TYPEATTR attributes = AttributesOf(info);
  bool isInterface = attributes.typekind == TKIND_DISPATCH;
  std::vector<Operation> operations = OperationsOf(isInterface ? Implemented(info, -1) : info);
};
inline const std::vector<LibraryType>& LibraryTypes() {
  static const auto types = [] {
    std::vector<LibraryType> all;
    ComPtr<ITypeInfo> info;
    for (UINT i = 0; SUCCEEDED(TypeLibrary()->GetTypeInfo(i, info.out())); ++i) {
      all.push_back({std::move(info)});
    }
    return all;
  }();
  return types;
}

/// The classes that can be created, by their names.
inline std::map<std::string, CLSID> LibraryClasses() {
  std::map<std::string, CLSID> classes;
  for (const LibraryType& type : LibraryTypes()) {
    if (type.attributes.typekind == TKIND_COCLASS) classes[type.name] = type.attributes.guid;
  }
  return classes;
}

/// The interfaces that an object has, its own ones first.
inline std::vector<LibraryType> InterfacesOf(IDispatch* object) {
  std::vector<LibraryType> interfaces;
  for (const LibraryType& type : LibraryTypes()) {
    if (type.isInterface && Query(object, type.attributes.guid)) {
      interfaces.insert(interfaces.begin(), type);
    }
  }
  return interfaces;
}

}  // namespace vardel::server
