#include "tests/server/server.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <iterator>
#include <map>
#include <set>

// What registration writes, that nothing of it stays, and classes created with and without it.

namespace vardel::server {
namespace {

/// Paths below Software\Classes, in upper case, and what stands there: default value and others.
using Keys = std::map<std::wstring, std::wstring>;

constexpr wchar_t kMarshaler[] = L"{00020424-0000-0000-C000-000000000046}";
constexpr const wchar_t* kPlatform = sizeof(void*) == 8 ? L"WIN64" : L"WIN32";

std::wstring Upper(std::wstring text) {
  CharUpperW(text.data());
  return text;
}

std::wstring Text(REFGUID guid) {
  wchar_t text[40] = {};
  StringFromGUID2(guid, text, 40);
  return text;
}

/// Says our name or one of our GUIDs, which all have the same end.
bool IsOurs(const std::wstring& text) {
  return Upper(text).find(L"-93AD-4C1F-8B26-D04FA1E37C58}") != std::wstring::npos ||
         Upper(text).find(L"VARDEL") != std::wstring::npos;
}

/// Collects what is ours by its name or values, and all below. The keys of 32-bit programs count
/// like all others: some of them are the same ones.
void Collect(HKEY parent, const wchar_t* name, const std::wstring& path, bool isOurs, Keys& keys) {
  HKEY key = nullptr;
  if (RegOpenKeyExW(parent, name, 0, KEY_READ | KEY_WOW64_64KEY, &key) != ERROR_SUCCESS) return;
  std::wstring values;
  for (const wchar_t* valueName : {L"", L"ThreadingModel", L"Version"}) {
    wchar_t value[1024] = {};
    DWORD bytes = sizeof(value);
    RegGetValueW(key, nullptr, valueName, RRF_RT_REG_SZ, nullptr, value, &bytes);
    values += value;
  }
  if (isOurs || IsOurs(values)) keys[path] = values;
  wchar_t child[256];
  for (DWORD i = 0, size = 256;
       RegEnumKeyExW(key, i, child, &size, nullptr, nullptr, nullptr, nullptr) == ERROR_SUCCESS;
       ++i, size = 256) {
    const bool isOtherView = Upper(child) == L"WOW6432NODE";
    Collect(key, child, isOtherView ? path : path + L"\\" + Upper(child), isOurs || IsOurs(child),
            keys);
  }
  RegCloseKey(key);
}

Keys OurKeys(HKEY root) {
  Keys keys;
  Collect(root, L"Software\\Classes", L"", false, keys);
  return keys;
}

/// What differs or stands in one of them alone.
Keys Difference(const Keys& left, const Keys& right) {
  Keys keys;
  std::ranges::set_symmetric_difference(left, right, std::inserter(keys, keys.end()));
  return keys;
}

HRESULT Create(REFCLSID id) {
  ComPtr<IDispatch> object;
  return CoCreateInstance(id, nullptr, CLSCTX_INPROC_SERVER, IID_IDispatch,
                          reinterpret_cast<void**>(object.out()));
}
HRESULT Create(const std::wstring& name) {
  CLSID id{};
  return FAILED(CLSIDFromProgID(name.c_str(), &id)) ? CO_E_CLASSSTRING : Create(id);
}

class Registration : public testing::Test {
 protected:
  Registration() {
    CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
    std::wstring path(MAX_PATH, L'\0');
    path.resize(GetModuleFileNameW(GetModuleHandleW(L"vardel.dll"), path.data(), MAX_PATH));
    const std::wstring id = Text(LIBID_Vardel);
    const std::wstring version = L"\\TYPELIB\\" + id + L"\\1.0";
    keys_ = {
        {L"\\TYPELIB\\" + id, L""},   {version, L"Vardel 1.0 Type Library"},
        {version + L"\\0", L""},      {version + L"\\0\\" + kPlatform, path},
        {version + L"\\FLAGS", L"0"}, {version + L"\\HELPDIR", path.substr(0, path.rfind(L'\\'))}};
    ComPtr<ITypeLib> library;
    LoadTypeLibEx(path.c_str(), REGKIND_NONE, library.out());
    for (UINT i = 0; i < library->GetTypeInfoCount(); ++i) {
      ComPtr<ITypeInfo> info;
      TYPEATTR* type = nullptr;
      BSTR name = nullptr;
      library->GetTypeInfo(i, info.out());
      info->GetTypeAttr(&type);
      library->GetDocumentation(static_cast<INT>(i), &name, nullptr, nullptr, nullptr);
      const std::wstring progId = std::wstring(L"Vardel.") + name;
      if (type->typekind == TKIND_COCLASS) {
        const std::wstring key = L"\\CLSID\\" + Text(type->guid);
        names_.insert(progId);
        keys_.insert({{key, progId},
                      {key + L"\\PROGID", progId},
                      {key + L"\\PROGRAMMABLE", L""},
                      {key + L"\\INPROCSERVER32", path + L"Apartment"},
                      {key + L"\\TYPELIB", id},
                      {L"\\" + Upper(progId), progId},
                      {L"\\" + Upper(progId) + L"\\CLSID", Text(type->guid)}});
      } else if (type->typekind == TKIND_DISPATCH) {
        const std::wstring key = L"\\INTERFACE\\" + Text(type->guid);
        keys_.insert({{key, name},
                      {key + L"\\PROXYSTUBCLSID32", kMarshaler},
                      {key + L"\\TYPELIB", id + L"1.0"}});
      }
      SysFreeString(name);
      info->ReleaseTypeAttr(type);
    }
  }
  ~Registration() override { CoUninitialize(); }
  void SetUp() override {
    ASSERT_EQ(names_.size(), 19U);
    ASSERT_EQ(OurKeys(HKEY_LOCAL_MACHINE), Keys());
    ASSERT_EQ(OurKeys(HKEY_CURRENT_USER), Keys());
  }
  void TearDown() override {
    EXPECT_EQ(Call("DllUnregisterServer"), S_OK);
    EXPECT_EQ(InstallForUser(FALSE), S_OK);
  }

