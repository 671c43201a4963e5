#include "tests/server/server.h"

#include <gtest/gtest.h>

#include <fcntl.h>
#include <io.h>

namespace vardel::server {

HINSTANCE moduleInstance = nullptr;

namespace {

// CTest does not expect carriage returns in a list of tests.
[[maybe_unused]] const int modeBefore = _setmode(1, _O_BINARY);

Outcome Status(HRESULT status) {
  return {FAILED(status) ? "status " + std::to_string(status & 0xFFFF) : ""};
}
/// An exception, of a fault its number; the texts are taken over.
Outcome Exception(HRESULT status, BSTR description, BSTR source) {
  const bool isFault = HRESULT_FACILITY(status) == FACILITY_CONTROL;
  const long number = isFault ? status & 0xFFFF : status;
  const Outcome outcome{"fault " + std::to_string(number), Utf8(description)};
  EXPECT_TRUE(Utf8(source).starts_with("Vardel.C") && !outcome.description.empty());
  SysFreeString(description);
  SysFreeString(source);
  return outcome;
}

}  // namespace

Outcome EarlyOutcome(HRESULT status) {
  ComPtr<IErrorInfo> error;
  if (SUCCEEDED(status) || GetErrorInfo(0, error.out()) != S_OK) return Status(status);
  BSTR description = nullptr, source = nullptr;
  error->GetDescription(&description);
  error->GetSource(&source);
  return Exception(status, description, source);
}

Outcome Call(IDispatch* object, const std::string& name, WORD flags,
             const std::vector<VARIANT*>& arguments, VARIANT* result) {
  DISPID id = DISPID_UNKNOWN, put = DISPID_PROPERTYPUT;
  std::wstring wide = Wide(name);
  auto* text = wide.data();
  HRESULT status = object->GetIDsOfNames(IID_NULL, &text, 1, LOCALE_USER_DEFAULT, &id);
  if (FAILED(status)) return Status(status);

  std::vector<VARIANT> reversed;
  for (VARIANT* argument : arguments) {
    VARIANT& reference = *reversed.emplace(reversed.begin());
    reference.vt = VT_BYREF | VT_VARIANT;
    reference.pvarVal = argument;
  }
  const UINT puts = (flags & (DISPATCH_PROPERTYPUT | DISPATCH_PROPERTYPUTREF)) != 0 ? 1 : 0;
  DISPPARAMS params{reversed.data(), &put, static_cast<UINT>(reversed.size()), puts};
  EXCEPINFO exception{};
  UINT argumentError = 0;
  status = object->Invoke(id, IID_NULL, LOCALE_USER_DEFAULT, flags, &params, result, &exception,
                          &argumentError);
  if (status != DISP_E_EXCEPTION) return Status(status);
  SysFreeString(exception.bstrHelpFile);
  return Exception(exception.scode, exception.bstrDescription, exception.bstrSource);
}

}  // namespace vardel::server
