// Trapped numeric faults.
//
// Routines of substance never let a numeric fault escape: the checked helpers
// below throw a Fault, and the routine catches it at its own boundary, logs its
// own words with the fault's number and description, and returns the value it
// is documented to give. The numbers are the classic run-time error codes.
#pragma once

#include <cmath>
#include <string>
#include <utility>

namespace velm {

struct Fault {
    int number;
    std::string description;
};

inline constexpr int kFaultInvalidCall = 5;    // "Invalid procedure call or argument"
inline constexpr int kFaultOverflow = 6;       // "Overflow"
inline constexpr int kFaultSubscript = 9;      // "Subscript out of range"
inline constexpr int kFaultDivisionByZero = 11;  // "Division by zero"
inline constexpr int kFaultTypeMismatch = 13;  // "Type mismatch"
inline constexpr int kFaultPastEnd = 62;       // "Input past end of file"

[[noreturn]] void raise_fault(int number);
[[noreturn]] void raise_fault(int number, std::string description);

// The text of a fault as the program logs it: number, " : ", description.
std::string fault_text(const Fault& f);

// Throws Overflow for an infinite result and Invalid call for NaN.
inline double checked(double v) {
    if (std::isfinite(v)) return v;
    raise_fault(std::isnan(v) ? kFaultInvalidCall : kFaultOverflow);
}

// A number taken as a whole number, the fraction cut off; Overflow when it
// does not fit an int (NaN included).
inline int checked_int(double v) {
    if (v > -2147483649.0 && v < 2147483648.0) return static_cast<int>(v);
    raise_fault(kFaultOverflow);
}

// The sign of v: -1, 0 or 1.
constexpr double sgn(double v) { return v > 0.0 ? 1.0 : (v < 0.0 ? -1.0 : 0.0); }

inline double checked_log(double x) {
    if (!(x > 0.0)) raise_fault(kFaultInvalidCall);
    return std::log(x);
}

inline double checked_sqrt(double x) {
    if (!(x >= 0.0)) raise_fault(kFaultInvalidCall);
    return std::sqrt(x);
}

inline double checked_div(double a, double b) {
    if (b == 0.0) raise_fault(kFaultDivisionByZero);
    return checked(a / b);
}

inline double checked_pow(double x, double y) { return checked(std::pow(x, y)); }

inline double checked_exp(double x) { return checked(std::exp(x)); }

// The error trap of a routine: runs body and returns its result; on a Fault it
// logs the routine's own words followed by fault_text and returns fallback.
// Log is anything with log_error(std::string), in practice RunContext.
template <class Log, class Body>
auto trapped(Log& log, const char* words, Body&& body, decltype(body()) fallback = {}) -> decltype(body()) {
    try {
        return std::forward<Body>(body)();
    } catch (const Fault& f) {
        log.log_error(words + fault_text(f));
        return fallback;
    }
}

// The error trap of a routine whose statements stand on their own: a fault in
// one statement is logged in the routine's words and the next statement runs,
// so one failed result leaves the others standing. Returns true when the
// statement faulted.
template <class Log, class Statement>
bool resume_next(Log& log, const char* words, Statement&& statement) {
    try {
        std::forward<Statement>(statement)();
        return false;
    } catch (const Fault& f) {
        log.log_error(words + fault_text(f));
        return true;
    }
}

}  // namespace velm
