#include "model/units.hpp"
#include "model/text.hpp"
#include "model/case_data.hpp"
namespace velm {
std::string converting_units(RunContext&, std::string_view text, std::string_view, std::string_view, int digits) {
    std::string out; int n = case_count(text);
    std::string t(text);
    for (int i = 1; i <= n; ++i) {
        std::size_t a = 0; int k = 1;
        while (k < i) { a = t.find(';', a) + 1; ++k; }
        std::size_t b = t.find(';', a);
        std::string e = trim(t.substr(a, b == std::string::npos ? std::string::npos : b - a));
        std::string u = upper(e);
        if (e.empty()) {}
        else if (u == "C" || u == "E" || u == "V") out += u;
        else {
            std::string x = e;
            if (digits == -2) { std::string y; for (char c : x) if (c != ',') y += c; x = y; }
            out += number_text(leading_number(x));
        }
        if (i < n) out += ';';
    }
    return out;
}
}
