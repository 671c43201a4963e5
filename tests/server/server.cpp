#include "tests/server/server.h"

namespace vardel::server {

HINSTANCE moduleInstance = nullptr;

Outcome Call(IDispatch* object, const std::wstring& name, WORD flags,
             const std::vector<VARIANT*>& arguments, VARIANT* result) {
  Outcome outcome;
  DISPID id = DISPID_UNKNOWN;
  auto* text = const_cast<wchar_t*>(name.c_str());
  outcome.status = object->GetIDsOfNames(IID_NULL, &text, 1, LOCALE_USER_DEFAULT, &id);
  if (FAILED(outcome.status)) return outcome;

  std::vector<VARIANT> reversed;
  for (auto argument = arguments.rbegin(); argument != arguments.rend(); ++argument) {
    VARIANT reference{};
    reference.vt = VT_BYREF | VT_VARIANT;
    reference.pvarVal = *argument;
    reversed.push_back(reference);
  }
  DISPID put = DISPID_PROPERTYPUT;
  const bool isPut = (flags & (DISPATCH_PROPERTYPUT | DISPATCH_PROPERTYPUTREF)) != 0;
  DISPPARAMS params{reversed.data(), isPut ? &put : nullptr, static_cast<UINT>(reversed.size()),
                    isPut ? 1U : 0U};
  EXCEPINFO exception{};
  UINT argumentError = 0;
  outcome.status = object->Invoke(id, IID_NULL, LOCALE_USER_DEFAULT, flags, &params, result,
                                  &exception, &argumentError);
  if (outcome.status == DISP_E_EXCEPTION) {
    const bool isFault = HRESULT_FACILITY(exception.scode) == FACILITY_CONTROL;
    outcome.fault = isFault ? exception.scode & 0xFFFF : exception.scode;
    if (exception.bstrDescription != nullptr) outcome.description = exception.bstrDescription;
    if (exception.bstrSource != nullptr) outcome.source = exception.bstrSource;
    SysFreeString(exception.bstrDescription);
    SysFreeString(exception.bstrSource);
    SysFreeString(exception.bstrHelpFile);
  }
  return outcome;
}

}  // namespace vardel::server
