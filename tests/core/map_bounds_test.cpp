#include "core/map_bounds.h"

#include <gtest/gtest.h>

namespace tremor {
namespace {

TEST(RectangleCondition, BoundsLatitudeAndLongitude) {
    EXPECT_EQ(rectangleCondition({"41.5", "12", "43", "14.25"}, NumberLocale::point()),
              "(Latitude >= 41.5) and (Latitude <= 43) AND "
              "(Longitude >= 12) and (Longitude <= 14.25)");
}

TEST(RectangleCondition, AddsTwoRangesAcrossTheMeridian) {
    for (const NumberLocale& locale : {NumberLocale::point(), NumberLocale::comma()})
        EXPECT_EQ(rectangleCondition({"-10.5", "170.5", "10.5", "-170.25"}, locale),
                  "(Latitude >= -10.5) and (Latitude <= 10.5) AND "
                  "((Longitude BETWEEN 170.5 and 179.9999999 ) + "
                  "(Longitude BETWEEN -179.9999999 and -170.25 ))");
}

TEST(RectangleCondition, KeepsThePlainFormForEqualLongitudes) {
    EXPECT_EQ(rectangleCondition({"0", "180", "1", "180"}, NumberLocale::comma()),
              "(Latitude >= 0) and (Latitude <= 1) AND "
              "(Longitude >= 180) and (Longitude <= 180)");
}

} // namespace
} // namespace tremor
