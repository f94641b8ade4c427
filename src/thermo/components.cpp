#include "thermo/components.hpp"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <initializer_list>
#include <optional>

#include "model/embedded.hpp"
#include "model/fault.hpp"
#include "thermo/srk.hpp"

namespace velm {

namespace {

constexpr int kFaultBadRecord = 63;    // "Bad record number"
constexpr std::size_t kNameBytes = 40;
constexpr std::size_t kFormulaBytes = 12;
constexpr std::size_t kFloatFields = 32;

std::string upper(std::string_view s) {
    std::string out(s);
    for (char& c : out)
        if (c >= 'a' && c <= 'z') c = static_cast<char>(c - 'a' + 'A');
    return out;
}

std::string_view trim(std::string_view s) {
    const auto blank = [](char c) { return c == ' ' || c == '\t' || c == '\0' || c == '\r' || c == '\n'; };
    while (!s.empty() && blank(s.front())) s.remove_prefix(1);
    while (!s.empty() && blank(s.back())) s.remove_suffix(1);
    return s;
}

// Little-endian fields, read byte by byte so that the host's order and the
// alignment of the buffer do not matter.
std::uint32_t le32(const char* p) {
    std::uint32_t v = 0;
    for (int i = 3; i >= 0; --i) v = (v << 8) | static_cast<unsigned char>(p[i]);
    return v;
}

std::uint64_t le64(const char* p) {
    std::uint64_t v = 0;
    for (int i = 7; i >= 0; --i) v = (v << 8) | static_cast<unsigned char>(p[i]);
    return v;
}

std::string text_field(const char* p, std::size_t width) {
    return std::string(trim(std::string_view(p, width)));
}

// One library file, built in or from the library directory, read by records.
class LibraryFile {
public:
    bool open(const CompLibrary& lib, std::string_view name) {
        if (lib.dir.empty()) {
            builtin_ = embedded_file(name);
            size_ = builtin_.size();
            return !builtin_.empty();
        }
        file_.open(lib.dir / std::string(name), std::ios::binary);
        if (!file_) return false;
        file_.seekg(0, std::ios::end);
        const auto end = file_.tellg();
        size_ = end < 0 ? 0 : static_cast<std::uint64_t>(end);
        from_disk_ = true;
        return true;
    }

    std::uint64_t size() const { return size_; }

