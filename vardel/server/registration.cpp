#include <vardel/server/registration.h>
#include <vardel/server/type_table.h>

#include <exception>
#include <functional>
#include <memory>
#include <optional>
#include <set>
#include <vector>

namespace vardel::server {
namespace {

#ifdef _WIN64
constexpr wchar_t kPlatform[] = L"win64";
constexpr REGSAM kOtherView = KEY_WOW64_32KEY;
#else
constexpr wchar_t kPlatform[] = L"win32";
constexpr REGSAM kOtherView = KEY_WOW64_64KEY;
#endif

/// Marshals a dual interface by its type library.
constexpr wchar_t kTypeLibraryMarshaler[] = L"{00020424-0000-0000-C000-000000000046}";

struct RegistryFailure {
  HRESULT status;
};

std::wstring Text(REFGUID guid) {
  wchar_t text[40];
  return {text, static_cast<std::size_t>(StringFromGUID2(guid, text, 40) - 1)};
}

class Classes {
 public:
  explicit Classes(Scope scope)
      : root_(scope == Scope::Machine ? HKEY_LOCAL_MACHINE : HKEY_CURRENT_USER) {}

  /// Sets a value; `name` is null for the default one. Undo takes it back.
  void Set(const std::wstring& key, const wchar_t* name, const std::wstring& value) {
    // Step by step, to know which keys are new.
    for (std::size_t end = key.find(L'\\'); end != std::wstring::npos;
         end = key.find(L'\\', end + 1)) {
      const std::wstring parent = key.substr(0, end);
      if (parents_.insert(parent).second) Create(parent);
    }
    const Key handle = Create(key);
    Change& change = changes_.emplace_back(Change{key, name, true});
    DWORD bytes = 0;
    if (RegQueryValueExW(handle.get(), name, nullptr, &change.type, nullptr, &bytes) ==
        ERROR_SUCCESS) {
      change.before.emplace(bytes);
      Require(
          RegQueryValueExW(handle.get(), name, nullptr, nullptr, change.before->data(), &bytes));
    }
    Require(RegSetValueExW(handle.get(), name, 0, REG_SZ,
                           reinterpret_cast<const BYTE*>(value.c_str()),
                           static_cast<DWORD>((value.size() + 1) * sizeof(wchar_t))));
  }

  /// A text; nothing where there is none.
  std::optional<std::wstring> Get(const std::wstring& key, const wchar_t* name) const {
    const Key handle = Open(key, KEY_READ);
    DWORD bytes = 0;
    if (handle == nullptr || RegGetValueW(handle.get(), nullptr, name, RRF_RT_REG_SZ, nullptr,
                                          nullptr, &bytes) != ERROR_SUCCESS) {
      return std::nullopt;
    }
    std::wstring text(bytes / sizeof(wchar_t), L'\0');
    Require(RegGetValueW(handle.get(), nullptr, name, RRF_RT_REG_SZ, nullptr, text.data(), &bytes));
    text.resize(wcslen(text.c_str()));
    return text;
  }
  /// Whether the key's text is the given one, or there is no such text.
  bool IsOrLacks(const std::wstring& key, const std::wstring& text,
                 const wchar_t* name = nullptr) const {
    const auto found = Get(key, name);
    return !found || EqualNames(*found, text);
  }

  bool Exists(const std::wstring& key, REGSAM view = 0) const {
    return Open(key, KEY_READ | view) != nullptr;
  }
  bool HasKeysBelow(const std::wstring& key) const {
    const Key handle = Open(key, KEY_READ);
    wchar_t name[256];
    return handle != nullptr && RegEnumKeyW(handle.get(), 0, name, 256) == ERROR_SUCCESS;
  }

  /// With all below it; a key that is not there is as good. One that stays does not keep the
  /// others.
  void Remove(const std::wstring& key) {
    const LSTATUS status = RegDeleteTreeW(root_, Path(key).c_str());
    if (status != ERROR_SUCCESS && status != ERROR_FILE_NOT_FOUND) {
      failure_ = HRESULT_FROM_WIN32(status);
    }
  }
  void RequireAllRemoved() const {
    if (FAILED(failure_)) throw RegistryFailure{failure_};
  }

