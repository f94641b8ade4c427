#include "solver/equations.hpp"

#include <gtest/gtest.h>

#include <cmath>
#include <string>

#include "model/context.hpp"

namespace velm {
namespace {

class Equations : public ::testing::Test {
protected:
    Equations() {
        ctx.run_active = true;  // messages collect in ctx.run_log_text
        p.gen.PATM = 101.325;
        p.lines.resize(4);
        p.lines[1].NAME[1] = "L1";
        p.lines[1].TFLOW.value = 5.0;
        p.lines[2].NAME[1] = "L2";
        p.lines[2].TFLOW.value = -4.0;
        p.lines[2].PRES = {0.0, 160.0, 140.0, 150.0};
        p.lines[3].NAME[1] = "L3";  // at rest
        p.feeds.resize(2);
        p.feeds[1].NAME[1] = "F1";
        p.feeds[1].PRES.value = 400.0;
        p.feeds[1].NOZ.CON = 1;
        p.valves.resize(3);
        p.valves[1].NAME[1] = "X1";  // a valve with a junction's name: the valve comes first
        p.valves[2].NAME[1] = "CV1";
        p.valves[2].PIN.value = 500.0;
        p.valves[2].POUT.value = 300.0;
        p.valves[2].CON = {0, 2, 3};
        p.juncs.resize(3);
        p.juncs[1].NAME[1] = "X1";
        p.juncs[2].NAME[1] = "J1";
        p.juncs[2].PRES.value = 200.0;
        cols = Columns(p);
    }

