#pragma once

#include <vardel/server/com.h>

namespace vardel::server {

/// One of the library's classes.
struct Class {
  const char* name;
  const CLSID& id;
  ComPtr<IUnknown> (*create)(const char* name);
};

/// The class of an id; null for none of ours.
const Class* FindClass(REFCLSID id);

}  // namespace vardel::server
