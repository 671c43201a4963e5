#pragma once

#include "tests/server/server.h"

#include <map>
#include <vector>

/// The types of the DLL's type library.
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

}  // namespace vardel::server
