#pragma once

#include <vardel/format/card_format_info.h>
#include <vardel/server/com.h>

#include <memory>
#include <string_view>

namespace vardel::server {

/// A new automation object for a format, of the class that the format is of.
ComPtr<IUnknown> NewFormatObject(std::shared_ptr<vardel::CCardFormatInfo> core);

/// A new format of a class, by the class's name; empty for no such class.
ComPtr<IUnknown> CreateFormatObject(std::string_view className);

}  // namespace vardel::server
