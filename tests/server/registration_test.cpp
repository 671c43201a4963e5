// What registration writes, and that nothing of it stays. The scripts use it.

#include "tests/server/server.h"

#include <gtest/gtest.h>

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
  return text.find(L"-93AD-4C1F-8B26-D04FA1E37C58}") != text.npos ||
         text.find(L"VARDEL") != text.npos;
}

/// What is ours by its path or values. The keys of 32-bit programs count like all others: some of
/// them are the same ones.
Keys Collected(HKEY parent, const wchar_t* name = L"Software\\Classes",
               const std::wstring& path = {}) {
  HKEY key = nullptr;
  if (RegOpenKeyExW(parent, name, 0, KEY_READ | KEY_WOW64_64KEY, &key) != ERROR_SUCCESS) return {};
  std::wstring line = path;
  for (const std::wstring valueName : {L"", L"ThreadingModel", L"Version"}) {
    wchar_t value[1024] = {};
    DWORD bytes = sizeof(value);
    const bool isThere = RegGetValueW(key, nullptr, valueName.c_str(), RRF_RT_REG_SZ, nullptr,
                                      value, &bytes) == ERROR_SUCCESS;
    if (isThere) line += L" " + valueName + L"=" + value;
  }
  Keys keys;
  if (IsOurs(line)) keys.insert(line);
  // The many thousands of keys below other libraries' classes and interfaces take their time.
  const bool isOthers = std::ranges::count(path, L'\\') > 1 && !IsOurs(line);
  wchar_t child[256];
  for (DWORD i = 0; !isOthers && RegEnumKeyW(key, i, child, 256) == ERROR_SUCCESS; ++i) {
    const bool isOtherView = CharUpperW(child) == std::wstring(L"WOW6432NODE");
    keys.merge(Collected(key, child, isOtherView ? path : path + L"\\" + child));
  }
  RegCloseKey(key);
  return keys;
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

std::wstring Path(const std::wstring& key) { return L"Software\\Classes\\" + key; }
void SetText(const std::wstring& key, const std::wstring& text) {
  EXPECT_EQ(RegSetKeyValueW(HKEY_LOCAL_MACHINE, Path(key).c_str(), nullptr, REG_SZ, text.c_str(),
                            static_cast<DWORD>((text.size() + 1) * sizeof(wchar_t))),
            ERROR_SUCCESS);
}
const std::wstring kCardServer = L"CLSID\\" + Text(CLSID_CCard) + L"\\InprocServer32";
void Remove(const std::wstring& key) { RegDeleteTreeW(HKEY_LOCAL_MACHINE, Path(key).c_str()); }

class Registration : public testing::Test {
 protected:
  Registration() {
    for (const LibraryType& type : LibraryTypes()) {
      const bool isClass = type.attributes.typekind == TKIND_COCLASS;
      const auto kind = isClass ? L"class" : type.isInterface ? L"interface" : L"";
      keys_.merge(KeysOf(kind, type.attributes.guid, type.name));
    }
    ExpectKeys({}, {});
  }
  ~Registration() override {
    EXPECT_EQ(module_.Call("DllRegisterServer"), S_OK) << "so that all is ours to unregister";
    EXPECT_EQ(module_.Call("DllUnregisterServer"), S_OK);
    EXPECT_EQ(InstallForUser(FALSE), S_OK);
  }

  static void ExpectKeys(const Keys& ofMachine, const Keys& ofUser) {
    for (const auto& [root, expected] :
         {std::pair(HKEY_LOCAL_MACHINE, ofMachine), std::pair(HKEY_CURRENT_USER, ofUser)}) {
      const Keys found = Collected(root);
      Keys difference;
      std::ranges::set_symmetric_difference(found, expected,
                                            std::inserter(difference, difference.end()));
      EXPECT_EQ(difference, Keys()) << "of root " << root;
    }
  }
  HRESULT InstallForUser(BOOL install) const {
    return module_.Call<BOOL, PCWSTR>("DllInstall", install, L"user");
  }

  ServerModule module_;
  Keys keys_ = KeysOf(L"library");  // what belongs into a registry
};

TEST_F(Registration, WritesTheKeysOfTheMachineOrTheUserAndCanBeUndone) {
  for (int i = 0; i < 2; ++i) {
    ASSERT_EQ(module_.Call("DllRegisterServer"), S_OK);
    ExpectKeys(keys_, {});
  }
  EXPECT_EQ(module_.Call("DllUnregisterServer"), S_OK);
  ASSERT_EQ(InstallForUser(TRUE), S_OK);
  ExpectKeys({}, keys_);
  EXPECT_EQ(InstallForUser(FALSE), S_OK);
  ExpectKeys({}, {});
}

TEST_F(Registration, ThatFailsPartWayLeavesNothingOrAnEarlierOne) {
  for (const bool isEarlier : {false, true}) {
    if (isEarlier) {
      EXPECT_EQ(module_.Call("DllRegisterServer"), S_OK);
      SetText(kCardServer, L"C:\\earlier\\vardel.dll");
      Remove(L"Vardel.CCardTypes");
    }
    HKEY blocked = nullptr;  // no lasting key can be made below one that does not last
    RegCreateKeyExW(HKEY_LOCAL_MACHINE, Path(L"Vardel.CCardTypes").c_str(), 0, nullptr,
                    REG_OPTION_VOLATILE, KEY_WRITE, nullptr, &blocked, nullptr);
    RegCloseKey(blocked);
    const Keys before = Collected(HKEY_LOCAL_MACHINE);
    EXPECT_EQ(module_.Call("DllRegisterServer"), HRESULT_FROM_WIN32(ERROR_CHILD_MUST_BE_VOLATILE));
    ExpectKeys(before, {});
    Remove(L"Vardel.CCardTypes");
  }
}

TEST_F(Registration, LeavesAnotherDllsClassAndAnotherVersionsLibrary) {
  ASSERT_EQ(module_.Call("DllRegisterServer"), S_OK);
  const std::wstring library = L"TYPELIB\\" + Text(LIBID_Vardel);
  SetText(kCardServer, L"C:\\other.dll");
  SetText(library + L"\\2.0", L"Vardel 2.0");
  EXPECT_EQ(module_.Call("DllUnregisterServer"), S_OK);
  Keys left = {L"\\" + library, L"\\" + library + L"\\2.0 =Vardel 2.0"};
  for (const auto& line : KeysOf(L"class", CLSID_CCard, "CCard")) {
    left.insert(std::regex_replace(line, std::wregex(L"=[^=]*vardel\\.dll"), L"=C:\\other.dll"));
  }
  ExpectKeys(left, {});
  Remove(library);
}

}  // namespace
}  // namespace vardel::server
