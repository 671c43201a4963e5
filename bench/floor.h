#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <string_view>

/// The same conversions written by hand, without the library, its messages or its rules: what the
/// machine needs for the work itself.
namespace floor_of {

using Record = std::array<std::uint8_t, 32>;

struct Fields {
  std::string facility;
  std::string cardID;
};

/// False where a field is no number or out of range.
bool Encode26(std::string_view facility, std::string_view cardID, Record& record);
bool Encode35(std::string_view facility, std::string_view cardID, Record& record);
/// From 64 hexadecimal digits. False where they are malformed or the read is blank.
bool Decode26(std::string_view hex, Fields& fields);
bool Decode35(std::string_view hex, Fields& fields);

}  // namespace floor_of
