#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

/// Runs the fuzzed host once for each file of the given folders, none of which may be empty.
int main(int argc, char** argv) {
  for (int i = 1; i < argc; ++i) {
    int count = 0;
    for (const auto& entry : std::filesystem::directory_iterator(argv[i])) {
      std::fprintf(stderr, "%s\n", entry.path().c_str());
      std::ifstream file(entry.path(), std::ios::binary);
      const std::string bytes(std::istreambuf_iterator<char>(file), {});
      LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size());
      ++count;
    }
    if (count == 0) return 1;
  }
}
