// The DLL's entry points and its class factories.

#include <vardel/server/objects.h>
#include <vardel/server/registration.h>
#include <vardel/server/status.h>
#include <vardel/server/type_table.h>

#include <vardel_idl.h>

namespace vardel::server {

HINSTANCE moduleInstance = nullptr;

namespace {

struct ClassId {
  const CLSID& id;
  const char* name;
};

const ClassId kClasses[] = {
    {CLSID_CError, "CError"},
    {CLSID_CCardData, "CCardData"},
    {CLSID_CCardByteData, "CCardByteData"},
    {CLSID_CByteArrayData, "CByteArrayData"},
    {CLSID_CCardFormatInfo, "CCardFormatInfo"},
    {CLSID_CCardFormatEM, "CCardFormatEM"},
    {CLSID_CCardFormatHIDStandard, "CCardFormatHIDStandard"},
    {CLSID_CCardFormatBinary26, "CCardFormatBinary26"},
    {CLSID_CCardFormat37Bits, "CCardFormat37Bits"},
    {CLSID_CCardFormatHIDCorp1000, "CCardFormatHIDCorp1000"},
    {CLSID_CCardFormat34Bits, "CCardFormat34Bits"},
    {CLSID_CCardFormatUID32BIts, "CCardFormatUID32BIts"},
    {CLSID_CCardFormatLG, "CCardFormatLG"},
    {CLSID_CCardFormatWoori, "CCardFormatWoori"},
    {CLSID_CCardFormatDongSeo, "CCardFormatDongSeo"},
    {CLSID_CCard, "CCard"},
    {CLSID_CCardType, "CCardType"},
    {CLSID_CCardTypes, "CCardTypes"},
    {CLSID_CCardFrame, "CCardFrame"},
};

class ClassFactory final : public ComObject<IClassFactory> {
 public:
  explicit ClassFactory(const char* className) : className_(className) {}

  STDMETHODIMP CreateInstance(IUnknown* outer, REFIID iid, void** object) override {
    if (object == nullptr) return E_POINTER;
    *object = nullptr;
    if (outer != nullptr) return CLASS_E_NOAGGREGATION;
    HRESULT status = E_NOINTERFACE;
    const HRESULT guarded =
        Guard(className_, [&] { status = CreateObject(className_)->QueryInterface(iid, object); });
    return FAILED(guarded) ? guarded : status;
  }
  STDMETHODIMP LockServer(BOOL lock) override {
    constexpr unsigned kPlace = 0;  // of all locks, on whatever thread
    lock != FALSE ? AddModuleUse(kPlace) : ReleaseModuleUse(kPlace);
    return S_OK;
  }

 private:
  const char* className_;
};

}  // namespace
}  // namespace vardel::server

using namespace vardel::server;

BOOL WINAPI DllMain(HINSTANCE instance, DWORD reason, LPVOID processEnds) {
  if (reason == DLL_PROCESS_ATTACH) moduleInstance = instance;
  // When the process ends, the library's own DLL may have gone already.
  if (reason == DLL_PROCESS_DETACH && processEnds == nullptr) {
    DropTypeLibrary();
    DropMemory();
  }
  return TRUE;
}

STDAPI DllGetClassObject(REFCLSID classId, REFIID iid, LPVOID* object) {
  if (object == nullptr) return E_POINTER;
  *object = nullptr;
  for (const ClassId& row : kClasses) {
    if (row.id != classId) continue;
    HRESULT status = E_NOINTERFACE;
    const HRESULT guarded = Guard(row.name, [&] {
      const auto factory = ComPtr<IClassFactory>::Adopt(new ClassFactory(row.name));
      status = factory->QueryInterface(iid, object);
    });
    return FAILED(guarded) ? guarded : status;
  }
  return CLASS_E_CLASSNOTAVAILABLE;
}

STDAPI DllCanUnloadNow() { return IsModuleInUse() ? S_FALSE : S_OK; }

STDAPI DllRegisterServer() { return Register(Scope::Machine); }

STDAPI DllUnregisterServer() { return Unregister(Scope::Machine); }

/// "user" on the command line registers for the current user alone.
STDAPI DllInstall(BOOL install, PCWSTR commandLine) {
  const bool isUser = commandLine != nullptr && EqualNames(commandLine, L"user");
  const Scope scope = isUser ? Scope::User : Scope::Machine;
  return install != FALSE ? Register(scope) : Unregister(scope);
}
