#pragma once

#include <vardel/server/com.h>

namespace vardel::server {

/// For whom the classes are registered.
enum class Scope { Machine, User };

/// Writes the keys of the type library, its interfaces and its classes. A failure part-way removes
/// what there is and is returned.
HRESULT Register(Scope scope) noexcept;

/// Removes every key that Register writes. What the other word size's DLL still needs stays.
HRESULT Unregister(Scope scope) noexcept;

}  // namespace vardel::server
