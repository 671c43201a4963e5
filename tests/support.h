#pragma once

#include "tests/vectors.h"
#include <vardel/core/frame.h>
#include <vardel/core/host_fault.h>

namespace vardel {

/// A host's own frame: bytes and text need not agree, and it counts how often it is read.
struct TestFrame : ICardFrame {
  explicit TestFrame(FrameData frame, std::int32_t cardType = 0, std::int32_t cardSubType = 0)
      : data(std::move(frame)), type(cardType), subType(cardSubType) {}

  const FrameData data;
  const std::int32_t type, subType;
  mutable int byteReads = 0;

  std::int32_t FrameCardType() const override { return type; }
  std::int32_t FrameCardSubType() const override { return subType; }
  bool IsEMFrame() const override { return false; }
  RawBytes RawCardBytes() const override { return ++byteReads, data.bytes; }
  std::string_view RawCardHex() const override { return data.hex; }
};

/// The number of the fault that ends the call, or 0.
int FaultOf(const auto& call) try { return call(), 0; } catch (const HostFault& fault) {
  return static_cast<int>(fault.Number());
}

/// The text that the call gives, or its fault.
std::string AnswerOf(const auto& call) {
  std::string answer;
  const int fault = FaultOf([&] { answer = call(); });
  return fault == 0 ? answer : FaultAnswer(fault);
}

/// Values as one text.
std::string TextOf(const auto& first, const auto&... others) {
  return (ValueText(first) + ... + (" " + ValueText(others)));
}

/// An object's error pair as one text.
std::string ErrorOf(const auto& object) {
  if constexpr (requires { object.ErrName(); }) {
    return TextOf(object.ErrNumber(), object.ErrName());
  } else {
    return TextOf(object.ErrNumber, object.ErrName);
  }
}

}  // namespace vardel
