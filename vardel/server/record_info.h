#pragma once

#include <vardel/core/card_data_struct.h>
#include <vardel/server/com.h>

namespace vardel::server {

/// Describes CardDataStruct to the automation system, for records in variants. It is the system's
/// own description where a copy that this makes keeps the bytes; not every system's copies array
/// members. Elsewhere it is ours, which keeps the DLL loaded while a host holds a record.
ComPtr<IRecordInfo> CardRecordInfo();
/// Lets go of what CardRecordInfo keeps, unless the DLL is in use.
void DropRecordInfo();

/// A new card record for a variant. One that is not handed out is destroyed here: clearing a
/// variant does not free its record on every system.
class NewRecord {
 public:
  NewRecord();
  NewRecord(const NewRecord&) = delete;
  NewRecord& operator=(const NewRecord&) = delete;
  ~NewRecord();

  void* bytes() const { return bytes_; }
  /// Only once.
  void HandTo(VARIANT& value);

 private:
  ComPtr<IRecordInfo> info_;
  void* bytes_;
};

/// An argument that wants a record: a card record, or an array of 32 bytes or of variants that
/// convert to bytes.
HRESULT ConvertToRecord(const VARIANT& source, vardel::CardDataStruct& record);

}  // namespace vardel::server
