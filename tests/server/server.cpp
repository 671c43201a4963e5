#include "tests/server/server.h"

#include <fcntl.h>
#include <io.h>

namespace vardel::server {

HINSTANCE moduleInstance = nullptr;

namespace {

// CTest does not expect carriage returns in a list of tests.
[[maybe_unused]] const int modeBefore = _setmode(1, _O_BINARY);

/// An exception; the texts are taken over.
Outcome Exception(HRESULT status, BSTR description, BSTR source) {
  const bool isFault = HRESULT_FACILITY(status) == FACILITY_CONTROL;
  const Outcome outcome{DISP_E_EXCEPTION, isFault ? status & 0xFFFF : status,
                        Wide(Utf8(description)), Wide(Utf8(source))};
  SysFreeString(description);
  SysFreeString(source);
  return outcome;
}

}  // namespace

Outcome EarlyOutcome(HRESULT status) {
  ComPtr<IErrorInfo> error;
  if (SUCCEEDED(status) || GetErrorInfo(0, error.out()) != S_OK) return {status};
  BSTR description = nullptr, source = nullptr;
  error->GetDescription(&description);
  error->GetSource(&source);
  return Exception(status, description, source);
}

Outcome Call(IDispatch* object, const std::wstring& name, WORD flags,
             const std::vector<VARIANT*>& arguments, VARIANT* result) {
  DISPID id = DISPID_UNKNOWN, put = DISPID_PROPERTYPUT;
  auto* text = const_cast<wchar_t*>(name.c_str());
  HRESULT status = object->GetIDsOfNames(IID_NULL, &text, 1, LOCALE_USER_DEFAULT, &id);
  if (FAILED(status)) return {status};

  std::vector<VARIANT> reversed(arguments.size());
  for (std::size_t i = 0; VARIANT * argument : arguments) {
    VARIANT& reference = reversed[reversed.size() - ++i];
    reference.vt = VT_BYREF | VT_VARIANT;
    reference.pvarVal = argument;
  }
  const bool isPut = (flags & (DISPATCH_PROPERTYPUT | DISPATCH_PROPERTYPUTREF)) != 0;
  DISPPARAMS params{reversed.data(), isPut ? &put : nullptr, static_cast<UINT>(reversed.size()),
                    isPut ? 1U : 0U};
  EXCEPINFO exception{};
  UINT argumentError = 0;
  status = object->Invoke(id, IID_NULL, LOCALE_USER_DEFAULT, flags, &params, result, &exception,
                          &argumentError);
  if (status != DISP_E_EXCEPTION) return {status};
  SysFreeString(exception.bstrHelpFile);
  return Exception(exception.scode, exception.bstrDescription, exception.bstrSource);
}

}  // namespace vardel::server
