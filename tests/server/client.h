#pragma once

#include "tests/server/library_types.h"
#include "tests/vectors.h"

#include <gtest/gtest.h>

#include <ostream>
#include <span>

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

  template <class T>
  std::span<T> Elements() const {
    return {static_cast<T*>(parray->pvData), parray->rgsabound[0].cElements};
  }
  /// Numbers are digits, bytes and records hexadecimal ones without the zeros at the end.
  std::string Text() const {
    std::string text;
    if (vt == VT_EMPTY) return "";
    if (vt == VT_BSTR) return Utf8(bstrVal);
    if (vt == VT_BOOL) return ValueText(boolVal == VARIANT_TRUE);
    if (vt == VT_DISPATCH) return pdispVal == nullptr ? "nothing" : "an object";
    if (vt == VT_RECORD) return RecordAnswer({static_cast<std::uint8_t*>(pvRecord), 32}, 0, "");
    if (vt == (VT_ARRAY | VT_UI1)) return RecordAnswer(Elements<std::uint8_t>(), 0, "");
    if (vt == (VT_ARRAY | VT_VARIANT)) {
      for (const VARIANT& each : Elements<VARIANT>()) text += Value(each).Text() + ' ';
      return text;
    }
    Value number = *this;
    EXPECT_EQ(VariantChangeType(&number, &number, 0, VT_R8), S_OK) << "of type " << vt;
    return ValueText(number.dblVal);
  }
  /// The same object.
  bool operator==(const Value& other) const {
    return ComPtr<IDispatch>::Share(pdispVal).As<IUnknown>().get() ==
           ComPtr<IDispatch>::Share(other.pdispVal).As<IUnknown>().get();
  }
};
inline void PrintTo(const Value& value, std::ostream* out) { *out << value.Text(); }

/// How a host calls: by names, as scripts do, or through vtables, as compiled programs do.
enum class Binding { Names, Vtables };
inline void PrintTo(Binding binding, std::ostream* out) {
  *out << (binding == Binding::Names ? "Names" : "Vtables");
}

/// A host of one kind, without any registry. A failure is "fault 6", or "status 3" with the lower
/// half of a status.
class Client {
 public:
  static constexpr int kGets = INVOKE_FUNC | INVOKE_PROPERTYGET;
  static constexpr int kPuts = INVOKE_PROPERTYPUT | INVOKE_PROPERTYPUTREF;
  using Values = std::vector<Value>;

  explicit Client(Binding binding) : binding_(binding) {}
  ~Client() {
    SetErrorInfo(0, nullptr);
    EXPECT_EQ(module_.CanUnloadNow(), S_OK) << "an object is left";
  }

  Value New(const std::string& className) const {
    static const auto classes = LibraryClasses();
    return module_.Create<IDispatch>(classes.at(className)).get();
  }
  Value NewCard(const CCardData& data) const {
    Value card = New("CCardData");
    Put(card, "CardType", {data.CardType});
    Put(card, "CardSubType", {data.CardSubType});
    Put(card, "Facility", {data.Facility});
    Put(card, "CardID", {data.CardID});
    Put(card, "Revision", {data.Revision});
    return card;
  }

  /// What a method or a get gives, as text, or the failure.
  std::string Ask(const Value& object, const std::string& member, const Values& arguments = {},
                  Value* result = nullptr) const {
    Value own;
    const Outcome outcome = Try(object, member, kGets, arguments, result ? result : &own);
    return FAILED(outcome.status) ? Failure(outcome) : (result ? result : &own)->Text();
  }
  /// What a method or a get gives, which has to be an object or a value of its own.
  Value Take(const Value& object, const std::string& member, const Values& arguments = {}) const {
    Value result;
    EXPECT_EQ(Try(object, member, kGets, arguments, &result).status, S_OK) << member;
    return result;
  }
  /// Puts the last of the arguments; gives "" or the failure.
  std::string Put(const Value& object, const std::string& member, const Values& arguments) const {
    const Outcome outcome = Try(object, member, kPuts, arguments, nullptr);
    return FAILED(outcome.status) ? Failure(outcome) : "";
  }
  Outcome Try(const Value& object, const std::string& member, int kinds, Values arguments,
              Value* result) const {
    std::vector<VARIANT*> pointers;
    for (Value& argument : arguments) pointers.push_back(&argument);
    if (binding_ == Binding::Names) {
      const bool isObject = kinds == kPuts && arguments.back().vt == VT_DISPATCH;
      if (kinds == kPuts) kinds = isObject ? INVOKE_PROPERTYPUTREF : INVOKE_PROPERTYPUT;
      return Call(object.pdispVal, Wide(member), static_cast<WORD>(kinds), pointers, result);
    }
    HRESULT status = DISP_E_UNKNOWNNAME;
    ForEachOperation(object.pdispVal, [&](const auto& dual, const auto& each, const auto& name) {
      if (status != DISP_E_UNKNOWNNAME || name != member || (each.invkind & kinds) == 0) return;
      status = CallVtable(object.pdispVal, dual, each, pointers, result);
    });
    return EarlyOutcome(status);
  }

 private:
  static std::string Failure(const Outcome& outcome) {
    const long status = outcome.status & 0xFFFF;
    if (outcome.status != DISP_E_EXCEPTION) return "status " + std::to_string(status);
    EXPECT_TRUE(outcome.source.starts_with(L"Vardel.C") && !outcome.description.empty());
    return FaultAnswer(outcome.fault);
  }

  Binding binding_;
  ServerModule module_;
};

}  // namespace vardel::server
