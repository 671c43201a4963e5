#pragma once

#include <vardel/core/frame.h>

#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace vardel {

/// A host's own frame: bytes and text need not agree, and it counts how often it is read.
struct TestFrame : ICardFrame {
  TestFrame(std::optional<std::vector<std::uint8_t>> rawBytes, std::string rawHex)
      : bytes(std::move(rawBytes)), hex(std::move(rawHex)) {}

  std::int32_t type = 0;
  std::int32_t subType = 0;
  bool isEM = false;
  std::optional<std::vector<std::uint8_t>> bytes;
  std::string hex;
  mutable int byteReads = 0;

  std::int32_t FrameCardType() const override { return type; }
  std::int32_t FrameCardSubType() const override { return subType; }
  bool IsEMFrame() const override { return isEM; }
  RawBytes RawCardBytes() const override {
    ++byteReads;
    return bytes;
  }
  std::string_view RawCardHex() const override { return hex; }
};

}  // namespace vardel
