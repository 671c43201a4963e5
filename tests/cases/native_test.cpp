#include "tests/cases/native_host.h"
#include <vardel/format/descriptor_members.h>
#include <vardel/formats/card_formats.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>

// The cases of the library itself: of each format, of the other classes, and of the functions below
// them.
namespace vardel {
namespace {

class NativeCases : public testing::TestWithParam<std::string> {};

TEST_P(NativeCases, Hold) {
  NativeHost host;
  RunCases(GetParam(), host);
}

std::string TestName(const testing::TestParamInfo<std::string>& info) {
  return std::filesystem::path(info.param).stem().string();
}
const auto kFilesIn = [](const char* folder) { return testing::ValuesIn(CaseFiles(folder)); };
INSTANTIATE_TEST_SUITE_P(Formats, NativeCases, kFilesIn("cases/formats"), TestName);
INSTANTIATE_TEST_SUITE_P(Classes, NativeCases, kFilesIn("cases/classes"), TestName);
INSTANTIATE_TEST_SUITE_P(Functions, NativeCases, kFilesIn("cases/functions"), TestName);

TEST(FormatCases, CoverEveryFormatWithEveryKindOfCaseAndEveryParameter) {
#define FIELD(n, name, type) "format." #name " =>",
#define GET(n, name, type) FIELD(n, name, type)
#define ACCESSOR(n, name, type) FIELD(n, name, type)
#define READONLY(n, name, type) FIELD(n, name, type)
#define PUT(n, name, type)
#define INIT(n, name)
#define VALIDATOR(n, name)
#define ENCODER(n, name) "encode", "encode",
#define DECODER(n, name) "decode", "decode", "format.IsFacilityValid", "format.IsCardIDValid",
  const std::vector<std::string> expected = {DESCRIPTOR_MEMBERS()};
  std::vector<std::string> formats;
  for (const std::string& path : CaseFiles("cases/formats")) {
    std::ifstream file(path);
    std::vector<std::string> missing = expected;
    for (std::string line; std::getline(file, line);) {
      if (line.starts_with("format ")) formats.push_back(line.substr(7));
      const auto found = std::ranges::find_if(
          missing, [&](const std::string& start) { return line.starts_with(start + ' '); });
      if (found != missing.end()) missing.erase(found);
    }
    EXPECT_EQ(missing, std::vector<std::string>()) << path;
  }
  for (const CardFormatClass& row : CardFormatClasses()) {
    EXPECT_EQ(std::ranges::count(formats, row.ClassName), 1) << row.ClassName;
  }
}

}  // namespace
}  // namespace vardel
