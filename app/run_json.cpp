#include "app/run_json.hpp"

#include "model/text.hpp"
#include "thermo/components.hpp"

namespace velm {

namespace {

std::vector<double> fractions(const Comps& x, std::size_t n) { return {x.begin() + 1, x.begin() + 1 + n}; }

// End e (1 the start, 2 the end) of a line in internal units.
nlohmann::ordered_json line_end(const Line& l, std::size_t e, std::size_t n) {
    nlohmann::ordered_json j;
    j["T_C"] = l.TEMP[e];
    j["P_kPag"] = l.PRES[e];
    j["LF"] = l.LF[e];
    j["H_kJ_kg"] = l.H[e];
    j["S_kJ_kg_K"] = l.S[e];
    j["LIQDEN_kg_m3"] = l.LIQDEN[e];
    j["LIQVISC_cP"] = l.LIQVISC[e];
    j["LIQSUR_dyne_cm"] = l.LIQSUR[e];
    j["LIQCON_W_m_K"] = l.LIQCON[e];
    j["LIQCP_kJ_kg_K"] = l.LIQCP[e];
    j["LIQMW"] = l.LIQMW[e];
    j["VAPVISC_cP"] = l.VAPVISC[e];
    j["VAPMW"] = l.VAPMW[e];
    j["VAPZ"] = l.VAPZ[e];
    j["VAPK"] = l.VAPK[e];
    j["VAPCON_W_m_K"] = l.VAPCON[e];
    j["VAPCP_kJ_kg_K"] = l.VAPCP[e];
    j["X"] = fractions(e == 1 ? l.COMPIX0 : l.COMPOX0, n);
    j["Y"] = fractions(e == 1 ? l.COMPIY0 : l.COMPOY0, n);
    return j;
}

}  // namespace

nlohmann::ordered_json run_json(const Project& p, const RunResult& r) {
    const auto n = static_cast<std::size_t>(CountComps(p.gen.COMP));
    nlohmann::ordered_json j;
    j["title"] = r.title;
    j["components"] = std::vector<int>(p.gen.COMP.begin() + 1, p.gen.COMP.begin() + 1 + static_cast<long>(n));
    nlohmann::ordered_json cases = nlohmann::ordered_json::array();
    for (const CaseResult& c : r.cases)
        cases.push_back({{"case", c.case_no}, {"converged", c.converged}, {"iterations", c.iterations}});
    j["cases"] = cases;
    nlohmann::ordered_json lines = nlohmann::ordered_json::array();
    for (std::size_t i = 1; i < p.lines.size(); ++i) {
        const Line& l = p.lines[i];
        nlohmann::ordered_json o;
        o["name"] = trim(l.NAME[1]);
        o["flow_t_h"] = l.TFLOW.value;
        o["duty_kJ_h"] = l.Q.value;
        o["U_W_m2_K"] = l.UI.value;
        o["TOTMW"] = l.TOTMW;
        o["Z"] = fractions(l.COMP0, n);
        o["in"] = line_end(l, 1, n);
        o["out"] = line_end(l, 2, n);
        lines.push_back(o);
    }
    j["lines"] = lines;
    return j;
}

}  // namespace velm
