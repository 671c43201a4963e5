#include <vardel/core/card_data_struct.h>
#include <vardel/server/record_info.h>
#include <vardel/server/type_table.h>

#include <cstring>
#include <stdexcept>

namespace vardel::server {
namespace {

constexpr wchar_t kRecordName[] = L"CardDataStruct";
constexpr wchar_t kFieldName[] = L"Bytes";
constexpr ULONG kSize = sizeof(CardDataStruct);

/// A byte array of the record's bytes, as automation sees its one field.
HRESULT GetBytes(const void* record, VARIANT* value) {
  SAFEARRAY* const array = SafeArrayCreateVector(VT_UI1, 0, kSize);
  if (array == nullptr) return E_OUTOFMEMORY;
  std::memcpy(array->pvData, record, kSize);
  value->vt = VT_ARRAY | VT_UI1;
  value->parray = array;
  return S_OK;
}

HRESULT PutBytes(void* record, const VARIANT* value) {
  if (value == nullptr || value->vt != (VT_ARRAY | VT_UI1) || value->parray == nullptr ||
      SafeArrayGetDim(value->parray) != 1 || value->parray->rgsabound[0].cElements != kSize) {
    return DISP_E_TYPEMISMATCH;
  }
  std::memcpy(record, value->parray->pvData, kSize);
  return S_OK;
}

class RecordInfo final : public ComObject<IRecordInfo> {
 public:
  explicit RecordInfo(const GUID& guid) : guid_(guid) {}

  STDMETHODIMP RecordInit(PVOID record) override { return RecordClear(record); }
  STDMETHODIMP RecordClear(PVOID record) override {
    if (record == nullptr) return E_INVALIDARG;
    std::memset(record, 0, kSize);
    return S_OK;
  }
  STDMETHODIMP RecordCopy(PVOID from, PVOID to) override {
    if (from == nullptr || to == nullptr) return E_INVALIDARG;
    std::memmove(to, from, kSize);
    return S_OK;
  }
  STDMETHODIMP GetGuid(GUID* guid) override {
    if (guid == nullptr) return E_INVALIDARG;
    *guid = guid_;
    return S_OK;
  }
  STDMETHODIMP GetName(BSTR* name) override {
    if (name == nullptr) return E_INVALIDARG;
    *name = SysAllocString(kRecordName);
    return *name == nullptr ? E_OUTOFMEMORY : S_OK;
  }
  STDMETHODIMP GetSize(ULONG* size) override {
    if (size == nullptr) return E_INVALIDARG;
    *size = kSize;
    return S_OK;
  }
  STDMETHODIMP GetTypeInfo(ITypeInfo** info) override {
    if (info == nullptr) return E_INVALIDARG;
    try {
      *info = LoadTypeInfo(guid_).Detach();
      return S_OK;
    } catch (const std::exception&) {
      *info = nullptr;
      return TYPE_E_CANTLOADLIBRARY;
    }
  }
  STDMETHODIMP GetField(PVOID record, LPCOLESTR name, VARIANT* value) override {
    if (record == nullptr || name == nullptr || value == nullptr) return E_INVALIDARG;
    return EqualNames(name, kFieldName) ? GetBytes(record, value) : DISP_E_UNKNOWNNAME;
  }
  STDMETHODIMP GetFieldNoCopy(PVOID /*record*/, LPCOLESTR /*name*/, VARIANT* /*value*/,
                              PVOID* /*data*/) override {
    return E_NOTIMPL;
  }
  STDMETHODIMP PutField(ULONG /*flags*/, PVOID record, LPCOLESTR name, VARIANT* value) override {
    if (record == nullptr || name == nullptr) return E_INVALIDARG;
    return EqualNames(name, kFieldName) ? PutBytes(record, value) : DISP_E_UNKNOWNNAME;
  }
  STDMETHODIMP PutFieldNoCopy(ULONG /*flags*/, PVOID /*record*/, LPCOLESTR /*name*/,
                              VARIANT* /*value*/) override {
    return E_NOTIMPL;
  }
  STDMETHODIMP GetFieldNames(ULONG* count, BSTR* names) override {
    if (count == nullptr) return E_INVALIDARG;
    if (names != nullptr && *count > 0) names[0] = SysAllocString(kFieldName);
    *count = 1;
    return S_OK;
  }
  STDMETHODIMP_(WINBOOL) IsMatchingType(IRecordInfo* other) override {
    GUID guid{};
    const bool isSame = other != nullptr && SUCCEEDED(other->GetGuid(&guid)) && guid == guid_;
    return isSame ? TRUE : FALSE;
  }
  STDMETHODIMP_(PVOID) RecordCreate() override {
    void* const record = CoTaskMemAlloc(kSize);
    if (record != nullptr) RecordClear(record);
    return record;
  }
  STDMETHODIMP RecordCreateCopy(PVOID from, PVOID* to) override {
    if (from == nullptr || to == nullptr) return E_INVALIDARG;
    *to = RecordCreate();
    return *to == nullptr ? E_OUTOFMEMORY : RecordCopy(from, *to);
  }
  STDMETHODIMP RecordDestroy(PVOID record) override {
    CoTaskMemFree(record);
    return S_OK;
  }

 private:
  GUID guid_;
};

/// The record's GUID, as the type library has it.
GUID RecordGuid() {
  ComPtr<ITypeInfo> info;
  MEMBERID member = MEMBERID_NIL;
  USHORT count = 1;
  wchar_t name[] = L"CardDataStruct";
  LoadTypeLibrary()->FindName(name, 0, info.out(), &member, &count);
  TYPEATTR* attributes = nullptr;
  if (!info || FAILED(info->GetTypeAttr(&attributes))) {
    throw std::runtime_error("the type library has no card record");
  }
  const GUID guid = attributes->guid;
  info->ReleaseTypeAttr(attributes);
  return guid;
}

}  // namespace

ComPtr<IRecordInfo> CardRecordInfo() {
  static const GUID guid = RecordGuid();
  return ComPtr<IRecordInfo>::Adopt(new RecordInfo(guid));
}

}  // namespace vardel::server
