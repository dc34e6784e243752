// The host's numbers: rounding conversions, checked arithmetic, Val and strict parsing, and the
// way numbers are printed, each as a table of inputs and what the host gives for them.

#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <limits>
#include <optional>
#include <string>
#include <utility>

#include "base/error.hpp"
#include "host/numeric.hpp"
#include "support/error_of.hpp"

namespace korvex::host {
namespace {

using test::ErrorOf;

TEST(HostNumbers, ConversionRoundsHalfToEvenAndIntFloorsAndFixTruncates) {
    const std::pair<double, std::int16_t> integers[] = {
        {2.5, 2},    {3.5, 4},           {-2.5, -2},      {-3.5, -4},
        {2.4999, 2}, {-32768.5, -32768}, {32767.4, 32767}};
    for (const auto& [in, want] : integers) EXPECT_EQ(ToInteger(in), want) << in;
    EXPECT_EQ(ToLong(2147483646.5), 2147483646);
    EXPECT_EQ(ToLong(-0.5), 0);
    EXPECT_EQ(Int(-2.5), -3);
    EXPECT_EQ(Int(2.9), 2);
    EXPECT_EQ(Fix(-2.5), -2);
}

TEST(HostNumbers, OverflowDivisionByZeroAndCheckedArithmetic) {
    const std::pair<std::function<void()>, int> errors[] = {
        {[] { (void)ToInteger(32767.5); }, 6},
        {[] { (void)ToInteger(-32769); }, 6},
        {[] { (void)ToInteger(std::nan("")); }, 6},
        {[] { (void)ToLong(2147483647.5); }, 6},
        {[] { (void)ToSingle(1e39); }, 6},
        {[] { (void)AddInteger(32767, 1); }, 6},
        {[] { (void)SubInteger(-32768, 1); }, 6},
        {[] { (void)MulInteger(256, 128); }, 6},
        {[] { (void)AddLong(2147483647, 1); }, 6},
        {[] { (void)MulLong(65536, 32768); }, 6},
        {[] { (void)IntDivInteger(-32768, -1); }, 6},
        {[] { (void)IntDivLong(1, 0); }, 11},
        {[] { (void)ModLong(1, 0); }, 11},
        {[] { (void)Divide(1, 0); }, 11},
        {[] { (void)Divide(0, 0); }, 6}};
    for (std::size_t i = 0; i < std::size(errors); ++i)
        EXPECT_EQ(ErrorOf(errors[i].first), errors[i].second) << "case " << i;
    EXPECT_EQ(AddInteger(32766, 1), 32767);
    EXPECT_EQ(MulInteger(-256, 128), -32768);
    EXPECT_EQ(IntDivLong(-7, 2), -3);
    EXPECT_EQ(ModLong(-7, 2), -1);
    EXPECT_EQ(Divide(1, 4), 0.25);
}

TEST(HostNumbers, ValReadsTheLeadingNumber) {
    // Blanks are skipped wherever they stand, only a point separates decimals, and the type
    // character & makes a hex number a Long.
    const std::pair<const char*, double> cases[] = {
        {"12abc", 12},      {"abc", 0},         {"", 0},       {"   -3.75 cm", -3.75},
        {" 1 2 3", 123},    {"1.5.3", 1.5},     {".5", 0.5},   {"2e3x", 2000},
        {"2e", 2},          {"1,5", 1},         {"&HFF", 255}, {"&HFFFF", -1},
        {"&HFFFF&", 65535}, {"&H10000", 65536}, {"&O17", 15},  {"-", 0}};
    for (const auto& [text, want] : cases) EXPECT_EQ(Val(text), want) << '"' << text << '"';
}

TEST(HostNumbers, StrictParseNeedsTheWholeText) {
    const std::pair<const char*, double> numbers[] = {{" 42 ", 42},
                                                      {"-1.5e2", -150},
                                                      {"&H8000000F&", -2147483633.0},
                                                      {"&HFF00&", 65280},
                                                      {"&HFF00", -256}};
    for (const auto& [text, want] : numbers) EXPECT_EQ(ParseNumber(text), want) << text;
    for (const char* text : {"&H", "12abc", "", "1 2", "."})
        EXPECT_FALSE(ParseNumber(text).has_value()) << '"' << text << '"';
}

TEST(HostNumbers, PrintedAsTheHostPrintsThem) {
    const std::pair<double, const char*> doubles[] = {{100, "100"},
                                                      {2.5, "2.5"},
                                                      {-0.25, "-0.25"},
                                                      {0, "0"},
                                                      {1.0 / 3, "0.333333333333333"},
                                                      {123456789012345, "123456789012345"},
                                                      {1e15, "1E+15"},
                                                      {0.0001, "0.0001"},
                                                      {0.00001, "1E-05"},
                                                      {-1.5e-7, "-1.5E-07"}};
    for (const auto& [in, want] : doubles) EXPECT_EQ(FormatDouble(in), want) << in;
    const std::pair<float, const char*> singles[] = {
        {1.1f, "1.1"}, {0.1f, "0.1"}, {1234567.0f, "1234567"}, {12345678.0f, "1.234568E+07"}};
    for (const auto& [in, want] : singles) EXPECT_EQ(FormatSingle(in), want) << in;
}

}  // namespace
}  // namespace korvex::host
