#pragma once

#include <vardel/server/com.h>

#include <vardel_idl.h>

#include <algorithm>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace vardel::server {

/// A host's own frame, on the stack: with our interface, or with members of the right names only.
class HostFrame final : public ComObject<::ICardFrame> {
 public:
  LONG type = 0, subType = 0;
  std::optional<std::vector<std::uint8_t>> bytes;  // without them RawCardBytes is a text
  std::wstring hex;
  HRESULT failure = S_OK;  // of RawCardHex

  /// The frame as an object that has nothing but the names.
  ComPtr<IDispatch> ByNames() {
    ComPtr<ITypeLib> library;
    ComPtr<ITypeInfo> info;
    ComPtr<IUnknown> names;
    LoadTypeLibEx(L"vardel.dll", REGKIND_NONE, library.out());
    library->GetTypeInfoOfGuid(__uuidof(::ICardFrame), info.out());
    CreateStdDispatch(nullptr, this, info.get(), names.out());
    return names.As<IDispatch>();
  }

  STDMETHODIMP QueryInterface(REFIID iid, void** object) override {
    const bool isDispatch = iid == IID_IDispatch;
    return ComObject::QueryInterface(isDispatch ? __uuidof(::ICardFrame) : iid, object);
  }
  STDMETHODIMP GetTypeInfoCount(UINT*) override { return E_NOTIMPL; }
  STDMETHODIMP GetTypeInfo(UINT, LCID, ITypeInfo**) override { return E_NOTIMPL; }
  STDMETHODIMP GetIDsOfNames(REFIID, LPOLESTR*, UINT, LCID, DISPID*) override { return E_NOTIMPL; }
  STDMETHODIMP Invoke(DISPID, REFIID, LCID, WORD, DISPPARAMS*, VARIANT*, EXCEPINFO*,
                      UINT*) override {
    return E_NOTIMPL;
  }
  STDMETHODIMP get_FrameCardType(LONG* value) override { return *value = type, S_OK; }
  STDMETHODIMP get_FrameCardSubType(LONG* value) override { return *value = subType, S_OK; }
  STDMETHODIMP get_IsEMFrame(VARIANT_BOOL* value) override { return *value = VARIANT_FALSE, S_OK; }
  STDMETHODIMP get_RawCardBytes(VARIANT* value) override {
    value->vt = bytes ? VT_ARRAY | VT_UI1 : VT_BSTR;
    value->bstrVal = bytes ? nullptr : SysAllocString(L"0102030405060708");
    if (!bytes) return S_OK;
    value->parray = SafeArrayCreateVector(VT_UI1, 0, static_cast<ULONG>(bytes->size()));
    std::ranges::copy(*bytes, static_cast<std::uint8_t*>(value->parray->pvData));
    return S_OK;
  }
  STDMETHODIMP get_RawCardHex(BSTR* value) override {
    *value = SysAllocStringLen(hex.data(), static_cast<UINT>(hex.size()));
    if (SUCCEEDED(failure)) return S_OK;
    ComPtr<ICreateErrorInfo> info;
    CreateErrorInfo(info.out());
    info->SetDescription(const_cast<wchar_t*>(L"the frame's own failure"));
    SetErrorInfo(0, info.As<IErrorInfo>().get());
    return failure;
  }
};

}  // namespace vardel::server
