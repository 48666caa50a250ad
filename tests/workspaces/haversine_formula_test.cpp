#include "core/conversions.h"
#include "support/fakes.h"
#include "workspaces/haversine_formula.h"

#include <gtest/gtest.h>

#include <limits>
#include <string>
#include <vector>

namespace tremor {
namespace {

constexpr double pi = 3.14159265358979;
constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();

class HaversineFormulaTest : public ::testing::Test {
  protected:
    // The error is ignored; its report must name the routine.
    void expectError(const std::string& description, const std::string& routine) {
        harness.prompts.expectRuntimeError(
            "Description: " + description +
                "\r\nModule: Module - HaversineFormula\r\nRoutine: " + routine + "\r\n",
            ErrorAnswer::Ignore);
    }

    testing::ErrorHarness harness;
    HaversineFormula formula{NumberLocale::point(), harness.errors};
    HaversineFormula commaFormula{NumberLocale::comma(), harness.errors};
};

const std::string negativeRoot = "Invalid procedure call or argument";

TEST_F(HaversineFormulaTest, TurnsDegreesIntoRadiansWithTheRoundedPi) {
    EXPECT_EQ(formula.deg2rad(0.0), 0.0);
    EXPECT_EQ(formula.deg2rad(180.0), 3.14159265358979);
    EXPECT_EQ(formula.deg2rad(90.0), 1.570796326794895);
    EXPECT_EQ(formula.deg2rad(-270.0), -4.712388980384685);
}

TEST_F(HaversineFormulaTest, MultipliesByPiBeforeItDividesBy180) {
    EXPECT_EQ(formula.deg2rad(13.0), 0.22689280275926263);
    EXPECT_NE(formula.deg2rad(13.0), 13.0 * (pi / 180));
}

TEST_F(HaversineFormulaTest, TurnsRadiansIntoDegreesWithTheRoundedPi) {
    EXPECT_EQ(formula.rad2deg(3.14159265358979), 180.0);
    EXPECT_EQ(formula.rad2deg(1.0), 57.29577951308238);
    EXPECT_EQ(formula.rad2deg(-0.5), -28.64788975654119);
    EXPECT_EQ(formula.rad2deg(1.5707963267949), 90.00000000000028);
}

TEST_F(HaversineFormulaTest, MultipliesBy180BeforeItDividesByPi) {
    EXPECT_EQ(formula.rad2deg(0.023), 1.3178029288008946);
    EXPECT_NE(formula.rad2deg(0.023), 0.023 * (180 / pi));
}

TEST_F(HaversineFormulaTest, ReadsTextWithEitherDecimalMarkUnderEveryLocale) {
    for (const HaversineFormula* each : {&formula, &commaFormula}) {
        EXPECT_EQ(each->deg2rad("12.5"), 0.21816615649929097);
        EXPECT_EQ(each->deg2rad("12,5"), 0.21816615649929097);
        EXPECT_EQ(each->rad2deg("-0,5"), -28.64788975654119);
        EXPECT_DOUBLE_EQ(each->acos("0.5"), 1.047197551196596);
    }
}

TEST_F(HaversineFormulaTest, ReportsATextThatIsNoNumberAndGivesZeroWhenIgnored) {
    expectError("Type mismatch", "deg2rad");
    EXPECT_EQ(formula.deg2rad("north"), 0);
    expectError("Type mismatch", "rad2deg");
    EXPECT_EQ(formula.rad2deg(""), 0);
    expectError("Type mismatch", "acos");
    EXPECT_EQ(formula.acos("1.2.3"), 0);
}

TEST_F(HaversineFormulaTest, ReportsAnAngleBeyondTheRangeOfADouble) {
    expectError("Overflow", "deg2rad");
    EXPECT_EQ(formula.deg2rad(1e308), 0);
    expectError("Overflow", "rad2deg");
    EXPECT_EQ(formula.rad2deg(notANumber), 0);
}

TEST_F(HaversineFormulaTest, GivesTheArcCosine) {
    EXPECT_DOUBLE_EQ(formula.acos(0.5), 1.047197551196596);
    EXPECT_DOUBLE_EQ(formula.acos(-0.5), 2.094395102393194);
    EXPECT_DOUBLE_EQ(formula.acos(0.0), 1.570796326794895);
    EXPECT_NEAR(formula.acos(0.9999999999999999), 1.4901159639535422e-08, 1e-22);
}

TEST_F(HaversineFormulaTest, GivesZeroForTheArcCosineOfOneAndPiForThatOfMinusOne) {
    EXPECT_EQ(formula.acos(1.0), 0.0);
    EXPECT_EQ(formula.acos(-1.0), 3.14159265358979);
}

TEST_F(HaversineFormulaTest, ReportsAnArcCosineOfMoreThanOneAndGivesZeroWhenIgnored) {
    for (const double value : {1.0000000000000002, -1.5, notANumber}) {
        expectError(negativeRoot, "acos");
        EXPECT_EQ(formula.acos(value), 0);
    }
}

TEST_F(HaversineFormulaTest, GivesTheArcSineWithAHalfPiOfItsOwn) {
    EXPECT_DOUBLE_EQ(formula.ASin(0.5), 0.5235987755982989);
    EXPECT_DOUBLE_EQ(formula.ASin(-0.5), -0.5235987755982989);
    EXPECT_EQ(formula.ASin(0), 0);
    EXPECT_EQ(formula.ASin(1), 1.5707963267949);
    EXPECT_EQ(formula.ASin(-1), -1.5707963267949);
}

TEST_F(HaversineFormulaTest, ReportsAnArcSineOfMoreThanOneAndGivesZeroWhenIgnored) {
    for (const double value : {1.0000000000000002, -2.0, notANumber}) {
        expectError(negativeRoot, "ASin");
        EXPECT_EQ(formula.ASin(value), 0);
    }
}

TEST_F(HaversineFormulaTest, TriesAStatementAgainOnRetry) {
    harness.prompts.expectRuntimeError("Routine: ASin", ErrorAnswer::Retry);
    harness.prompts.expectRuntimeError("Routine: ASin", ErrorAnswer::Ignore);
    EXPECT_EQ(formula.ASin(2), 0);
}

TEST_F(HaversineFormulaTest, GivesTheAngleOfAPointInEachOctant) {
    struct Case {
        double y, x, angle;
    };
    const std::vector<Case> cases = {
        {1, 2, 0.4636476090008061},   {1, 1, 0.7853981633974483},
        {2, 1, 1.1071487177940889},   {1, 0, 1.570796326794895},
        {2, -1, 2.034443935795701},   {1, -1, 2.3561944901923417},
        {1, -2, 2.677945044588984},   {0, -1, -3.14159265358979},
        {-1, -2, -2.677945044588984}, {-1, -1, -2.3561944901923417},
        {-2, -1, -2.034443935795701}, {-1, 0, -1.570796326794895},
        {-2, 1, -1.1071487177940889}, {-1, 1, -0.7853981633974483},
        {-1, 2, -0.4636476090008061}, {0, 1, 0},
    };
    for (const Case& c : cases)
        EXPECT_DOUBLE_EQ(formula.Atan2(c.y, c.x), c.angle) << c.y << ", " << c.x;
}

TEST_F(HaversineFormulaTest, ReportsTheAngleOfTheOriginAndGivesZeroWhenIgnored) {
    expectError("Division by zero", "Atan2");
    EXPECT_EQ(formula.Atan2(0, 0), 0);
}

TEST_F(HaversineFormulaTest, ReportsTheAngleOfWhatIsNoNumber) {
    expectError("Overflow", "Atan2");
    EXPECT_EQ(formula.Atan2(notANumber, 1), 0);
}

TEST_F(HaversineFormulaTest, GivesTheDistanceInTheUnitAskedFor) {
    const auto inUnit = [this](std::string_view unit) {
        return formula.distance("42.7", "13.23", "42.75", "13.3", unit);
    };
    EXPECT_DOUBLE_EQ(inUnit("K"), 7.974979219017165);
    EXPECT_DOUBLE_EQ(inUnit("N"), 4.30328876473551);
    EXPECT_DOUBLE_EQ(inUnit("M"), 4.955422345388658);
}

TEST_F(HaversineFormulaTest, TakesTheUnitInLowerCase) {
    EXPECT_DOUBLE_EQ(formula.distance("42.7", "13.23", "42.75", "13.3", "k"), 7.974979219017165);
    EXPECT_DOUBLE_EQ(formula.distance("42.7", "13.23", "42.75", "13.3", "n"), 4.30328876473551);
}

TEST_F(HaversineFormulaTest, GivesStatuteMilesForAnEmptyUnit) {
    EXPECT_DOUBLE_EQ(formula.distance("42.7", "13.23", "42.75", "13.3", ""), 4.955422345388658);
}

TEST_F(HaversineFormulaTest, HasItsOwnLengthOfADegree) {
    EXPECT_NEAR(formula.distance("0", "0", "0", "1", "K"), 111.18957696, 1e-9);
    EXPECT_NEAR(formula.distance("0", "0", "1", "0", "K"), 111.18957696, 1e-9);
}

TEST_F(HaversineFormulaTest, GivesLongDistances) {
    EXPECT_DOUBLE_EQ(formula.distance("41.9", "12.5", "45.46", "9.19", "K"), 476.90247932888593);
    EXPECT_DOUBLE_EQ(formula.distance("-33.87", "151.21", "51.51", "-0.13", "K"),
                     16993.250432628607);
}

TEST_F(HaversineFormulaTest, MeasuresAcrossTheDateLine) {
    EXPECT_NEAR(formula.distance("0", "179.5", "0", "-179.5", "K"), 111.18957696, 1e-9);
}

TEST_F(HaversineFormulaTest, GivesTheSameDistanceForEitherDecimalMarkUnderEveryLocale) {
    for (const HaversineFormula* each : {&formula, &commaFormula}) {
        EXPECT_DOUBLE_EQ(each->distance("42.7", "13.23", "42.75", "13.3", "K"), 7.974979219017165);
        EXPECT_DOUBLE_EQ(each->distance("42,7", "13,23", "42,75", "13,3", "K"), 7.974979219017165);
    }
}

TEST_F(HaversineFormulaTest, GivesExactlyZeroBetweenIdenticalPoints) {
    for (int hundredths = -9000; hundredths <= 9000; ++hundredths) {
        const std::string latitude = doubleToText(hundredths / 100.0, NumberLocale::point());
        EXPECT_EQ(formula.distance(latitude, "13.23", latitude, "13.23", "K"), 0) << latitude;
    }
}

TEST_F(HaversineFormulaTest, GivesHalfTheCircumferenceBetweenAntipodes) {
    EXPECT_DOUBLE_EQ(formula.distance("0", "0", "0", "180", ""), 12436.2);
    EXPECT_DOUBLE_EQ(formula.distance("90", "0", "-90", "0", "K"), 20014.1238528);
    EXPECT_DOUBLE_EQ(formula.distance("30", "10", "-30", "-170", "K"), 20014.1238528);
}

TEST_F(HaversineFormulaTest, ReportsALatitudeThatIsNoNumberAndMeasuresFromTheEquatorWhenIgnored) {
    expectError("Type mismatch", "deg2rad");
    EXPECT_NEAR(formula.distance("n/a", "10", "1", "10", "K"), 111.18957696, 1e-9);
    EXPECT_NE(harness.prompts.lastErrorText.find(" 1) distance (Module - HaversineFormula)\r\n"
                                                 " 2) deg2rad (Module - HaversineFormula)\r\n"),
              std::string::npos);
}

TEST_F(HaversineFormulaTest, ReportsALongitudeThatIsNoNumber) {
    expectError("Type mismatch", "distance");
    EXPECT_NEAR(formula.distance("0", "10", "1", "", "K"), 111.18957696, 1e-9);
}

TEST_F(HaversineFormulaTest, ReportsLongitudesThatAreTooFarApart) {
    expectError("Overflow", "distance");
    EXPECT_NEAR(formula.distance("0", "1.7E308", "1", "-1.7E308", "K"), 111.18957696, 1e-9);
}

TEST_F(HaversineFormulaTest, WalksNorth) {
    EXPECT_EQ(formula.revealBounds(0, 0, "0", 10), "8.99321605918731E-02|0");
    EXPECT_EQ(textToDouble("8.99321605918731E-02", NumberLocale::point()), 0.0899321605918731);
}

TEST_F(HaversineFormulaTest, WalksUnderABearing) {
    EXPECT_EQ(formula.revealBounds(42.7, 13.23, "45", 50), "43.017138262408|13.6648740139599");
    EXPECT_EQ(formula.revealBounds(42.7, 13.23, "225", 50), "42.3812334584321|12.7995570712548");
    EXPECT_EQ(formula.revealBounds(42.7, 13.23, "180", 10), "42.6100678394081|13.23");
    EXPECT_EQ(formula.revealBounds(42.7, 13.23, "270", 10), "42.699934871332|13.1076291853539");
    EXPECT_EQ(formula.revealBounds(-12.5, -77.1, "22.5", 300),
              "-10.0054954047869|-76.0519173188655");
}

TEST_F(HaversineFormulaTest, FallsALittleBelowTheParallelOnTheWayEast) {
    EXPECT_EQ(formula.revealBounds(42.7, 13.23, "90", 10), "42.699934871332|13.3523708146462");
}

TEST_F(HaversineFormulaTest, WritesTheMarkOfTheLocaleAndReadsEitherInTheBearing) {
    EXPECT_EQ(commaFormula.revealBounds(42.7, 13.23, "45", 50), "43,017138262408|13,6648740139599");
    EXPECT_EQ(commaFormula.revealBounds(-12.5, -77.1, "22,5", 300),
              "-10,0054954047869|-76,0519173188655");
    EXPECT_EQ(commaFormula.revealBounds(-12.5, -77.1, "22.5", 300),
              "-10,0054954047869|-76,0519173188655");
}

// With the bearing as a double the point would be 4.48273901181999|7.80432365059854.
TEST_F(HaversineFormulaTest, RoundsTheBearingTo15DigitsInRadians) {
    EXPECT_EQ(formula.revealBounds(0, 0, "60", 1000), "4.48273901181997|7.80432365059856");
    EXPECT_EQ(commaFormula.revealBounds(0, 0, "60", 1000), "4,48273901181997|7,80432365059856");
}

TEST_F(HaversineFormulaTest, ReadsABearingThatIsTinyInRadians) {
    EXPECT_EQ(formula.revealBounds(42.7, 13.23, "0.01", 10), "42.7899321592202|13.230021388748");
    EXPECT_EQ(commaFormula.revealBounds(42.7, 13.23, "0,01", 10),
              "42,7899321592202|13,230021388748");
}

TEST_F(HaversineFormulaTest, DoesNotBringTheLongitudeBackAcrossTheDateLine) {
    const std::string east = formula.revealBounds(0, 179.95, "90", 10);
    EXPECT_EQ(east.substr(east.find('|')), "|180.039932160592");
    const std::string west = formula.revealBounds(0, -179.95, "270", 10);
    EXPECT_EQ(west.substr(west.find('|')), "|-180.039932160592");
}

TEST_F(HaversineFormulaTest, CrossesThePole) {
    EXPECT_EQ(formula.revealBounds(89.99, 0, "0", 10), "89.9200678394129|-180");
}

TEST_F(HaversineFormulaTest, StaysWhereItIsAtADistanceOfZero) {
    EXPECT_EQ(formula.revealBounds(10, 20, "0", 0), "10|20");
}

TEST_F(HaversineFormulaTest, ReportsABearingThatIsNoNumberAndWalksNorthWhenIgnored) {
    expectError("Type mismatch", "deg2rad");
    EXPECT_EQ(formula.revealBounds(0, 0, "east", 10), "8.99321605918731E-02|0");
    EXPECT_NE(harness.prompts.lastErrorText.find(" 1) revealBounds (Module - HaversineFormula)\r\n"
                                                 " 2) deg2rad (Module - HaversineFormula)\r\n"),
              std::string::npos);
}

TEST_F(HaversineFormulaTest, ReportsADistanceThatIsNoNumber) {
    expectError(negativeRoot, "ASin");
    expectError("Overflow", "Atan2");
    EXPECT_EQ(formula.revealBounds(10, 20, "0", notANumber), "0|20");
}

TEST_F(HaversineFormulaTest, LeavesNothingOnTheCallStack) {
    EXPECT_EQ(formula.revealBounds(10, 20, "0", 0), "10|20");
    EXPECT_EQ(formula.distance("1", "1", "1", "1", "K"), 0);
    EXPECT_EQ(harness.errors.callStack().depth(), 0);
}

} // namespace
} // namespace tremor
