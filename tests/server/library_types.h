#pragma once

#include "tests/server/server.h"

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
    TYPEATTR* lent = nullptr;
    Require(library->GetTypeInfo(i++, info.out()));
    Require(info->GetTypeAttr(&lent));
    attributes = *lent;
    info->ReleaseTypeAttr(lent);
  }
  return types;
}

}  // namespace vardel::server
