#pragma once

#include <vardel/server/com.h>

namespace vardel::server {

/// Describes CardDataStruct to the automation system, for records in variants. Our own, since not
/// every system's copies array members; it keeps the DLL loaded while a host holds a record. The
/// caller owns the reference.
ComPtr<IRecordInfo> CardRecordInfo();

}  // namespace vardel::server
