#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string_view>

namespace vardel {

/// The raw bytes of a read; nothing when a frame's value is no byte array.
using RawBytes = std::optional<std::span<const std::uint8_t>>;

/// One card read, as the decoders see it. The views that a member returns stay valid until the same
/// member is called again or the frame changes. What a member throws passes to the decoder's
/// caller.
class ICardFrame {
 public:
  virtual ~ICardFrame() = default;

  /// Type and sub-type of the read.
  virtual std::int32_t FrameCardType() const = 0;
  virtual std::int32_t FrameCardSubType() const = 0;
  /// A read whose type pair is not accepted is to be decoded as EM standard.
  virtual bool IsEMFrame() const = 0;
  /// The raw data, first byte first. Its length fixes how many bytes a decoder parses from
  /// RawCardHex: 32 for a full record.
  virtual RawBytes RawCardBytes() const = 0;
  /// The same data as text, two hexadecimal digits per byte, first byte first.
  virtual std::string_view RawCardHex() const = 0;
};

}  // namespace vardel
