#include <vardel/server/registration.h>
#include <vardel/server/type_table.h>

#include <exception>
#include <functional>

namespace vardel::server {
namespace {

#ifdef _WIN64
constexpr wchar_t kPlatform[] = L"win64";
constexpr wchar_t kOtherPlatform[] = L"win32";
constexpr REGSAM kOtherView = KEY_WOW64_32KEY;
#else
constexpr wchar_t kPlatform[] = L"win32";
constexpr wchar_t kOtherPlatform[] = L"win64";
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

  void Set(const std::wstring& key, const wchar_t* name, const std::wstring& value) const {
    HKEY handle = nullptr;
    LSTATUS status = RegCreateKeyExW(root_, Path(key).c_str(), 0, nullptr, 0, KEY_WRITE, nullptr,
                                     &handle, nullptr);
    if (status == ERROR_SUCCESS) {
      status = RegSetValueExW(handle, name, 0, REG_SZ, reinterpret_cast<const BYTE*>(value.c_str()),
                              static_cast<DWORD>((value.size() + 1) * sizeof(wchar_t)));
      RegCloseKey(handle);
    }
    if (status != ERROR_SUCCESS) throw RegistryFailure{HRESULT_FROM_WIN32(status)};
  }

  bool Exists(const std::wstring& key, REGSAM view = 0) const {
    HKEY handle = nullptr;
    const LSTATUS status = RegOpenKeyExW(root_, Path(key).c_str(), 0, KEY_READ | view, &handle);
    if (status == ERROR_SUCCESS) RegCloseKey(handle);
    return status == ERROR_SUCCESS;
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

 private:
  static std::wstring Path(const std::wstring& key) { return L"Software\\Classes\\" + key; }

  HKEY root_;
  HRESULT failure_ = S_OK;
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

void WriteKeys(const Classes& classes) {
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
      const std::wstring classId = Text(type.guid);
      const std::wstring key = L"CLSID\\" + classId;
      classes.Set(key, nullptr, progId);
      classes.Set(key + L"\\InprocServer32", nullptr, path);
      classes.Set(key + L"\\InprocServer32", L"ThreadingModel", L"Apartment");
      classes.Set(key + L"\\ProgID", nullptr, progId);
      classes.Set(key + L"\\TypeLib", nullptr, libraryId);
      classes.Set(key + L"\\Programmable", nullptr, L"");
      classes.Set(progId, nullptr, progId);
      classes.Set(progId + L"\\CLSID", nullptr, classId);
    }
  });
}

void RemoveKeys(Classes classes) {
  const auto library = LoadTypeLibrary();
  const std::wstring versions = L"TypeLib\\" + Text(LibraryGuid(library.get()));
  const std::wstring platforms = versions + L"\\1.0\\0\\";
  classes.Remove(platforms + kPlatform);
  if (!classes.Exists(platforms + kOtherPlatform)) classes.Remove(versions);

  ForEachType(library.get(), [&](const std::wstring& name, const TYPEATTR& type) {
    if (type.typekind == TKIND_DISPATCH || type.typekind == TKIND_INTERFACE) {
      classes.Remove(L"Interface\\" + Text(type.guid));
    } else if (type.typekind == TKIND_COCLASS) {
      const std::wstring key = L"CLSID\\" + Text(type.guid);
      classes.Remove(key);
      // Class names are common to both word sizes, class keys are not.
      if (!classes.Exists(key, kOtherView)) classes.Remove(L"Vardel." + name);
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
  const HRESULT status = Run([&] { WriteKeys(Classes(scope)); });
  if (FAILED(status)) Unregister(scope);
  return status;
}

HRESULT Unregister(Scope scope) noexcept {
  return Run([&] { RemoveKeys(Classes(scope)); });
}

}  // namespace vardel::server
