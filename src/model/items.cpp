#include "model/items.hpp"

#include <cmath>

#include "model/fault.hpp"
#include "model/text.hpp"

namespace velm {

void ItemReader::skip_blanks() {
    while (pos_ < s_.size() && (s_[pos_] == ' ' || s_[pos_] == '\t')) ++pos_;
}

bool ItemReader::at_line_end() const { return pos_ < s_.size() && (s_[pos_] == '\r' || s_[pos_] == '\n'); }

void ItemReader::take_line_end() {
    if (pos_ < s_.size() && s_[pos_] == '\r') ++pos_;
    if (pos_ < s_.size() && s_[pos_] == '\n') ++pos_;
    ++line_;
}

bool ItemReader::at_end() {
    for (;;) {
        skip_blanks();
        if (at_line_end()) {
            take_line_end();
            line_ended_ = true;
            continue;
        }
        return pos_ >= s_.size();
    }
}

bool ItemReader::rest_blank() const {
    return s_.find_first_not_of(" \t", pos_) == std::string_view::npos;
}

std::string ItemReader::item() {
    skip_blanks();
    // An item that would start at a line end right after a completed line
    // starts on the next line; after a comma it is empty.
    while (line_ended_ && at_line_end()) {
        take_line_end();
        skip_blanks();
    }
    if (pos_ >= s_.size()) raise_fault(kFaultPastEnd, "Input past end of file (line " + std::to_string(line_) + ")");
    std::string value;
    if (s_[pos_] == '"') {
        const std::size_t close = s_.find_first_of("\"\r\n", pos_ + 1);
        const std::size_t end = close == std::string_view::npos ? s_.size() : close;
        value = std::string(s_.substr(pos_ + 1, end - pos_ - 1));
        pos_ = end;
        if (pos_ < s_.size() && s_[pos_] == '"') ++pos_;
        // Anything between the closing quote and the delimiter is ignored.
        while (pos_ < s_.size() && s_[pos_] != ',' && s_[pos_] != '\r' && s_[pos_] != '\n') ++pos_;
    } else {
        const std::size_t start = pos_;
        while (pos_ < s_.size() && s_[pos_] != ',' && s_[pos_] != '\r' && s_[pos_] != '\n') ++pos_;
        value = trim(s_.substr(start, pos_ - start));
    }
    if (pos_ < s_.size() && s_[pos_] == ',') {
        ++pos_;
        line_ended_ = false;
    } else {
        if (at_line_end()) take_line_end();
        line_ended_ = true;
    }
    return value;
}

std::string ItemReader::rest_of_line() {
    if (line_ended_) return "";
    const std::size_t start = pos_;
    while (pos_ < s_.size() && !at_line_end()) ++pos_;
    std::string r(s_.substr(start, pos_ - start));
    if (at_line_end()) take_line_end();
    line_ended_ = true;
    return r;
}

namespace {
[[noreturn]] void type_mismatch(std::string_view item, int line) {
    raise_fault(kFaultTypeMismatch, "Type mismatch (line " + std::to_string(line) + ": a number was expected, found \"" +
                                        shown_text(item, 40) + "\")");
}
[[noreturn]] void out_of_range(std::string_view item, int line) {
    raise_fault(kFaultOverflow,
                "Overflow (line " + std::to_string(line) + ": the number \"" + shown_text(item, 40) + "\" is too large)");
}
}  // namespace

double ItemReader::number() {
    const int at = line_;
    const std::string it = item();
    if (it.empty()) return 0.0;
    const auto v = parse_number(it);
    if (!v) type_mismatch(it, at);
    if (!std::isfinite(*v)) out_of_range(it, at);
    return *v;
}

float ItemReader::single() {
    const double v = number();
    if (std::fabs(v) > 3.4028234663852886e38) raise_fault(kFaultOverflow);
    return static_cast<float>(v);
}

int whole_number(std::string_view item, int line) {
    if (trim(item).empty()) return 0;
    const auto v = parse_number(item);
    if (!v) type_mismatch(item, line);
    if (!std::isfinite(*v)) out_of_range(item, line);
    const double r = std::nearbyint(*v);
    if (!(std::fabs(r) <= 2147483647.0)) raise_fault(kFaultOverflow);
    return static_cast<int>(r);
}

int ItemReader::integer() {
    const int at = line_;
    return whole_number(item(), at);
}

void ItemWriter::separate() {
    if (!first_) out_ += ',';
    first_ = false;
}

void ItemWriter::text(std::string_view s) {
    separate();
    if (s.find('"') == std::string_view::npos) {
        out_ += '"';
        out_ += s;
        out_ += '"';
        return;
    }
    // A quoted text ends at its next double quote, so a text holding one is
    // written bare, as the reader took it; one that would not read back whole
    // so is refused rather than cut.
    if (s.front() == '"' || trim_view(s) != s || s.find_first_of(",\r\n") != std::string_view::npos)
        raise_fault(kFaultInvalidCall, "Invalid procedure call or argument (the text \"" + shown_text(s, 40) +
                                           "\" holds a double quote and cannot be written whole)");
    out_ += s;
}

void ItemWriter::number(double v) {
    separate();
    out_ += number_text(v);
}

void ItemWriter::single(float v) {
    separate();
    out_ += single_text(v);
}

void ItemWriter::integer(long v) {
    separate();
    out_ += std::to_string(v);
}

void ItemWriter::raw(std::string_view s) {
    separate();
    out_ += s;
}

void ItemWriter::end_line() {
    out_ += "\r\n";
    first_ = true;
}

}  // namespace velm
