// What registration writes, that nothing of it stays, and classes created with and without it.

#include "tests/server/library_types.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <regex>
#include <set>

namespace vardel::server {
namespace {

/// As in registry_keys.txt: keys below Software\Classes, here in upper case, with their values.
using Keys = std::set<std::wstring>;

/// Says our name or one of our GUIDs, which all have the same end.
bool IsOurs(std::wstring text) {
  CharUpperW(text.data());
  return text.find(L"-93AD-4C1F-8B26-D04FA1E37C58}") != std::wstring::npos ||
         text.find(L"VARDEL") != std::wstring::npos;
}

/// Collects what is ours by its path or values. The keys of 32-bit programs count like all others:
/// some of them are the same ones.
void Collect(HKEY parent, const wchar_t* name, const std::wstring& path, Keys& keys) {
  HKEY key = nullptr;
  if (RegOpenKeyExW(parent, name, 0, KEY_READ | KEY_WOW64_64KEY, &key) != ERROR_SUCCESS) return;
  std::wstring line = path;
  for (const std::wstring valueName : {L"", L"ThreadingModel", L"Version"}) {
    wchar_t value[1024] = {};
    DWORD bytes = sizeof(value);
    if (RegGetValueW(key, nullptr, valueName.c_str(), RRF_RT_REG_SZ, nullptr, value, &bytes) ==
        ERROR_SUCCESS) {
      line += L" " + valueName + L"=" + value;
    }
  }
  if (IsOurs(line)) keys.insert(line);
  wchar_t child[256];
  for (DWORD i = 0; RegEnumKeyW(key, i, child, 256) == ERROR_SUCCESS; ++i) {
    CharUpperW(child);
    const bool isOtherView = std::wstring(child) == L"WOW6432NODE";
    Collect(key, child, isOtherView ? path : path + L"\\" + child, keys);
  }
  RegCloseKey(key);
}

/// The keys of the machine or the user, against those that it should have: what differs.
Keys Difference(HKEY root, const Keys& expected) {
  Keys found;
  Keys difference;
  Collect(root, L"Software\\Classes", L"", found);
  std::ranges::set_symmetric_difference(found, expected,
                                        std::inserter(difference, difference.end()));
  return difference;
}

std::wstring Text(REFGUID guid) {
  wchar_t text[40] = {};
  StringFromGUID2(guid, text, 40);
  return text;
}

/// The lines of registry_keys.txt for a type, or for the library, filled in.
Keys KeysOf(const std::wstring& kind, REFGUID id = {}, const std::string& name = {}) {
  const std::pair<const wchar_t*, std::wstring> fields[] = {
      {L"@FOLDER", std::filesystem::current_path().wstring()},
      {L"@PLATFORM", sizeof(void*) == 8 ? L"win64" : L"win32"},
      {L"@LIBRARY", Text(LIBID_Vardel)},
      {L"@ID", Text(id)},
      {L"@NAME", Wide(name)}};
  std::wifstream file(VARDEL_TESTS "/server/registry_keys.txt");
  Keys keys;
  for (std::wstring word, line; file >> word && std::getline(file >> std::ws, line);) {
    for (const auto& [field, value] : fields) {
      line = std::regex_replace(line, std::wregex(field), value);
    }
    CharUpperBuffW(line.data(), static_cast<DWORD>(std::min(line.find(L' '), line.size())));
    if (word == kind) keys.insert(line);
  }
  return keys;
}

void SetText(const std::wstring& key, const std::wstring& text, DWORD options = 0) {
  HKEY handle = nullptr;
  EXPECT_EQ(RegCreateKeyExW(HKEY_LOCAL_MACHINE, (L"Software\\Classes\\" + key).c_str(), 0, nullptr,
                            options, KEY_WRITE, nullptr, &handle, nullptr),
            ERROR_SUCCESS);
  RegSetValueExW(handle, nullptr, 0, REG_SZ, reinterpret_cast<const BYTE*>(text.c_str()),
                 static_cast<DWORD>((text.size() + 1) * sizeof(wchar_t)));
  RegCloseKey(handle);
}

class Registration : public testing::Test {
 protected:
  Registration() {
    CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
    for (const auto& [info, type] : LibraryTypes()) {
      const std::string name = Name(info);
      if (type.typekind == TKIND_DISPATCH) keys_.merge(KeysOf(L"interface", type.guid, name));
      if (type.typekind != TKIND_COCLASS) continue;
      keys_.merge(KeysOf(L"class", type.guid, name));
      names_.push_back(L"Vardel." + Wide(name));
    }
  }
  ~Registration() override { CoUninitialize(); }
  void SetUp() override {
    ASSERT_EQ(names_.size(), 19U);
    ExpectKeys({}, {});
  }
  void TearDown() override {
    EXPECT_EQ(Call("DllUnregisterServer"), S_OK);
    EXPECT_EQ(InstallForUser(FALSE), S_OK);
  }

