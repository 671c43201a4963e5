#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

/// Runs a fuzz target once for each file of the given folders.
int main(int argc, char** argv) {
  int count = 0;
  for (int i = 1; i < argc; ++i) {
    for (const auto& entry : std::filesystem::directory_iterator(argv[i])) {
      if (!entry.is_regular_file()) continue;
      std::fprintf(stderr, "%s\n", entry.path().string().c_str());
      std::ifstream file(entry.path(), std::ios::binary);
      const std::string bytes(std::istreambuf_iterator<char>(file), {});
      LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size());
      ++count;
    }
  }
  std::printf("%d files\n", count);
  return count > 0 ? 0 : 1;
}
