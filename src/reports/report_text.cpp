#include "reports/report_text.hpp"

#include <cmath>

#include "model/number_format.hpp"

namespace velm {

void append_rtf_escaped(std::string& out, std::string_view text) {
    static constexpr char kHex[] = "0123456789abcdef";
    std::size_t plain = 0;  // start of the run of characters that stand as they are
    for (std::size_t i = 0; i < text.size(); ++i) {
        const auto c = static_cast<unsigned char>(text[i]);
        if (c >= 32 && c < 128 && c != '\\' && c != '{' && c != '}') continue;
        out.append(text.data() + plain, i - plain);
        plain = i + 1;
        if (c == '\\' || c == '{' || c == '}') {
            out += '\\';
            out += static_cast<char>(c);
        } else if (c >= 128) {
            out += "\\'";
            out += kHex[c >> 4];
            out += kHex[c & 15];
        } else if (c == '\t') {
            out += ' ';
        }
    }
    out.append(text.data() + plain, text.size() - plain);
}

std::string rtf_escape(std::string_view text) {
    std::string out;
    out.reserve(text.size());
    append_rtf_escaped(out, text);
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
    static const NumberPattern fixed[] = {NumberPattern("########0.0###"), NumberPattern("########0.0##"),
                                          NumberPattern("########0.0#"), NumberPattern("########0.0"),
                                          NumberPattern("########0")};
    static const NumberPattern scientific("0.00E-##");
    return format_number_to_fit(value, fixed, scientific, width);
}

void RtfText::line(std::string_view text) {
    std::size_t start = 0;
    for (;;) {
        const std::size_t end = text.find("\r\n", start);
        append_rtf_escaped(text_, text.substr(start, end == std::string_view::npos ? std::string_view::npos : end - start));
        text_ += " \\par \r\n";
        if (end == std::string_view::npos) break;
        start = end + 2;
    }
    sent_enough();
}

void RtfText::line_rtf(std::string_view rtf) {
    text_ += rtf;
    text_ += " \\par \r\n";
    sent_enough();
}

void RtfText::rule(std::size_t n) { line(std::string(n, '=')); }

void RtfText::page() { text_ += " \\page \r\n"; }

void RtfText::raw(std::string_view rtf) {
    text_ += rtf;
    text_ += "\r\n";
}

void RtfText::sent_enough() {
    if (sink_ && text_.size() >= kSendBytes) send();
}

bool RtfText::send() {
    if (sink_ && !failed_ && !text_.empty()) failed_ = !sink_(text_);
    if (sink_) text_.clear();
    return !failed_;
}

namespace {

// One line of a table: the cells in the order of the columns, one blank
// between columns, blanks at the end cut.
template <class CellOf>
std::string table_line(const std::vector<Column>& columns, CellOf cell_of) {
    std::string s;
    for (std::size_t i = 0; i < columns.size(); ++i) {
        if (i > 0) s += ' ';
        const Column& c = columns[i];
        const std::string cell = cell_of(i);
        s += c.left ? cell_left(cell, c.width) : cell_right(cell, c.width);
    }
    while (!s.empty() && s.back() == ' ') s.pop_back();
    return s;
}

}  // namespace

void write_table_head(RtfText& out, const std::vector<Column>& columns) {
    std::size_t total = 0;
    for (const Column& c : columns) total += c.width + 1;
    out.line(table_line(columns, [&](std::size_t i) { return columns[i].title; }));
    out.line(table_line(columns, [&](std::size_t i) { return columns[i].unit; }));
    out.line(std::string(total > 0 ? total - 1 : 0, '-'));
}

void write_table_row(RtfText& out, const std::vector<Column>& columns, const std::vector<std::string>& row) {
    out.line(table_line(columns, [&](std::size_t i) { return i < row.size() ? row[i] : std::string(); }));
}

void write_table(RtfText& out, const std::vector<Column>& columns, const std::vector<std::vector<std::string>>& rows) {
    write_table_head(out, columns);
    for (const auto& r : rows) write_table_row(out, columns, r);
}

}  // namespace velm
