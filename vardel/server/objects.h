#pragma once

#include <vardel/server/com.h>

#include <string_view>

namespace vardel::server {

/// A new object of one of the library's classes, by the class's name; empty for no such class.
ComPtr<IUnknown> CreateObject(std::string_view className);

}  // namespace vardel::server