    // The bytes [offset, offset + count); Fault 62 when the file ends before.
    std::string read(std::uint64_t offset, std::size_t count) {
        if (offset > size_ || count > size_ - offset) raise_fault(kFaultPastEnd);
        if (!from_disk_) return std::string(builtin_.substr(offset, count));
        std::string out(count, '\0');
        file_.clear();
        file_.seekg(static_cast<std::streamoff>(offset));
        file_.read(out.data(), static_cast<std::streamsize>(count));
        if (file_.gcount() != static_cast<std::streamsize>(count)) raise_fault(kFaultPastEnd);
        return out;
    }

private:
    std::string_view builtin_;
    std::ifstream file_;
    std::uint64_t size_ = 0;
    bool from_disk_ = false;
};

// The offset of record num (1-based) of a file of fixed records.
std::uint64_t record_offset(int num, std::size_t record_bytes) {
    if (num < 1) raise_fault(kFaultBadRecord, "Bad record number");
    return static_cast<std::uint64_t>(num - 1) * record_bytes;
}

bool decode_prophys_record(std::string_view bytes, CompProp& rec) {
    if (bytes.size() < kProphysRecordBytes) return false;
    const char* p = bytes.data();
    const auto number = static_cast<std::int16_t>(static_cast<std::uint16_t>(
        static_cast<unsigned char>(p[0]) | (static_cast<unsigned char>(p[1]) << 8)));
    const double mw = std::bit_cast<double>(le64(p + 54));
    if (!std::isfinite(mw)) return false;
    rec = CompProp{};
    rec.Number = number;
    rec.Name = text_field(p + 2, kNameBytes);
    rec.MW = static_cast<float>(mw);
    return true;
}

void log_read_error(RunContext& ctx, const Fault& f) {
    ctx.log_error("Error reading property data = " + fault_text(f));
}

std::string not_found_text(std::string_view file) {
    return "Error! Component database not found. Put original " + std::string(file) + " in program directory.";
}

// Reads record num of a library of fixed records into rec. On a missing
// file or a bad record the message is logged and rec is left zero.
void read_library_record(RunContext& ctx, const CompLibrary& lib, std::string_view file,
                         std::size_t record_bytes, int num, CompProp& rec,
                         bool (*decode)(std::string_view, CompProp&)) {
    LibraryFile lf;
    if (!lf.open(lib, file)) {
        ctx.log_error(not_found_text(file));
        return;
    }
    try {
        rec = CompProp{};
        const std::string bytes = lf.read(record_offset(num == -1 ? 1 : num, record_bytes), record_bytes);
        if (!decode(bytes, rec)) {
            rec = CompProp{};
            raise_fault(kFaultTypeMismatch);
        }
    } catch (const Fault& f) {
        log_read_error(ctx, f);
    }
}

// The library file of the engine, or empty (with the message) when the
// engine keeps no library of its own.
std::string_view engine_library(RunContext& ctx, const CompLibrary& lib, std::size_t& record_bytes) {
    const std::string engine = upper(lib.mflash);
    if (engine == "VELM") {
        record_bytes = kPropaRecordBytes;
        return "propa.lib";
    }
    if (engine == "HYSYS") {
        record_bytes = kProphysRecordBytes;
        return "prophys.lib";
    }
    // "PPP" draws its data from ppp.dll, a closed Windows library that this
    // build has no interface to; it is reported like any other engine
    // without a component library.
    ctx.log_error("Error! Flash method does not support this operation.");
    return {};
}

// Splits a line of propkij.lib into comma-separated items; double quotes
// enclose an item that may hold commas.
std::vector<std::string> split_items(std::string_view line) {
    std::vector<std::string> items;
    std::string item;
    bool quoted = false;
    for (char c : line) {
        if (c == '"') {
            quoted = !quoted;
        } else if (c == ',' && !quoted) {
            items.emplace_back(trim(item));
            item.clear();
        } else {
            item += c;
        }
    }
    items.emplace_back(trim(item));
    return items;
}

double number_item(const std::vector<std::string>& items, std::size_t k) {
    if (k >= items.size()) raise_fault(kFaultPastEnd);
    const std::string& s = items[k];
    char* end = nullptr;
    const double v = std::strtod(s.c_str(), &end);
    if (s.empty() || end != s.c_str() + s.size() || !std::isfinite(v)) raise_fault(kFaultTypeMismatch);
    return v;
}

int component_item(const std::vector<std::string>& items, std::size_t k) {
    const double v = number_item(items, k);
    if (std::fabs(v) > 1e9) raise_fault(kFaultOverflow);
    return static_cast<int>(std::lround(v));
}

}  // namespace

std::filesystem::path library_dir_from_environment() {
    const char* dir = std::getenv("VELM_LIB");
    return dir ? std::filesystem::path(dir) : std::filesystem::path();
}

namespace {

// The floats of a propa.lib record in file order, from byte 56 on.
constexpr float CompProp::*kPropaFloats[kFloatFields] = {
    &CompProp::MW,   &CompProp::TFP,      &CompProp::TBP,   &CompProp::TC,    &CompProp::PC,      &CompProp::VC,
    &CompProp::ZC,   &CompProp::Acc,      &CompProp::LDenStd, &CompProp::LDen, &CompProp::TDen,   &CompProp::DIPM,
    &CompProp::CpA,  &CompProp::CpB,      &CompProp::CpC,   &CompProp::CpD,   &CompProp::CpE,     &CompProp::ViscType,
    &CompProp::ViscA, &CompProp::ViscB,   &CompProp::ViscC, &CompProp::ViscD, &CompProp::HVap,    &CompProp::HFor,
    &CompProp::GFor, &CompProp::AntA,     &CompProp::AntB,  &CompProp::AntC,  &CompProp::AntD,    &CompProp::AntE,
    &CompProp::AntTMin, &CompProp::AntTMax};

void put_le32(char* p, std::uint32_t v) {
    for (int k = 0; k < 4; ++k) p[k] = static_cast<char>((v >> (8 * k)) & 0xFFu);
}

void put_le64(char* p, std::uint64_t v) {
    for (int k = 0; k < 8; ++k) p[k] = static_cast<char>((v >> (8 * k)) & 0xFFu);
}

// A text into a fixed field, blank padded.
void put_text(char* p, std::string_view text, std::size_t width) {
    std::memset(p, ' ', width);
    std::memcpy(p, text.data(), std::min(text.size(), width));
}

}  // namespace

bool decode_propa_record(std::string_view bytes, CompProp& rec) {
    if (bytes.size() < kPropaRecordBytes) return false;
    const char* p = bytes.data();
    float v[kFloatFields];
    for (std::size_t k = 0; k < kFloatFields; ++k) {
        v[k] = std::bit_cast<float>(le32(p + 56 + 4 * k));
        if (!std::isfinite(v[k])) return false;
    }
    rec.Number = static_cast<std::int32_t>(le32(p));
    rec.Name = text_field(p + 4, kNameBytes);
    rec.Formula = text_field(p + 44, kFormulaBytes);
    for (std::size_t k = 0; k < kFloatFields; ++k) rec.*kPropaFloats[k] = v[k];
    return true;
}

void encode_library_record(const CompProp& rec, std::string& bytes) {
    char* p = bytes.data();
    if (bytes.size() == kPropaRecordBytes) {
        put_le32(p, static_cast<std::uint32_t>(rec.Number));
        put_text(p + 4, rec.Name, kNameBytes);
        put_text(p + 44, rec.Formula, kFormulaBytes);
        for (std::size_t k = 0; k < kFloatFields; ++k) put_le32(p + 56 + 4 * k, std::bit_cast<std::uint32_t>(rec.*kPropaFloats[k]));
    } else if (bytes.size() == kProphysRecordBytes) {
        put_text(p + 2, rec.Name, kNameBytes);
        put_text(p + 42, rec.Formula, kFormulaBytes);
        put_le64(p + 54, std::bit_cast<std::uint64_t>(static_cast<double>(rec.MW)));
    }
}

std::string UpdateCompRecord(RunContext& ctx, const CompLibrary& lib, int record, const CompProp& rec) {
    std::size_t record_bytes = 0;
    const std::string_view file = engine_library(ctx, lib, record_bytes);
    if (file.empty()) return "Flash method does not support this operation.";
    if (lib.dir.empty())
        return "the libraries are built into the program; name a folder of libraries in VELM_LIB to change one.";
    std::fstream f(lib.dir / std::string(file), std::ios::binary | std::ios::in | std::ios::out);
    if (!f) return not_found_text(file);
    f.seekg(0, std::ios::end);
    const auto size = static_cast<std::uint64_t>(std::max<std::streamoff>(f.tellg(), 0));
    const std::uint64_t at = static_cast<std::uint64_t>(std::max(record, 1) - 1) * record_bytes;
    if (record < 1 || at + record_bytes > size) return "63 : Bad record number";
    std::string bytes(record_bytes, '\0');
    f.seekg(static_cast<std::streamoff>(at));
    f.read(bytes.data(), static_cast<std::streamsize>(record_bytes));
    encode_library_record(rec, bytes);
    f.seekp(static_cast<std::streamoff>(at));
    f.write(bytes.data(), static_cast<std::streamsize>(record_bytes));
    f.flush();
    return f ? "" : "75 : Path/File access error";
}

int CountComps(std::span<const int> ids) {
    int n = 0;
    for (std::size_t k = 1; k < ids.size() && ids[k] != 0; ++k) ++n;
    return n;
}

void GetComp(RunContext& ctx, const CompLibrary& lib, int num, CompProp& rec) {
    const std::string engine = upper(lib.mflash);
    if (engine == "VELM" || engine == "HYSYS") {
        const bool velm = engine == "VELM";
        if (num >= kPseudoFirst) {
            // The HYSYS path knows no pseudo components: rec stays as it is.
            if (!velm) return;
            const auto k = static_cast<std::size_t>(num - kPseudoFirst);
            if (k < 1 || k >= lib.pseudo.size()) {
                rec = CompProp{};
                log_read_error(ctx, Fault{kFaultSubscript, "Subscript out of range"});
                return;
            }
            rec = lib.pseudo[k];
            return;
        }
        if (velm)
            read_library_record(ctx, lib, "propa.lib", kPropaRecordBytes, num, rec, decode_propa_record);
        else
            read_library_record(ctx, lib, "prophys.lib", kProphysRecordBytes, num, rec, decode_prophys_record);
        return;
    }
    std::size_t unused = 0;
    engine_library(ctx, lib, unused);
}

void GetCompNames(RunContext& ctx, const CompLibrary& lib, std::vector<std::string>& names) {
    names.assign(1, std::string());
    std::size_t record_bytes = 0;
    const std::string_view file = engine_library(ctx, lib, record_bytes);
    if (file.empty()) return;
    LibraryFile lf;
    if (!lf.open(lib, file)) {
        ctx.log_error(not_found_text(file));
        return;
    }
    const std::size_t name_offset = record_bytes == kPropaRecordBytes ? 4 : 2;
    try {
        const std::uint64_t records = lf.size() / record_bytes;
        names.reserve(static_cast<std::size_t>(records) + 1);
        for (std::uint64_t k = 0; k < records; ++k)
            names.push_back(text_field(lf.read(k * record_bytes + name_offset, kNameBytes).data(), kNameBytes));
        if (lf.size() % record_bytes != 0) raise_fault(kFaultPastEnd);
    } catch (const Fault& f) {
        log_read_error(ctx, f);
    }
}

int comp_number_by_name(RunContext& ctx, const CompLibrary& lib, std::string_view name) {
    const std::string wanted = upper(trim(name));
    if (wanted.empty()) return 0;
    std::vector<std::string> names;
    GetCompNames(ctx, lib, names);
    for (std::size_t k = 1; k < names.size(); ++k)
        if (upper(names[k]) == wanted) return static_cast<int>(k);
    for (std::size_t k = 1; k < lib.pseudo.size(); ++k)
        if (upper(trim(lib.pseudo[k].Name)) == wanted) return kPseudoFirst + static_cast<int>(k);
    return 0;
}

void GetCompData(RunContext& ctx, const CompLibrary& lib, std::span<const int> ids,
                 std::vector<CompProp>& comps, std::vector<std::vector<double>>& kij) {
    const auto n = static_cast<std::size_t>(CountComps(ids));
    comps.assign(n + 1, CompProp{});
    kij.assign(n + 1, std::vector<double>(n + 1, 0.0));
    for (std::size_t k = 1; k <= n; ++k) GetComp(ctx, lib, ids[k], comps[k]);
    ReadKij(ctx, lib, ids, kij);
}

void ReadKij(RunContext& ctx, const CompLibrary& lib, std::span<const int> ids,
             std::vector<std::vector<double>>& kij) {
    const auto n = static_cast<std::size_t>(CountComps(ids));
    if (kij.size() != n + 1) kij.assign(n + 1, std::vector<double>(n + 1, 0.0));
    for (auto& row : kij) row.resize(n + 1, 0.0);

    LibraryFile lf;
    if (!lf.open(lib, "propkij.lib")) {
        ctx.log_error("Warning! Component kij database not found.");
        return;
    }
    try {
        const std::string text = lf.read(0, static_cast<std::size_t>(lf.size()));
        std::size_t start = 0;
        int line_no = 0;
        while (start < text.size()) {
            std::size_t end = text.find('\n', start);
            if (end == std::string::npos) end = text.size();
            std::string_view line(text.data() + start, end - start);
            start = end + 1;
            ++line_no;
            if (!line.empty() && line.back() == '\r') line.remove_suffix(1);

            const std::vector<std::string> items = split_items(line);
            const std::string key = upper(items[0]);
            if (key.empty() || key == "\\EOS") continue;
            if (key == "\\KIJ") {
                const int i = component_item(items, 1);
                const int j = component_item(items, 2);
                const double value = number_item(items, 3);
                for (std::size_t p = 1; p <= n; ++p) {
                    if (ids[p] != i) continue;
                    for (std::size_t q = 1; q <= n; ++q) {
                        if (ids[q] != j || q == p) continue;
                        kij[p][q] = value;
                        kij[q][p] = value;
                    }
                }
                continue;
            }
            const std::size_t comma = line.find(',');
            const std::string_view rest = comma == std::string_view::npos ? std::string_view() : trim(line.substr(comma + 1));
            ctx.ui.tell("Line = " + std::to_string(line_no) + " ignored : Kij key not recognized. Input = " + key +
                        "\n\r" + "Line discarded = " + std::string(rest));
        }
    } catch (const Fault& f) {
        ctx.log_error("Error reading kij = " + fault_text(f));
    }
}

}  // namespace velm

