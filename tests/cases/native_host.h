#pragma once

#include "tests/cases/cases.h"

#include <any>
#include <map>
#include <memory>

namespace vardel {

/// The library itself, its classes by their names. The class `Functions` has those that belong to
/// none.
class NativeHost final : public CaseHost {
 public:
  /// An object under a name or a result: a shared_ptr, or a record.
  struct Object {
    std::any value;
    const void* identity = nullptr;
  };

  void New(const std::string& name, const std::string& className) override;
  std::string Run(const Call& call) override;
  int FrameKinds(const FrameData&) const override { return 1; }
  void NewFrame(const std::string& name, const FrameData& data, int kind) override;
  void Reset() override { objects_.clear(); }

  /// The object of a name; fails where there is none.
  const Object& Find(const std::string& name) const { return objects_.at(name); }
  /// The name of an object, or "an object".
  std::string NameOf(const void* identity) const;

 private:
  std::map<std::string, Object> objects_;
};

}  // namespace vardel
