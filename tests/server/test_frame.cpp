#include "tests/server/test_frame.h"

#include <algorithm>

namespace vardel::server {

ComPtr<IDispatch> HostFrame::ByNames() {
  ComPtr<ITypeLib> library;
  ComPtr<ITypeInfo> info;
  ComPtr<IUnknown> names;
  LoadTypeLibEx(L"vardel.dll", REGKIND_NONE, library.out());
  library->GetTypeInfoOfGuid(__uuidof(::ICardFrame), info.out());
  CreateStdDispatch(nullptr, this, info.get(), names.out());
  return names.As<IDispatch>();
}

STDMETHODIMP HostFrame::QueryInterface(REFIID iid, void** object) {
  const bool isKnown = iid == IID_IUnknown || iid == IID_IDispatch || iid == __uuidof(::ICardFrame);
  *object = isKnown ? this : nullptr;
  return isKnown ? S_OK : E_NOINTERFACE;
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
  *value = SysAllocStringLen(hex.data(), static_cast<UINT>(hex.size()));
  if (SUCCEEDED(failure)) return S_OK;
  ComPtr<ICreateErrorInfo> info;
  CreateErrorInfo(info.out());
  info->SetDescription(const_cast<wchar_t*>(L"the frame's own failure"));
  SetErrorInfo(0, info.As<IErrorInfo>().get());
  return failure;
}

}  // namespace vardel::server
