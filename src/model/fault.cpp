#include "model/fault.hpp"

namespace velm {

namespace {
const char* standard_description(int number) {
    switch (number) {
        case kFaultInvalidCall: return "Invalid procedure call or argument";
        case kFaultOverflow: return "Overflow";
        case kFaultSubscript: return "Subscript out of range";
        case kFaultDivisionByZero: return "Division by zero";
        case kFaultTypeMismatch: return "Type mismatch";
        case kFaultPastEnd: return "Input past end of file";
        default: return "Application-defined or object-defined error";
    }
}
}  // namespace

void raise_fault(int number) { throw Fault{number, standard_description(number)}; }

void raise_fault(int number, std::string description) { throw Fault{number, std::move(description)}; }

std::string fault_text(const Fault& f) { return std::to_string(f.number) + " : " + f.description; }

}  // namespace velm
