// Fixed-pitch report text in rich text form: the lines of a report built in
// memory, each ended by " \par ", with the column helpers and the number
// layout that the tables of the reports share.
#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace velm {

// Text made safe for a rich text body: "\", "{" and "}" take a backslash
// (so a path prints with each backslash doubled), bytes of 128 and above
// (Windows-1252) become "\'hh", a tab a blank, other control characters
// are dropped.
std::string rtf_escape(std::string_view text);
// The same, appended to out.
void append_rtf_escaped(std::string& out, std::string_view text);

// The text cut to width characters, or padded with blanks on the right (left
// aligned) or on the left (right aligned) to exactly width.
std::string cell_left(std::string_view text, std::size_t width);
std::string cell_right(std::string_view text, std::size_t width);

// The text padded with blanks up to the 1-based column col, then more added
// there (a text already past the column gets one blank first).
void put_at_column(std::string& line, std::size_t col, std::string_view more);

// A number by the report pattern "########0.0###" when it fits in width
// characters, else with fewer decimals, else in the form "0.00E-##". A value
// that is not finite prints "-".
std::string report_number(double value, std::size_t width);

// The lines of a report as rich text.
class RtfText {
public:
    // Where the text goes as it gathers: whenever a megabyte stands, and at
    // send(). Without a sink the whole text stays in memory.
    using Sink = std::function<bool(std::string_view)>;
    void send_to(Sink sink) { sink_ = std::move(sink); }
    // What stands goes to the sink; false when this or an earlier sending
    // failed (nothing more is sent after a failure).
    bool send();

    // A line of plain text, escaped; CR LF inside it starts a new line.
    void line(std::string_view text = {});
    // A line already in rich text form (a field inside it, say).
    void line_rtf(std::string_view rtf);
    // A rule of n "=".
    void rule(std::size_t n = 150);
    void page();
    // Rich text as it stands, with a line end for the eye.
    void raw(std::string_view rtf);
    // The text not yet sent.
    const std::string& str() const { return text_; }

private:
    static constexpr std::size_t kSendBytes = 1 << 20;
    void sent_enough();
    std::string text_;
    Sink sink_;
    bool failed_ = false;
};

// A table of the reports: a column with a title, a unit line under it, a
// width, and its alignment (text columns left, numbers right).
struct Column {
    std::string title;
    std::string unit;
    std::size_t width = 10;
    bool left = false;
};

// The two head lines of a table, a rule of "-" under them, then the rows;
// the cells of a row in the order of the columns, one blank between columns.
void write_table(RtfText& out, const std::vector<Column>& columns, const std::vector<std::vector<std::string>>& rows);
// The same in parts, for a table written a row at a time: the head lines
// and the rule, then each row.
void write_table_head(RtfText& out, const std::vector<Column>& columns);
void write_table_row(RtfText& out, const std::vector<Column>& columns, const std::vector<std::string>& row);

}  // namespace velm
