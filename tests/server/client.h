#pragma once

#include "tests/server/server.h"
#include "tests/vectors.h"

#include <gtest/gtest.h>

#include <optional>

namespace vardel::server {

/// A value that a host passes or gets.
struct Value : Variant {
  Value() = default;
  Value(const VARIANT& other) { VariantCopy(this, const_cast<VARIANT*>(&other)); }
  Value(const Value& other) : Value(static_cast<const VARIANT&>(other)) {}
  Value& operator=(Value other) { return std::swap<VARIANT>(*this, other), *this; }
  Value(const std::string& text) { vt = VT_BSTR, bstrVal = NewBstr(text); }
  Value(const char* text) : Value(std::string(text)) {}
  Value(int number) { vt = VT_I4, lVal = number; }
  Value(double number) { vt = VT_R8, dblVal = number; }
  Value(bool truth) { vt = VT_BOOL, boolVal = truth ? VARIANT_TRUE : VARIANT_FALSE; }
  Value(IDispatch* object) {
    vt = VT_DISPATCH;
    pdispVal = ComPtr<IDispatch>::Share(object).Detach();
  }
  Value(SAFEARRAY* bytes) { vt = VT_ARRAY | VT_UI1, parray = bytes; }

  template <class T>
  std::span<T> Elements() const {
    return {static_cast<T*>(parray->pvData), parray->rgsabound[0].cElements};
  }
  /// Numbers are digits, bytes and records hexadecimal ones without the zeros at the end.
  std::string Text() const {
    if (vt == VT_EMPTY) return "";
    if (vt == VT_BSTR) return Utf8(bstrVal);
    if (vt == VT_BOOL) return ValueText(boolVal == VARIANT_TRUE);
    if (vt == VT_DISPATCH) return pdispVal == nullptr ? "nothing" : "an object";
    if (vt == VT_RECORD) return RecordAnswer({static_cast<std::uint8_t*>(pvRecord), 32}, 0, "");
    if (vt == (VT_ARRAY | VT_UI1)) return RecordAnswer(Elements<std::uint8_t>(), 0, "");
    Value number = *this;
    EXPECT_EQ(VariantChangeType(&number, &number, 0, VT_R8), S_OK) << "of type " << vt;
    return ValueText(number.dblVal);
  }
  template <class Interface>
  ComPtr<Interface> As() const {
    return ComPtr<IDispatch>::Share(pdispVal).As<Interface>();
  }
  /// The same object.
  bool operator==(const Value& other) const {
    return As<IUnknown>().get() == other.As<IUnknown>().get();
  }
};
inline const Value kNothing = static_cast<IDispatch*>(nullptr);
inline void PrintTo(const Value& value, std::ostream* out) { *out << value.Text(); }

/// A host that calls by names, as scripts do, without any registry.
class Client {
 public:
  static constexpr int kGets = INVOKE_FUNC | INVOKE_PROPERTYGET;
  using Values = std::vector<Value>;

  ~Client() {
    SetErrorInfo(0, nullptr);
    EXPECT_EQ(module_.CanUnloadNow(), before_) << "an object is left";
  }

  Value New(const std::string& className) const {
    static const auto classes = LibraryClasses();
    return module_.Create<IDispatch>(classes.at(className)).get();
  }
  void Fill(const Value& card, const CCardData& data) const {
    Put(card, "CardType", {data.CardType});
    Put(card, "CardSubType", {data.CardSubType});
    Put(card, "Facility", {data.Facility});
    Put(card, "CardID", {data.CardID});
    Put(card, "Revision", {data.Revision});
  }
  Value NewCard(const CCardData& data) const {
    Value card = New("CCardData");
    Fill(card, data);
    return card;
  }

  /// What a method or a get gives, as text, or the failure.
  std::string Ask(const Value& object, const std::string& member,
                  const Values& arguments = {}) const {
    Value result;
    const Outcome outcome = Try(object, member, kGets, arguments, &result);
    return outcome.failure.empty() ? result.Text() : outcome.failure;
  }
  /// What a method or a get gives, which has to be an object or a value of its own.
  Value Take(const Value& object, const std::string& member, const Values& arguments = {}) const {
    Value result;
    EXPECT_EQ(Try(object, member, kGets, arguments, &result).failure, "") << member;
    return result;
  }
  /// Puts the last of the arguments; gives the failure.
  std::string Put(const Value& object, const std::string& member, const Values& arguments) const {
    const bool isObject = arguments.back().vt == VT_DISPATCH;
    const int put = isObject ? INVOKE_PROPERTYPUTREF : INVOKE_PROPERTYPUT;
    return Try(object, member, put, arguments, nullptr).failure;
  }
  Outcome Try(const Value& object, const std::string& member, int kinds, Values arguments,
              Value* result) const {
    std::vector<VARIANT*> pointers;
    for (Value& argument : arguments) pointers.push_back(&argument);
    return Call(object.pdispVal, member, static_cast<WORD>(kinds), pointers, result);
  }

 protected:
  ServerModule module_;
  const HRESULT before_ = module_.CanUnloadNow();
};

/// A host's own frame, on the stack: with our interface, or with members of the right names only.
class HostFrame final : public ComObject<::ICardFrame> {
 public:
  LONG type = 0, subType = 0;
  std::optional<std::vector<std::uint8_t>> bytes;  // without them RawCardBytes is a text
  std::wstring hex;
  HRESULT failure = S_OK;  // of RawCardHex
  bool raises = false;     // has names only, and raises an exception that is no failure

  /// The frame as an object that has nothing but the names.
  Value ByNames() {
    ComPtr<ITypeInfo> info;
    ComPtr<IUnknown> names;
    Require(TypeLibrary()->GetTypeInfoOfGuid(__uuidof(::ICardFrame), info.out()));
    Require(CreateStdDispatch(nullptr, this, info.get(), names.out()));
    return names.As<IDispatch>().get();
  }

  STDMETHODIMP QueryInterface(REFIID iid, void** object) override {
    const bool isDispatch = iid == IID_IDispatch;
    if (raises && !isDispatch) return E_NOINTERFACE;
    return ComObject::QueryInterface(isDispatch ? __uuidof(::ICardFrame) : iid, object);
  }
  STDMETHODIMP GetTypeInfoCount(UINT*) override { return E_NOTIMPL; }
  STDMETHODIMP GetTypeInfo(UINT, LCID, ITypeInfo**) override { return E_NOTIMPL; }
  STDMETHODIMP GetIDsOfNames(REFIID, LPOLESTR*, UINT, LCID, DISPID* id) override {
    return *id = 1, S_OK;
  }
  STDMETHODIMP Invoke(DISPID, REFIID, LCID, WORD, DISPPARAMS*, VARIANT*, EXCEPINFO* exception,
                      UINT*) override {
    return exception->scode = S_FALSE, DISP_E_EXCEPTION;
  }
  STDMETHODIMP get_FrameCardType(LONG* value) override { return *value = type, S_OK; }
  STDMETHODIMP get_FrameCardSubType(LONG* value) override { return *value = subType, S_OK; }
  STDMETHODIMP get_IsEMFrame(VARIANT_BOOL* value) override { return *value = VARIANT_FALSE, S_OK; }
  STDMETHODIMP get_RawCardBytes(VARIANT* value) override {
    Value given = bytes ? Value(NewByteArray(*bytes)) : Value("0102030405060708");
    return VariantCopy(value, &given);
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