  HRESULT Call(const char* entry) const { return module_.Entry<HRESULT(WINAPI*)()>(entry)(); }
  HRESULT InstallForUser(BOOL install) const {
    return module_.Entry<HRESULT(WINAPI*)(BOOL, PCWSTR)>("DllInstall")(install, L"user");
  }

  ServerModule module_;
  std::set<std::wstring> names_;
  Keys keys_;  // what belongs into a registry
};

TEST_F(Registration, OfTheMachineMakesEveryClassCreatableByNameAndCanBeUndone) {
  ASSERT_EQ(Call("DllRegisterServer"), S_OK);
  EXPECT_EQ(Difference(OurKeys(HKEY_LOCAL_MACHINE), keys_), Keys());
  EXPECT_EQ(OurKeys(HKEY_CURRENT_USER), Keys());
  for (const auto& name : names_) EXPECT_EQ(Create(name), S_OK) << name.c_str();
  EXPECT_EQ(Call("DllRegisterServer"), S_OK);
  EXPECT_EQ(Call("DllUnregisterServer"), S_OK);
  EXPECT_EQ(OurKeys(HKEY_LOCAL_MACHINE), Keys());
  EXPECT_EQ(Create(L"Vardel.CCard"), CO_E_CLASSSTRING);
}

TEST_F(Registration, ThatFailsPartWayLeavesNothing) {
  HKEY blocked = nullptr;  // no lasting key can be made below one that does not last
  RegCreateKeyExW(HKEY_LOCAL_MACHINE, L"Software\\Classes\\Vardel.CCardTypes", 0, nullptr,
                  REG_OPTION_VOLATILE, KEY_WRITE, nullptr, &blocked, nullptr);
  RegCloseKey(blocked);
  EXPECT_EQ(Call("DllRegisterServer"), HRESULT_FROM_WIN32(ERROR_CHILD_MUST_BE_VOLATILE));
  EXPECT_EQ(OurKeys(HKEY_LOCAL_MACHINE), Keys());
}

TEST_F(Registration, OfTheUserLeavesTheMachineAlone) {
  ASSERT_EQ(InstallForUser(TRUE), S_OK);
  EXPECT_EQ(Difference(OurKeys(HKEY_CURRENT_USER), keys_), Keys());
  EXPECT_EQ(OurKeys(HKEY_LOCAL_MACHINE), Keys());
  EXPECT_EQ(InstallForUser(FALSE), S_OK);
  EXPECT_EQ(OurKeys(HKEY_CURRENT_USER), Keys());
}

TEST_F(Registration, IsNotNeededWithTheManifest) {
  EXPECT_EQ(Create(CLSID_CCard), REGDB_E_CLASSNOTREG);
  ACTCTXW source{};
  source.cbSize = sizeof(source);
  source.lpSource = L"Vardel.Server.manifest";
  const HANDLE context = CreateActCtxW(&source);
  ULONG_PTR cookie = 0;
  ASSERT_TRUE(context != INVALID_HANDLE_VALUE && ActivateActCtx(context, &cookie) != FALSE);
  EXPECT_EQ(Create(CLSID_CCard), S_OK);
  for (const auto& name : names_) EXPECT_EQ(Create(name), S_OK) << name.c_str();
  DeactivateActCtx(0, cookie);
  ReleaseActCtx(context);
}

}  // namespace
}  // namespace vardel::server
