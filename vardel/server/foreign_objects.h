#pragma once

#include <vardel/core/card_data.h>
#include <vardel/server/com.h>

#include <vardel_idl.h>

#include <cstddef>
#include <memory>

namespace vardel::server {

/// What to do with an argument that has our interface but is not one of this module's objects on
/// this thread: the proxy of an object of another apartment, an object of another copy of the DLL.
/// A card is read. What fails in it is thrown as Failure.
std::shared_ptr<vardel::CCardData> FromElsewhere(::_CCardData& card);
/// Anything else would have to be shared: fault 13, with a description that says so.
[[noreturn]] std::nullptr_t FromElsewhere(IDispatch& object);

}  // namespace vardel::server
