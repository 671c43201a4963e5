#include "soak/card_samples.h"

#include <algorithm>
#include <cstdlib>
#include <iostream>

// Cards in bulk, there and back: every HID standard and EM card, and random ones of each other
// format that encodes. `native_soak 1000` takes about 1000 of each.
int main(int argc, char** argv) {
  using namespace vardel;
  const std::uint64_t count = argc > 1 ? std::strtoull(argv[1], nullptr, 10) : 10'000'000;
  if (count == 0) return std::cerr << "usage: native_soak [cards of each format]\n", 2;
  for (const CardFormatClass& row : CardFormatClasses()) {
    const std::string_view name = row.ClassName.substr(11);
    if (name == "Binary26") continue;
    const NumberLayout& layout = kNumberLayouts[name == "EM" ? 1 : 0];
    const bool isEvery = name == layout.name;
    const std::uint64_t all = isEvery ? 255 * 65535 : count;
    const auto format = row.Create();
    Random random(20260103);
    std::uint64_t cards = 0;
    for (std::uint64_t i = 0; i < all; i += std::max<std::uint64_t>(all / count, 1), ++cards) {
      const std::string mismatch =
          Mismatch(*format, isEvery ? NumberCard(layout, 1 + i / 65535, 1 + i % 65535)
                                    : DrawCard(name, random));
      if (mismatch.empty()) continue;
      std::cout << row.ClassName << ": mismatch at card " << i << "\n" << mismatch << std::endl;
      return 1;
    }
    std::cout << row.ClassName << ": " << cards << " cards there and back" << std::endl;
  }
}
