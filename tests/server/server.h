#pragma once

#include <vardel/server/com.h>

#include <vardel_idl.h>

#include <stdexcept>
#include <string>
#include <vector>

/// The DLL beside the test program, asked for its classes without any registry.
namespace vardel::server {

class ServerModule {
 public:
  explicit ServerModule(const wchar_t* file = L"vardel.dll") : module_(LoadLibraryW(file)) {
    if (module_ == nullptr) throw std::runtime_error("the DLL does not load");
  }
  ServerModule(const ServerModule&) = delete;
  ServerModule& operator=(const ServerModule&) = delete;
  ~ServerModule() { FreeLibrary(module_); }

  HRESULT GetClassObject(REFCLSID id, REFIID iid, void** object) const {
    return Entry<HRESULT(WINAPI*)(REFCLSID, REFIID, void**)>("DllGetClassObject")(id, iid, object);
  }
  HRESULT CanUnloadNow() const { return Entry<HRESULT(WINAPI*)()>("DllCanUnloadNow")(); }

  template <class Interface>
  ComPtr<Interface> Create(REFCLSID id) const {
    ComPtr<IClassFactory> factory;
    ComPtr<Interface> object;
    if (FAILED(GetClassObject(id, IID_IClassFactory, reinterpret_cast<void**>(factory.out()))) ||
        FAILED(factory->CreateInstance(nullptr, __uuidof(Interface),
                                       reinterpret_cast<void**>(object.out())))) {
      throw std::runtime_error("a class cannot be created");
    }
    return object;
  }

  template <class Function>
  Function Entry(const char* name) const {
    return reinterpret_cast<Function>(reinterpret_cast<void*>(GetProcAddress(module_, name)));
  }

 private:
  HMODULE module_;
};

/// What a late-bound call came to.
struct Outcome {
  HRESULT status = S_OK;  // what Invoke returned
  long fault = 0;         // of an exception: its number, 0x800A0000 taken off where it is a fault
  std::wstring description = {};
  std::wstring source = {};
};

/// What an early-bound call came to: its status, or the error information that goes with it.
Outcome EarlyOutcome(HRESULT status);

/// Late-bound calls as script engines make them: every argument is a variant by reference.
Outcome Call(IDispatch* object, const std::wstring& name, WORD flags,
             const std::vector<VARIANT*>& arguments, VARIANT* result);

}  // namespace vardel::server
