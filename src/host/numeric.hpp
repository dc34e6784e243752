#pragma once
// The host's numeric rules: conversion rounding, checked 16- and 32-bit arithmetic, the
// leading-number parse and numbers printed as the host prints them. Every failure raises the
// host's error (6 overflow, 11 division by zero, 13 type mismatch).

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace korvex::host {

// Rounds to the nearest integer, exact halves to the even neighbour (2.5 -> 2, 3.5 -> 4).
double RoundHalfEven(double value);

// Conversions to the 16- and 32-bit integer types: round half to even, error 6 out of range
// (and for NaN).
std::int16_t ToInteger(double value);
std::int32_t ToLong(double value);
// Error 6 when the value does not fit a Single.
float ToSingle(double value);

// Int: the largest integer not greater than the value. Fix: the integer part.
double Int(double value);
double Fix(double value);

// Checked arithmetic; error 6 when the result leaves the type's range.
std::int16_t AddInteger(std::int16_t a, std::int16_t b);
std::int16_t SubInteger(std::int16_t a, std::int16_t b);
std::int16_t MulInteger(std::int16_t a, std::int16_t b);
std::int32_t AddLong(std::int32_t a, std::int32_t b);
std::int32_t SubLong(std::int32_t a, std::int32_t b);
std::int32_t MulLong(std::int32_t a, std::int32_t b);
// Integer division and remainder truncate towards zero; error 11 for a zero divisor.
std::int16_t IntDivInteger(std::int16_t a, std::int16_t b);
std::int32_t IntDivLong(std::int32_t a, std::int32_t b);
std::int32_t ModLong(std::int32_t a, std::int32_t b);
// Floating division: error 11 for x / 0, error 6 for 0 / 0.
double Divide(double a, double b);

// Val: the number a text starts with. Blanks, tabs and line feeds are skipped wherever they
// stand; a point is the decimal separator; "&H"/"&O" prefixes read hex and octal; 0 when the
// text starts with no number.
double Val(std::string_view text);

// The strict parse used when a text is converted to a number: the whole text (blanks around it
// allowed) must be a number, otherwise there is none.
std::optional<double> ParseNumber(std::string_view text);

// Numbers as the host prints them: at most 15 significant digits for a Double and 7 for a
// Single (so 1.1f prints "1.1"), no trailing zeros, "1E+15" / "1E-05" outside the fixed range.
std::string FormatDouble(double value);
std::string FormatSingle(float value);

}  // namespace korvex::host
