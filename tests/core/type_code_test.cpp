#include "tests/support/fault_of.h"
#include <vardel/core/type_code.h>

#include <gtest/gtest.h>

#include <climits>
#include <set>

namespace vardel {
namespace {

TEST(TypeCodeTest, AcceptsTheListedTypesAndPairsAndNoOthers) {
  const std::set<std::pair<int, int>> accepted = {{1, 1}, {2, 1}, {2, 2}, {2, 5}, {3, 1}, {3, 5}};
  for (int type = -1; type <= 6; ++type) {
    EXPECT_EQ(IsValidMainType(type), type == 1 || type == 2 || type == 3) << type;
    for (int sub = -1; sub <= 6; ++sub) {
      EXPECT_EQ(IsValidTypePair(type, sub), accepted.contains({type, sub})) << type << "/" << sub;
    }
  }
  // Same type codes as accepted pairs, the second after a wrap-around.
  EXPECT_FALSE(IsValidTypePair(0, 257) || IsValidTypePair((1 << 24) + 1, 1));
}

TEST(TypeCodeTest, OverflowsInTheProductAsWellAsInTheSum) {
  EXPECT_EQ(TypeCode(-1, 5), -251);
  EXPECT_EQ(TypeCode(8388607, 255), INT_MAX);
  EXPECT_EQ(TypeCode(-8388608, 0), INT_MIN);
  // 8388608 x 256 does not fit, though the sum with a negative sub-type would.
  constexpr std::pair<int, int> kPairs[] = {{8388607, 256},  {-8388608, -1}, {8388608, -1},
                                            {-8388609, 256}, {1, INT_MAX},   {INT_MIN, INT_MAX}};
  for (const auto& [type, sub] : kPairs) EXPECT_EQ(FaultOf(TypeCode, type, sub), 6) << type;
}

}  // namespace
}  // namespace vardel
