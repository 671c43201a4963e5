#pragma once

#include <vardel/server/com.h>

#include <vardel_idl.h>

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace vardel::server {

/// A host's own frame, on the stack: with our frame interface, or with members of the right names
/// only.
class HostFrame final : public ::ICardFrame {
 public:
  std::optional<std::vector<std::uint8_t>> bytes;  // without them RawCardBytes is a text
  std::wstring hex;
  HRESULT failure = S_OK;  // of RawCardHex

  /// The frame as an object that has nothing but the names.
  ComPtr<IDispatch> ByNames();

  STDMETHODIMP QueryInterface(REFIID iid, void** object) override;
  STDMETHODIMP_(ULONG) AddRef() override { return 2; }
  STDMETHODIMP_(ULONG) Release() override { return 1; }
  STDMETHODIMP GetTypeInfoCount(UINT*) override { return E_NOTIMPL; }
  STDMETHODIMP GetTypeInfo(UINT, LCID, ITypeInfo**) override { return E_NOTIMPL; }
  STDMETHODIMP GetIDsOfNames(REFIID, LPOLESTR*, UINT, LCID, DISPID*) override { return E_NOTIMPL; }
  STDMETHODIMP Invoke(DISPID, REFIID, LCID, WORD, DISPPARAMS*, VARIANT*, EXCEPINFO*,
                      UINT*) override {
    return E_NOTIMPL;
  }
  STDMETHODIMP get_FrameCardType(LONG* value) override { return *value = 0, S_OK; }
  STDMETHODIMP get_FrameCardSubType(LONG* value) override { return *value = 0, S_OK; }
  STDMETHODIMP get_IsEMFrame(VARIANT_BOOL* value) override { return *value = VARIANT_FALSE, S_OK; }
  STDMETHODIMP get_RawCardBytes(VARIANT* value) override;
  STDMETHODIMP get_RawCardHex(BSTR* value) override;
};

}  // namespace vardel::server
