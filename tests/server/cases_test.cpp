#include "tests/server/server_host.h"

#include <gtest/gtest.h>

#include <filesystem>

// The library's cases through the server, asked by names and through vtables: hosts of either kind
// see what C++ hosts see.
namespace vardel::server {
namespace {

using Binding = ServerHost::Binding;

class ServerCases : public testing::TestWithParam<std::tuple<std::string, Binding>> {
 protected:
  void RunWith(Binding binding) {
    const ServerModule module;
    ServerHost host(module, binding);
    RunCases(std::get<0>(GetParam()), host);
  }
};

TEST_P(ServerCases, Hold) { RunWith(std::get<1>(GetParam())); }

std::string TestName(const testing::TestParamInfo<std::tuple<std::string, Binding>>& info) {
  const auto& [path, binding] = info.param;
  return std::filesystem::path(path).stem().string() +
         (binding == Binding::Late ? "_late" : "_early");
}
const auto kBothBindings = testing::Values(Binding::Late, Binding::Early);
INSTANTIATE_TEST_SUITE_P(Formats, ServerCases,
                         testing::Combine(testing::ValuesIn(CaseFiles("cases/formats")),
                                          kBothBindings),
                         TestName);
INSTANTIATE_TEST_SUITE_P(Classes, ServerCases,
                         testing::Combine(testing::ValuesIn(CaseFiles("cases/classes")),
                                          kBothBindings),
                         TestName);
INSTANTIATE_TEST_SUITE_P(Objects, ServerCases,
                         testing::Combine(testing::ValuesIn(CaseFiles("server/cases")),
                                          kBothBindings),
                         TestName);
INSTANTIATE_TEST_SUITE_P(Scripts, ServerCases,
                         testing::Combine(testing::ValuesIn(CaseFiles("server/cases/late")),
                                          testing::Values(Binding::Late)),
                         TestName);

}  // namespace
}  // namespace vardel::server
