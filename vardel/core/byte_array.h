#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace vardel {

/// A run of bytes of a fixed length, index 0 first. Up to 32 of them, a full card record, need no
/// heap.
class ByteArray {
 public:
  /// `size` zero bytes.
  explicit ByteArray(std::size_t size = 0) : size_(size) {
    if (size > small_.size()) large_.resize(size);
  }
  explicit ByteArray(std::span<const std::uint8_t> bytes) : ByteArray(bytes.size()) {
    std::ranges::copy(bytes, begin());
  }

  std::size_t size() const { return size_; }
  std::uint8_t* data() { return large_.empty() ? small_.data() : large_.data(); }
  const std::uint8_t* data() const { return large_.empty() ? small_.data() : large_.data(); }
  std::uint8_t* begin() { return data(); }
  std::uint8_t* end() { return data() + size_; }
  const std::uint8_t* begin() const { return data(); }
  const std::uint8_t* end() const { return data() + size_; }
  std::uint8_t& operator[](std::size_t index) { return data()[index]; }
  std::uint8_t operator[](std::size_t index) const { return data()[index]; }

 private:
  std::array<std::uint8_t, 32> small_{};
  std::vector<std::uint8_t> large_;  // in use when not empty
  std::size_t size_;
};

}  // namespace vardel
