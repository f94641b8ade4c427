// SolveMatrix against the plain form of the same elimination, bit for bit.
//
// The plain form below keeps the positions of the row being reduced in an
// ascending linked list and finds each insertion point by a linear search, the
// way Sherman's NSPIV is usually written. SolveMatrix may keep those positions
// any way it likes, but it must pick the same pivots and do the same
// floating-point operations in the same order, so that the solution, the column
// order, the factor U, the status and the message all come out identical.
#include "solver/sparse.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <functional>
#include <limits>
#include <numeric>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include "model/fault.hpp"

namespace velm {
namespace {

// ---------------------------------------------------------------------------
// The plain elimination, kept here as the yardstick.

struct ListWork {
    std::vector<int> C, IC, L, IU, JU;
    std::vector<double> Y, U, D;
};

// Inserts c into the ascending list L after the node `from`; false when present.
bool list_insert(std::vector<int>& L, int from, int c) {
    int p = from;
    while (L[p] < c) p = L[p];
    if (L[p] == c) return false;
    L[c] = L[p];
    L[p] = c;
    return true;
}

int list_solve(const std::vector<double>& A, const std::vector<int>& JA, const std::vector<int>& IA,
               std::vector<double>& B, int n, ListWork& w) {
    if (n < 0 || IA.size() < static_cast<std::size_t>(n) + 2 || B.size() < static_cast<std::size_t>(n) + 1)
        return kSolveBadRow;
    const auto m = static_cast<std::size_t>(n);
    w.C.assign(m + 1, 0);
    w.IC.assign(m + 1, 0);
    w.Y.assign(m + 1, 0.0);
    w.L.assign(m + 2, 0);
    w.IU.assign(m + 2, 0);
    w.D.assign(m + 1, 0.0);
    w.JU.assign(4 * m + 1, 0);
    w.U.assign(4 * m + 1, 0.0);
    for (int k = 1; k <= n; ++k) w.C[k] = w.IC[k] = k;
    w.IU[1] = 1;
    auto& [C, IC, L, IU, JU, Y, U, D] = w;
    const int head = n + 1;
    const std::size_t stored = std::min(A.size(), JA.size());

    for (int k = 1; k <= n; ++k) {
        L[head] = head;
        const int row_begin = IA[k];
        const int row_end = IA[k + 1];
        if (row_begin < 1 || row_begin >= row_end || static_cast<std::size_t>(row_end) > stored)
            return kSolveBadRow;
        for (int j = row_end - 1; j >= row_begin; --j) {
            const int col = JA[j];
            if (col < 1 || col > n) return kSolveBadRow;
            const int c = IC[col];
            if (!list_insert(L, head, c)) return kSolveDuplicateColumn;
            Y[c] = A[j];
        }

        double dk = B[k];
        int prev = head;
        int i = L[head];
        int last = 0;
        while (i < k) {
            const double lki = -Y[i];
            Y[i] = 0.0;
            dk += lki * D[i];
            for (int j = IU[i]; j < IU[i + 1]; ++j) {
                const int c = IC[JU[j]];
                if (Y[c] == 0.0) {
                    const int from = (last > i && c > last) ? last : i;
                    if (list_insert(L, from, c)) last = c;
                }
                Y[c] += lki * U[j];
            }
            prev = i;
            i = L[i];
        }
        if (i > n) return kSolveNoPivot;

        const int first = i;
        int pivot = first;
        int before_pivot = prev;
        double largest = std::fabs(Y[first]);
        int count = 0;
        for (int p = first, next = L[first]; next <= n; p = next, next = L[next]) {
            ++count;
            if (std::fabs(Y[next]) > largest) {
                largest = std::fabs(Y[next]);
                pivot = next;
                before_pivot = p;
            }
        }
        if (largest == 0.0) return kSolveNoPivot;
        const double inv = checked_div(1.0, checked(Y[pivot]));

        int rest = first;
        if (first == k || first == pivot) {
            rest = L[first];
        } else {
            L[before_pivot] = L[pivot];
        }
        Y[pivot] = Y[k];
        std::swap(C[k], C[pivot]);
        IC[C[k]] = k;
        IC[C[pivot]] = pivot;
        Y[k] = 0.0;
        D[k] = checked(dk * inv);

        IU[k + 1] = IU[k] + count;
        if (static_cast<std::size_t>(IU[k + 1]) > JU.size()) {
            JU.resize(static_cast<std::size_t>(IU[k + 1]));
            U.resize(static_cast<std::size_t>(IU[k + 1]));
        }
        int e = IU[k];
        for (int p = rest; p <= n; p = L[p]) {
            JU[e] = C[p];
            U[e] = checked(inv * Y[p]);
            Y[p] = 0.0;
            ++e;
        }
    }

    for (int k = n; k >= 1; --k) {
        double s = D[k];
        for (int j = IU[k]; j < IU[k + 1]; ++j) s -= U[j] * D[IC[JU[j]]];
        D[k] = checked(s);
        Y[C[k]] = s;
    }
    std::copy(Y.begin() + 1, Y.begin() + n + 1, B.begin() + 1);
    return kSolveOk;
}

int list_solve_matrix(RunContext& ctx, const std::vector<double>& A, const std::vector<int>& JA,
                      const std::vector<int>& IA, std::vector<double>& B, int n, ListWork& w) {
    if (n == 0) return kSolveOk;
    try {
        return list_solve(A, JA, IA, B, n, w);
    } catch (const Fault& f) {
        ctx.log_error("Error! In solving matrix = " + fault_text(f));
        return kSolveNoPivot;
    }
}

// ---------------------------------------------------------------------------
// Systems, 1-based compressed rows with element 0 unused.

using Entries = std::vector<std::pair<int, double>>;  // (column, value) in storage order

// The rows of a system before compression, and its right-hand side.
struct Rows {
    std::vector<Entries> rows;
    std::vector<double> rhs;
};

struct Sys {
    int n = 0;
    std::vector<double> A{0.0}, B{0.0};
    std::vector<int> JA{0}, IA{0};
};

// A row without entries gets an empty range, the way the network assembly leaves it.
Sys compress(const Rows& system) {
    const auto& [rows, rhs] = system;
    Sys s;
    s.n = static_cast<int>(rows.size());
    for (std::size_t k = 0; k < rows.size(); ++k) {
        s.IA.push_back(static_cast<int>(s.A.size()));
        s.B.push_back(rhs[k]);
        for (const auto& [col, value] : rows[k]) {
            s.JA.push_back(col);
            s.A.push_back(value);
        }
    }
    s.IA.push_back(static_cast<int>(s.A.size()));
    return s;
}

std::vector<double> random_values(std::mt19937& gen, int n, double lo, double hi) {
    std::uniform_real_distribution<double> value(lo, hi);
    std::vector<double> v(n);
    for (auto& x : v) x = value(gen);
    return v;
}

// `extra` off-diagonal entries a row at distinct random columns. A dominant
// system has the largest entry of each row on the diagonal; otherwise one
// entry of each row lies on a random permutation and none is favoured, so
// that the pivots wander off the diagonal.
Rows random_system(int n, int extra, bool dominant, unsigned seed) {
    std::mt19937 gen(seed);
    std::uniform_real_distribution<double> value(-1.0, 1.0);
    std::uniform_int_distribution<int> column(1, n);
    std::vector<int> own(n);
    std::iota(own.begin(), own.end(), 1);
    if (!dominant) std::shuffle(own.begin(), own.end(), gen);
    std::vector<Entries> rows(n);
    for (int k = 0; k < n; ++k) {
        Entries& row = rows[k];
        const int diag = own[k];
        row.push_back({diag, value(gen)});
        double sum = 0.0;
        while (static_cast<int>(row.size()) <= extra) {
            const int c = column(gen);
            if (std::any_of(row.begin(), row.end(), [c](const auto& e) { return e.first == c; })) continue;
            row.push_back({c, value(gen)});
            sum += std::fabs(row.back().second);
        }
        if (dominant) row[0].second = std::copysign(sum + 0.5, row[0].second);
        std::shuffle(row.begin(), row.end(), gen);
    }
    return {rows, random_values(gen, n, -10.0, 10.0)};
}

// The five-point Laplacian on an nx by ny grid, unknowns in natural order.
// With `jitter` 0 every coefficient is 4 or -1 and the elimination meets
// exact ties; otherwise each coefficient is moved by up to that fraction.
Rows five_point(int nx, int ny, double jitter, unsigned seed) {
    std::mt19937 gen(seed);
    std::uniform_real_distribution<double> shift(-jitter, jitter);
    std::vector<Entries> rows;
    auto at = [nx](int x, int y) { return y * nx + x + 1; };
    for (int y = 0; y < ny; ++y)
        for (int x = 0; x < nx; ++x) {
            Entries row;
            const std::pair<int, int> steps[] = {{0, -1}, {-1, 0}, {0, 0}, {1, 0}, {0, 1}};
            for (const auto& [dx, dy] : steps) {
                const int u = x + dx, v = y + dy;
                if (u < 0 || u >= nx || v < 0 || v >= ny) continue;
                const double base = dx == 0 && dy == 0 ? 4.0 : -1.0;
                row.push_back({at(u, v), base * (1.0 + shift(gen))});
            }
            rows.push_back(row);
        }
    return {rows, random_values(gen, nx * ny, -1.0, 1.0)};
}

// A pipe network: nodes joined by lines, some nodes held at a fixed pressure.
// Unknowns: the node pressures 1..nodes, then one X = W*|W| for each line.
// Rows: one for each line, P_up - P_down - K*X = h; then one for each node,
// its fixed pressure or its mass balance, each line's X divided by its |W|.
struct Piping {
    int nodes = 0;
    std::vector<std::pair<int, int>> lines;  // (upstream, downstream)
    std::vector<bool> fixed;                 // by node, 1-based
};

// With `unit` every K and |W| is 1, so that the coefficients tie everywhere.
Rows network_system(const Piping& net, bool unit, unsigned seed) {
    std::mt19937 gen(seed);
    std::uniform_real_distribution<double> unit_interval(0.0, 1.0);
    const int nlines = static_cast<int>(net.lines.size());
    std::vector<Entries> balance(net.nodes + 1);
    std::vector<Entries> rows;
    std::vector<double> rhs;
    for (int j = 0; j < nlines; ++j) {
        const auto [up, down] = net.lines[j];
        const int x = net.nodes + j + 1;
        const double k = unit ? 1.0 : std::pow(10.0, -3.0 + 4.0 * unit_interval(gen));
        const double w = unit ? 1.0 : std::pow(10.0, 2.0 * unit_interval(gen));
        // The pressure ends in column order, then the line's own X.
        Entries row{{up, 1.0}, {down, -1.0}};
        if (down < up) std::swap(row[0], row[1]);
        row.push_back({x, -k});
        rows.push_back(row);
        rhs.push_back(unit ? 0.0 : unit_interval(gen) - 0.5);
        balance[up].push_back({x, -1.0 / w});
        balance[down].push_back({x, 1.0 / w});
    }
    for (int v = 1; v <= net.nodes; ++v) {
        if (net.fixed[v]) {
            rows.push_back({{v, 1.0}});
            rhs.push_back(100.0 + 400.0 * unit_interval(gen));
        } else {
            rows.push_back(balance[v]);
            rhs.push_back(0.0);
        }
    }
    return {rows, rhs};
}

// A rows x cols grid of junctions with lines to the right and downwards, fed
// at one corner and drawn off at the other three through boundary nodes,
// which hold the fixed pressures unless `floating`.
Piping grid_piping(int rows, int cols, bool floating) {
    Piping net;
    net.nodes = rows * cols + 4;
    net.fixed.assign(net.nodes + 1, false);
    auto junction = [cols](int r, int c) { return r * cols + c + 1; };
    for (int r = 0; r < rows; ++r)
        for (int c = 0; c < cols; ++c) {
            if (c + 1 < cols) net.lines.push_back({junction(r, c), junction(r, c + 1)});
            if (r + 1 < rows) net.lines.push_back({junction(r, c), junction(r + 1, c)});
        }
    const int boundary = rows * cols;
    net.lines.push_back({boundary + 1, junction(0, 0)});
    net.lines.push_back({junction(0, cols - 1), boundary + 2});
    net.lines.push_back({junction(rows - 1, 0), boundary + 3});
    net.lines.push_back({junction(rows - 1, cols - 1), boundary + 4});
    for (int b = 1; b <= 4; ++b) net.fixed[boundary + b] = !floating;
    return net;
}

// A tree grown as chains with side branches, closed into loops by an extra
// line for about every 40 unknowns; the root and the branch ends are fixed.
Piping looped_tree(int nodes, unsigned seed) {
    std::mt19937 gen(seed);
    std::uniform_real_distribution<double> u(0.0, 1.0);
    Piping net;
    net.nodes = nodes;
    for (int v = 2; v <= nodes; ++v) {
        const int back = u(gen) < 0.2 ? static_cast<int>(u(gen) * 20) : 0;
        net.lines.push_back({std::max(1, v - 1 - back), v});
    }
    std::vector<int> degree(nodes + 1, 0);
    for (const auto& [a, b] : net.lines) ++degree[a], ++degree[b];
    for (int loops = nodes / 20; loops > 0;) {
        const int a = 1 + static_cast<int>(u(gen) * nodes);
        const int b = std::min(nodes, a + 2 + static_cast<int>(u(gen) * 40));
        if (a == b || degree[a] == 1 || degree[b] == 1) continue;
        net.lines.push_back({a, b});
        --loops;
    }
    net.fixed.assign(nodes + 1, false);
    for (int v = 1; v <= nodes; ++v) net.fixed[v] = v == 1 || degree[v] == 1;
    return net;
}

// ---------------------------------------------------------------------------

struct Outcome {
    int status = 0;
    std::vector<double> x;
    std::string log;
};

// Runs one of the two solvers on a copy of the right-hand side, during a run
// so that a numeric fault goes to the run log.
template <class Solver, class Work>
Outcome run(Solver solver, const Sys& s, Work& work) {
    RecordingInteraction ui;
    RunContext ctx(ui);
    ctx.run_active = true;
    Outcome o{0, s.B, {}};
    o.status = solver(ctx, s.A, s.JA, s.IA, o.x, s.n, work);
    o.log = ctx.run_log_text;
    return o;
}

// Index of the first element of [from, to) where the two differ bitwise, or -1.
template <class T>
long first_difference(const std::vector<T>& a, const std::vector<T>& b, int from, int to) {
    for (int k = from; k < to; ++k)
        if (std::memcmp(&a[k], &b[k], sizeof(T)) != 0) return k;
    return -1;
}

// Rows changed after they are made, to fail at a chosen point of the
// elimination; k and j are 1-based row and entry numbers.
Rows set_value(Rows r, int k, int j, double value) {
    r.rows[k - 1][j - 1].second = value;
    return r;
}

Rows set_column(Rows r, int k, int j, int col) {
    r.rows[k - 1][j - 1].first = col;
    return r;
}

Rows copy_row(Rows r, int from, int to) {
    r.rows[to - 1] = r.rows[from - 1];
    return r;
}

Rows zero_row(Rows r, int k) {
    for (auto& e : r.rows[k - 1]) e.second = 0.0;
    return r;
}

Rows scale_row(Rows r, int k, double factor) {
    for (auto& e : r.rows[k - 1]) e.second *= factor;
    return r;
}

Rows empty_row(Rows r, int k) {
    r.rows[k - 1].clear();
    return r;
}

using SolveWith = int (*)(RunContext&, const std::vector<double>&, const std::vector<int>&, const std::vector<int>&,
                         std::vector<double>&, int, SparseWork&);

// Solves s with both solvers, SolveMatrix in the work area given, and expects
// every result alike; returns the status.
int expect_identical(const std::string& name, const Sys& s, SparseWork& work) {
    ListWork plain;
    const Outcome want = run(list_solve_matrix, s, plain);
    const Outcome got = run(static_cast<SolveWith>(SolveMatrix), s, work);
    EXPECT_EQ(got.status, want.status) << name;
    EXPECT_EQ(got.log, want.log) << name;
    EXPECT_EQ(first_difference(got.x, want.x, 0, static_cast<int>(want.x.size())), -1) << name;
    if (want.status != kSolveOk || got.status != kSolveOk) return want.status;
    const int n = s.n;
    EXPECT_EQ(first_difference(work.C, plain.C, 1, n + 1), -1) << name;
    EXPECT_EQ(upper_fill(work, n), plain.IU[n + 1] - 1) << name;
    if (upper_fill(work, n) != plain.IU[n + 1] - 1) return want.status;
    const int fill = upper_fill(work, n);
    EXPECT_EQ(first_difference(work.IU, plain.IU, 1, n + 2), -1) << name;
    EXPECT_EQ(first_difference(work.JU, plain.JU, 1, fill + 1), -1) << name;
    EXPECT_EQ(first_difference(work.U, plain.U, 1, fill + 1), -1) << name;
    return want.status;
}

struct Case {
    const char* name;
    std::function<Rows()> make;
    int status;  // what both must return; -1 where only their agreement matters
    // Where set, the system is first solved broken this way, with the status
    // above, and then intact in the same work area, which must come out as
    // if the failure had not been.
    std::function<Rows(Rows)> breaking = nullptr;
};

TEST(SparseIdentity, SolveMatrixMatchesThePlainEliminationBitForBit) {
    const auto random = [](int n, int extra, bool dominant, unsigned seed) {
        return [=] { return random_system(n, extra, dominant, seed); };
    };
    const auto grid = [](int r, int c, bool unit, unsigned seed) {
        return [=] { return network_system(grid_piping(r, c, false), unit, seed); };
    };
    const double nan = std::numeric_limits<double>::quiet_NaN();
    const Case cases[] = {
        {"random dominant, 300", random(300, 3, true, 11u), kSolveOk},
        {"random general, 400", random(400, 2, false, 12u), kSolveOk},
        {"random general, 250, denser", random(250, 5, false, 13u), kSolveOk},
        {"random dominant, 120, after larger ones", random(120, 4, true, 14u), kSolveOk},
        {"random general, 2000", random(2000, 2, false, 15u), kSolveOk},
        {"five-point 30 x 20, exact ties", [] { return five_point(30, 20, 0.0, 21u); }, kSolveOk},
        {"five-point 25 x 40, jittered", [] { return five_point(25, 40, 0.3, 22u); }, kSolveOk},
        {"grid network 6 x 10", grid(6, 10, false, 31u), kSolveOk},
        {"grid network 10 x 14", grid(10, 14, false, 32u), kSolveOk},
        {"grid network 8 x 12, unit coefficients (ties)", grid(8, 12, true, 33u), kSolveOk},
        {"grid network 12 x 18", grid(12, 18, false, 34u), kSolveOk},
        {"looped tree, 600 nodes", [] { return network_system(looped_tree(600, 41u), false, 42u); }, kSolveOk},
        {"looped tree, 2500 nodes", [] { return network_system(looped_tree(2500, 45u), false, 46u); }, kSolveOk},
        {"looped tree, 400 nodes, unit (ties)", [] { return network_system(looped_tree(400, 43u), true, 44u); },
         kSolveOk},
        {"grid network, no pressure fixed, unit",
         [] { return network_system(grid_piping(6, 8, true), true, 51u); }, kSolveNoPivot},
        {"grid network, no pressure fixed", [] { return network_system(grid_piping(6, 8, true), false, 52u); },
         -1},
        {"five-point with exact ties, last row a copy of an earlier one", [] { return five_point(12, 10, 0.0, 61u); },
         -1, [](Rows r) { return copy_row(r, 100, 120); }},
        {"random, a late row of stored zeros", random(200, 3, true, 62u), kSolveNoPivot,
         [](Rows r) { return zero_row(r, 190); }},
        {"random, a late duplicate column", random(200, 3, false, 63u), kSolveDuplicateColumn,
         [](Rows r) { return set_column(r, 180, 2, r.rows[179][0].first); }},
        {"random, a late column out of range", random(200, 3, false, 64u), kSolveBadRow,
         [](Rows r) { return set_column(r, 170, 1, 201); }},
        {"random, a late column 0", random(200, 3, false, 64u), kSolveBadRow,
         [](Rows r) { return set_column(r, 170, 3, 0); }},
        {"random, a late row without entries", random(150, 2, true, 65u), kSolveBadRow,
         [](Rows r) { return empty_row(r, 141); }},
        {"grid network, a coefficient not a number late on", grid(6, 8, false, 66u), kSolveNoPivot,
         [=](Rows r) { return set_value(r, 100, 1, nan); }},
        {"grid network, a late pivot too small to invert", grid(6, 8, false, 67u), kSolveNoPivot,
         [](Rows r) { return scale_row(r, 60, 1e-321); }},
        // Rows 177 to 184 are eliminated side by side; the first of them to
        // fail decides the status, whatever the kind of failure after it.
        {"random, a repeated column before a column out of range", random(200, 3, false, 68u),
         kSolveDuplicateColumn,
         [](Rows r) { return set_column(set_column(r, 178, 2, r.rows[177][0].first), 181, 1, 999); }},
        {"random, a column out of range before a repeated column", random(200, 3, false, 68u), kSolveBadRow,
         [](Rows r) { return set_column(set_column(r, 181, 2, r.rows[180][0].first), 178, 1, 999); }},
        {"random, a row of zeros before a repeated column", random(200, 3, true, 69u), kSolveNoPivot,
         [](Rows r) { return set_column(zero_row(r, 179), 183, 2, r.rows[182][0].first); }},
        {"random, a pivot too small before a row without entries", random(200, 3, true, 70u), kSolveNoPivot,
         [](Rows r) { return empty_row(scale_row(r, 180, 1e-321), 182); }},
        {"order 1", [] { return Rows{{{{1, -3.0}}}, {7.0}}; }, kSolveOk},
    };
    SparseWork work;  // shared by every case, as the network iteration shares it
    for (const auto& c : cases) {
        const Rows rows = c.make();
        const int status = expect_identical(c.name, compress(c.breaking ? c.breaking(rows) : rows), work);
        if (c.status >= 0) {
            EXPECT_EQ(status, c.status) << c.name;
        }
        if (c.breaking) {
            EXPECT_EQ(expect_identical(std::string(c.name) + ", intact", compress(rows), work), kSolveOk);
        }
    }
}

}  // namespace
}  // namespace velm
