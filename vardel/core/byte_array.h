#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace vardel {

/// A run of bytes of a fixed length, index 0 first. Up to 32 of them, a full card record, need no
/// heap. Indexes are not checked.
class ByteArray {
 public:
  /// `size` zero bytes.
  explicit ByteArray(std::size_t size = 0) {
    if (size > small_.size()) {
      large_.resize(size);
    } else {
      smallSize_ = size;
    }
  }
  explicit ByteArray(std::span<const std::uint8_t> bytes) : ByteArray(bytes.size()) {
    std::ranges::copy(bytes, begin());
  }

  std::size_t size() const { return large_.empty() ? smallSize_ : large_.size(); }
  std::uint8_t* data() { return large_.empty() ? small_.data() : large_.data(); }
  const std::uint8_t* data() const { return large_.empty() ? small_.data() : large_.data(); }
  std::uint8_t* begin() { return data(); }
  std::uint8_t* end() { return data() + size(); }
  const std::uint8_t* begin() const { return data(); }
  const std::uint8_t* end() const { return data() + size(); }
  std::uint8_t& operator[](std::size_t index) { return data()[index]; }
  std::uint8_t operator[](std::size_t index) const { return data()[index]; }

 private:
  std::array<std::uint8_t, 32> small_{};
  std::size_t smallSize_ = 0;
  std::vector<std::uint8_t> large_;  // in use when not empty
};

}  // namespace vardel
