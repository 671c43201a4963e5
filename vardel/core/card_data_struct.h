#pragma once

#include <array>
#include <cstdint>

namespace vardel {

/// The raw card record: byte i is card byte i. No header, no count, no padding.
struct CardDataStruct {
  std::array<std::uint8_t, 32> Bytes{};

  friend bool operator==(const CardDataStruct&, const CardDataStruct&) = default;
};
static_assert(sizeof(CardDataStruct) == 32);

}  // namespace vardel
