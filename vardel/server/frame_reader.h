#pragma once

#include <vardel/core/frame.h>
#include <vardel/server/com.h>

#include <memory>

namespace vardel::server {

/// The frame behind a decoder's argument: our own CCardFrame is read directly, an object with our
/// ICardFrame interface through that, any other automation object by the members' names. Null for
/// no object. What a frame's member fails with is thrown as Failure; a value of the wrong kind
/// is fault 13.
std::shared_ptr<vardel::ICardFrame> ReadFrame(IDispatch** object);

}  // namespace vardel::server
