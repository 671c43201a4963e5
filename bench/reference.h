#pragma once

#include <string>

namespace vardel {

/// The benchmark that another one is held against: the floor of its layout, or else HID standard's
/// way in the same direction. "" where there is none.
std::string Reference(const std::string& name);

}  // namespace vardel
