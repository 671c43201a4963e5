#pragma once

#include <vardel/server/com.h>

namespace vardel::server {

/// For whom the classes are registered.
enum class Scope { Machine, User };

/// Writes the keys of the type library, its interfaces and its classes. A failure part-way is
/// returned and leaves the registry as it was, with an earlier registration in it.
HRESULT Register(Scope scope) noexcept;

/// Removes every key that Register writes. What the other word size's DLL, a copy of this one at
/// another place or another version of it has there stays.
HRESULT Unregister(Scope scope) noexcept;

}  // namespace vardel::server