  static void ExpectKeys(const Keys& ofMachine, const Keys& ofUser) {
    EXPECT_EQ(Difference(HKEY_LOCAL_MACHINE, ofMachine), Keys());
    EXPECT_EQ(Difference(HKEY_CURRENT_USER, ofUser), Keys());
  }
  void ExpectEachCreate(HRESULT expected) const {
    for (const auto& name : names_) {
      CLSID id{};
      ComPtr<IDispatch> object;
      HRESULT status = CLSIDFromProgID(name.c_str(), &id);
      if (SUCCEEDED(status)) {
        status = CoCreateInstance(id, nullptr, CLSCTX_INPROC_SERVER, IID_IDispatch,
                                  reinterpret_cast<void**>(object.out()));
      }
      EXPECT_EQ(status, expected) << name.c_str();
    }
  }
  HRESULT Call(const char* entry) const { return module_.Entry<HRESULT(WINAPI*)()>(entry)(); }
  HRESULT InstallForUser(BOOL install) const {
    return module_.Entry<HRESULT(WINAPI*)(BOOL, PCWSTR)>("DllInstall")(install, L"user");
  }

  ServerModule module_;
  std::vector<std::wstring> names_;
  Keys keys_ = KeysOf(L"library");  // what belongs into a registry
};

TEST_F(Registration, OfTheMachineMakesEveryClassCreatableByNameAndCanBeUndone) {
  ASSERT_EQ(Call("DllRegisterServer"), S_OK);
  ExpectKeys(keys_, {});
  ExpectEachCreate(S_OK);
  EXPECT_EQ(Call("DllRegisterServer"), S_OK);
  EXPECT_EQ(Call("DllUnregisterServer"), S_OK);
  ExpectKeys({}, {});
  ExpectEachCreate(CO_E_CLASSSTRING);
}

TEST_F(Registration, ThatFailsPartWayLeavesNothing) {
  HKEY blocked = nullptr;  // no lasting key can be made below one that does not last
  RegCreateKeyExW(HKEY_LOCAL_MACHINE, L"Software\\Classes\\Vardel.CCardTypes", 0, nullptr,
                  REG_OPTION_VOLATILE, KEY_WRITE, nullptr, &blocked, nullptr);
  RegCloseKey(blocked);
  EXPECT_EQ(Call("DllRegisterServer"), HRESULT_FROM_WIN32(ERROR_CHILD_MUST_BE_VOLATILE));
  ExpectKeys({L"\\VARDEL.CCARDTYPES"}, {});
}

TEST_F(Registration, ThatFailsPartWayLeavesAnEarlierOne) {
  ASSERT_EQ(Call("DllRegisterServer"), S_OK);
  Keys before;
  SetText(L"CLSID\\" + Text(CLSID_CCard) + L"\\InprocServer32", L"C:\\earlier\\vardel.dll");
  RegDeleteTreeW(HKEY_LOCAL_MACHINE, L"Software\\Classes\\Vardel.CCardTypes");
  SetText(L"Vardel.CCardTypes", L"blocks", REG_OPTION_VOLATILE);
  Collect(HKEY_LOCAL_MACHINE, L"Software\\Classes", L"", before);
  EXPECT_EQ(Call("DllRegisterServer"), HRESULT_FROM_WIN32(ERROR_CHILD_MUST_BE_VOLATILE));
  ExpectKeys(before, {});
  RegDeleteTreeW(HKEY_LOCAL_MACHINE, L"Software\\Classes\\Vardel.CCardTypes");
  EXPECT_EQ(Call("DllRegisterServer"), S_OK);
}

TEST_F(Registration, LeavesAnotherDllsClassAndAnotherVersionsLibrary) {
  ASSERT_EQ(Call("DllRegisterServer"), S_OK);
  const std::wstring key = L"CLSID\\" + Text(CLSID_CCard) + L"\\InprocServer32";
  const std::wstring library = L"TypeLib\\" + Text(LIBID_Vardel);
  SetText(key, L"C:\\other.dll");
  SetText(library + L"\\2.0", L"Vardel 2.0");
  EXPECT_EQ(Call("DllUnregisterServer"), S_OK);
  Keys left = {L"\\TYPELIB\\" + Text(LIBID_Vardel),
               L"\\TYPELIB\\" + Text(LIBID_Vardel) + L"\\2.0 =Vardel 2.0"};
  for (const auto& line : KeysOf(L"class", CLSID_CCard, "CCard")) {
    left.insert(std::regex_replace(line, std::wregex(L"=[^=]*vardel\\.dll"), L"=C:\\other.dll"));
  }
  ExpectKeys(left, {});
  RegDeleteTreeW(HKEY_LOCAL_MACHINE, (L"Software\\Classes\\" + library).c_str());
  EXPECT_EQ(Call("DllRegisterServer"), S_OK) << "so that all can be unregistered";
}

TEST_F(Registration, OfTheUserLeavesTheMachineAlone) {
  ASSERT_EQ(InstallForUser(TRUE), S_OK);
  ExpectKeys({}, keys_);
  EXPECT_EQ(InstallForUser(FALSE), S_OK);
  ExpectKeys({}, {});
}

TEST_F(Registration, IsNotNeededWithTheManifest) {
  ExpectEachCreate(CO_E_CLASSSTRING);
  ACTCTXW source{};
  source.cbSize = sizeof(source);
  source.lpSource = L"Vardel.Server.manifest";
  const HANDLE context = CreateActCtxW(&source);
  ULONG_PTR cookie = 0;
  ASSERT_TRUE(context != INVALID_HANDLE_VALUE && ActivateActCtx(context, &cookie) != FALSE);
  ExpectEachCreate(S_OK);
  DeactivateActCtx(0, cookie);
  ReleaseActCtx(context);
}

}  // namespace
}  // namespace vardel::server
