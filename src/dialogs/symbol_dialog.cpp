// The dialog of a free drawing object: its shape, text, size and pen.
#include <algorithm>

#include "dialogs/check_input.hpp"
#include "dialogs/dialogs.hpp"
#include "model/records.hpp"
#include "model/text.hpp"

namespace velm {

namespace {

const std::vector<std::string> kShapes{"Text", "Line", "Box", "Arc"};
const std::vector<std::string> kPens{"Solid", "Dotted"};

DialogField symbol_field(const char* name, const char* label, const char* check, std::string text,
                         std::vector<std::string> choices = {}) {
    DialogField f = plain_field(name, label, "General", std::move(text));
    f.check = check;
    f.choices = std::move(choices);
    return f;
}

}  // namespace

std::optional<Dialog> load_symbol_dialog(const Project& p, int index) {
    if (index < 1 || index > count(p.symbols)) return std::nullopt;
    const Symbol& s = p.symbols[static_cast<std::size_t>(index)];
    Dialog d{"frmSymbol", "Symbol", index, {}};
    d.fields.push_back(symbol_field("TYPE", "Shape", "", s.TYPE, kShapes));
    d.fields.push_back(symbol_field("TEXT", "Text", "Text", s.TEXT));
    d.fields.push_back(symbol_field("FSIZ", "Font size factor", "", single_text(s.FSIZ)));
    d.fields.push_back(symbol_field("STYLL", "Pen", "", kPens[s.STYLL ? 1 : 0], kPens));
    return d;
}

std::string apply_symbol_dialog(Project& p, int index, const std::vector<std::pair<std::string, std::string>>& texts) {
    const auto d = load_symbol_dialog(p, index);
    if (!d) return "No equipment to edit.";
    const std::string type = typed_text(texts, d->fields[0]);
    const std::string text = typed_text(texts, d->fields[1]);
    const std::string size = typed_text(texts, d->fields[2]);
    const std::string pen = typed_text(texts, d->fields[3]);
    if (std::find(kShapes.begin(), kShapes.end(), type) == kShapes.end())
        return "Error during input checking. Invalid input= " + type + " .";
    if (std::string says = CheckInput("Text", "", text); !says.empty()) return says;
    const auto factor = parse_number(size);
    if (!factor || !(*factor > 0.0) || *factor > 100.0) return "Error during input checking. Invalid input= " + size + " .";
    Symbol& s = p.symbols[static_cast<std::size_t>(index)];
    s.TYPE = type;
    s.TEXT = text;
    s.FSIZ = static_cast<float>(*factor);
    s.STYLL = pen == "Dotted" ? 1 : 0;
    return "";
}

}  // namespace velm
