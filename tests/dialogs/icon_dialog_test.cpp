// The icon dialog: a kind's drawing table edited row by row; the sheet draws
// and hits the item by the edited table, a bad row is refused with nothing
// changed, and the default comes back on request and with a new project.
#include <gtest/gtest.h>

#include "dialogs/dialogs.hpp"
#include "drawing/edit_ops.hpp"
#include "drawing/icons.hpp"
#include "model/context.hpp"
#include "model/project_file.hpp"
#include "model/records.hpp"

namespace velm {
namespace {

using Texts = std::vector<std::pair<std::string, std::string>>;

struct IconDialog : ::testing::Test {
    Project p;
    int pump = 0;
    int slot = 0;

    void SetUp() override {
        NewProject(p);
        pump = NewItem(p, ItemKind::Pump, 0, 3000.0f, 2000.0f);
        p.pumps[static_cast<std::size_t>(pump)].Selected = -1;
        slot = selected_icon_slot(p);
    }
};

TEST_F(IconDialog, AnEditedTableDrawsAndHitsTheItem) {
    ASSERT_EQ(slot, icon_slot(ItemKind::Pump, 0));
    const auto d = load_icon_dialog(p, slot);
    ASSERT_TRUE(d.has_value());
    EXPECT_EQ(d->fields[0].text, "Pump");
    EXPECT_EQ(d->fields[2].text, "10 Corner");
    EXPECT_EQ(d->fields[5].text, "11 Corner");
    const Box before = item_box(p, {ItemKind::Pump, pump});

    // An unchanged OK keeps the default.
    ASSERT_EQ(apply_icon_dialog(p, slot, {}), "");
    EXPECT_TRUE(p.icons.empty());

    // The first corner moved 500 twips to the left: the box grows that way.
    const std::string x0 = d->fields[3].text;
    ASSERT_EQ(apply_icon_dialog(p, slot, {{"X0", std::to_string(std::stof(x0) - 500.0f)}}), "");
    const Box after = item_box(p, {ItemKind::Pump, pump});
    EXPECT_FLOAT_EQ(after.x0, before.x0 - 500.0f);
    EXPECT_FLOAT_EQ(after.x1, before.x1);
    EXPECT_EQ(load_icon_dialog(p, slot)->fields[3].text, std::to_string(static_cast<int>(std::stof(x0) - 500.0f)));

    ASSERT_EQ(apply_icon_dialog(p, slot, {{"DEFAULT", "Yes"}}), "");
    EXPECT_TRUE(p.icons.empty());
    EXPECT_FLOAT_EQ(item_box(p, {ItemKind::Pump, pump}).x0, before.x0);

    ASSERT_EQ(apply_icon_dialog(p, slot, {{"Y1", "900"}}), "");
    EXPECT_EQ(p.icons.size(), 1u);
    NewProject(p);
    EXPECT_TRUE(p.icons.empty());
}

TEST_F(IconDialog, RefusesABadRowWithNothingChanged) {
    struct Row {
        Texts typed;
        std::string says;
    };
    const Row rows[] = {
        {{{"OP3", "7"}}, "Row 3: no icon command 7."},
        {{{"OP0", "3 Line"}}, "Rows 0 and 1 are the corners of the icon's box (commands 10 and 11)."},
        {{{"OP1", ""}}, "Rows 0 and 1 are the corners of the icon's box (commands 10 and 11)."},
        {{{"X2", "1e10"}}, "Invalid Input (+-1000 000 000)."},
    };
    for (const Row& r : rows) {
        SCOPED_TRACE(r.says);
        EXPECT_EQ(apply_icon_dialog(p, slot, r.typed), r.says);
        EXPECT_TRUE(p.icons.empty());
    }
    EXPECT_FALSE(load_icon_dialog(p, icon_slot(ItemKind::Symbol, 0)).has_value());
    EXPECT_FALSE(load_icon_dialog(p, icon_slot(ItemKind::Pump, 1)).has_value());
    EXPECT_TRUE(load_icon_dialog(p, icon_slot(ItemKind::Vessel, 2)).has_value());
}

}  // namespace
}  // namespace velm
