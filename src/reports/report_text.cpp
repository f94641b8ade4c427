#include "reports/report_text.hpp"

#include <cmath>
#include <cstdio>

#include "model/number_format.hpp"

namespace velm {

std::string rtf_escape(std::string_view text) {
    std::string out;
    out.reserve(text.size());
    for (const char ch : text) {
        const auto c = static_cast<unsigned char>(ch);
        if (c == '\\' || c == '{' || c == '}') {
            out += '\\';
            out += ch;
        } else if (c >= 128) {
            char hex[8];
            std::snprintf(hex, sizeof hex, "\\'%02x", static_cast<unsigned>(c));
            out += hex;
        } else if (c >= 32) {
            out += ch;
        } else if (c == '\t') {
            out += ' ';
        }
    }
    return out;
}

std::string cell_left(std::string_view text, std::size_t width) {
    std::string s(text.substr(0, width));
    s.resize(width, ' ');
    return s;
}

std::string cell_right(std::string_view text, std::size_t width) {
    const std::string_view s = text.substr(0, width);
    return std::string(width - s.size(), ' ') + std::string(s);
}

void put_at_column(std::string& line, std::size_t col, std::string_view more) {
    const std::size_t at = col > 0 ? col - 1 : 0;
    if (line.size() < at)
        line.resize(at, ' ');
    else
        line += ' ';
    line += more;
}

std::string report_number(double value, std::size_t width) {
    if (!std::isfinite(value)) return "-";
    for (const char* pattern : {"########0.0###", "########0.0##", "########0.0#", "########0.0", "########0"}) {
        std::string s = format_number(value, pattern);
        if (s.size() <= width) return s;
    }
    return format_number(value, "0.00E-##");
}

void RtfText::line(std::string_view text) {
    std::size_t start = 0;
    for (;;) {
        const std::size_t end = text.find("\r\n", start);
        line_rtf(rtf_escape(text.substr(start, end == std::string_view::npos ? std::string_view::npos : end - start)));
        if (end == std::string_view::npos) return;
        start = end + 2;
    }
}

void RtfText::line_rtf(std::string_view rtf) {
    text_ += rtf;
    text_ += " \\par \r\n";
}

void RtfText::rule(std::size_t n) { line(std::string(n, '=')); }

void RtfText::page() { text_ += " \\page \r\n"; }

void RtfText::raw(std::string_view rtf) {
    text_ += rtf;
    text_ += "\r\n";
}

void write_table(RtfText& out, const std::vector<Column>& columns, const std::vector<std::vector<std::string>>& rows) {
    auto row_text = [&](auto cell_of) {
        std::string s;
        for (std::size_t i = 0; i < columns.size(); ++i) {
            if (i > 0) s += ' ';
            const Column& c = columns[i];
            const std::string cell = cell_of(i);
            s += c.left ? cell_left(cell, c.width) : cell_right(cell, c.width);
        }
        while (!s.empty() && s.back() == ' ') s.pop_back();
        return s;
    };
    std::size_t total = 0;
    for (const Column& c : columns) total += c.width + 1;
    out.line(row_text([&](std::size_t i) { return columns[i].title; }));
    out.line(row_text([&](std::size_t i) { return columns[i].unit; }));
    out.line(std::string(total > 0 ? total - 1 : 0, '-'));
    for (const auto& r : rows) out.line(row_text([&](std::size_t i) { return i < r.size() ? r[i] : std::string(); }));
}

}  // namespace velm
