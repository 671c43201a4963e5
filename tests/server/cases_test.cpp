#include "tests/server/server_host.h"

#include <gtest/gtest.h>

#include <filesystem>

// The library's cases through the server, asked by names and through vtables: hosts of either kind
// see what C++ hosts see.
namespace vardel::server {
namespace {

using Binding = ServerHost::Binding;
using Case = std::pair<std::string, Binding>;

std::vector<Case> AllCases() {
  std::vector<Case> cases;
  for (const char* folder : {"cases/formats", "cases/classes", "server/cases"}) {
    for (const std::string& path : CaseFiles(folder)) {
      cases.insert(cases.end(), {{path, Binding::Late}, {path, Binding::Early}});
    }
  }
  for (const std::string& path : CaseFiles("server/cases/late")) {
    cases.emplace_back(path, Binding::Late);
  }
  return cases;
}

class ServerCases : public testing::TestWithParam<Case> {};

TEST_P(ServerCases, Hold) {
  const ServerModule module;
  ServerHost host(module, GetParam().second);
  RunCases(GetParam().first, host);
}

std::string NameOf(const testing::TestParamInfo<Case>& test) {
  const bool isLate = test.param.second == Binding::Late;
  return std::filesystem::path(test.param.first).stem().string() + (isLate ? "_late" : "_early");
}
INSTANTIATE_TEST_SUITE_P(Of, ServerCases, testing::ValuesIn(AllCases()), NameOf);

}  // namespace
}  // namespace vardel::server
