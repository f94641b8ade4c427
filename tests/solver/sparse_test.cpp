#include "solver/sparse.hpp"

#include "solver/fast_solve.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <functional>
#include <limits>
#include <random>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace velm {
namespace {

// One row as (column, value) pairs in storage order; explicit zeros are kept.
using Row = std::vector<std::pair<int, double>>;

// 1-based compressed rows, built the way the network assembly fills them: a
// row without entries keeps a start of 0, and IA[n + 1] = IA[1] + entries.
struct Csr {
    int n = 0;
    std::vector<double> A{0.0};
    std::vector<int> JA{0};
    std::vector<int> IA{0};
};

Csr build(const std::vector<Row>& rows) {
    Csr m;
    m.n = static_cast<int>(rows.size());
    m.IA.assign(rows.size() + 2, 0);
    int count = 0;
    for (std::size_t k = 0; k < rows.size(); ++k) {
        for (const auto& [col, value] : rows[k]) {
            ++count;
            m.A.push_back(value);
            m.JA.push_back(col);
            if (m.IA[k + 1] == 0) m.IA[k + 1] = count;
        }
    }
    m.IA[rows.size() + 1] = m.IA[1] + count;
    return m;
}

std::vector<double> one_based(std::vector<double> v) {
    v.insert(v.begin(), 0.0);
    return v;
}

std::vector<double> multiply(const Csr& m, const std::vector<double>& x) {
    std::vector<double> y(m.n + 1, 0.0);
    for (int k = 1; k <= m.n; ++k)
        for (int j = m.IA[k]; j < m.IA[k + 1]; ++j) y[k] += m.A[j] * x[m.JA[j]];
    return y;
}

double max_abs(const std::vector<double>& v) {
    double r = 0.0;
    for (std::size_t k = 1; k < v.size(); ++k) r = std::max(r, std::fabs(v[k]));
    return r;
}

// Infinity-norm residual of A*x = b relative to |A|*|x| + |b|: a backward
// error, near machine precision for a stable elimination.
double relative_residual(const Csr& m, const std::vector<double>& x, const std::vector<double>& b) {
    const auto ax = multiply(m, x);
    double worst = 0.0;
    for (int k = 1; k <= m.n; ++k) {
        double scale = std::fabs(b[k]);
        for (int j = m.IA[k]; j < m.IA[k + 1]; ++j) scale += std::fabs(m.A[j] * x[m.JA[j]]);
        worst = std::max(worst, std::fabs(ax[k] - b[k]) / scale);
    }
    return worst;
}

// Dense Gaussian elimination with partial (row) pivoting, the reference.
std::vector<double> dense_solve(const Csr& m, std::vector<double> b) {
    const int n = m.n;
    std::vector<std::vector<double>> a(n + 1, std::vector<double>(n + 1, 0.0));
    for (int k = 1; k <= n; ++k)
        for (int j = m.IA[k]; j < m.IA[k + 1]; ++j) a[k][m.JA[j]] += m.A[j];
    for (int k = 1; k <= n; ++k) {
        int p = k;
        for (int r = k + 1; r <= n; ++r)
            if (std::fabs(a[r][k]) > std::fabs(a[p][k])) p = r;
        std::swap(a[k], a[p]);
        std::swap(b[k], b[p]);
        for (int r = k + 1; r <= n; ++r) {
            const double f = a[r][k] / a[k][k];
            if (f == 0.0) continue;
            for (int c = k; c <= n; ++c) a[r][c] -= f * a[k][c];
            b[r] -= f * b[k];
        }
    }
    for (int k = n; k >= 1; --k) {
        double s = b[k];
        for (int c = k + 1; c <= n; ++c) s -= a[k][c] * b[c];
        b[k] = s / a[k][k];
    }
    return b;
}

struct Fixture {
    RecordingInteraction ui;
    RunContext ctx{ui};
};

TEST(SparseSolver, SmallSystemsSolveToKnownAnswers) {
    struct Case {
        const char* name;
        std::vector<Row> rows;
        std::vector<double> x;  // the exact solution; b is made from it
        double tol;             // relative; 0 where the answer must come back bit for bit
    };
    const Case cases[] = {
        {"identity", {{{1, 1.0}}, {{2, 1.0}}, {{3, 1.0}}}, {0.1, -7.25, 1e-30}, 0.0},
        {"permutation, every pivot off the diagonal", {{{3, 1.0}}, {{1, 1.0}}, {{2, 1.0}}}, {4.0, 5.0, 6.0}, 0.0},
        {"pivot beyond the first entry of the row", {{{1, 1.0}, {2, 2.0}}, {{1, 3.0}, {2, 4.0}}}, {1.0, 2.0}, 1e-15},
        {"columns stored out of order", {{{2, 1.0}, {1, 4.0}}, {{2, 3.0}, {1, -1.0}}}, {0.5, -2.0}, 1e-15},
        {"stored zero receiving fill", {{{1, 2.0}, {3, 1.0}}, {{1, 1.0}, {3, 0.0}, {2, 3.0}}, {{2, 1.0}, {3, 4.0}}},
         {1.0, 2.0, 3.0}, 1e-15},
        {"tiny pivot accepted", {{{1, 1e-300}}, {{1, 1e-300}, {2, 1e-300}}}, {2.0, 3.0}, 1e-15},
    };
    for (const auto& c : cases) {
        Fixture f;
        const Csr m = build(c.rows);
        const auto x = one_based(c.x);
        auto b = multiply(m, x);
        const auto rhs = b;
        ASSERT_EQ(SolveMatrix(f.ctx, m.A, m.JA, m.IA, b, m.n), kSolveOk) << c.name;
        for (int k = 1; k <= m.n; ++k) EXPECT_NEAR(b[k], x[k], c.tol * std::fabs(x[k])) << c.name << " x" << k;
        EXPECT_LT(relative_residual(m, b, rhs), 1e-14) << c.name;
        EXPECT_TRUE(f.ui.told.empty()) << c.name;
    }
}

// Equal candidates do not change the solution in exact arithmetic, but they do
// decide the column order, which the work arrays show after the solve.
TEST(SparseSolver, EqualPivotCandidatesKeepTheSmallerPosition) {
    struct Case {
        const char* name;
        std::vector<Row> rows;
        std::vector<int> order;  // expected C[1..n]
    };
    const Case cases[] = {
        {"tie on the diagonal", {{{1, 2.0}, {2, 2.0}}, {{1, 1.0}, {2, 3.0}}}, {1, 2}},
        {"tie of opposite signs", {{{1, -2.0}, {2, 2.0}}, {{1, 1.0}, {2, 3.0}}}, {1, 2}},
        // Row 1: positions 2 and 3 tie after a smaller first entry; row 2 has
        // its only entry at position 3; row 3 fills in from U.
        {"tie beyond the first entry", {{{1, 1.0}, {2, 3.0}, {3, -3.0}}, {{3, 1.0}}, {{2, 1.0}}}, {2, 3, 1}},
        // Row 1 picks column 2 past a stored zero; row 2 reduces to 3 and 3
        // at positions 2 and 3 and keeps column 1 at position 2.
        {"tie created by elimination", {{{1, 0.0}, {2, 5.0}, {3, -5.0}}, {{1, 3.0}, {2, 1.0}, {3, 2.0}}, {{1, 1.0}}},
         {2, 1, 3}},
    };
    for (const auto& c : cases) {
        Fixture f;
        SparseWork work;
        const Csr m = build(c.rows);
        std::vector<double> x(m.n + 1);
        for (int k = 1; k <= m.n; ++k) x[k] = k;
        auto b = multiply(m, x);
        ASSERT_EQ(SolveMatrix(f.ctx, m.A, m.JA, m.IA, b, m.n, work), kSolveOk) << c.name;
        EXPECT_EQ(std::vector<int>(work.C.begin() + 1, work.C.begin() + m.n + 1), c.order) << c.name;
        for (int k = 1; k <= m.n; ++k) EXPECT_NEAR(b[k], x[k], 1e-14 * k) << c.name;
    }
}

// Both solves of the program, each with work arrays of its own: the reference
// elimination and the fast sparse LU, which must answer alike.
using Solver = int (*)(RunContext&, const std::vector<double>&, const std::vector<int>&, const std::vector<int>&,
                       std::vector<double>&, int);
int reference_solve(RunContext& ctx, const std::vector<double>& A, const std::vector<int>& JA,
                    const std::vector<int>& IA, std::vector<double>& B, int n) {
    return SolveMatrix(ctx, A, JA, IA, B, n);
}
int fast_solve(RunContext& ctx, const std::vector<double>& A, const std::vector<int>& JA, const std::vector<int>& IA,
               std::vector<double>& B, int n) {
    FastSolveWork work;
    return FastSolveMatrix(ctx, A, JA, IA, B, n, work);
}
const std::pair<const char*, Solver> kSolvers[] = {{"reference", reference_solve}, {"KLU", fast_solve}};

TEST(SparseSolver, FailuresReturnTheirStatusAndChangeNothing) {
    using Mutate = std::function<void(Csr&, std::vector<double>&)>;
    const Mutate none = [](Csr&, std::vector<double>&) {};
    struct Case {
        const char* name;
        std::vector<Row> rows;
        Mutate mutate;
        int status;
    };
    const std::vector<Row> good3 = {{{1, 2.0}, {2, 1.0}}, {{2, 3.0}, {3, 1.0}}, {{1, 1.0}, {3, 4.0}}};
    const Case cases[] = {
        {"order 0", {}, none, kSolveOk},
        {"row of stored zeros", {{{1, 1.0}}, {{1, 0.0}, {2, 0.0}}}, none, kSolveNoPivot},
        {"first row without entries", {{}, {{1, 1.0}, {2, 1.0}}}, none, kSolveBadRow},
        {"first row without entries, slot 0 holding a column", {{}, {{1, 1.0}, {2, 1.0}}},
         [](Csr& m, auto&) { m.JA[0] = 1; }, kSolveBadRow},
        {"middle row without entries", {{{1, 1.0}}, {}, {{3, 1.0}}}, none, kSolveBadRow},
        {"last row without entries", {{{1, 1.0}}, {{2, 1.0}}, {}}, none, kSolveBadRow},
        {"duplicate column", {{{1, 1.0}}, {{3, 1.0}, {1, 1.0}, {3, 2.0}}, {{2, 1.0}}}, none, kSolveDuplicateColumn},
        {"two equal rows", {{{1, 1.0}, {2, 2.0}}, {{1, 1.0}, {2, 2.0}}}, none, kSolveNoPivot},
        {"row reduced to nothing", {{{1, 1.0}, {2, 1.0}}, {{1, 1.0}, {2, -1.0}}, {{1, 2.0}}}, none, kSolveNoPivot},
        {"column 0", good3, [](Csr& m, auto&) { m.JA[3] = 0; }, kSolveBadRow},
        {"column beyond n", good3, [](Csr& m, auto&) { m.JA[4] = 4; }, kSolveBadRow},
        {"negative column", good3, [](Csr& m, auto&) { m.JA[6] = -70000; }, kSolveBadRow},
        {"row end beyond the arrays", good3, [](Csr& m, auto&) { m.IA[4] = 99; }, kSolveBadRow},
        {"row starts out of order", good3, [](Csr& m, auto&) { m.IA[3] = 2; }, kSolveBadRow},
        {"row starts array too short", good3, [](Csr& m, auto&) { m.IA.pop_back(); }, kSolveBadRow},
        {"right-hand side too short", good3, [](Csr&, auto& b) { b.pop_back(); }, kSolveBadRow},
        {"values shorter than columns", good3, [](Csr& m, auto&) { m.A.pop_back(); }, kSolveBadRow},
    };
    for (const auto& [solver, solve] : kSolvers)
        for (const auto& c : cases) {
            Fixture f;
            Csr m = build(c.rows);
            std::vector<double> b(m.n + 1, 1.0);
            c.mutate(m, b);
            const auto before = b;
            EXPECT_EQ(solve(f.ctx, m.A, m.JA, m.IA, b, m.n), c.status) << solver << ": " << c.name;
            EXPECT_EQ(b, before) << solver << ": " << c.name;
            EXPECT_TRUE(f.ui.told.empty()) << solver << ": " << c.name;
        }
}

TEST(SparseSolver, NumericFaultsAreLoggedAndReported) {
    const double nan = std::numeric_limits<double>::quiet_NaN();
    const double inf = std::numeric_limits<double>::infinity();
    struct Case {
        const char* name;
        double a, b;
        const char* log;
    };
    const Case cases[] = {
        {"solution overflows", 1e-200, 1e200, "\r\nError! In solving matrix = 6 : Overflow"},
        {"pivot too small to invert", 4e-320, 1.0, "\r\nError! In solving matrix = 6 : Overflow"},
        {"coefficient not a number", nan, 1.0,
         "\r\nError! In solving matrix = 5 : Invalid procedure call or argument"},
        {"infinite right-hand side", 1.0, inf, "\r\nError! In solving matrix = 6 : Overflow"},
    };
    for (const auto& [solver, solve] : kSolvers)
        for (const auto& c : cases) {
            Fixture f;
            f.ctx.run_active = true;
            const Csr m = build({{{1, c.a}}});
            std::vector<double> b{0.0, c.b};
            EXPECT_EQ(solve(f.ctx, m.A, m.JA, m.IA, b, 1), kSolveNoPivot) << solver << ": " << c.name;
            EXPECT_EQ(f.ctx.run_log_text, c.log) << solver << ": " << c.name;
            EXPECT_EQ(b[1], c.b) << solver << ": " << c.name;
        }
}

// An arrow matrix (dense first row and column, dominant diagonal) fills the
// whole upper triangle: n(n-1)/2 entries, far beyond the 4*n first provided.
TEST(SparseSolver, FillBeyondTheFirstAllocationSolvesWithoutMessage) {
    const int n = 40;
    std::vector<Row> rows(n);
    for (int c = 1; c <= n; ++c) rows[0].push_back({c, c == 1 ? 100.0 : 1.0});
    for (int k = 2; k <= n; ++k) rows[k - 1] = {{1, 1.0}, {k, 100.0 + k}};
    const Csr m = build(rows);
    Fixture f;
    SparseWork work;
    for (double scale : {1.0, -3.0}) {  // the second solve reuses the grown U
        std::vector<double> x(n + 1);
        for (int k = 1; k <= n; ++k) x[k] = scale * std::sin(k);
        auto b = multiply(m, x);
        const auto rhs = b;
        ASSERT_EQ(SolveMatrix(f.ctx, m.A, m.JA, m.IA, b, n, work), kSolveOk);
        EXPECT_EQ(upper_fill(work, n), n * (n - 1) / 2);
        EXPECT_LT(relative_residual(m, b, rhs), 1e-14);
        for (int k = 1; k <= n; ++k) EXPECT_NEAR(b[k], x[k], 1e-14) << k;
    }
    EXPECT_TRUE(f.ui.told.empty());
}

enum class Kind { DiagonallyDominant, General, PermutedDominant };

// Random sparse system: `extra` off-diagonal entries per row at distinct random
// columns. DiagonallyDominant puts a dominant entry on the diagonal; General
// puts one entry of each row on a random permutation (so the structure is
// non-singular) and none is favoured, which forces column exchanges;
// PermutedDominant makes that entry dominant, so the system is well posed
// and still needs the exchanges.
Csr random_system(Kind kind, int n, int extra, unsigned seed) {
    std::mt19937 gen(seed);
    std::uniform_real_distribution<double> value(-1.0, 1.0);
    std::uniform_int_distribution<int> column(1, n);
    std::vector<int> perm(n);
    for (int k = 0; k < n; ++k) perm[k] = k + 1;
    std::shuffle(perm.begin(), perm.end(), gen);
    std::vector<Row> rows(n);
    for (int k = 1; k <= n; ++k) {
        const int own = kind == Kind::DiagonallyDominant ? k : perm[k - 1];
        const bool dominant = kind != Kind::General;
        std::set<int> used{own};
        Row row;
        double sum = 0.0;
        while (static_cast<int>(used.size()) <= extra) {
            const int c = column(gen);
            if (!used.insert(c).second) continue;
            row.push_back({c, value(gen)});
            sum += std::fabs(row.back().second);
        }
        const double v = value(gen);
        const double own_value = dominant ? std::copysign(sum + 0.5 + std::fabs(v), v) : v;
        row.insert(row.begin() + static_cast<std::ptrdiff_t>(gen() % (row.size() + 1)), {own, own_value});
        rows[k - 1] = row;
    }
    return build(rows);
}

TEST(SparseSolver, RandomSystemsAgreeWithDenseElimination) {
    struct Case {
        const char* name;
        Kind kind;
        int n, extra;
        unsigned seed;
    };
    const Case cases[] = {
        {"dominant, 300 unknowns", Kind::DiagonallyDominant, 300, 3, 11u},
        {"general, 400 unknowns", Kind::General, 400, 2, 12u},
        {"general, 250 unknowns, denser", Kind::General, 250, 5, 13u},
        {"dominant, 120 unknowns after larger ones", Kind::DiagonallyDominant, 120, 4, 14u},
    };
    Fixture f;
    SparseWork work;  // shared, as the network iteration shares it
    for (const auto& c : cases) {
        const Csr m = random_system(c.kind, c.n, c.extra, c.seed);
        std::vector<double> b(c.n + 1);
        std::mt19937 gen(c.seed + 100);
        std::uniform_real_distribution<double> value(-10.0, 10.0);
        for (int k = 1; k <= c.n; ++k) b[k] = value(gen);
        const auto rhs = b;
        ASSERT_EQ(SolveMatrix(f.ctx, m.A, m.JA, m.IA, b, c.n, work), kSolveOk) << c.name;
        EXPECT_LT(relative_residual(m, b, rhs), 1e-12) << c.name;
        const auto reference = dense_solve(m, rhs);
        double diff = 0.0;
        for (int k = 1; k <= c.n; ++k) diff = std::max(diff, std::fabs(b[k] - reference[k]));
        EXPECT_LT(diff, 1e-8 * max_abs(reference)) << c.name;
    }
    EXPECT_TRUE(f.ui.told.empty());
}

// The fast solve gives the reference's solution on well-posed systems up to
// 2,000 unknowns, with and without column exchanges, and keeps its analysis while
// the structure stands: a new right-hand side and new values are one
// refactorisation, a new structure one new analysis.
TEST(SparseSolver, FastSolveAgreesWithTheReference) {
    struct Case { const char* name; Kind kind; int n, extra; unsigned seed; };
    const Case cases[] = {
        {"dominant, 2,000 unknowns", Kind::DiagonallyDominant, 2000, 3, 21u},
        {"permuted, 1,500 unknowns", Kind::PermutedDominant, 1500, 2, 22u},
        {"permuted, 600 unknowns, denser", Kind::PermutedDominant, 600, 6, 23u},
    };
    Fixture f;
    FastSolveWork fast;
    for (const auto& c : cases) {
        Csr m = random_system(c.kind, c.n, c.extra, c.seed);
        for (int round = 0; round < 2; ++round) {
            std::vector<double> b(c.n + 1);
            std::mt19937 gen(c.seed + 100 + round);
            std::uniform_real_distribution<double> value(-10.0, 10.0);
            for (int k = 1; k <= c.n; ++k) b[k] = value(gen);
            auto x = b;
            ASSERT_EQ(SolveMatrix(f.ctx, m.A, m.JA, m.IA, b, c.n), kSolveOk) << c.name;
            ASSERT_EQ(FastSolveMatrix(f.ctx, m.A, m.JA, m.IA, x, c.n, fast), kSolveOk) << c.name;
            double diff = 0.0;
            for (int k = 1; k <= c.n; ++k) diff = std::max(diff, std::fabs(b[k] - x[k]));
            EXPECT_LT(diff, 1e-12 * max_abs(b)) << c.name << " round " << round;
            for (double& a : m.A) a *= 1.5;  // new values, same structure
        }
    }
    EXPECT_EQ(fast.analyses, 3) << "one analysis a structure";
    EXPECT_TRUE(f.ui.told.empty());
}

// The rows of a grid network as the network assembly writes them: a line row
// P_from - P_to - K X = 0 for each line (rows first, the flow X of line l in
// column l, K of line l given), then a flow balance at each node, X / |W|
// summed with the demand as right side, except at the first node, whose
// pressure is fixed (1 / |W| of line l given).
Csr grid_network(int side, const std::function<double(int)>& K_of, const std::function<double(int)>& w_of,
                 std::vector<double>& b) {
    const int nodes = side * side;
    std::vector<std::pair<int, int>> lines;
    for (int r = 0; r < side; ++r)
        for (int c = 0; c < side; ++c) {
            if (c + 1 < side) lines.emplace_back(r * side + c, r * side + c + 1);
            if (r + 1 < side) lines.emplace_back(r * side + c, (r + 1) * side + c);
        }
    const int nl = static_cast<int>(lines.size());
    auto p_col = [nl](int node) { return nl + node + 1; };
    std::vector<Row> rows;
    for (int l = 0; l < nl; ++l)
        rows.push_back({{p_col(lines[l].first), 1.0}, {p_col(lines[l].second), -1.0}, {l + 1, -K_of(l)}});
    b.assign(1, 0.0);
    b.resize(static_cast<std::size_t>(nl) + 1, 0.0);
    for (int j = 0; j < nodes; ++j) {
        Row row;
        if (j == 0) {
            row.push_back({p_col(0), 1.0});
            b.push_back(500.0);
        } else {
            for (int l = 0; l < nl; ++l) {
                const double w = w_of(l);  // 1 / |W| of the last step
                if (lines[l].first == j) row.push_back({l + 1, -w});
                if (lines[l].second == j) row.push_back({l + 1, w});
            }
            b.push_back(1.0);
        }
        rows.push_back(row);
    }
    return build(rows);
}

// Told which rows hold a line's flow, the fast solve pivots on them first and
// leaves the nodes' pressures coupled as the nodes are: the reference's
// solution, and far fewer factor entries than the order found without the
// pairing, for line coefficients from large to nearly nothing against the
// balance rows.
TEST(SparseSolver, FastSolveOfPairedLineRowsAgreesAndFillsLess) {
    struct Case { int side; double K; };
    const Case cases[] = {{12, 1.0}, {12, 1e-9}, {30, 1e-4}};
    Fixture f;
    for (const auto& c : cases) {
        std::vector<double> b;
        const Csr m = grid_network(
            c.side, [&c](int l) { return c.K * (1.0 + 0.01 * l); }, [](int l) { return 1.0 / (20.0 + l % 7); }, b);
        const int nl = 2 * c.side * (c.side - 1);
        auto reference = b, paired_x = b, plain_x = b;
        ASSERT_EQ(SolveMatrix(f.ctx, m.A, m.JA, m.IA, reference, m.n), kSolveOk);
        FastSolveWork paired, plain;
        paired.paired_rows = nl;
        paired.paired_col = 0;
        ASSERT_EQ(FastSolveMatrix(f.ctx, m.A, m.JA, m.IA, paired_x, m.n, paired), kSolveOk);
        ASSERT_EQ(FastSolveMatrix(f.ctx, m.A, m.JA, m.IA, plain_x, m.n, plain), kSolveOk);
        EXPECT_TRUE(paired.paired) << c.side << " " << c.K;
        EXPECT_FALSE(plain.paired);
        double diff = 0.0;
        for (int k = 1; k <= m.n; ++k) diff = std::max(diff, std::fabs(paired_x[k] - reference[k]));
        EXPECT_LT(diff, 1e-10 * max_abs(reference)) << c.side << " " << c.K;
        if (c.side >= 30) {
            EXPECT_LT(paired.factor_entries, 0.7 * plain.factor_entries) << c.K;
        }
    }
    EXPECT_TRUE(f.ui.told.empty());
}

// Networks whose lines differ as widely as a plant's may: lengths and bores
// each from 1 mm to 1 km at random (K ~ L / D^5 then spans some 35 decades),
// or from 0.1 to 10 m with some lines all but stopped (1 / |W| = 1e4 in their
// balances). The fast solve keeps the paired pivots down to a small fraction
// of their column for the sake of the fill; where that lets the error grow,
// it must factor again with safer pivots and still give the reference
// elimination's answer: a backward error at rounding level, the pressures to
// 1e-9 of the largest, each line's flow term to 1e-6 of itself (these
// systems are ill conditioned: the reference's own flows are no better).
// Ordinary spreads keep the low-fill pivots.
TEST(SparseSolver, FastSolveOfABadlyScaledNetworkAgreesWithTheReference) {
    struct Case {
        int side;
        unsigned seed;
        double decades;       // lengths and bores from 10^-decades to 10^decades m
        double stopped;       // share of the lines nearly without flow
        bool safer_pivots;    // whether the solve must factor again
    };
    const Case cases[] = {{15, 2u, 3.0, 0.0, true}, {25, 3u, 3.0, 0.0, true}, {15, 2u, 1.0, 0.02, false},
                          {25, 3u, 1.0, 0.0, false}};
    Fixture f;
    for (const auto& c : cases) {
        std::mt19937 gen(c.seed);
        std::uniform_real_distribution<double> decade(-c.decades, c.decades), unit(0.0, 1.0);
        const int nl = 2 * c.side * (c.side - 1);
        std::vector<double> K(nl), w(nl);
        for (int l = 0; l < nl; ++l) {
            const double length = std::pow(10.0, decade(gen)), bore = std::pow(10.0, decade(gen));
            K[l] = 0.02 * length / std::pow(bore, 5);
            w[l] = unit(gen) < c.stopped ? 1e4 : 1.0 / std::pow(10.0, decade(gen));
        }
        std::vector<double> b;
        const Csr m = grid_network(c.side, [&K](int l) { return K[l]; }, [&w](int l) { return w[l]; }, b);
        auto reference = b, fast = b;
        ASSERT_EQ(SolveMatrix(f.ctx, m.A, m.JA, m.IA, reference, m.n), kSolveOk);
        FastSolveWork work;
        work.paired_rows = nl;
        work.paired_col = 0;
        ASSERT_EQ(FastSolveMatrix(f.ctx, m.A, m.JA, m.IA, fast, m.n, work), kSolveOk);
        ASSERT_TRUE(work.paired);
        const std::string name = "side " + std::to_string(c.side) + ", seed " + std::to_string(c.seed);
        EXPECT_EQ(work.safe_refactors > 0, c.safer_pivots) << name;
        EXPECT_LT(relative_residual(m, fast, b), 1e-12) << name;
        double largest_x = 0.0, largest_p = 0.0;
        for (int k = 1; k <= nl; ++k) largest_x = std::max(largest_x, std::fabs(reference[k]));
        for (int k = nl + 1; k <= m.n; ++k) largest_p = std::max(largest_p, std::fabs(reference[k]));
        for (int k = 1; k <= nl; ++k)
            ASSERT_NEAR(fast[k], reference[k], 1e-6 * std::max(std::fabs(reference[k]), 1e-12 * largest_x))
                << name << ", flow term of line " << k;
        for (int k = nl + 1; k <= m.n; ++k)
            ASSERT_NEAR(fast[k], reference[k], 1e-9 * largest_p) << name << ", pressure " << k - nl;
    }
    EXPECT_TRUE(f.ui.told.empty());
}

}  // namespace
}  // namespace velm
