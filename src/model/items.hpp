// The item grammar of the project file and of the pipe library: comma-separated
// items in lines ended by CR LF; a text item in double quotes with nothing
// escaped, a number bare with a decimal point. Line ends separate items like
// commas, so a line with too few items takes the rest from the next line.
#pragma once

#include <string>
#include <string_view>

namespace velm {

class ItemReader {
public:
    explicit ItemReader(std::string_view bytes) : s_(bytes) {}

    // Skips blanks and line ends; true when nothing but those is left.
    bool at_end();
    // The next item, unquoted and trimmed. Raises "Input past end of file" (62)
    // when the file ends before an item.
    std::string item();
    // The rest of the current line, without its line end.
    std::string rest_of_line();
    // Line number (from 1) of the position reached.
    int line() const { return line_; }
    // True when the last item ended its line (or the file).
    bool line_ended() const { return line_ended_; }
    // Nothing but blanks remains of the text.
    bool rest_blank() const;

    // Typed reads of the next item. An empty item reads as 0; a text that is
    // not a number raises "Type mismatch" (13) naming the line and the item;
    // an integer out of range raises "Overflow" (6).
    double number();
    float single();
    int integer();

private:
    void skip_blanks();
    bool at_line_end() const;
    void take_line_end();

    std::string_view s_;
    std::size_t pos_ = 0;
    int line_ = 1;
    bool line_ended_ = true;
};

class ItemWriter {
public:
    // A text between double quotes; one holding a double quote bare, as it
    // reads back whole, or else "Invalid procedure call" (5) is raised.
    void text(std::string_view s);
    void number(double v);
    void single(float v);
    void integer(long v);
    // A bare item written as it stands (a number already formatted).
    void raw(std::string_view s);
    void end_line();
    const std::string& bytes() const { return out_; }

private:
    void separate();
    std::string out_;
    bool first_ = true;
};

// Reads an item as a whole number: the nearest integer of its value.
int whole_number(std::string_view item, int line);

}  // namespace velm
