// Case strings: one entry for each case, separated by ";". One entry alone
// holds for every case.
#pragma once

#include <string>
#include <string_view>

namespace velm {

struct RunContext;

// Entry n (1-based) of a case string, trimmed; a text of one entry returns
// that entry for every n; a missing or empty entry returns "".
std::string getting_case_data(std::string_view text, int n);
// The same entry as a view into text, without a copy: what the routines that
// run at every iteration read.
std::string_view case_entry(std::string_view text, int n);
// Number of entries: 1 plus the number of ";".
int case_count(std::string_view text);
// index 0: the number of entries; index n: entry n as a whole number, 1 when
// the entry is missing or empty.
int case_count_or_value(std::string_view list, int index);
// 0 for an empty or blank text, else the number at the start of the text.
double val_or_zero(std::string_view text);

// The entry for a case read as a specification: set when not empty.
inline bool is_specified(std::string_view text, int case_no) { return !case_entry(text, case_no).empty(); }
// The entry for a case compared as a letter ("C", "E", "V"), trimmed and in capitals.
bool spec_is(std::string_view text, int case_no, char letter);
// The entry for a case as a number (0 for a letter or an empty entry).
double spec_value(std::string_view text, int case_no);

}  // namespace velm