  /// Takes back, as far as it can, what was set.
  void Undo() {
    for (; !changes_.empty(); changes_.pop_back()) {
      const Change& change = changes_.back();
      if (!change.isValue) {
        RegDeleteKeyW(root_, Path(change.key).c_str());
        continue;
      }
      const Key handle = Open(change.key, KEY_WRITE);
      if (handle == nullptr) continue;
      if (change.before) {
        RegSetValueExW(handle.get(), change.name, 0, change.type, change.before->data(),
                       static_cast<DWORD>(change.before->size()));
      } else {
        RegDeleteValueW(handle.get(), change.name);
      }
    }
  }

 private:
  struct CloseKey {
    void operator()(HKEY key) const { RegCloseKey(key); }
  };
  using Key = std::unique_ptr<std::remove_pointer_t<HKEY>, CloseKey>;
  /// A new key, or a value that was set.
  struct Change {
    std::wstring key;
    const wchar_t* name = nullptr;
    bool isValue = false;
    DWORD type = REG_NONE;
    std::optional<std::vector<BYTE>> before = {};
  };

  static std::wstring Path(const std::wstring& key) { return L"Software\\Classes\\" + key; }
  static void Require(LSTATUS status) {
    if (status != ERROR_SUCCESS) throw RegistryFailure{HRESULT_FROM_WIN32(status)};
  }
  Key Open(const std::wstring& key, REGSAM access) const {
    HKEY handle = nullptr;
    RegOpenKeyExW(root_, Path(key).c_str(), 0, access, &handle);
    return Key(handle);
  }
  Key Create(const std::wstring& key) {
    HKEY handle = nullptr;
    DWORD disposition = 0;
    Require(RegCreateKeyExW(root_, Path(key).c_str(), 0, nullptr, 0, KEY_READ | KEY_WRITE, nullptr,
                            &handle, &disposition));
    Key created(handle);
    if (disposition == REG_CREATED_NEW_KEY) changes_.push_back(Change{key});
    return created;
  }

