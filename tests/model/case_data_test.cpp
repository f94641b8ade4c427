#include "model/case_data.hpp"

#include <gtest/gtest.h>

namespace velm {
namespace {

TEST(CaseData, EntriesOfACaseString) {
    struct Row { const char* text; int n; const char* entry; };
    const Row rows[] = {
        {"10", 1, "10"}, {"10", 3, "10"},          // one entry holds for every case
        {"10;", 1, "10"}, {"10;", 2, ""},          // an entry missing at the end is empty
        {"10;20", 3, ""},                          // a shorter list: calculated in that case
        {"100;;E", 2, ""}, {"100;;E", 3, "E"},
        {" 7 ; 8 ", 2, "8"}, {" ", 1, ""}, {"1;2", 0, ""},
    };
    for (const Row& r : rows) EXPECT_EQ(getting_case_data(r.text, r.n), r.entry) << r.text << " #" << r.n;
}

TEST(CaseData, CountsLettersAndNumbers) {
    EXPECT_EQ(case_count(""), 1);
    EXPECT_EQ(case_count("1;;3;"), 4);
    EXPECT_EQ(case_count_or_value("", 0), 1);
    EXPECT_EQ(case_count_or_value("", 1), 1);   // an empty CASENO runs case 1
    EXPECT_EQ(case_count_or_value("2;1", 1), 2);
    EXPECT_EQ(case_count_or_value("2;;1", 2), 1);
    EXPECT_EQ(case_count_or_value("3", 1), 3);
    EXPECT_TRUE(spec_is(" e ", 1, 'E'));
    EXPECT_TRUE(spec_is("1;c", 2, 'C'));
    EXPECT_FALSE(spec_is("EE", 1, 'E'));
    EXPECT_FALSE(is_specified("10; ;3", 2));
    EXPECT_EQ(spec_value("10;C", 2), 0.0);
    EXPECT_EQ(val_or_zero("  12.5 bar"), 12.5);
    EXPECT_EQ(val_or_zero("-.5E1x"), -5.0);
    EXPECT_EQ(val_or_zero("abc"), 0.0);
}

}  // namespace
}  // namespace velm
