#include "tests/server/test_frame.h"

#include <algorithm>
#include <iterator>

namespace vardel::server {
namespace {

constexpr const wchar_t* kNames[] = {L"FrameCardType", L"FrameCardSubType", L"IsEMFrame",
                                     L"RawCardBytes", L"RawCardHex"};

}  // namespace

STDMETHODIMP HostFrame::QueryInterface(REFIID iid, void** object) {
  const bool known = iid == IID_IUnknown || iid == IID_IDispatch ||
                     (kind_ == Kind::Interface && iid == __uuidof(::ICardFrame));
  *object = known ? this : nullptr;
  return known ? S_OK : E_NOINTERFACE;
}

STDMETHODIMP HostFrame::GetIDsOfNames(REFIID, LPOLESTR* names, UINT, LCID, DISPID* ids) {
  const std::wstring name = names[0];
  const auto* const found = std::ranges::find(kNames, name);
  if (kind_ == Kind::Interface || found == std::end(kNames) || name == missing) {
    return DISP_E_UNKNOWNNAME;
  }
  ids[0] = static_cast<DISPID>(found - kNames) + 1;  // 0 would be a default value
  return S_OK;
}

STDMETHODIMP HostFrame::Invoke(DISPID id, REFIID, LCID, WORD flags, DISPPARAMS*, VARIANT* result,
                               EXCEPINFO* exception, UINT*) {
  if ((flags & DISPATCH_PROPERTYGET) == 0) return DISP_E_MEMBERNOTFOUND;
  HRESULT status = S_OK;
  switch (id) {
    case 1:
    case 2:
      // Scripts' small integers are 16 bits wide.
      result->vt = VT_I2;
      result->iVal = static_cast<SHORT>(id == 1 ? type : subType);
      break;
    case 3:
      result->vt = VT_BOOL;
      status = get_IsEMFrame(&result->boolVal);
      break;
    case 4:
      status = get_RawCardBytes(result);
      break;
    case 5:
      result->vt = VT_BSTR;
      result->bstrVal = nullptr;
      status = get_RawCardHex(&result->bstrVal);
      break;
    default:
      return DISP_E_MEMBERNOTFOUND;
  }
  if (SUCCEEDED(status)) return S_OK;
  exception->scode = status;
  exception->bstrDescription = SysAllocString(L"the frame's own failure");
  exception->bstrSource = SysAllocString(L"Host.Frame");
  return DISP_E_EXCEPTION;
}

STDMETHODIMP HostFrame::get_FrameCardType(LONG* value) {
  *value = type;
  return S_OK;
}

STDMETHODIMP HostFrame::get_FrameCardSubType(LONG* value) {
  *value = subType;
  return S_OK;
}

STDMETHODIMP HostFrame::get_IsEMFrame(VARIANT_BOOL* value) {
  *value = isEM ? VARIANT_TRUE : VARIANT_FALSE;
  return S_OK;
}

STDMETHODIMP HostFrame::get_RawCardBytes(VARIANT* value) {
  if (!bytes) {
    value->vt = VT_BSTR;
    value->bstrVal = SysAllocString(L"0102030405060708");
    return S_OK;
  }
  value->vt = VT_ARRAY | VT_UI1;
  value->parray = SafeArrayCreateVector(VT_UI1, 0, static_cast<ULONG>(bytes->size()));
  std::ranges::copy(*bytes, static_cast<std::uint8_t*>(value->parray->pvData));
  return S_OK;
}

STDMETHODIMP HostFrame::get_RawCardHex(BSTR* value) {
  if (FAILED(failure)) return failure;
  *value = SysAllocStringLen(hex.data(), static_cast<UINT>(hex.size()));
  return S_OK;
}

}  // namespace vardel::server
