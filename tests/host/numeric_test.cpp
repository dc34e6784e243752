#include <gtest/gtest.h>

#include "support/error_of.hpp"

#include <cmath>
#include <limits>

#include "base/error.hpp"
#include "host/numeric.hpp"

using namespace korvex::host;

using korvex::test::ErrorOf;

namespace {

TEST(HostNumbers, ConversionRoundsHalfToEven) {
    EXPECT_EQ(ToInteger(2.5), 2);
    EXPECT_EQ(ToInteger(3.5), 4);
    EXPECT_EQ(ToInteger(-2.5), -2);
    EXPECT_EQ(ToInteger(-3.5), -4);
    EXPECT_EQ(ToInteger(2.4999), 2);
    EXPECT_EQ(ToInteger(-32768.5), -32768);
    EXPECT_EQ(ToLong(2147483646.5), 2147483646);
    EXPECT_EQ(ToLong(-0.5), 0);
}

TEST(HostNumbers, ConversionOutOfRangeIsOverflow) {
    EXPECT_EQ(ErrorOf([] { (void)ToInteger(32767.5); }), 6);
    EXPECT_EQ(ErrorOf([] { (void)ToInteger(-32769); }), 6);
    EXPECT_EQ(ErrorOf([] { (void)ToInteger(std::nan("")); }), 6);
    EXPECT_EQ(ErrorOf([] { (void)ToLong(2147483647.5); }), 6);
    EXPECT_EQ(ErrorOf([] { (void)ToSingle(1e39); }), 6);
    EXPECT_EQ(ToInteger(32767.4), 32767);
}

TEST(HostNumbers, IntIsFloorAndFixTruncates) {
    EXPECT_EQ(Int(-2.5), -3);
    EXPECT_EQ(Int(2.9), 2);
    EXPECT_EQ(Fix(-2.5), -2);
}

TEST(HostNumbers, CheckedArithmetic) {
    EXPECT_EQ(AddInteger(32766, 1), 32767);
    EXPECT_EQ(ErrorOf([] { (void)AddInteger(32767, 1); }), 6);
    EXPECT_EQ(ErrorOf([] { (void)SubInteger(-32768, 1); }), 6);
    EXPECT_EQ(ErrorOf([] { (void)MulInteger(256, 128); }), 6);
    EXPECT_EQ(MulInteger(-256, 128), -32768);
    EXPECT_EQ(ErrorOf([] { (void)AddLong(2147483647, 1); }), 6);
    EXPECT_EQ(ErrorOf([] { (void)MulLong(65536, 32768); }), 6);
    EXPECT_EQ(ErrorOf([] { (void)IntDivInteger(-32768, -1); }), 6);
    EXPECT_EQ(IntDivLong(-7, 2), -3);
    EXPECT_EQ(ModLong(-7, 2), -1);
    EXPECT_EQ(ErrorOf([] { (void)IntDivLong(1, 0); }), 11);
    EXPECT_EQ(ErrorOf([] { (void)ModLong(1, 0); }), 11);
    EXPECT_EQ(ErrorOf([] { (void)Divide(1, 0); }), 11);
    EXPECT_EQ(ErrorOf([] { (void)Divide(0, 0); }), 6);
    EXPECT_EQ(Divide(1, 4), 0.25);
}

TEST(HostNumbers, ValReadsTheLeadingNumber) {
    EXPECT_EQ(Val("12abc"), 12);
    EXPECT_EQ(Val("abc"), 0);
    EXPECT_EQ(Val(""), 0);
    EXPECT_EQ(Val("   -3.75 cm"), -3.75);
    EXPECT_EQ(Val(" 1 2 3"), 123);  // blanks are skipped wherever they stand
    EXPECT_EQ(Val("1.5.3"), 1.5);
    EXPECT_EQ(Val(".5"), 0.5);
    EXPECT_EQ(Val("2e3x"), 2000);
    EXPECT_EQ(Val("2e"), 2);
    EXPECT_EQ(Val("1,5"), 1);  // only a point separates decimals
    EXPECT_EQ(Val("&HFF"), 255);
    EXPECT_EQ(Val("&HFFFF"), -1);
    EXPECT_EQ(Val("&HFFFF&"), 65535);  // the type character makes it a Long
    EXPECT_EQ(Val("&H10000"), 65536);
    EXPECT_EQ(Val("&O17"), 15);
    EXPECT_EQ(Val("-"), 0);
}

TEST(HostNumbers, StrictParseNeedsTheWholeText) {
    EXPECT_EQ(ParseNumber(" 42 "), 42);
    EXPECT_EQ(ParseNumber("-1.5e2"), -150);
    EXPECT_EQ(ParseNumber("&H8000000F&"), -2147483633.0);
    EXPECT_EQ(ParseNumber("&HFF00&"), 65280);
    EXPECT_EQ(ParseNumber("&HFF00"), -256);
    EXPECT_FALSE(ParseNumber("&H").has_value());
    EXPECT_FALSE(ParseNumber("12abc").has_value());
    EXPECT_FALSE(ParseNumber("").has_value());
    EXPECT_FALSE(ParseNumber("1 2").has_value());
    EXPECT_FALSE(ParseNumber(".").has_value());
}

TEST(HostNumbers, PrintedAsTheHostPrintsThem) {
    EXPECT_EQ(FormatDouble(100), "100");
    EXPECT_EQ(FormatDouble(2.5), "2.5");
    EXPECT_EQ(FormatDouble(-0.25), "-0.25");
    EXPECT_EQ(FormatDouble(0), "0");
    EXPECT_EQ(FormatDouble(1.0 / 3), "0.333333333333333");
    EXPECT_EQ(FormatDouble(123456789012345), "123456789012345");
    EXPECT_EQ(FormatDouble(1e15), "1E+15");
    EXPECT_EQ(FormatDouble(0.0001), "0.0001");
    EXPECT_EQ(FormatDouble(0.00001), "1E-05");
    EXPECT_EQ(FormatDouble(-1.5e-7), "-1.5E-07");
    EXPECT_EQ(FormatSingle(1.1f), "1.1");
    EXPECT_EQ(FormatSingle(0.1f), "0.1");
    EXPECT_EQ(FormatSingle(1234567.0f), "1234567");
    EXPECT_EQ(FormatSingle(12345678.0f), "1.234568E+07");
}

}  // namespace
