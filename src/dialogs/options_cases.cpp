// The cases dialog (which cases a run takes, their names and report codes)
// and the title block dialog.
#include <string>

#include "dialogs/options_table.hpp"
#include "solver/input_checks.hpp"

#define A(x) +[](R& r) { return &r.x; }

namespace velm::dialog {
namespace {

using R = OptionsState;

// Widths of the title block's lines.
constexpr int kTitleWidth = 50;
constexpr int kSignWidth = 10;
constexpr int kDateWidth = 12;

// The lists a run would refuse are refused here already, in the run's words.
std::string cases_rules(const R& edited, const R& before, const Texts&) {
    if (edited.gen.CASENO != before.gen.CASENO)
        if (std::string says = check_case_list(edited.gen.CASENO); !says.empty()) return says;
    if (edited.gen.CASERPT != before.gen.CASERPT)
        if (std::string says = check_report_codes(edited.gen.CASERPT); !says.empty()) return says;
    return "";
}

std::vector<FieldDef<R>> cases_fields() {
    Fields<R> f;
    f.tab("Cases")
        .text("CASENO", "Cases to run", A(gen.CASENO))
        .text("CASEDSC", "Case descriptions", A(gen.CASEDSC))
        .text("CASERPT", "Report codes", A(gen.CASERPT))
        .flag("CASEDLG", "Case dialog", A(gen.CASEDLG), "Select to show case dialog on dbl click.");
    return f.done();
}

std::vector<FieldDef<R>> title_fields() {
    Fields<R> f;
    f.tab("Title")
        .fixed("COM1", "Owner", A(gen.COM[1]), kTitleWidth)
        .fixed("COM2", "Owner place", A(gen.COM[2]), kTitleWidth)
        .fixed("PRJ1", "Company", A(gen.PRJ[1]), kTitleWidth)
        .fixed("PRJ2", "Place", A(gen.PRJ[2]), kTitleWidth)
        .fixed("PRJ3", "Project", A(gen.PRJ[3]), kTitleWidth)
        .fixed("PRJ4", "Free line", A(gen.PRJ[4]), kTitleWidth)
        .fixed("ENG1", "Eng", A(gen.ENG[1]), kSignWidth)
        .fixed("ENG2", "Chkd", A(gen.ENG[2]), kSignWidth)
        .fixed("ENG3", "Apvd", A(gen.ENG[3]), kSignWidth)
        .fixed("ENG4", "Date", A(gen.ENG[4]), kDateWidth)
        .fixed("ENG5", "Proj:", A(gen.ENG[5]), kDateWidth)
        .fixed("ENG6", "Rev", A(gen.ENG[6]), kSignWidth);
    return f.done();
}

}  // namespace

const OptionsDef& cases_options() {
    static const OptionsDef d{.name = "mnuOptionsCases",
                              .fields = cases_fields(),
                              .keys = {{"CASEDLG", "iCaseShow"}},
                              .rules = cases_rules};
    return d;
}

const OptionsDef& title_options() {
    static const OptionsDef d{.name = "mnuOptionsTitle", .fields = title_fields(), .keys = {}};
    return d;
}

}  // namespace velm::dialog
