#pragma once

#include "tests/cases/cases.h"
#include "tests/server/server.h"
#include "tests/server/test_frame.h"

#include <deque>
#include <functional>
#include <map>

namespace vardel::server {

/// A dual interface of the type library, by its vtable side.
struct DualInterface {
  std::string name;
  IID id;
  ComPtr<ITypeInfo> info;
};
/// Those that an object has, its own ones first.
std::vector<DualInterface> InterfacesOf(IDispatch* object);

using VisitOperation = std::function<void(const FUNCDESC& operation, const std::string& name)>;
void ForEachOperation(const DualInterface& dual, const VisitOperation& visit);

/// Calls an operation through its vtable entry, as compiled hosts do. Of the arguments, one for
/// each parameter but the result, null stands for a null pointer. Without `result` that pointer is
/// null too.
HRESULT CallVtable(IDispatch* object, const DualInterface& dual, const FUNCDESC& operation,
                   const std::vector<VARIANT*>& arguments, VARIANT* result);

/// The automation server, asked by names as scripts do or through vtables as compiled hosts do.
class ServerHost final : public CaseHost {
 public:
  enum class Binding { Late, Early };

  ServerHost(const ServerModule& module, Binding binding) : module_(module), binding_(binding) {}

  void New(const std::string& name, const std::string& className) override;
  std::string Run(const vardel::Call& call) override;
  int FrameKinds(const FrameData& data) const override;
  void NewFrame(const std::string& name, const FrameData& data, int kind) override;
  void Reset() override;

 private:
  void Fill(Variant& value, const Word& word);
  std::string Show(VARIANT& value) const;
  Outcome RunLate(const vardel::Call& call, const std::vector<VARIANT*>& arguments,
                  VARIANT* result);
  Outcome RunEarly(const vardel::Call& call, const std::vector<VARIANT*>& arguments,
                   VARIANT* result);

  const ServerModule& module_;
  Binding binding_;
  std::map<std::string, Variant> values_;
  std::deque<HostFrame> frames_;
};

}  // namespace vardel::server
