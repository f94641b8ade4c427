#include <gtest/gtest.h>

#include <cmath>

#include "tests/thermo/thermo_fixture.hpp"
#include "thermo/components.hpp"
#include "thermo/srk.hpp"

namespace velm {
namespace {

using test::Thermo;

// A pseudo component made from an n-alkane's boiling point and standard
// density alone must come close to the alkane's published constants (the
// library record, from DIPPR and Poling et al.) within the stated accuracy
// of the correlations; liquid viscosities at 25 C from the CRC Handbook.
TEST(PseudoProps, EstimatesFromBoilingPointAndGravityMatchKnownAlkanes) {
    struct Row { const char* name; int number; double visc25; };
    const Row rows[] = {{"n-heptane", 21, 0.387}, {"n-octane", 22, 0.508}, {"n-decane", 24, 0.838}};
    for (const Row& r : rows) {
        Thermo t({r.number});
        const CompProp& known = t.setup.comps[1];
        CompProp in;
        in.TBP = known.TBP;
        in.LDenStd = known.LDenStd;
        const CompProp e = estimate_pseudo(t.ctx, in);
        EXPECT_NEAR(e.MW, known.MW, 0.03 * known.MW) << r.name;
        EXPECT_NEAR(e.TC, known.TC, 0.015 * known.TC) << r.name;
        EXPECT_NEAR(e.PC, known.PC, 0.04 * known.PC) << r.name;
        EXPECT_NEAR(e.Acc, known.Acc, 0.1 * known.Acc) << r.name;
        EXPECT_NEAR(e.HVap, known.HVap, 0.03 * known.HVap) << r.name;
        const auto cp300 = [](const CompProp& c) { return c.CpA + 300.0 * (c.CpB + 300.0 * c.CpC); };
        EXPECT_NEAR(cp300(e), cp300(known) + 300.0 * 300.0 * 300.0 * known.CpD + std::pow(300.0, 4) * known.CpE,
                    0.03 * cp300(e))
            << r.name;
        EXPECT_EQ(e.ViscType, 3.0f);
        EXPECT_NEAR(std::exp(e.ViscA + e.ViscB / 298.15), r.visc25, 0.15 * r.visc25) << r.name;
        // The vapour pressure curve runs through (Tb, 1 atm) and (Tc, Pc).
        EXPECT_NEAR(VapPres(t.ctx, in.TBP, e), 101.325, 1e-4 * 101.325) << r.name;
        EXPECT_NEAR(VapPres(t.ctx, e.TC, e), e.PC, 1e-4 * e.PC) << r.name;
        EXPECT_TRUE(t.log().empty()) << r.name;
    }
}

TEST(PseudoProps, EnteredValuesWinAndDefaultsAreReported) {
    Thermo t({});
    std::vector<Pseudo> pseudos(2);
    Pseudo& p = pseudos[1];
    p.NAME_NUM = {0, 9001, 9001};
    p.NAME_TEXT[1] = "PSEUDO_1";
    p.TBP[1] = 420.0f;
    p.DENS[1] = 740.0f;
    p.ZC[1] = 0.2f;                 // kept although Pc, Vc, Tc say otherwise
    p.DENT[1] = 760.0f;             // a density without its temperature is not used
    p.CP[1] = 10.0f;                // CpA and CpB entered: the entered set stands
    p.CP[3] = 0.5f;
    PseudoProps(t.ctx, pseudos);
    const CompProp e = pseudo_half(p, 2);
    EXPECT_EQ(e.Number, 9001);
    EXPECT_EQ(e.Name, "PSEUDO_1");
    EXPECT_EQ(e.Formula, "CxHx");
    EXPECT_EQ(e.ZC, 0.2f);
    EXPECT_EQ(e.LDen, 740.0f);
    EXPECT_EQ(e.TDen, 288.70001220703125f);
    EXPECT_EQ(e.CpA, 10.0f);
    EXPECT_EQ(e.CpB, 0.5f);
    EXPECT_EQ(e.CpC, 0.0f);
    EXPECT_GT(e.MW, 100.0f);
    EXPECT_EQ(pseudo_half(p, 1).MW, 0.0f);  // the entered half is left alone
    EXPECT_TRUE(t.log().empty());
    EXPECT_TRUE(t.ui.told.empty());

    std::vector<Pseudo> bare(2);
    PseudoProps(t.ctx, bare);
    EXPECT_EQ(pseudo_half(bare[1], 2).TBP, 400.0f);
    EXPECT_EQ(pseudo_half(bare[1], 2).LDenStd, 700.0f);
    EXPECT_EQ(t.log(), std::vector<std::string>{"Error! NBP below 300K and outside correlation range."});
    EXPECT_EQ(t.ui.told, (std::vector<std::string>{"Error! Std liq density < 1. Assume 700 kg/m3.",
                                                   "Error! Normal boiling point < 1. Assume 400 K."}));
}

}  // namespace
}  // namespace velm
