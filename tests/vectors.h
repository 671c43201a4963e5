#pragma once

#include <vardel/core/card_data.h>
#include <vardel/core/number.h>

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>
#include <vector>

/// The rows of vectors.csv and descriptors.csv, which hold whatever way a format is called. They
/// need no test framework, so that the programs of every platform can run them.
namespace vardel {

/// Names of descriptor members and their values.
using MemberValues = std::vector<std::pair<std::string, std::string>>;

/// Bytes and text of a read, which need not agree; no bytes stand for a frame without a byte array.
struct FrameData {
  std::optional<std::vector<std::uint8_t>> bytes;
  std::string hex;
};

/// One call on a new object of a format, and what it has to answer.
struct Vector {
  std::string where;      // "vectors.csv:LINE"
  std::string operation;  // encode, decode, or the name of a validator
  std::string className;
  MemberValues changes;  // put before the call, in this order
  CCardData card;        // to encode
  std::string text;      // the argument of a validator
  FrameData frame;       // to decode
  std::string answer;    // as the functions below say it
};
std::vector<Vector> Vectors();

/// The values of a new object of a class.
struct Descriptor {
  std::string where, className;
  MemberValues values;
};
std::vector<Descriptor> Descriptors();

/// Answers: a record without the zeros at its end, a card, either with its error; a fault.
std::string RecordAnswer(std::span<const std::uint8_t> record, std::int32_t errNumber,
                         std::string_view errName);
std::string CardAnswer(const CCardData& card);
std::string FaultAnswer(std::int32_t number);
/// Other answers and the values of descriptors.
template <class T>
std::string ValueText(const T& value) {
  if constexpr (std::is_same_v<T, bool>) {
    return value ? "True" : "False";
  } else if constexpr (std::is_arithmetic_v<T>) {
    return NumberText(static_cast<double>(value));
  } else {
    return std::string(value);
  }
}

}  // namespace vardel
