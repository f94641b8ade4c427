// The icon dialog: the drawing table of one kind's icon (and form), row by
// row, as command, X and Y in twips from the icon's anchor. The project keeps
// the user's table in place of the default until a new project.
#include <algorithm>
#include <string>

#include "dialogs/check_input.hpp"
#include "dialogs/dialogs.hpp"
#include "drawing/icons.hpp"
#include "model/number_format.hpp"
#include "model/text.hpp"

namespace velm {
namespace {

constexpr int kIconRows = 41;
constexpr int kRowsPerTab = 10;

// The commands of a table: the code and the text it is shown by.
struct IconCommand {
    int code;
    const char* code_text;
    const char* shown;
};
constexpr IconCommand kCommands[] = {
    {kIconMove, "1", "1 Move"},          {kIconPoint, "2", "2 Point"},        {kIconLine, "3", "3 Line"},
    {kIconBox, "4", "4 Box"},            {kIconCircle, "5", "5 Circle"},      {kIconArc, "6", "6 Arc"},
    {kIconFilledBox, "8", "8 Filled box"}, {kIconWhiteBox, "9", "9 White box"}, {kIconCorner, "10", "10 Corner"},
    {kIconFrame, "11", "11 Corner"},     {kIconRadius, "100", "100 Radius"},  {kIconAngles, "200", "200 Angles"},
};

const std::vector<std::string>& command_choices() {
    static const std::vector<std::string> k = [] {
        std::vector<std::string> v = {""};
        for (const IconCommand& c : kCommands) v.emplace_back(c.shown);
        return v;
    }();
    return k;
}

std::string command_text(int op) {
    for (const IconCommand& c : kCommands)
        if (c.code == op) return c.shown;
    return op == 0 ? "" : std::to_string(op);
}

// The code of a typed command ("3 Line" or "3"); 0 for an empty one, -1 for
// a text that is no command of the table.
int command_code(const std::string& text) {
    const std::string t = trim(text);
    if (t.empty()) return 0;
    for (const IconCommand& c : kCommands)
        if (t == c.shown || t == c.code_text) return c.code;
    return -1;
}

// Ten rows a tab, the last tab with the eleventh row 40.
std::string tab_of(int row) {
    const int first = std::min(row / kRowsPerTab, kIconRows / kRowsPerTab - 1) * kRowsPerTab;
    const int last = first + kRowsPerTab == kIconRows - 1 ? kIconRows - 1 : first + kRowsPerTab - 1;
    return "Rows " + std::to_string(first) + "-" + std::to_string(last);
}

std::string kind_title(ItemKind kind, int form) {
    std::string t(kind_name(kind));
    if (kind == ItemKind::Feed || kind == ItemKind::Prod) t += form == 2 ? " (Vessel)" : form == 1 ? " (Tank)" : " (Pipe)";
    if (kind == ItemKind::Vessel) t += form == 1 ? " (Tank)" : form == 2 ? " (Horizontal)" : " (Column)";
    return t;
}

}  // namespace

int selected_icon_slot(const Project& p) {
    int slot = -1;
    for_each_item(p, [&](ItemRef r) {
        if (slot >= 0 || r.kind == ItemKind::Line || r.kind == ItemKind::Symbol) return;
        if (const Drawn* d = drawn(p, r); d && d->Selected) slot = item_icon_slot(p, r);
    });
    return slot;
}

std::optional<Dialog> load_icon_dialog(const Project& p, int slot) {
    ItemKind kind{};
    int form = 0;
    if (!icon_of_slot(slot, kind, form)) return std::nullopt;
    const IconDef& icon = icon_drawing(p, kind, form);
    Dialog d{.form = "Icon", .kind = "Icon", .index = slot, .fields = {}};
    DialogField what = plain_field("KIND", "Icon of", "General", kind_title(kind, form));
    what.readonly = true;
    d.fields.push_back(std::move(what));
    DialogField reset = plain_field("DEFAULT", "Default icon", "General", "No");
    reset.choices = {"No", "Yes"};
    reset.hint = "Select Yes to draw the kind with its default icon again.";
    d.fields.push_back(std::move(reset));
    for (int k = 0; k < kIconRows; ++k) {
        const auto i = static_cast<std::size_t>(k);
        const bool used = k <= icon.Count;
        const std::string n = std::to_string(k), tab = tab_of(k);
        DialogField op = plain_field("OP" + n, "Row " + n, tab, used ? command_text(icon.Op[i]) : "");
        op.choices = command_choices();
        op.hint = "Rows 0 and 1: corners of the icon's box (10, 11). 100: radius in X. 200: arc angles in radians.";
        d.fields.push_back(std::move(op));
        DialogField x = plain_field("X" + n, "X " + n, tab, used ? number_text(icon.X[i]) : "");
        DialogField y = plain_field("Y" + n, "Y " + n, tab, used ? number_text(icon.Y[i]) : "");
        x.check = y.check = "Flow";
        x.unit = y.unit = "twips";
        d.fields.push_back(std::move(x));
        d.fields.push_back(std::move(y));
    }
    return d;
}

std::string apply_icon_dialog(Project& p, int slot, const std::vector<std::pair<std::string, std::string>>& texts) {
    const auto d = load_icon_dialog(p, slot);
    if (!d) return "No equipment to edit.";
    for (const DialogField& f : d->fields) {
        if (f.check.empty()) continue;
        if (std::string says = CheckInput(f.check, "", typed_text(texts, f), p.gen.PATM); !says.empty()) return says;
    }
    if (key_of(typed_text(texts, d->fields[1])) == "YES") {
        p.icons.erase(slot);
        return "";
    }
    IconDef icon;
    icon.Count = 0;
    for (int k = 0; k < kIconRows; ++k) {
        const auto i = static_cast<std::size_t>(k);
        const std::size_t at = 2 + 3 * i;
        const int op = command_code(typed_text(texts, d->fields[at]));
        if (op < 0) return "Row " + std::to_string(k) + ": no icon command " + trim(typed_text(texts, d->fields[at])) + ".";
        icon.Op[i] = op;
        icon.X[i] = static_cast<float>(read_display_number(trim(typed_text(texts, d->fields[at + 1]))));
        icon.Y[i] = static_cast<float>(read_display_number(trim(typed_text(texts, d->fields[at + 2]))));
        if (op != 0) icon.Count = k;
    }
    if (icon.Op[0] != kIconCorner || icon.Op[1] != kIconFrame)
        return "Rows 0 and 1 are the corners of the icon's box (commands 10 and 11).";
    ItemKind kind{};
    int form = 0;
    icon_of_slot(slot, kind, form);
    if (icon == default_icon(kind, form).draw) p.icons.erase(slot);
    else p.icons[slot] = icon;
    return "";
}

}  // namespace velm