    RecordingInteraction ui;
    RunContext ctx{ui};
    Project p;
    Columns cols;
};

// The coefficients of each equation, worked by hand. Line-row equations pass
// the row's X column and flow twice; feed-pressure ones the feed's pressure
// column and value with the line's X column and flow.
TEST_F(Equations, CoefficientsOfEachForm) {
    const int X1 = cols.line + 1, X2 = cols.line + 2, X3 = cols.line + 3;
    const int F = Columns::first(cols.feed, 1), CV1_out = Columns::second(cols.valve, 2), J1 = cols.junc + 2;
    const double PATM = 101.325;
    struct Row {
        int number;
        const char *flow_name, *pressure_name;
        int pressure_index;
        double a, c, n;
        int col_w_in, col_p_in;
        double W_in, P_in;
        int col_w, col_p;
        double W, P, rhs;
    };
    const Row rows[] = {
        // W_1 - 2 W_2 = 1: X1/|5| - 2 X2/|-4|
        {1, " l2 ", "", 0, 1, 2, 0, X1, X1, 5, 5, X2, X1, -0.5, 0.2, 1},
        // a flow at rest takes 1, as does a passed value of 0
        {1, "L3", "", 0, 1, 2, 0, X1, X1, 5, 0, X3, X1, 1, 1, 1},
        // P_F1 - 0.5 P_out(CV1) = 3
        {2, "", "cv1", 1, 3, 0.5, 0, X1, F, 5, 400, F, CV1_out, 1, -0.5, 3},
        // P_abs = 600 (1 - (W/100)^1.5), coefficient c / (a^n |W|^(2-n))
        {3, "", "", 0, 100, 600, 1.5, X1, F, 5, 400, X1, F, 600 / (1000 * std::sqrt(5.0)), 1, 600 - PATM},
        {3, "", "", 0, -100, 600, 1.5, X1, F, 5, 400, X1, F, -600 / (1000 * std::sqrt(5.0)), 1, 600 - PATM},
        {3, "L3", "", 0, 100, 600, 1.5, X1, F, 5, 400, X3, F, 1, 1, 600 - PATM},
        // in absolute pressure, linearised at P(J1) = 200: c^2 / (a^n (P0 + c + PATM) |W|^(2-n))
        {4, "", "J1", 0, 100, 600, 2, X1, F, 5, 400, X1, J1, 360000 / (1e4 * (200 + 600 + PATM)), 1, 600 - PATM},
        {4, "", "", 0, 100, -PATM, 2, X1, F, 5, 0, X1, F, 1, 1, -2 * PATM},  // P0 + c + PATM = 0
        {5, "L2", "", 0, 7, 3, 0, X1, F, 5, 400, X2, F, -3, 400, 7},
    };
    for (const Row& r : rows) {
        Equation eqn;
        eqn.EQN1 = r.number;
        eqn.EQN2 = r.flow_name;
        eqn.EQN4 = r.pressure_name;
        eqn.EQN5 = r.pressure_index;
        eqn.EQN6 = r.a;
        eqn.EQN7 = r.c;
        eqn.EQN8 = r.n;
        int col_w = r.col_w_in, col_p = r.col_p_in;
        double W = r.W_in, P = r.P_in;
        const double rhs = equation(ctx, p, cols, eqn, col_w, W, col_p, P);
        SCOPED_TRACE("equation " + std::to_string(r.number) + " a " + std::to_string(r.a));
        EXPECT_EQ(col_w, r.col_w);
        EXPECT_EQ(col_p, r.col_p);
        EXPECT_NEAR(W, r.W, 1e-12);
        EXPECT_NEAR(P, r.P, 1e-12);
        EXPECT_NEAR(rhs, r.rhs, 1e-12);
    }
    EXPECT_TRUE(ctx.run_log_text.empty());
}

// An unknown number and a trapped fault each log one line and give no right side.
TEST_F(Equations, MessagesInExactWords) {
    struct Row { int number; double n; const char* text; };
    const Row rows[] = {
        {6, 0.0, "\r\nError! Equation number invalid."},
        {3, 1e6, "\r\nError! In equation function = 6 : Overflow"},  // |a|^n overflows
    };
    for (const Row& r : rows) {
        Equation eqn;
        eqn.EQN1 = r.number;
        eqn.EQN6 = 100.0;
        eqn.EQN7 = 600.0;
        eqn.EQN8 = r.n;
        int col_w = 1, col_p = 2;
        double W = 5.0, P = 400.0;
        EXPECT_EQ(equation(ctx, p, cols, eqn, col_w, W, col_p, P), 0.0);
        EXPECT_EQ(ctx.run_log_text, r.text);
        ctx.run_log_text.clear();
    }
}

// Lookups by name: trimmed and in capitals, the first kind in column order,
// the pressure counted from 0 within the record, lines last.
TEST_F(Equations, EquipmentByName) {
    struct Row { const char* name; int index; bool found; int col; double W, P; };
    const Row rows[] = {
        {" x1", 0, true, Columns::first(cols.valve, 1), 0.0, 0.0},
        {"Cv1 ", 1, true, Columns::first(cols.valve, 2), -4.0, 300.0},
        {"CV1", 0, true, Columns::first(cols.valve, 2), -4.0, 500.0},
        {"f1", 0, true, Columns::first(cols.feed, 1), 5.0, 400.0},
        {"J1", 0, true, cols.junc + 2, 0.0, 200.0},
        {"J1", 1, false, 0, 0.0, 0.0},  // a junction has one pressure
        {"L2", -1, true, cols.line + 2, -4.0, 150.0},
        {"CV1", -1, false, 0, 0.0, 0.0},  // -1 looks at lines only
        {"L2", 0, true, cols.line + 2, -4.0, 150.0},  // lines come last in column order
        {"L2", 1, false, 0, 0.0, 0.0},             // a line has one value
        {"NONE", 0, false, 0, 0.0, 0.0},
    };
    for (const Row& r : rows) {
        EquipmentVar v;
        SCOPED_TRACE(std::string(r.name) + " " + std::to_string(r.index));
        ASSERT_EQ(equipment_var(p, cols, r.name, r.index, v), r.found);
        if (!r.found) continue;
        EXPECT_EQ(v.col, r.col);
        EXPECT_EQ(v.W, r.W);
        EXPECT_EQ(v.P, r.P);
    }
}

}  // namespace
}  // namespace velm
