#pragma once

#include "tests/server/server.h"

#include <algorithm>
#include <deque>
#include <functional>
#include <map>
#include <vector>

/// The types of the DLL's type library, and calls as it describes them.
namespace vardel::server {

inline void Require(HRESULT status) {
  if (FAILED(status)) throw std::runtime_error("a call failed that should not");
}

/// The name of a type or a library, or of a type's member.
std::string Name(const auto& source, MEMBERID member = MEMBERID_NIL) {
  BSTR name = nullptr;
  Require(source->GetDocumentation(member, &name, nullptr, nullptr, nullptr));
  const std::string text = Utf8(name);
  SysFreeString(name);
  return text;
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

struct LibraryType {
  ComPtr<ITypeInfo> info;
  TYPEATTR attributes{};
};

inline ComPtr<ITypeLib> TypeLibrary() {
  ComPtr<ITypeLib> library;
  Require(LoadTypeLibEx(L"vardel.dll", REGKIND_NONE, library.out()));
  return library;
}

inline std::vector<LibraryType> LibraryTypes() {
  const auto library = TypeLibrary();
  std::vector<LibraryType> types(library->GetTypeInfoCount());
  for (UINT i = 0; auto& [info, attributes] : types) {
    Require(library->GetTypeInfo(i++, info.out()));
    attributes = AttributesOf(info);
  }
  return types;
}

/// The classes that can be created, by their names.
inline std::map<std::string, CLSID> LibraryClasses() {
  std::map<std::string, CLSID> classes;
  for (const auto& [info, attributes] : LibraryTypes()) {
    if (attributes.typekind == TKIND_COCLASS) classes[Name(info)] = attributes.guid;
  }
  return classes;
}

/// A dual interface of the type library, by its vtable side.
struct DualInterface {
  std::string name;
  IID id;
  ComPtr<ITypeInfo> info;
};
/// Those that an object has, its own ones first.
inline std::vector<DualInterface> InterfacesOf(IDispatch* object) {
  static const std::vector<LibraryType> types = LibraryTypes();
  std::vector<DualInterface> interfaces;
  for (const auto& [info, attributes] : types) {
    ComPtr<IUnknown> has;
    if (attributes.typekind != TKIND_DISPATCH) continue;
    object->QueryInterface(attributes.guid, reinterpret_cast<void**>(has.out()));
    if (!has) continue;
    interfaces.insert(interfaces.begin(), {Name(info), attributes.guid, Implemented(info, -1)});
  }
  return interfaces;
}

/// Calls `visit` with each operation and its name, in vtable order.
void ForEachOperation(const DualInterface& dual, const auto& visit) {
  FUNCDESC* operation = nullptr;
  for (UINT i = 0; SUCCEEDED(dual.info->GetFuncDesc(i, &operation)); ++i) {
    visit(*operation, Name(dual.info, operation->memid));
    dual.info->ReleaseFuncDesc(operation);
  }
}

/// The same for all interfaces of an object.
void ForEachOperation(IDispatch* object, const auto& visit) {
  for (const DualInterface& dual : InterfacesOf(object)) {
    ForEachOperation(
        dual, [&](const FUNCDESC& each, const std::string& name) { visit(dual, each, name); });
  }
}

inline bool IsResult(const ELEMDESC& parameter) {
  return (parameter.paramdesc.wParamFlags & PARAMFLAG_FRETVAL) != 0;
}

/// Calls an operation through its vtable entry, as compiled hosts do. Of the arguments, one for
/// each parameter but the result, a missing one stands for a null pointer; a record is an array of
/// bytes, here and in the result. Without `result` that pointer is null too.
inline HRESULT CallVtable(IDispatch* object, const DualInterface& dual, const FUNCDESC& operation,
                          const std::vector<VARIANT*>& arguments, VARIANT* result) {
  const auto count = static_cast<std::size_t>(operation.cParams);
  std::deque<Variant> passed(count), pointed(count);
  std::vector<VARTYPE> types;
  std::vector<VARIANT*> places;
  ::CardDataStruct record{};
  VARTYPE resultType = VT_EMPTY;
  for (std::size_t i = 0; i < count; ++i) {
    const ELEMDESC& parameter = operation.lprgelemdescParam[i];
    const TYPEDESC* type = &parameter.tdesc;
    int pointers = 0;
    for (; type->vt == VT_PTR; type = type->lptdesc) ++pointers;
    VARTYPE vt = type->vt;
    if (vt == VT_USERDEFINED) {
      const TYPEKIND kind = AttributesOf(Referred(dual.info, type->hreftype)).typekind;
      vt = kind == TKIND_ENUM ? VT_I4 : kind == TKIND_RECORD ? VT_RECORD : VT_DISPATCH;
      if (vt == VT_DISPATCH) --pointers;
    }
    Variant& place = passed[i];
    place.vt = vt;
    if (pointers != 0) place.vt = sizeof(void*) == 8 ? VT_I8 : VT_I4;
    if (IsResult(parameter)) {
      resultType = vt;
      if (result != nullptr) place.byref = &result->byref;
      if (result != nullptr && vt == VT_VARIANT) place.byref = result;
      if (result != nullptr && vt == VT_RECORD) place.byref = record.Bytes;
    } else if (i < arguments.size() && arguments[i]->vt == (VT_ARRAY | VT_UI1)) {
      place.byref = arguments[i]->parray->pvData;
    } else if (i < arguments.size() && arguments[i]->vt != VT_ERROR) {
      Require(VariantChangeType(&pointed[i], arguments[i], 0, vt));
      if (pointers == 0) Require(VariantCopy(&place, &pointed[i]));
      if (pointers != 0) place.byref = &pointed[i].byref;
    }
    types.push_back(place.vt);
    places.push_back(&place);
  }
  ComPtr<IUnknown> instance;
  VARIANT status{};
  Require(object->QueryInterface(dual.id, reinterpret_cast<void**>(instance.out())));
  Require(DispCallFunc(instance.get(), static_cast<ULONG_PTR>(operation.oVft), operation.callconv,
                       VT_ERROR, static_cast<UINT>(places.size()), types.data(), places.data(),
                       &status));
  if (FAILED(status.scode) || result == nullptr || resultType == VT_VARIANT) return status.scode;
  result->vt = resultType;
  if (resultType == VT_RECORD) {
    result->vt = VT_ARRAY | VT_UI1;
    result->parray = SafeArrayCreateVector(VT_UI1, 0, sizeof(record.Bytes));
    std::ranges::copy(record.Bytes, static_cast<std::uint8_t*>(result->parray->pvData));
  }
  return status.scode;
}

}  // namespace vardel::server
