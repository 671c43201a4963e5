#include "tests/cases/native_host.h"

#include "tests/support/test_frame.h"
#include <vardel/core/card_frame.h>
#include <vardel/core/hex.h>
#include <vardel/core/host_fault.h>
#include <vardel/core/number.h>
#include <vardel/core/text.h>
#include <vardel/core/type_code.h>
#include <vardel/facade/card.h>
#include <vardel/facade/card_types.h>
#include <vardel/format/mod_card.h>
#include <vardel/formats/card_formats.h>

#include <algorithm>
#include <stdexcept>
#include <type_traits>
#include <typeindex>

namespace vardel {
namespace {

/// A word that becomes whatever its parameter wants.
struct Argument {
  const Word& word;
  const NativeHost& host;

  template <class T>
  operator T() const {
    if constexpr (std::is_same_v<T, bool>) {
      return word.text == "True";
    } else if constexpr (std::is_arithmetic_v<T>) {
      return static_cast<T>(std::stod(word.text));
    } else if constexpr (std::is_constructible_v<T, std::string>) {
      return T(word.text);
    } else if constexpr (std::is_same_v<T, ByteArray>) {
      ByteArray bytes((word.text.size() + 1) / 2);
      ParseHex(word.text, bytes);
      return bytes;
    } else {
      return word.text == "nothing" ? T() : std::any_cast<T>(host.Find(word.text).value);
    }
  }
};

/// What a member returned, kept and shown.
struct Result {
  NativeHost::Object object;
  std::string text;
};

template <class T>
Result MakeResult(const NativeHost& host, const T& value) {
  if constexpr (std::is_same_v<T, bool>) {
    return {{}, value ? "True" : "False"};
  } else if constexpr (std::is_arithmetic_v<T>) {
    return {{}, ShowNumber(static_cast<double>(value))};
  } else if constexpr (std::is_convertible_v<T, std::string_view>) {
    return {{}, ShowText(value)};
  } else if constexpr (std::is_same_v<T, CardDataStruct>) {
    return {{value, nullptr}, ShowRecord(value.Bytes)};
  } else if constexpr (std::is_convertible_v<T, std::span<const std::uint8_t>>) {
    return {{}, HexText(value)};
  } else if constexpr (std::is_same_v<T, CCardData> || std::is_same_v<T, CCardByteData> ||
                       std::is_same_v<T, CByteArrayData>) {
    return MakeResult(host, std::make_shared<T>(value));
  } else if constexpr (requires { value.use_count(); }) {
    if (!value) return {{value, nullptr}, "nothing"};
    return {{value, value.get()}, host.NameOf(value.get())};
  } else if constexpr (requires { value.has_value(); }) {
    return value ? MakeResult(host, *value) : Result{{}, "nothing"};
  } else {
    std::string text;
    for (const auto& each : value) text += (text.empty() ? "" : " ") + MakeResult(host, each).text;
    return {{}, text};
  }
}

using Member = Result (*)(const NativeHost&, const std::any&, const Words&);
using Members = std::map<std::string, Member>;

template <class F>
Result ResultOf(const NativeHost& host, const F& call) {
  if constexpr (std::is_void_v<decltype(call())>) {
    call();
    return {};
  } else {
    return MakeResult<std::remove_cvref_t<decltype(call())>>(host, call());
  }
}

/// A member of C: a function on one and as many arguments as a case gives, up to four.
template <class C, class F>
Member MemberOf(F) {
  return [](const NativeHost& host, const std::any& object, const Words& words) {
    using A = Argument;
    C& o = *std::any_cast<std::shared_ptr<C>>(object);
    const auto a = [&](std::size_t i) { return A{words[i], host}; };
    const F f{};
    const std::size_t count = words.size();
    if constexpr (std::is_invocable_v<F, C&>) {
      if (count == 0) return ResultOf(host, [&]() -> decltype(auto) { return f(o); });
    }
    if constexpr (std::is_invocable_v<F, C&, A>) {
      if (count == 1) return ResultOf(host, [&]() -> decltype(auto) { return f(o, a(0)); });
    }
    if constexpr (std::is_invocable_v<F, C&, A, A>) {
      if (count == 2) return ResultOf(host, [&]() -> decltype(auto) { return f(o, a(0), a(1)); });
    }
    if constexpr (std::is_invocable_v<F, C&, A, A, A>) {
      if (count == 3) return ResultOf(host, [&] { return f(o, a(0), a(1), a(2)); });
    }
    if constexpr (std::is_invocable_v<F, C&, A, A, A, A>) {
      if (count == 4) return ResultOf(host, [&] { return f(o, a(0), a(1), a(2), a(3)); });
    }
    throw std::runtime_error("wrong count of arguments");
  };
}

template <class T>
const T& Access(const T& value) {
  return value;
}
template <class T>
void Access(T& value, const Argument& argument) {
  value = argument.operator T();
}

struct Functions {};  // those of no class

std::vector<char32_t> CharCodes(std::string_view text) {
  std::vector<char32_t> codes;
  while (!text.empty()) codes.push_back(TakeChar(text));
  return codes;
}
std::string CharOfByte(std::uint8_t byte) {
  std::string text;
  AppendCharOfByte(text, byte);
  return text;
}

std::string Digits(double value, std::int16_t charCount) {
  std::string text = "old";
  AssignNumber(text, value, charCount);
  return text;
}

const ICardFrame* FrameOf(const Argument& argument) {
  if (argument.word.text == "nothing") return nullptr;
  const std::any& value = argument.host.Find(argument.word.text).value;
  if (const auto* const frame = std::any_cast<std::shared_ptr<CCardFrame>>(&value)) {
    return frame->get();
  }
  return std::any_cast<std::shared_ptr<TestFrame>>(value).get();
}

template <class T>
NativeHost::Object ObjectOf(std::shared_ptr<T> object) {
  const void* const identity = object.get();
  return {std::move(object), identity};
}
struct Class {
  std::type_index type;  // of a pointer to its objects
  NativeHost::Object (*make)();
  Members members;
};
template <class C>
Class ClassOf(Members members) {
  return {typeid(std::shared_ptr<C>), [] { return ObjectOf(std::make_shared<C>()); },
          std::move(members)};
}

// A method with all its overloads, a data member to get and to put, a function.
#define METHOD(name) \
  M(name, ([](auto& o, auto... a) -> decltype(o.name(a...)) { return o.name(a...); }))
#define VALUE(name) \
  M(name,           \
    ([](auto& o, auto... a) -> decltype(Access(o.name, a...)) { return Access(o.name, a...); }))
#define FUNCTION(name) \
  M(name, ([](auto&, auto... a) -> decltype(name(a...)) { return name(a...); }))
// Methods that take a card or a frame.
#define ENCODER(n, name) \
  M(name, ([](auto& o, std::shared_ptr<CCardData> c) { return o.name(c.get()); }))
#define DECODER(n, name) M(name, ([](auto& o, Argument frame) { return o.name(FrameOf(frame)); }))
#define FIELD(n, name, type) VALUE(name)
#define GET(n, name, type) VALUE(name)
#define PUT(n, name, type)
#define ACCESSOR(n, name, type) METHOD(name)
#define READONLY(n, name, type) METHOD(name)
#define INIT(n, name) METHOD(name)
#define VALIDATOR(n, name) METHOD(name)
#define ERROR_MEMBERS \
  METHOD(ErrName) METHOD(ErrNumber) METHOD(Error) METHOD(InitErr) METHOD(MakeErr)

const std::map<std::string, Class>& Classes() {
  static const std::map<std::string, Class> classes = [] {
    std::map<std::string, Class> all;
#define CLASS(name) \
  {                 \
    using C = name; \
    Members& members = all.emplace(#name, ClassOf<C>({})).first->second.members;
#define M(name, function) members.emplace(#name, MemberOf<C>(function));
#define END }
#include "tests/cases/members.inc"
    return all;
  }();
  return classes;
}

}  // namespace

void NativeHost::New(const std::string& name, const std::string& className) {
  const auto formats = CardFormatClasses();
  const auto format = std::ranges::find(formats, className, &CardFormatClass::ClassName);
  objects_[name] =
      format != formats.end() ? ObjectOf(format->Create()) : Classes().at(className).make();
}

void NativeHost::NewFrame(const std::string& name, const FrameData& data, int) {
  objects_[name] = ObjectOf(std::make_shared<TestFrame>(data.bytes, data.hex));
}

std::string NativeHost::Run(const Call& call) try {
  const std::any& object = Find(call.object).value;
  const auto known = std::ranges::find_if(
      Classes(), [&](const auto& each) { return each.second.type == object.type(); });
  Result result = known->second.members.at(call.member)(*this, object, call.arguments);
  if (!call.keepAs.empty()) objects_[call.keepAs] = std::move(result.object);
  return result.text;
} catch (const HostFault& fault) {
  return "fault " + std::to_string(static_cast<int>(fault.Number()));
}

std::string NativeHost::NameOf(const void* identity) const {
  for (const auto& [name, object] : objects_) {
    if (object.identity == identity) return name;
  }
  return "an object";
}

}  // namespace vardel
