#include <vardel/core/host_fault.h>
#include <vardel/server/dispatch.h>
#include <vardel/server/record_info.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <optional>

namespace vardel::server {
namespace {

bool IsOmitted(const VARIANT& argument) {
  return argument.vt == VT_ERROR && argument.scode == DISP_E_PARAMNOTFOUND;
}

/// What lies in a register or a place of the stack; on x86 a double takes two.
using Word = std::uintptr_t;

/// The arguments of a call in the order of the vtable.
class Words {
 public:
  void Add(void* pointer) { words_[count_++] = reinterpret_cast<Word>(pointer); }
  void AddValue(const VARIANT& value, VARTYPE type) {
    const std::size_t count = type == VT_R8 ? sizeof(double) / sizeof(Word) : 1;
    std::memcpy(&words_[count_], &value.llVal, count * sizeof(Word));
    count_ += count;
  }

  /// Calls an entry of an object's vtable; it takes just these words.
  HRESULT Call(void* object, std::size_t vtableOffset) const {
    return kCalls[count_](Entry(object, vtableOffset), object, words_.data());
  }
  /// The same with one word, which is a double.
  HRESULT CallWithDouble(void* object, std::size_t vtableOffset) const {
    double value = 0;
    std::memcpy(&value, words_.data(), sizeof(value));
    using Function = HRESULT(STDMETHODCALLTYPE*)(void*, double);
    return reinterpret_cast<Function>(Entry(object, vtableOffset))(object, value);
  }

 private:
  template <std::size_t>
  using WordAt = Word;
  template <std::size_t... kPlaces>
  static HRESULT CallWith(void* entry, void* object, const Word* words) {
    using Function = HRESULT(STDMETHODCALLTYPE*)(void*, WordAt<kPlaces>...);
    return reinterpret_cast<Function>(entry)(object, words[kPlaces]...);
  }
  static void* Entry(void* object, std::size_t vtableOffset) {
    return (*static_cast<void***>(object))[vtableOffset / sizeof(void*)];
  }
  static constexpr HRESULT (*kCalls[])(void* entry, void* object, const Word* words) = {
      CallWith<>,        CallWith<0>,          CallWith<0, 1>,
      CallWith<0, 1, 2>, CallWith<0, 1, 2, 3>, CallWith<0, 1, 2, 3, 4>};

