#include "model/records.hpp"

namespace velm {

const std::string& LinkedFiles::operator[](std::size_t n) const {
    static const std::string none;
    return names_ && n < names_->size() ? (*names_)[n] : none;
}

void LinkedFiles::set(std::size_t n, std::string name) {
    if (n == 0 || n > kLinkedFiles) return;
    if (!names_) {
        if (name.empty()) return;
        names_ = std::make_unique<Names>();
    }
    (*names_)[n] = std::move(name);
}

bool LinkedFiles::operator==(const LinkedFiles& o) const {
    for (std::size_t n = 1; n <= kLinkedFiles; ++n)
        if ((*this)[n] != o[n]) return false;
    return true;
}

}  // namespace velm
