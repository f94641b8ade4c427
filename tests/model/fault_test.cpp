#include "model/fault.hpp"

#include <gtest/gtest.h>

namespace velm {
namespace {

TEST(Fault, CheckedHelpersRaiseTheClassicNumbers) {
    struct Row { const char* what; double (*f)(); int number; };
    const Row rows[] = {
        {"log of zero", [] { return checked_log(0.0); }, kFaultInvalidCall},
        {"sqrt of negative", [] { return checked_sqrt(-1.0); }, kFaultInvalidCall},
        {"division by zero", [] { return checked_div(1.0, 0.0); }, kFaultDivisionByZero},
        {"overflow", [] { return checked_exp(1000.0); }, kFaultOverflow},
    };
    for (const auto& r : rows) {
        try {
            r.f();
            ADD_FAILURE() << r.what << " did not raise";
        } catch (const Fault& f) {
            EXPECT_EQ(f.number, r.number) << r.what;
        }
    }
    EXPECT_EQ(fault_text(Fault{11, "Division by zero"}), "11 : Division by zero");
}

}  // namespace
}  // namespace velm
