// The judge of typed values: each kind and unit at its limits and just past
// them, with the exact words; the three rows whose words round the limits;
// empty values; unknown kinds and units.
#include "dialogs/check_input.hpp"

#include <gtest/gtest.h>

namespace velm {
namespace {

TEST(CheckInput, EachKindAtItsLimitsAndJustPast) {
    struct Row {
        const char* kind;
        const char* unit;
        const char* value;
        const char* says;  // "" for a good value
    };
    const Row rows[] = {
        {"Text", "", "Day tank 3 inch line", ""},
        {"Text", "", "Day tank 3\" line", "Invalid text entry (Dbl quotes not allowed)."},
        {"Ratio", "", "0", ""},
        {"Ratio", "", "1", ""},
        {"Ratio", "", "1.0001", "Invalid ratio (0 to 1)."},
        {"Ratio", "", "-0.0001", "Invalid ratio (0 to 1)."},
        {"Temp", "C", "-273", ""},
        {"Temp", "C", "-273.01", "Invalid input (-273 to 1000 000 000)."},
        {"Temp", "C", "1000000000", "Invalid input (-273 to 1000 000 000)."},
        {"Temp", "F", "-460", ""},
        {"Temp", "F", "-460.5", "Invalid input (-460 to 1000 000 000)."},
        {"Dia", "in", "1.5", ""},
        {"Dia", "in", "36", ""},
        {"Dia", "in", "22", "Invalid nominal diameter."},
        {"Dia", "in", "2.5", "Invalid nominal diameter."},
        {"Length", "m", "0", ""},
        {"Length", "ft", "999999999", ""},
        {"Length", "m", "1000000000", "Invalid input (0 to 1000 000 000)."},
        {"Length", "m", "-1", "Invalid input (0 to 1000 000 000)."},
        {"Elev", "m", "-99999", ""},
        {"Elev", "ft", "-100000", "Invalid input (-100 000 to 100 000)."},
        {"Elev", "m", "100000", "Invalid input (-100 000 to 100 000)."},
        // The words round -1.01325 barg, -14.696 psig and -101325 Pag; the tests do not.
        {"Pres", "barg", "-1.01325", ""},
        {"Pres", "barg", "-1.0133", "Invalid Pressure (-1.01 to 1000 barg)."},
        {"Pres", "barg", "1000", "Invalid Pressure (-1.01 to 1000 barg)."},
        {"Pres", "psig", "-14.696", ""},
        {"Pres", "psig", "-14.697", "Invalid Pressure (-14.7 to 100 000 psig)."},
        {"Pres", "Pag", "-101325", ""},
        {"Pres", "Pag", "-101326", "Invalid Pressure (-101 000 to 100 000 000 Pag)."},
        {"Pres", "kg/cm2g", "-1.033", ""},
        {"Pres", "kg/cm2g", "-1.034", "Invalid Pressure (-1.033 to 1000 kg/cm2g)."},
        {"Pres", "mmHg", "-760", ""},
        {"Pres", "mmHg", "100000", "Invalid Pressure (-760 to 100 000 mmHg)."},
        {"Pres", "kPag", "-101.325", ""},
        {"Pres", "kPag", "-101.4", "Invalid Pressure (-101 to 100 000 kPag)."},
        {"Patm", "kPag", "-0.1", "Invalid atmosperic pressure."},
        {"Patm", "barg", "1000", "Invalid Pressure (-1.01 to 1000 barg)."},
        {"dP", "kPa", "-999999999", ""},
        {"dP", "kPa", "-1000000000", "Invalid dP (+-1000 000 000)."},
        {"Flow", "kg/h", "1000000000", "Invalid Input (+-1000 000 000)."},
        {"Valve", "Cv", "0.00001", ""},
        {"Valve", "Cv", "0.000009", "Invalid input (0.00001 to 1000 000 000)."},
        {"Angle", "", "180", ""},
        {"Angle", "", "180.5", "Invalid angle (0 to 180)."},
        {"Method", "", "3", ""},
        {"Method", "", "2.5", "Invalid method (1, 2 or 3)."},
        {"Method", "", "", "Invalid method (1, 2 or 3)."},
        // Empty numbers are left for the program to calculate.
        {"Length", "m", "  ", ""},
        {"Pres", "kPag", "", ""},
        // Unknown kinds and units, and numbers that do not read.
        {"Speed", "rpm", "3000", "Error during input checking. Invalid input= 3000 ."},
        {"Temp", "K", "300", "Error during input checking. Invalid input= 300 ."},
        {"Pres", "kPa", "100", "Error during input checking. Invalid input= 100 ."},
        {"Length", "m", "ten", "Error during input checking. Invalid input= ten ."},
        {"Flow", "kg/h", "nan", "Error during input checking. Invalid input= nan ."},
    };
    for (const Row& r : rows)
        EXPECT_EQ(CheckInput(r.kind, r.unit, r.value), r.says) << r.kind << " " << r.unit << " " << r.value;
}

// The lower limit in kPag is the project's own atmospheric pressure.
TEST(CheckInput, GaugeKilopascalsFollowTheAtmosphericPressure) {
    EXPECT_EQ(CheckInput("Pres", "kPag", "-95", 95.0), "");
    EXPECT_EQ(CheckInput("Pres", "kPag", "-96", 95.0), "Invalid Pressure (-101 to 100 000 kPag).");
}

}  // namespace
}  // namespace velm
