#include "host/numeric.hpp"

#include <cfloat>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <limits>

#include "base/error.hpp"

namespace korvex::host {

namespace {

[[noreturn]] void Overflow() {
    throw HostError(kErrOverflow);
}

template <class T>
T CheckedRange(std::int64_t value) {
    if (value < std::numeric_limits<T>::min() || value > std::numeric_limits<T>::max()) Overflow();
    return static_cast<T>(value);
}

bool IsBlank(char c) {
    return c == ' ' || c == '\t' || c == '\n' || c == '\r';
}
bool IsDigit(char c) {
    return c >= '0' && c <= '9';
}

int DigitValue(char c, int radix) {
    int d = -1;
    if (c >= '0' && c <= '9')
        d = c - '0';
    else if (c >= 'a' && c <= 'f')
        d = c - 'a' + 10;
    else if (c >= 'A' && c <= 'F')
        d = c - 'A' + 10;
    return d < radix ? d : -1;
}

// "&H..." / "&O...": a value up to 0xFFFF is an Integer and one up to 0xFFFFFFFF a Long, so
// "&HFFFF" is -1 as the host reads it; a trailing "&" makes it a Long ("&HFFFF&" is 65535).
// Returns the number of characters used (0 if none).
std::size_t ParseRadix(std::string_view s, double& out) {
    if (s.size() < 2 || s[0] != '&') return 0;
    int radix = 0;
    if (s[1] == 'H' || s[1] == 'h')
        radix = 16;
    else if (s[1] == 'O' || s[1] == 'o')
        radix = 8;
    else
        return 0;
    std::size_t i = 2;
    std::uint64_t value = 0;
    bool any = false;
    for (; i < s.size(); ++i) {
        int d = DigitValue(s[i], radix);
        if (d < 0) break;
        value = value * static_cast<unsigned>(radix) + static_cast<unsigned>(d);
        if (value > 0xFFFFFFFFu) Overflow();
        any = true;
    }
    if (!any) {
        out = 0;
        return i;
    }
    const bool longSuffix = i < s.size() && s[i] == '&';
    if (value <= 0xFFFF && !longSuffix)
        out = static_cast<std::int16_t>(static_cast<std::uint16_t>(value));
    else
        out = static_cast<std::int32_t>(static_cast<std::uint32_t>(value));
    return longSuffix ? i + 1 : i;
}

// Decimal number at the start of s: sign, digits, point, digits, exponent (E or D). Returns
// the characters used, 0 when no digit was found.
std::size_t ParseDecimal(std::string_view s, double& out) {
    std::string buffer;
    std::size_t i = 0;
    if (i < s.size() && (s[i] == '+' || s[i] == '-')) buffer += s[i++];
    bool digits = false;
    while (i < s.size() && IsDigit(s[i])) buffer += s[i++], digits = true;
    if (i < s.size() && s[i] == '.') {
        buffer += s[i++];
        while (i < s.size() && IsDigit(s[i])) buffer += s[i++], digits = true;
    }
    if (!digits) return 0;
    if (i < s.size() && (s[i] == 'E' || s[i] == 'e' || s[i] == 'D' || s[i] == 'd')) {
        std::size_t j = i + 1;
        std::string exponent = "e";
        if (j < s.size() && (s[j] == '+' || s[j] == '-')) exponent += s[j++];
        if (j < s.size() && IsDigit(s[j])) {
            while (j < s.size() && IsDigit(s[j])) exponent += s[j++];
            buffer += exponent;
            i = j;
        }
    }
    out = std::strtod(buffer.c_str(), nullptr);
    if (std::isinf(out)) Overflow();
    return i;
}

std::string FormatSignificant(double value, int digits) {
    if (value == 0) return "0";
    if (std::isnan(value)) return "NaN";
    if (std::isinf(value)) return value < 0 ? "-1.#INF" : "1.#INF";

    char buffer[64];
    std::snprintf(buffer, sizeof buffer, "%.*e", digits - 1, value);
    std::string_view text(buffer);
    std::string sign;
    if (text.front() == '-') {
        sign = "-";
        text.remove_prefix(1);
    }
    const std::size_t e = text.find('e');
    std::string mantissa;
    for (char c : text.substr(0, e)) {
        if (c != '.') mantissa += c;
    }
    const int exponent = std::atoi(std::string(text.substr(e + 1)).c_str());
    while (mantissa.size() > 1 && mantissa.back() == '0') mantissa.pop_back();

    if (exponent >= digits || exponent < -4) {
        std::string out = sign + mantissa.substr(0, 1);
        if (mantissa.size() > 1) out += "." + mantissa.substr(1);
        char exp[16];
        std::snprintf(exp, sizeof exp, "E%c%02d", exponent < 0 ? '-' : '+', std::abs(exponent));
        return out + exp;
    }
    if (exponent < 0)
        return sign + "0." + std::string(static_cast<std::size_t>(-exponent - 1), '0') + mantissa;
    const auto whole = static_cast<std::size_t>(exponent) + 1;
    if (mantissa.size() <= whole)
        return sign + mantissa + std::string(whole - mantissa.size(), '0');
    return sign + mantissa.substr(0, whole) + "." + mantissa.substr(whole);
}

}  // namespace

double RoundHalfEven(double value) {
    const double floor = std::floor(value);
    const double diff = value - floor;
    if (diff > 0.5) return floor + 1;
    if (diff < 0.5) return floor;
    return std::fmod(floor, 2.0) == 0 ? floor : floor + 1;
}

std::int16_t ToInteger(double value) {
    if (std::isnan(value)) Overflow();
    const double r = RoundHalfEven(value);
    if (r < -32768.0 || r > 32767.0) Overflow();
    return static_cast<std::int16_t>(r);
}

std::int32_t ToLong(double value) {
    if (std::isnan(value)) Overflow();
    const double r = RoundHalfEven(value);
    if (r < -2147483648.0 || r > 2147483647.0) Overflow();
    return static_cast<std::int32_t>(r);
}

float ToSingle(double value) {
    if (std::isfinite(value) && std::fabs(value) > static_cast<double>(FLT_MAX)) Overflow();
    return static_cast<float>(value);
}

double Int(double value) {
    return std::floor(value);
}
double Fix(double value) {
    return std::trunc(value);
}

std::int16_t AddInteger(std::int16_t a, std::int16_t b) {
    return CheckedRange<std::int16_t>(std::int64_t{a} + b);
}
std::int16_t SubInteger(std::int16_t a, std::int16_t b) {
    return CheckedRange<std::int16_t>(std::int64_t{a} - b);
}
std::int16_t MulInteger(std::int16_t a, std::int16_t b) {
    return CheckedRange<std::int16_t>(std::int64_t{a} * b);
}
std::int32_t AddLong(std::int32_t a, std::int32_t b) {
    return CheckedRange<std::int32_t>(std::int64_t{a} + b);
}
std::int32_t SubLong(std::int32_t a, std::int32_t b) {
    return CheckedRange<std::int32_t>(std::int64_t{a} - b);
}
std::int32_t MulLong(std::int32_t a, std::int32_t b) {
    return CheckedRange<std::int32_t>(std::int64_t{a} * b);
}

std::int16_t IntDivInteger(std::int16_t a, std::int16_t b) {
    if (b == 0) throw HostError(kErrDivisionByZero);
    return CheckedRange<std::int16_t>(std::int64_t{a} / b);
}

std::int32_t IntDivLong(std::int32_t a, std::int32_t b) {
    if (b == 0) throw HostError(kErrDivisionByZero);
    return CheckedRange<std::int32_t>(std::int64_t{a} / b);
}

std::int32_t ModLong(std::int32_t a, std::int32_t b) {
    if (b == 0) throw HostError(kErrDivisionByZero);
    return static_cast<std::int32_t>(std::int64_t{a} % b);
}

double Divide(double a, double b) {
    if (b == 0) {
        if (a == 0) Overflow();
        throw HostError(kErrDivisionByZero);
    }
    const double q = a / b;
    if (std::isinf(q)) Overflow();
    return q;
}

double Val(std::string_view text) {
    std::string compact;
    for (char c : text) {
        if (!IsBlank(c)) compact += c;
    }
    double value = 0;
    if (ParseRadix(compact, value) == 0) ParseDecimal(compact, value);
    return value;
}

std::optional<double> ParseNumber(std::string_view text) {
    while (!text.empty() && IsBlank(text.front())) text.remove_prefix(1);
    while (!text.empty() && IsBlank(text.back())) text.remove_suffix(1);
    if (text.empty()) return std::nullopt;
    double value = 0;
    std::size_t used = ParseRadix(text, value);
    if (used > 0 && used <= 2) {
        return std::nullopt;  // "&H" without digits
    } else if (used == 0) {
        used = ParseDecimal(text, value);
    }
    if (used == 0 || used != text.size()) return std::nullopt;
    return value;
}

std::string FormatDouble(double value) {
    return FormatSignificant(value, 15);
}
std::string FormatSingle(float value) {
    return FormatSignificant(static_cast<double>(value), 7);
}

}  // namespace korvex::host
