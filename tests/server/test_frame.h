#pragma once

#include <vardel/server/com.h>

#include <vardel_idl.h>

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace vardel::server {

/// A host's own frame. It has our frame interface or, as a script's object, only members of the
/// right names.
class HostFrame final : public ::ICardFrame {
 public:
  enum class Kind { Interface, Names };

  explicit HostFrame(Kind kind) : kind_(kind) {}

  LONG type = 0;
  LONG subType = 0;
  bool isEM = false;
  std::optional<std::vector<std::uint8_t>> bytes;  // without them RawCardBytes is a text
  std::wstring hex;
  HRESULT failure = S_OK;  // of RawCardHex
  std::wstring missing;    // a name that is not known

  STDMETHODIMP QueryInterface(REFIID iid, void** object) override;
  STDMETHODIMP_(ULONG) AddRef() override { return 2; }  // lives on the stack
  STDMETHODIMP_(ULONG) Release() override { return 1; }
  STDMETHODIMP GetTypeInfoCount(UINT*) override { return E_NOTIMPL; }
  STDMETHODIMP GetTypeInfo(UINT, LCID, ITypeInfo**) override { return E_NOTIMPL; }
  STDMETHODIMP GetIDsOfNames(REFIID, LPOLESTR* names, UINT, LCID, DISPID* ids) override;
  STDMETHODIMP Invoke(DISPID id, REFIID, LCID, WORD flags, DISPPARAMS*, VARIANT* result,
                      EXCEPINFO* exception, UINT*) override;
  STDMETHODIMP get_FrameCardType(LONG* value) override;
  STDMETHODIMP get_FrameCardSubType(LONG* value) override;
  STDMETHODIMP get_IsEMFrame(VARIANT_BOOL* value) override;
  STDMETHODIMP get_RawCardBytes(VARIANT* value) override;
  STDMETHODIMP get_RawCardHex(BSTR* value) override;

 private:
  Kind kind_;
};

}  // namespace vardel::server
