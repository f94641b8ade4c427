#include "server/rtf_text.hpp"

#include <cctype>

namespace velm {

namespace {

// Groups whose text is not shown: the font and colour tables and the like.
bool hidden_group(std::string_view word) {
    return word == "fonttbl" || word == "colortbl" || word == "stylesheet" || word == "info" || word == "*";
}

}  // namespace

std::string rtf_to_text(std::string_view rtf) {
    std::string out;
    int depth = 0, hidden_depth = -1;
    for (std::size_t i = 0; i < rtf.size(); ++i) {
        const char c = rtf[i];
        if (c == '{') {
            ++depth;
            continue;
        }
        if (c == '}') {
            if (depth == hidden_depth) hidden_depth = -1;
            --depth;
            continue;
        }
        if (c == '\r' || c == '\n') continue;
        if (c != '\\') {
            if (hidden_depth < 0) out += c;
            continue;
        }
        if (i + 1 >= rtf.size()) break;
        const char next = rtf[i + 1];
        if (next == '\\' || next == '{' || next == '}') {
            if (hidden_depth < 0) out += next;
            ++i;
            continue;
        }
        if (next == '\'' && i + 3 < rtf.size()) {
            const std::string hex(rtf.substr(i + 2, 2));
            if (hidden_depth < 0 && std::isxdigit(static_cast<unsigned char>(hex[0])) &&
                std::isxdigit(static_cast<unsigned char>(hex[1])))
                out += static_cast<char>(std::stoi(hex, nullptr, 16));
            i += 3;
            continue;
        }
        std::size_t j = i + 1;
        while (j < rtf.size() && std::isalpha(static_cast<unsigned char>(rtf[j]))) ++j;
        const std::string_view word = rtf.substr(i + 1, j - i - 1);
        if (word.empty()) {
            if (next == '*' && hidden_depth < 0) hidden_depth = depth;
            ++i;
            continue;
        }
        while (j < rtf.size() && (rtf[j] == '-' || std::isdigit(static_cast<unsigned char>(rtf[j])))) ++j;
        if (j < rtf.size() && rtf[j] == ' ') ++j;
        if (hidden_group(word) && hidden_depth < 0) hidden_depth = depth;
        if (hidden_depth < 0) {
            if (word == "par" || word == "line") out += '\n';
            else if (word == "page") out += "\n\f\n";
            else if (word == "tab") out += '\t';
        }
        i = j - 1;
    }
    return out;
}

}  // namespace velm
