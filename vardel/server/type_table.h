#pragma once

#include <vardel/server/com.h>

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace vardel::server {

/// The embedded type library, loaded with the first call and kept. Throws std::runtime_error where
/// it cannot be loaded.
ComPtr<ITypeLib> LoadTypeLibrary();
/// Lets go of it; the next call loads it again.
void DropTypeLibrary();
/// A type of the library.
ComPtr<ITypeInfo> LoadTypeInfo(REFGUID guid);
/// The same for a caller outside; null and a status where the library cannot be loaded.
HRESULT GiveTypeInfo(REFGUID guid, ITypeInfo** info) noexcept;
/// A class of the library, by its name.
ComPtr<ITypeInfo> LoadClassInfo(std::wstring_view name);

/// As many parameters as a member may have.
inline constexpr std::size_t kMaxParameters = 4;

/// A parameter, or a result, as a late-bound call sees it.
struct Parameter {
  std::wstring name;
  VARTYPE type = VT_EMPTY;  // enumerations are VT_I4, interfaces VT_DISPATCH, records VT_RECORD
  bool isByRef = false;
  bool isOptional = false;
  GUID guid{};  // of an interface or a record
};

struct Member {
  std::wstring name;
  DISPID id = DISPID_UNKNOWN;
  INVOKEKIND kind = INVOKE_FUNC;
  std::size_t vtableOffset = 0;  // in bytes
  std::vector<Parameter> parameters;
  Parameter result;          // VT_EMPTY for none
  bool takesDouble = false;  // by value, and nothing else
};

/// The members of one dual interface.
class TypeTable {
 public:
  explicit TypeTable(REFIID iid);

  /// By name, in any case; null when there is none.
  const Member* Find(std::wstring_view name) const;
  /// By number, of a kind that the flags of a call ask for; null when there is none.
  const Member* Find(DISPID id, WORD flags) const;

 private:
  std::vector<Member> members_;  // by number
  std::vector<const Member*> byName_;
};

/// Below, at or above 0 as the names are in the order of names, which knows no case.
int CompareNames(std::wstring_view left, std::wstring_view right);
bool EqualNames(std::wstring_view left, std::wstring_view right);

}  // namespace vardel::server
