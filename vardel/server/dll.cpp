// The DLL's entry points and its class factories.

#include <vardel/server/objects.h>
#include <vardel/server/record_info.h>
#include <vardel/server/registration.h>
#include <vardel/server/status.h>
#include <vardel/server/type_table.h>

#include <vardel_idl.h>

namespace vardel::server {

HINSTANCE moduleInstance = nullptr;

namespace {

class ClassFactory final : public ComObject<IClassFactory> {
 public:
  explicit ClassFactory(const Class& made) : made_(made) {}

  STDMETHODIMP CreateInstance(IUnknown* outer, REFIID iid, void** object) override {
    if (object == nullptr) return E_POINTER;
    *object = nullptr;
    if (outer != nullptr) return CLASS_E_NOAGGREGATION;
    HRESULT status = E_NOINTERFACE;
    const HRESULT guarded =
        Guard(made_.name, [&] { status = made_.create(made_.name)->QueryInterface(iid, object); });
    return FAILED(guarded) ? guarded : status;
  }
  STDMETHODIMP LockServer(BOOL lock) override {
    constexpr unsigned kPlace = 0;  // of all locks, on whatever thread
    lock != FALSE ? AddModuleUse(kPlace) : ReleaseModuleUse(kPlace);
    return S_OK;
  }

 private:
  const Class& made_;
};

}  // namespace
}  // namespace vardel::server

using namespace vardel::server;

BOOL WINAPI DllMain(HINSTANCE instance, DWORD reason, LPVOID /*reserved*/) {
  if (reason == DLL_PROCESS_ATTACH) moduleInstance = instance;
  return TRUE;
}

STDAPI DllGetClassObject(REFCLSID classId, REFIID iid, LPVOID* object) {
  if (object == nullptr) return E_POINTER;
  *object = nullptr;
  const Class* const found = FindClass(classId);
  if (found == nullptr) return CLASS_E_CLASSNOTAVAILABLE;
  HRESULT status = E_NOINTERFACE;
  const HRESULT guarded = Guard(found->name, [&] {
    status = ComPtr<IClassFactory>::Adopt(new ClassFactory(*found))->QueryInterface(iid, object);
  });
  return FAILED(guarded) ? guarded : status;
}

STDAPI DllCanUnloadNow() {
  if (IsModuleInUse()) return S_FALSE;
  // Here, where no lock of the loader's is held yet.
  DropRecordInfo();
  DropTypeLibrary();
  DropMemory();
  return IsModuleInUse() ? S_FALSE : S_OK;
}

STDAPI DllRegisterServer() { return Register(Scope::Machine); }

STDAPI DllUnregisterServer() { return Unregister(Scope::Machine); }

/// "user" on the command line registers for the current user alone.
STDAPI DllInstall(BOOL install, PCWSTR commandLine) {
  const bool isUser = commandLine != nullptr && EqualNames(commandLine, L"user");
  const Scope scope = isUser ? Scope::User : Scope::Machine;
  return install != FALSE ? Register(scope) : Unregister(scope);
}
