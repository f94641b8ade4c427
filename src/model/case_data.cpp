#include "model/case_data.hpp"

#include <algorithm>
#include <cctype>
#include <cmath>

#include "model/text.hpp"

namespace velm {

std::string_view case_entry(std::string_view text, int n) {
    const std::string_view t = trim_view(text);
    if (t.find(';') == std::string_view::npos) return t;
    if (n < 1) return {};
    std::size_t start = 0;
    for (int entry = 1; entry < n; ++entry) {
        const std::size_t semi = t.find(';', start);
        if (semi == std::string_view::npos) return {};
        start = semi + 1;
    }
    const std::size_t end = t.find(';', start);
    return trim_view(t.substr(start, end == std::string_view::npos ? std::string_view::npos : end - start));
}

std::string getting_case_data(std::string_view text, int n) { return std::string(case_entry(text, n)); }

int case_count(std::string_view text) {
    return 1 + static_cast<int>(std::count(text.begin(), text.end(), ';'));
}

int case_count_or_value(std::string_view list, int index) {
    if (index == 0) return case_count(list);
    int entry = 1;
    std::size_t start = 0;
    while (entry < index) {
        const std::size_t semi = list.find(';', start);
        if (semi == std::string_view::npos) return 1;
        start = semi + 1;
        ++entry;
    }
    const std::size_t end = list.find(';', start);
    const std::string item = trim(list.substr(start, end == std::string_view::npos ? std::string_view::npos : end - start));
    if (item.empty()) return 1;
    const double v = std::nearbyint(leading_number(item));
    if (!(std::fabs(v) < 2147483647.0)) return 1;
    return static_cast<int>(v);
}

double val_or_zero(std::string_view text) { return leading_number(text); }

bool spec_is(std::string_view text, int case_no, char letter) {
    const std::string_view e = case_entry(text, case_no);
    return e.size() == 1 && std::toupper(static_cast<unsigned char>(e[0])) == static_cast<unsigned char>(letter);
}

double spec_value(std::string_view text, int case_no) { return val_or_zero(case_entry(text, case_no)); }

}  // namespace velm
