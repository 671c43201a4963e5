#pragma once

#include <vardel/server/com.h>
#include <vardel/server/type_table.h>

#include <span>

namespace vardel::server {

/// One dual interface of an object: what it has, and where its vtable is.
struct DispatchTarget {
  const TypeTable& table;
  void* object;
};

/// Late-bound calls, driven by the type library and made through the vtable. The targets' members
/// are numbered apart from each other; names are looked up in order of the targets. Beyond the
/// system's own dispatcher this takes variants by reference for any parameter, passes omitted
/// optional by-reference arguments as null, and carries records both ways.
HRESULT GetIDsOfNames(std::span<const DispatchTarget> targets, REFIID riid, LPOLESTR* names,
                      UINT count, DISPID* ids);
HRESULT Invoke(std::span<const DispatchTarget> targets, DISPID id, REFIID riid, WORD flags,
               DISPPARAMS* params, VARIANT* result, EXCEPINFO* exception, UINT* argumentError);

/// A failure as the exception of a late-bound call: the status, with this thread's error
/// information.
HRESULT RaiseException(HRESULT status, EXCEPINFO* exception);

}  // namespace vardel::server
