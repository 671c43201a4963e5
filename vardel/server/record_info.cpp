#include <vardel/server/record_info.h>
#include <vardel/server/type_table.h>

#include <algorithm>
#include <atomic>
#include <cstdint>
#include <cstring>
#include <mutex>
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
  const VARIANT* const array = value == nullptr ? nullptr : ValueOf(*value);
  if (array == nullptr) return DISP_E_TYPEMISMATCH;
  const auto bytes = ElementsOf<std::uint8_t>(*array, VT_UI1);
  if (!bytes || bytes->size() != kSize) return DISP_E_TYPEMISMATCH;
  std::ranges::copy(*bytes, static_cast<std::uint8_t*>(record));
  return S_OK;
}

ComPtr<IRecordInfo> SystemInfo();

class RecordInfo final : public ComObject<IRecordInfo> {
 public:
  explicit RecordInfo(const GUID& guid) : guid_(guid) {}

  STDMETHODIMP QueryInterface(REFIID iid, void** object) override {
    // Another apartment has to get the system's own description, so this goes there as that does.
    if (iid == IID_IMarshal && object != nullptr) {
      try {
        if (const auto info = SystemInfo()) return info->QueryInterface(iid, object);
      } catch (const std::exception&) {
        return E_OUTOFMEMORY;
      }
    }
    return ComObject::QueryInterface(iid, object);
  }
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
    return info == nullptr ? E_INVALIDARG : GiveTypeInfo(guid_, info);
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
GUID FindRecordGuid() {
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

const GUID& RecordGuid() {
  static const GUID guid = FindRecordGuid();
  return guid;
}

/// The system's own description; empty where it has none.
ComPtr<IRecordInfo> SystemInfo() {
  ComPtr<IRecordInfo> info;
  GetRecordInfoFromTypeInfo(LoadTypeInfo(RecordGuid()).get(), info.out());
  return info;
}

/// Whether the bytes of a record are in a copy too.
bool CopiesBytes(IRecordInfo& info) {
  ULONG size = 0;
  if (FAILED(info.GetSize(&size)) || size != kSize) return false;
  void* copy = nullptr;
  CardDataStruct record;
  record.Bytes.fill(0xA5);
  if (FAILED(info.RecordCreateCopy(record.Bytes.data(), &copy)) || copy == nullptr) return false;
  const bool isCopied = std::memcmp(copy, record.Bytes.data(), kSize) == 0;
  info.RecordDestroy(copy);
  return isCopied;
}

std::mutex making;
/// The system's description, where it is used.
std::atomic<IRecordInfo*> kept{nullptr};

}  // namespace

ComPtr<IRecordInfo> CardRecordInfo() {
  if (IRecordInfo* const info = kept) return ComPtr<IRecordInfo>::Share(info);
  static const bool isSystems = [] {
    const auto info = SystemInfo();
    return info && CopiesBytes(*info.get());
  }();
  if (!isSystems) return ComPtr<IRecordInfo>::Adopt(new RecordInfo(RecordGuid()));
  const std::lock_guard lock(making);
  if (kept == nullptr) kept = SystemInfo().Detach();
  return ComPtr<IRecordInfo>::Share(kept);
}

void DropRecordInfo() {
  const std::lock_guard lock(making);
  IRecordInfo* const info = kept.exchange(nullptr);
  if (info == nullptr) return;
  // A call from now on finds nothing above, and waits; one before that is seen as a use.
  if (IsModuleInUse()) {
    kept = info;
  } else {
    info->Release();
  }
}

NewRecord::NewRecord() : info_(CardRecordInfo()), bytes_(info_->RecordCreate()) {
  if (bytes_ == nullptr) throw std::bad_alloc();
}

NewRecord::~NewRecord() {
  if (bytes_ != nullptr) info_->RecordDestroy(bytes_);
}

void NewRecord::HandTo(VARIANT& value) {
  value.vt = VT_RECORD;
  value.pvRecord = std::exchange(bytes_, nullptr);
  value.pRecInfo = info_.Detach();
}

HRESULT ConvertToRecord(const VARIANT& source, vardel::CardDataStruct& record) {
  if (const auto bytes = ElementsOf<std::uint8_t>(source, VT_UI1)) {
    if (bytes->size() != kSize) return DISP_E_TYPEMISMATCH;
    std::ranges::copy(*bytes, record.Bytes.begin());
    return S_OK;
  }
  if (const auto values = ElementsOf<VARIANT>(source, VT_VARIANT)) {
    if (values->size() != kSize) return DISP_E_TYPEMISMATCH;
    for (std::size_t i = 0; i < kSize; ++i) {
      const VARIANT* const value = ValueOf((*values)[i]);
      Variant byte;
      const HRESULT status =
          value == nullptr ? DISP_E_TYPEMISMATCH : ChangeType(byte, *value, VT_UI1);
      if (FAILED(status)) return status;
      record.Bytes[i] = byte.bVal;
    }
    return S_OK;
  }
  GUID guid{};
  ULONG size = 0;
  if ((source.vt & ~VT_BYREF) != VT_RECORD || source.pRecInfo == nullptr ||
      source.pvRecord == nullptr || FAILED(source.pRecInfo->GetGuid(&guid)) ||
      guid != RecordGuid() || FAILED(source.pRecInfo->GetSize(&size)) || size != kSize) {
    return DISP_E_TYPEMISMATCH;
  }
  std::memcpy(record.Bytes.data(), source.pvRecord, kSize);
  return S_OK;
}

}  // namespace vardel::server