  HKEY root_;
  HRESULT failure_ = S_OK;
  std::vector<Change> changes_;
  std::set<std::wstring> parents_;  // that are there
};

/// Visits the types of the library.
void ForEachType(ITypeLib* library,
                 const std::function<void(const std::wstring& name, const TYPEATTR&)>& visit) {
  for (UINT i = 0; i < library->GetTypeInfoCount(); ++i) {
    ComPtr<ITypeInfo> info;
    TYPEATTR* attributes = nullptr;
    BSTR name = nullptr;
    if (FAILED(library->GetTypeInfo(i, info.out())) ||
        FAILED(info->GetDocumentation(MEMBERID_NIL, &name, nullptr, nullptr, nullptr)) ||
        FAILED(info->GetTypeAttr(&attributes))) {
      throw RegistryFailure{TYPE_E_CANTLOADLIBRARY};
    }
    const std::wstring text = name;
    SysFreeString(name);
    visit(text, *attributes);
    info->ReleaseTypeAttr(attributes);
  }
}

GUID LibraryGuid(ITypeLib* library) {
  TLIBATTR* attributes = nullptr;
  if (FAILED(library->GetLibAttr(&attributes))) throw RegistryFailure{TYPE_E_CANTLOADLIBRARY};
  const GUID guid = attributes->guid;
  library->ReleaseTLibAttr(attributes);
  return guid;
}

void WriteKeys(Classes& classes) {
  const auto library = LoadTypeLibrary();
  const std::wstring libraryId = Text(LibraryGuid(library.get()));
  const std::wstring path = ModulePath();
  const std::wstring folder = path.substr(0, path.find_last_of(L'\\'));

  const std::wstring version = L"TypeLib\\" + libraryId + L"\\1.0";
  classes.Set(version, nullptr, L"Vardel 1.0 Type Library");
  classes.Set(version + L"\\0\\" + kPlatform, nullptr, path);
  classes.Set(version + L"\\FLAGS", nullptr, L"0");
  classes.Set(version + L"\\HELPDIR", nullptr, folder);

  ForEachType(library.get(), [&](const std::wstring& name, const TYPEATTR& type) {
    if (type.typekind == TKIND_DISPATCH || type.typekind == TKIND_INTERFACE) {
      const std::wstring key = L"Interface\\" + Text(type.guid);
      classes.Set(key, nullptr, name);
      classes.Set(key + L"\\ProxyStubClsid32", nullptr, kTypeLibraryMarshaler);
      classes.Set(key + L"\\TypeLib", nullptr, libraryId);
      classes.Set(key + L"\\TypeLib", L"Version", L"1.0");
    } else if (type.typekind == TKIND_COCLASS) {
      const std::wstring progId = L"Vardel." + name;
      const std::wstring versionedProgId = progId + L".1";
      const std::wstring classId = Text(type.guid);
      const std::wstring key = L"CLSID\\" + classId;
      classes.Set(key, nullptr, progId);
      classes.Set(key + L"\\InprocServer32", nullptr, path);
      classes.Set(key + L"\\InprocServer32", L"ThreadingModel", L"Apartment");
      classes.Set(key + L"\\ProgID", nullptr, versionedProgId);
      classes.Set(key + L"\\VersionIndependentProgID", nullptr, progId);
      classes.Set(key + L"\\TypeLib", nullptr, libraryId);
      classes.Set(key + L"\\Programmable", nullptr, L"");
      classes.Set(progId, nullptr, progId);
      classes.Set(progId + L"\\CLSID", nullptr, classId);
      classes.Set(progId + L"\\CurVer", nullptr, versionedProgId);
      classes.Set(versionedProgId, nullptr, progId);
      classes.Set(versionedProgId + L"\\CLSID", nullptr, classId);
    }
  });
}

/// Removes what is ours: what names another DLL, another version or another class stays, and so
/// does what the other word size has in common with us.
void RemoveKeys(Classes classes) {
  const auto library = LoadTypeLibrary();
  const std::wstring libraryId = Text(LibraryGuid(library.get()));
  const std::wstring path = ModulePath();

  const std::wstring versions = L"TypeLib\\" + libraryId;
  const std::wstring languages = versions + L"\\1.0";
  const std::wstring platforms = languages + L"\\0";
  const bool isLibraryOurs = classes.IsOrLacks(platforms + L"\\" + kPlatform, path);
  if (isLibraryOurs) {
    classes.Remove(platforms + L"\\" + kPlatform);
    if (!classes.HasKeysBelow(platforms)) classes.Remove(languages);
    if (!classes.HasKeysBelow(versions)) classes.Remove(versions);
  }

  ForEachType(library.get(), [&](const std::wstring& name, const TYPEATTR& type) {
    if (type.typekind == TKIND_DISPATCH || type.typekind == TKIND_INTERFACE) {
      const std::wstring key = L"Interface\\" + Text(type.guid);
      if (isLibraryOurs && classes.IsOrLacks(key + L"\\TypeLib", L"1.0", L"Version")) {
        classes.Remove(key);
      }
    } else if (type.typekind == TKIND_COCLASS) {
      const std::wstring classId = Text(type.guid);
      const std::wstring key = L"CLSID\\" + classId;
      if (!classes.IsOrLacks(key + L"\\InprocServer32", path)) return;
      classes.Remove(key);
      // Class names are common to both word sizes, class keys are not.
      if (classes.Exists(key, kOtherView)) return;
      const std::wstring progId = L"Vardel." + name;
      const std::wstring versionedProgId = progId + L".1";
      const auto removeName = [&](const std::wstring& each) {
        if (classes.IsOrLacks(each + L"\\CLSID", classId)) classes.Remove(each);
      };
      if (classes.IsOrLacks(progId + L"\\CurVer", versionedProgId)) removeName(progId);
      removeName(versionedProgId);
    }
  });
  classes.RequireAllRemoved();
}

template <class F>
HRESULT Run(F&& change) noexcept {
  try {
    change();
    return S_OK;
  } catch (const RegistryFailure& failure) {
    return failure.status;
  } catch (const std::bad_alloc&) {
    return E_OUTOFMEMORY;
  } catch (const std::exception&) {
    return TYPE_E_CANTLOADLIBRARY;
  }
}

}  // namespace

HRESULT Register(Scope scope) noexcept {
  Classes classes(scope);
  const HRESULT status = Run([&] { WriteKeys(classes); });
  if (FAILED(status)) Run([&] { classes.Undo(); });
  return status;
}

HRESULT Unregister(Scope scope) noexcept {
  return Run([&] { RemoveKeys(Classes(scope)); });
}

}  // namespace vardel::server