  std::array<Word, kMaxParameters + 1> words_;  // a result's place comes last
  std::size_t count_ = 0;
};

/// What an argument needs until the call is over.
struct Argument {
  VARIANT value{};  // the host's own, or what `owned` holds
  Variant owned;
  vardel::CardDataStruct record;
};

HRESULT ConvertObject(const VARIANT& source, const Parameter& parameter, Argument& argument) {
  IUnknown* object = nullptr;
  switch (source.vt) {
    case VT_NULL:
      break;
    case VT_DISPATCH:
    case VT_UNKNOWN:
      object = source.punkVal;
      break;
    case VT_BYREF | VT_DISPATCH:
    case VT_BYREF | VT_UNKNOWN:
      object = *source.ppunkVal;
      break;
    default:
      return DISP_E_TYPEMISMATCH;
  }
  argument.value.punkVal = object;
  const bool isAlreadyRight =
      (source.vt & ~VT_BYREF) == VT_DISPATCH && parameter.guid == IID_IDispatch;
  if (object == nullptr || isAlreadyRight) return S_OK;
  IDispatch*& owned = argument.owned.pdispVal;
  if (FAILED(object->QueryInterface(parameter.guid, reinterpret_cast<void**>(&owned)))) {
    return DISP_E_TYPEMISMATCH;
  }
  argument.owned.vt = VT_DISPATCH;
  argument.value.pdispVal = owned;
  return S_OK;
}

/// Adds an argument to the words of the call.
HRESULT Convert(const VARIANT& given, const Parameter& parameter, Argument& argument,
                Words& words) {
  const VARIANT* const unwrapped = ValueOf(given);
  if (unwrapped == nullptr) return DISP_E_TYPEMISMATCH;
  const VARIANT& source = *unwrapped;
  if (IsOmitted(source)) {
    if (!parameter.isOptional) return DISP_E_PARAMNOTOPTIONAL;
    words.Add(nullptr);
    return S_OK;
  }
  if (parameter.type == VT_RECORD) {
    words.Add(&argument.record);
    return ConvertToRecord(source, argument.record);
  }

  HRESULT status = S_OK;
  if (parameter.type == VT_DISPATCH) {
    status = ConvertObject(source, parameter, argument);
  } else if (source.vt == parameter.type) {
    argument.value = source;
  } else {
    status = ChangeType(argument.owned, source, parameter.type);
    argument.value = argument.owned;
  }
  if (parameter.isByRef) {
    words.Add(&argument.value.llVal);
  } else {
    words.AddValue(argument.value, parameter.type);
  }
  return status;
}

using OrderedArguments = std::array<const VARIANT*, kMaxParameters>;

/// The arguments in the order of the parameters; null for an omitted one. They come last first,
/// named ones before all others.
HRESULT Order(const DISPPARAMS& params, const Member& member, OrderedArguments& ordered,
              UINT* argumentError) {
  const std::size_t count = member.parameters.size();
  if (params.cArgs > count || params.cNamedArgs > params.cArgs) return DISP_E_BADPARAMCOUNT;
  if ((params.rgvarg == nullptr && params.cArgs > 0) ||
      (params.rgdispidNamedArgs == nullptr && params.cNamedArgs > 0)) {
    return E_INVALIDARG;
  }
  const UINT positional = params.cArgs - params.cNamedArgs;
  for (UINT i = 0; i < positional; ++i) ordered[i] = &params.rgvarg[params.cArgs - 1 - i];
  for (UINT i = 0; i < params.cNamedArgs; ++i) {
    const DISPID name = params.rgdispidNamedArgs[i];
    const std::size_t place =
        name == DISPID_PROPERTYPUT ? count - 1 : static_cast<std::size_t>(name);
    if (place >= count || ordered[place] != nullptr) {
      if (argumentError != nullptr) *argumentError = i;
      return DISP_E_PARAMNOTFOUND;
    }
    ordered[place] = &params.rgvarg[i];
  }
  for (std::size_t i = 0; i < count; ++i) {
    if (ordered[i] == nullptr && !member.parameters[i].isOptional) return DISP_E_BADPARAMCOUNT;
  }
  return S_OK;
}

HRESULT Call(const DispatchTarget& target, const Member& member, const DISPPARAMS& params,
             VARIANT* result, EXCEPINFO* exception, UINT* argumentError) {
  OrderedArguments given{};
  if (const HRESULT status = Order(params, member, given, argumentError); FAILED(status)) {
    return status;
  }
  Variant omitted;
  omitted.vt = VT_ERROR;
  omitted.scode = DISP_E_PARAMNOTFOUND;
  std::array<Argument, kMaxParameters> arguments;
  Words words;
  for (std::size_t i = 0; i < member.parameters.size(); ++i) {
    const VARIANT* const source = given[i] == nullptr ? &omitted : given[i];
    const HRESULT status = Convert(*source, member.parameters[i], arguments[i], words);
    if (FAILED(status) && argumentError != nullptr && given[i] != nullptr) {
      *argumentError = static_cast<UINT>(given[i] - params.rgvarg);
    }
    if (status == DISP_E_TYPEMISMATCH) throw HostFault(Fault::TypeMismatch);
    if (status == DISP_E_OVERFLOW) throw HostFault(Fault::Overflow);
    if (FAILED(status)) return status;
  }

  Variant answer;
  std::optional<NewRecord> record;
  if (member.result.type == VT_RECORD) {
    words.Add(record.emplace().bytes());
  } else if (member.result.type == VT_VARIANT) {
    words.Add(&answer);
  } else if (member.result.type != VT_EMPTY) {
    words.Add(&answer.llVal);
  }

  SetErrorInfo(0, nullptr);
  const HRESULT status = member.takesDouble
                             ? words.CallWithDouble(target.object, member.vtableOffset)
                             : words.Call(target.object, member.vtableOffset);
  if (FAILED(status)) return RaiseException(status, exception);
  if (record) {
    if (result != nullptr) record->HandTo(*result);
    return S_OK;
  }
  if (answer.vt == VT_EMPTY && member.result.type != VT_VARIANT) answer.vt = member.result.type;
  if (result != nullptr) {
    *result = answer;
    answer.vt = VT_EMPTY;
  }
  return S_OK;
}

}  // namespace

HRESULT RaiseException(HRESULT status, EXCEPINFO* exception) {
  ComPtr<IErrorInfo> info;
  GetErrorInfo(0, info.out());
  if (exception != nullptr) {
    *exception = {};
    exception->scode = status;
    if (info) {
      info->GetSource(&exception->bstrSource);
      info->GetDescription(&exception->bstrDescription);
    }
  }
  return DISP_E_EXCEPTION;
}

HRESULT GetIDsOfNames(std::span<const DispatchTarget> targets, REFIID riid, LPOLESTR* names,
                      UINT count, DISPID* ids) {
  if (riid != IID_NULL) return DISP_E_UNKNOWNINTERFACE;
  if (names == nullptr || ids == nullptr || count == 0) return E_POINTER;
  if (std::find(names, names + count, nullptr) != names + count) return E_INVALIDARG;
  std::fill_n(ids, count, DISPID_UNKNOWN);
  for (const DispatchTarget& target : targets) {
    const Member* const member = target.table.Find(names[0]);
    if (member == nullptr) continue;
    ids[0] = member->id;
    HRESULT status = S_OK;
    for (UINT i = 1; i < count; ++i) {
      const auto& parameters = member->parameters;
      const auto found = std::ranges::find_if(
          parameters, [&](const Parameter& p) { return EqualNames(p.name, names[i]); });
      if (found == parameters.end()) {
        status = DISP_E_UNKNOWNNAME;
      } else {
        ids[i] = static_cast<DISPID>(found - parameters.begin());
      }
    }
    return status;
  }
  return DISP_E_UNKNOWNNAME;
}

HRESULT Invoke(std::span<const DispatchTarget> targets, DISPID id, REFIID riid, WORD flags,
               DISPPARAMS* params, VARIANT* result, EXCEPINFO* exception, UINT* argumentError) {
  if (riid != IID_NULL) return DISP_E_UNKNOWNINTERFACE;
  if (params == nullptr) return E_POINTER;
  for (const DispatchTarget& target : targets) {
    if (const Member* const member = target.table.Find(id, flags)) {
      return Call(target, *member, *params, result, exception, argumentError);
    }
  }
  return DISP_E_MEMBERNOTFOUND;
}

}  // namespace vardel::server
