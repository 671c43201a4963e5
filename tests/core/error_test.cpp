#include "tests/support/fault_of.h"
#include <vardel/core/card_byte_data.h>

#include <gtest/gtest.h>

#include <optional>

namespace vardel {
namespace {

TEST(ErrorTest, ObjectsGivenTheSameErrorShareItsRecordWhichOutlivesThem) {
  std::optional<CCardByteData> first(std::in_place), second(std::in_place);
  first->MakeErr(5, "any code");
  second->MakeErr(-1, "replaced");
  second->Error(first->Error());
  EXPECT_EQ(second->ErrNumber(), 5);
  EXPECT_EQ(second->ErrName(), "any code");
  first->InitErr();
  EXPECT_EQ(second->ErrNumber(), 0);
  EXPECT_EQ(second->ErrName(), "");
  second->CardType(9);
  const std::shared_ptr<CError> error = first->Error();
  first = second = std::nullopt;
  EXPECT_EQ(error->ErrName, "Incorrect Card Type");
}

TEST(ErrorTest, EveryUseOfANullErrorFailsAndChangesNothing) {
  CCardByteData data;
  data.Error(nullptr);
  EXPECT_EQ(data.Error(), nullptr);
  EXPECT_EQ(FaultOf([&] { data.ErrName(); }), 91);
  EXPECT_EQ(FaultOf([&] { data.ErrNumber(1); }), 91);
  EXPECT_EQ(FaultOf([&] { data.InitErr(); }), 91);
  EXPECT_EQ(FaultOf([&] { data.MakeErr(-1, "x"); }), 91);
  EXPECT_EQ(FaultOf([&] { data.CardType(3); }), 91);
  EXPECT_EQ(FaultOf([&] { data.CardArrDataByIndex(0, 3); }), 91);
  EXPECT_EQ(FaultOf([&] { data.InitCardData(1); }), 0) << "no failure escapes from it";
  EXPECT_EQ(data.CardType() + data.CardArrDataByIndex(0), 0);
}

TEST(ErrorTest, CopiesStartWithTheErrorButDoNotShareIt) {
  CCardByteData original, assigned;
  original.MakeErr(-1, "original");
  const std::shared_ptr<CError> error = original.Error(), replaced = assigned.Error();
  const CCardByteData copy = original;
  assigned = original;
  error->MakeErr(-1, "changed");
  replaced->MakeErr(-1, "changed");
  EXPECT_EQ(copy.ErrName(), "original");
  EXPECT_EQ(assigned.ErrName(), "original");
}

}  // namespace
}  // namespace vardel
