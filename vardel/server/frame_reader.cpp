#include <vardel/core/card_frame.h>
#include <vardel/core/host_fault.h>
#include <vardel/server/frame_reader.h>
#include <vardel/server/object.h>
#include <vardel/server/status.h>

#include <dispex.h>

#include <vector>

namespace vardel::server {
namespace {

constexpr wchar_t kFailed[] = L"A member of the frame object failed";

/// A frame whose members arrive as variants. It keeps what its views point to.
class VariantFrame : public vardel::ICardFrame {
 public:
  std::int32_t FrameCardType() const override { return Number(L"FrameCardType"); }
  std::int32_t FrameCardSubType() const override { return Number(L"FrameCardSubType"); }
  bool IsEMFrame() const override {
    Variant value;
    Read(L"IsEMFrame", value, VT_BOOL);
    return value.boolVal != VARIANT_FALSE;
  }
  RawBytes RawCardBytes() const override {
    Variant value;
    Read(L"RawCardBytes", value, VT_EMPTY);
    const auto bytes = ElementsOf<std::uint8_t>(value, VT_UI1);
    if (!bytes) return std::nullopt;
    bytes_.assign(bytes->begin(), bytes->end());
    return bytes_;
  }
  std::string_view RawCardHex() const override {
    Variant value;
    Read(L"RawCardHex", value, VT_BSTR);
    hex_ = Utf8(value.bstrVal);
    return hex_;
  }

 private:
  /// Gets a member; throws where that fails.
  virtual void GetMember(const wchar_t* name, VARIANT& value) const = 0;

  /// Gets a member without references and, unless VT_EMPTY, as the given type.
  void Read(const wchar_t* name, VARIANT& value, VARTYPE type) const {
    Variant raw;
    GetMember(name, raw);
    const VARIANT* const direct = ValueOf(raw);
    if (direct == nullptr) throw HostFault(Fault::TypeMismatch);
    HRESULT status = VariantCopyInd(&value, const_cast<VARIANT*>(direct));
    if (SUCCEEDED(status) && type != VT_EMPTY) {
      status = ChangeType(value, value, type);
    }
    if (status == DISP_E_OVERFLOW) throw HostFault(Fault::Overflow);
    if (FAILED(status)) throw HostFault(Fault::TypeMismatch);
  }
  std::int32_t Number(const wchar_t* name) const {
    Variant value;
    Read(name, value, VT_I4);
    return value.lVal;
  }

  mutable std::vector<std::uint8_t> bytes_;
  mutable std::string hex_;
};

/// Any automation object, read by the members' names.
class NamedFrame final : public VariantFrame {
 public:
  explicit NamedFrame(IDispatch* object) : object_(ComPtr<IDispatch>::Share(object)) {}

 private:
  void GetMember(const wchar_t* name, VARIANT& value) const override {
    const DISPID id = Find(name);
    SetErrorInfo(0, nullptr);
    EXCEPINFO exception{};
    HRESULT status = Get(id, DISPATCH_PROPERTYGET, value, exception);
    if (status == DISP_E_MEMBERNOTFOUND) {
      // Some script engines make no difference between a function and a property.
      status = Get(id, DISPATCH_METHOD | DISPATCH_PROPERTYGET, value, exception);
    }
    if (status == DISP_E_EXCEPTION) ThrowFailure(exception, kFailed);
    if (FAILED(status)) ThrowFailure(status, kFailed);
  }

  HRESULT Get(DISPID id, WORD flags, VARIANT& value, EXCEPINFO& exception) const {
    DISPPARAMS none{};
    UINT argumentError = 0;
    return object_->Invoke(id, IID_NULL, LOCALE_USER_DEFAULT, flags, &none, &value, &exception,
                           &argumentError);
  }

  DISPID Find(const wchar_t* name) const {
    DISPID id = DISPID_UNKNOWN;
    auto* text = const_cast<wchar_t*>(name);
    HRESULT status = object_->GetIDsOfNames(IID_NULL, &text, 1, LOCALE_USER_DEFAULT, &id);
    if (FAILED(status)) {
      // Script objects may know their members through the extended interface alone, or only there
      // in any case of letters.
      if (const auto extended = object_.As<IDispatchEx>()) {
        BSTR copy = SysAllocString(name);
        status = extended->GetDispID(copy, fdexNameCaseInsensitive, &id);
        SysFreeString(copy);
      }
    }
    if (FAILED(status)) {
      // As automation clients know it: the object doesn't support this property or method.
      constexpr int kNoSuchMember = 438;
      throw Failure(StatusOfFault(kNoSuchMember),
                    L"The frame object has no member " + std::wstring(name), L"");
    }
    return id;
  }

  ComPtr<IDispatch> object_;
};

/// An object with our frame interface.
class InterfaceFrame final : public VariantFrame {
 public:
  explicit InterfaceFrame(ComPtr<::ICardFrame> object) : object_(std::move(object)) {}

 private:
  void GetMember(const wchar_t* name, VARIANT& value) const override {
    SetErrorInfo(0, nullptr);
    const HRESULT status = GetByName(name, value);
    if (FAILED(status)) ThrowFailure(status, kFailed);
  }

  HRESULT GetByName(std::wstring_view name, VARIANT& value) const {
    if (name == L"RawCardBytes") return object_->get_RawCardBytes(&value);
    if (name == L"RawCardHex") {
      value.vt = VT_BSTR;
      return object_->get_RawCardHex(&value.bstrVal);
    }
    if (name == L"IsEMFrame") {
      value.vt = VT_BOOL;
      return object_->get_IsEMFrame(&value.boolVal);
    }
    value.vt = VT_I4;
    return name == L"FrameCardType" ? object_->get_FrameCardType(&value.lVal)
                                    : object_->get_FrameCardSubType(&value.lVal);
  }

  ComPtr<::ICardFrame> object_;
};

}  // namespace

std::shared_ptr<vardel::ICardFrame> ReadFrame(IDispatch** object) {
  if (object == nullptr || *object == nullptr) return nullptr;
  ComPtr<INativeObject> native;
  (*object)->QueryInterface(__uuidof(INativeObject), reinterpret_cast<void**>(native.out()));
  if (void* const core = native ? native->CoreOf(&coreTag<vardel::CCardFrame>) : nullptr) {
    return {std::shared_ptr<void>(), static_cast<vardel::CCardFrame*>(core)};
  }
  const auto shared = ComPtr<IDispatch>::Share(*object);
  if (auto typed = shared.As<::ICardFrame>()) {
    return std::make_shared<InterfaceFrame>(std::move(typed));
  }
  return std::make_shared<NamedFrame>(shared.get());
}

}  // namespace vardel::server