// ---------------------------------------------------------------------------
// Pseudo components.

namespace velm {

namespace {

// The fields of one half of a Pseudo record, in CompProp order. The record's
// multi-value keys hold the two halves side by side: CP, VISC and ANT as pairs
// (position 2k - 1 entered, 2k in force), DENT density at 1 and 2 and its
// temperature at 4 and 5, the Antoine range at 12..15.
template <class PseudoT, class Visit>
void pseudo_fields(PseudoT& p, std::size_t h, Visit&& visit) {
    visit(p.MW[h], &CompProp::MW);
    visit(p.TFP[h], &CompProp::TFP);
    visit(p.TBP[h], &CompProp::TBP);
    visit(p.TC[h], &CompProp::TC);
    visit(p.PC[h], &CompProp::PC);
    visit(p.VC[h], &CompProp::VC);
    visit(p.ZC[h], &CompProp::ZC);
    visit(p.ACC[h], &CompProp::Acc);
    visit(p.DENS[h], &CompProp::LDenStd);
    visit(p.DENT[h], &CompProp::LDen);
    visit(p.DENT[h + 3], &CompProp::TDen);
    visit(p.DIPM[h], &CompProp::DIPM);
    float CompProp::*const cp[] = {&CompProp::CpA, &CompProp::CpB, &CompProp::CpC, &CompProp::CpD, &CompProp::CpE};
    float CompProp::*const visc[] = {&CompProp::ViscType, &CompProp::ViscA, &CompProp::ViscB, &CompProp::ViscC,
                                     &CompProp::ViscD};
    float CompProp::*const ant[] = {&CompProp::AntA, &CompProp::AntB, &CompProp::AntC, &CompProp::AntD,
                                    &CompProp::AntE};
    for (std::size_t k = 0; k < 5; ++k) {
        visit(p.CP[2 * k + h], cp[k]);
        visit(p.VISC[2 * k + h], visc[k]);
        visit(p.ANT[2 * k + h], ant[k]);
    }
    visit(p.HVAP[h], &CompProp::HVap);
    visit(p.HFOR[h], &CompProp::HFor);
    visit(p.ANT[11 + h], &CompProp::AntTMin);
    visit(p.ANT[13 + h], &CompProp::AntTMax);
}

constexpr double kR = 8.314;           // kJ/kmol/K
constexpr double kTStd = 288.70001220703125;  // 288.7 K as a 4-byte float: 60 F
constexpr double kTVisc1 = 310.93;     // 100 F
constexpr double kTVisc2 = 372.04;     // 210 F

float as_float(double v) { return static_cast<float>(v); }

void copy_fields(CompProp& out, const CompProp& in, std::initializer_list<float CompProp::*> fields) {
    for (float CompProp::*f : fields) out.*f = in.*f;
}

// Riazi-Daubert form a Tb^b SG^c exp(d Tb + e SG + f Tb SG).
double riazi_daubert(double tb, double sg, const double (&k)[6]) {
    return k[0] * checked_pow(tb, k[1]) * checked_pow(sg, k[2]) * SafeExp(k[3] * tb + k[4] * sg + k[5] * tb * sg);
}

// Liquid viscosity estimate: ViscType 3 coefficients of ln(mu/cP) = A + B/T
// through the API kinematic viscosities at 100 F and 210 F, made dynamic with
// Rackett densities.
void estimate_viscosity(const CompProp& c, double tb, double kw, CompProp& out) {
    const double n1 = std::pow(10.0, -1.35579 + 0.00146891 * tb + 2.71676e-06 * tb * tb);
    const double e = 34.931 - 0.15919 * tb + 0.000218218 * tb * tb - 5.9133e-08 * tb * tb * tb;
    const double g =
        std::pow(10.0, (-2.92649 + 0.0125713 * tb - 1.65223e-05 * tb * tb + 4.37037e-09 * tb * tb * tb) * kw + e);
    double v1 = n1 + g;  // cSt at 100 F
    const double b = 1.8 * tb * v1;
    double v2 = std::pow(10.0, -1.92353 + 0.000433928 * tb + 0.5113 * Log10Safe(b));  // cSt at 210 F
    const auto rackett_exponent = [&](double t) {
        return 1.0 + checked_pow(1.0 - std::min(0.99, checked_div(t, c.TC)), 2.0 / 7.0);
    };
    const double zr = checked_pow(checked_div(c.MW, c.LDen * kR) * c.PC / c.TC, 1.0 / rackett_exponent(c.TDen));
    const auto rho = [&](double t) {
        return checked_div(c.MW, checked_pow(zr, rackett_exponent(t)) * c.TC * kR / c.PC);
    };
    v1 = v1 * rho(kTVisc1) / 1000.0;
    v2 = v2 * rho(kTVisc2) / 1000.0;
    out.ViscType = 3.0f;
    out.ViscC = 0.0f;
    out.ViscD = 0.0f;
    const double B = (checked_log(v1) - checked_log(v2)) / (1.0 / kTVisc1 - 1.0 / kTVisc2);
    out.ViscB = as_float(B);
    out.ViscA = as_float(checked_log(v1) - B / kTVisc1);
}

}  // namespace

CompProp pseudo_half(const Pseudo& p, int half) {
    const std::size_t h = half == 1 ? 1 : 2;
    CompProp c;
    c.Number = p.NAME_NUM[h];
    c.Name = std::string(trim(p.NAME_TEXT[h]));
    c.Formula = std::string(trim(p.FOR[h]));
    pseudo_fields(p, h, [&](float v, float CompProp::*field) { c.*field = v; });
    return c;
}

void set_pseudo_half(Pseudo& p, int half, const CompProp& c) {
    const std::size_t h = half == 1 ? 1 : 2;
    p.NAME_NUM[h] = c.Number;
    p.NAME_TEXT[h] = c.Name;
    p.FOR[h] = c.Formula;
    pseudo_fields(p, h, [&](float& v, float CompProp::*field) { v = c.*field; });
}

CompProp estimate_pseudo(RunContext& ctx, const CompProp& in) {
    CompProp out;
    try {
        if (in.TBP < 300.0f) ctx.log_error("Error! NBP below 300K and outside correlation range.");
        out.Number = in.Number;
        out.Name = in.Name;
        out.LDenStd = in.LDenStd;
        if (in.LDenStd < 1.0f) {
            ctx.ui.tell("Error! Std liq density < 1. Assume 700 kg/m3.");
            out.LDenStd = 700.0f;
        }
        out.TBP = in.TBP;
        if (in.TBP < 1.0f) {
            ctx.ui.tell("Error! Normal boiling point < 1. Assume 400 K.");
            out.TBP = 400.0f;
        }
        copy_fields(out, in, {&CompProp::TFP, &CompProp::DIPM});
        const double tb = out.TBP;
        const double sg = out.LDenStd / 999.0;
        const double kw = std::cbrt(1.8 * tb) / sg;  // Watson characterisation factor
        out.Formula = trim(in.Formula).empty() ? std::string("CxHx") : in.Formula;

        const auto keep = [](float entered, auto estimate) { return entered != 0.0f ? entered : as_float(estimate()); };
        out.MW = keep(in.MW, [&] {
            return riazi_daubert(tb, sg, {42.965, 1.26007, 4.98308, 0.0002097, -7.78712, 0.00208476});
        });
        out.TC = keep(in.TC, [&] {
            return riazi_daubert(tb, sg, {35.9413, 0.7293, 1.2771, -0.00069, -1.4442, 0.000491});
        });
        out.PC = keep(in.PC, [&] {
            return riazi_daubert(tb, sg, {695.75, 0.6791, -0.6807, -0.0135, -0.3129, 0.009174});
        });
        out.VC = keep(in.VC, [&] {
            return riazi_daubert(tb, sg, {62000000.0, 1.20493, 17.2074, -0.00758, -28.5524, 0.01172});
        });
        out.ZC = keep(in.ZC, [&] { return checked_div(double(out.PC) * out.VC / kR, out.TC); });
        out.Acc = keep(in.Acc, [&] {
            // Lee-Kesler (1975), Pr = 1 atm / Pc.
            const double lnpr = checked_log(checked_div(101.325, out.PC));
            const double tbr = checked_div(tb, out.TC);
            const double lntbr = checked_log(tbr);
            const double tbr6 = std::pow(tbr, 6.0);
            return checked_div(lnpr - 5.92714 + 6.09648 / tbr + 1.28862 * lntbr - 0.169347 * tbr6,
                               15.2518 - 15.6875 / tbr - 13.4721 * lntbr + 0.43577 * tbr6);
        });
        if (in.LDen != 0.0f && in.TDen != 0.0f) {
            copy_fields(out, in, {&CompProp::LDen, &CompProp::TDen});
        } else {
            out.LDen = out.LDenStd;
            out.TDen = as_float(kTStd);
        }
        if (in.CpA != 0.0f && in.CpB != 0.0f) {
            copy_fields(out, in, {&CompProp::CpA, &CompProp::CpB, &CompProp::CpC, &CompProp::CpD, &CompProp::CpE});
        } else {
            // Lee-Kesler (1976) ideal gas heat capacity, scaled to kJ/kmol/K.
            const double w = out.Acc;
            const double mw = out.MW;
            const double F = checked_pow(checked_div((12.8 - kw) * (10.0 - kw), 10.0 * w), 2.0);
            out.CpA = as_float((-1.41779 + 0.11828 * kw - (1.09223 - 2.48245 * w) * F) * mw);
            out.CpB = as_float((-0.000699724 + 0.000869326 * kw - 2.7715e-05 * kw * kw + (0.003434 - 0.00714 * w) * F) * mw);
            out.CpC = as_float((-2.2582e-06 + (7.2661e-07 - 9.2561e-07 * w) * F) * mw);
            out.CpD = 0.0f;
            out.CpE = 0.0f;
        }
        if (in.ViscType != 0.0f && in.ViscA != 0.0f && in.ViscB != 0.0f) {
            copy_fields(out, in,
                        {&CompProp::ViscType, &CompProp::ViscA, &CompProp::ViscB, &CompProp::ViscC, &CompProp::ViscD});
        } else {
            estimate_viscosity(out, tb, kw, out);
        }
        out.HVap = keep(in.HVap, [&] { return 37.32315 * std::pow(tb, 1.14086) * std::pow(sg, 0.00977089); });
        copy_fields(out, in, {&CompProp::HFor, &CompProp::GFor});
        if (in.AntA != 0.0f && in.AntB != 0.0f) {
            copy_fields(out, in,
                        {&CompProp::AntA, &CompProp::AntB, &CompProp::AntC, &CompProp::AntD, &CompProp::AntE,
                         &CompProp::AntTMin, &CompProp::AntTMax});
        } else {
            // Through (Tb, 1 atm) and (Tc, Pc) with C = -43 K.
            const double B = checked_div(checked_log(out.PC) - std::log(101.325),
                                         checked_div(1.0, out.TC - 43.0) - checked_div(1.0, tb - 43.0));
            out.AntE = 0.0f;
            out.AntD = 0.0f;
            out.AntC = -43.0f;
            out.AntB = as_float(B);
            out.AntA = as_float(std::log(101.325) - B / (tb - 43.0));
            out.AntTMin = 0.0f;
            out.AntTMax = out.TC;
        }
    } catch (const Fault& f) {
        ctx.log_error("Error! In Pseudo property function = " + fault_text(f));
    }
    return out;
}

namespace {

void estimate_set(RunContext& ctx, Pseudo& p) {
    const CompProp est = estimate_pseudo(ctx, pseudo_half(p, 1));
    set_pseudo_half(p, 2, est);
    p.NAME_TEXT[2] = p.NAME_TEXT[1];
    if (!trim(p.FOR[1]).empty()) p.FOR[2] = p.FOR[1];
}

}  // namespace

void PseudoProps(RunContext& ctx, std::vector<Pseudo>& pseudos) {
    for (std::size_t k = 1; k < pseudos.size(); ++k) estimate_set(ctx, pseudos[k]);
}

void estimate_missing_pseudos(RunContext& ctx, std::vector<Pseudo>& pseudos) {
    for (std::size_t k = 1; k < pseudos.size(); ++k)
        if (pseudos[k].MW[2] == 0.0f && pseudos[k].TC[2] == 0.0f) estimate_set(ctx, pseudos[k]);
}

}  // namespace velm
