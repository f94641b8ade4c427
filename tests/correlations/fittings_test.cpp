#include "correlations/fittings.hpp"

#include <gtest/gtest.h>

#include "model/context.hpp"
#include "model/project_file.hpp"

namespace velm {
namespace {

// Hooper's two-K coefficient against fluids.fittings.Hooper2K
// (tools/fittings_reference.py), and the entrance, whose Kd of 0 leaves out
// the size term: 160 / 1000 + 0.5 = 0.66.
TEST(Fittings, HooperTwoK) {
    struct Row { double Din, Re, K1, Kinf, Kd, K; };
    const Row rows[] = {
        {2.067, 1e5, 800, 0.25, 1, 0.3789482341557813},   // elbow
        {4.026, 5e4, 1500, 4.0, 1, 5.023541977148535},    // globe valve
        {6.065, 2e5, 300, 0.1, 1, 0.11798804616652926},   // gate valve
        {4.026, 1000, 160, 0.5, 0, 0.66},                  // entrance
    };
    for (const Row& r : rows) EXPECT_NEAR(fitting_K_2K(r.K1, r.Kinf, r.Kd, r.Re, r.Din), r.K, 1e-13) << r.K;
}

class LineFittings : public ::testing::Test {
protected:
    LineFittings() {
        NewProject(p);
        line = p.lines[0];  // the template carries the default table
        line.ID.value = line.IDH.value = 0.1023;
        line.TPROP[6] = 1.0;
        for (int n = 1; n <= kFittings; ++n) line.FIT[static_cast<std::size_t>(n)].count = 0;
    }
    void count(int row, int n) { line.FIT[static_cast<std::size_t>(row)].count = n; }

    RecordingInteraction ui;
    RunContext ctx{ui};
    Project p;
    Line line;
};

// Sums of the default table under each method. Counts: 1 entrance, 1 exit,
// 2 gate valves, 3 elbows; every other row 0, whatever its constants.
TEST_F(LineFittings, SumsByMethod) {
    count(1, 1);
    count(2, 1);
    count(3, 2);
    count(7, 3);
    line.FIT[11].K = 7.0;  // "Other" with a K but no count
    line.FIT[11].Kinf = 7.0;

    p.gen.MFIT = "Crane";
    line_fittings(ctx, p.gen, line);
    EXPECT_DOUBLE_EQ(line.FITLD, 2 * 8 + 3 * 20);
    EXPECT_DOUBLE_EQ(line.FITK, 0.5 + 1.0);

    // Re = 353.7 * W / ID / mu = 1e5 at W = 1e5 * 0.1023 / 353.7 t/h.
    p.gen.MFIT = "2K";
    line.TFLOW.value = 1e5 * 0.1023 / 353.7;
    line_fittings(ctx, p.gen, line);
    const double Din = 0.1023 / 0.0254;
    const double expected = (160 / 1e5 + 0.5) + (1.0) + 2 * (300 / 1e5 + 0.1 * (1 + 1 / Din)) +
                            3 * (800 / 1e5 + 0.25 * (1 + 1 / Din));
    EXPECT_EQ(line.FITLD, 0.0);
    EXPECT_NEAR(line.FITK, expected, 1e-12);

    // A stopped line has no fitting loss under the two-K method.
    line.TFLOW.value = 0.0;
    line_fittings(ctx, p.gen, line);
    EXPECT_EQ(line.FITK, 0.0);
    EXPECT_EQ(line.FITLD, 0.0);
}

}  // namespace
}  // namespace velm
