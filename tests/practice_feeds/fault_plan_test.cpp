#include "practice_feeds/fault_plan.h"

#include <gtest/gtest.h>

namespace tremor::practice {
namespace {

TEST(FaultPlan, HasNoFaultAtFirst) {
    FaultPlan plan;
    EXPECT_EQ(plan.take(), Fault::None);
}

TEST(FaultPlan, KeepsAFaultWithoutACountUntilItIsSwitched) {
    FaultPlan plan;
    plan.set(Fault::Cut, 0);
    for (int i = 0; i < 10; ++i)
        EXPECT_EQ(plan.take(), Fault::Cut);
    plan.set(Fault::None, 0);
    EXPECT_EQ(plan.take(), Fault::None);
}

TEST(FaultPlan, EndsACountedFaultAfterItsRequests) {
    FaultPlan plan;
    plan.set(Fault::Stall, 2);
    EXPECT_EQ(plan.take(), Fault::Stall);
    EXPECT_EQ(plan.take(), Fault::Stall);
    EXPECT_EQ(plan.take(), Fault::None);
    EXPECT_EQ(plan.take(), Fault::None);
}

TEST(FaultFromText, KnowsItsWordsAndNoOthers) {
    EXPECT_EQ(faultFromText("404"), Fault::Status404);
    EXPECT_EQ(faultFromText("204"), Fault::Status204);
    EXPECT_EQ(faultFromText("500"), Fault::Status500);
    EXPECT_EQ(faultFromText("cut"), Fault::Cut);
    EXPECT_EQ(faultFromText("stall"), Fault::Stall);
    EXPECT_EQ(faultFromText("garbage"), Fault::Garbage);
    EXPECT_EQ(faultFromText("slow"), Fault::Slow);
    EXPECT_EQ(faultFromText("none"), Fault::None);
    EXPECT_EQ(faultFromText(""), std::nullopt);
    EXPECT_EQ(faultFromText("Cut"), std::nullopt);
}

} // namespace
} // namespace tremor::practice
