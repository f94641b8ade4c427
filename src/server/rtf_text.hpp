// The text of a rich text report for reading in the page: control words and
// groups of fonts and colours dropped, paragraphs and page breaks as line ends.
#pragma once

#include <string>
#include <string_view>

namespace velm {

std::string rtf_to_text(std::string_view rtf);

}  // namespace velm
