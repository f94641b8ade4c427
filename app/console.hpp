// The command line's interaction layer: messages go to standard error, the
// status of a run to standard output, and questions are answered from flags.
#pragma once

#include <iostream>
#include <string>
#include <vector>

#include "app/commands.hpp"
#include "model/context.hpp"

namespace velm {

class ConsoleInteraction : public Interaction {
public:
    explicit ConsoleInteraction(const ReadOptions& opt) : opt_(opt) {}
    void tell(const std::string& text) override { std::cerr << crlf_to_lf(text) << "\n"; }
    int ask(const std::string& question, const std::vector<std::string>& choices) override {
        // Nobody is there to answer: an old file is read as the flag says, and
        // reading a file with many faulty lines stops.
        int answer = 0;
        if (question.rfind("Was this older file", 0) == 0) answer = opt_.european ? 0 : 1;
        // --mode hmb or both is the user's own Yes to the balance overwriting compositions.
        if (question.rfind("HMB will overwrite", 0) == 0) answer = 0;
        if (question.find("pipe diameters") != std::string::npos || question.find("already exists") != std::string::npos ||
            question.find("File import") != std::string::npos)
            answer = opt_.yes ? 0 : 1;
        std::cerr << question << " " << (answer < static_cast<int>(choices.size()) ? choices[answer] : "") << "\n";
        return answer;
    }
    void status(const std::string& text) override {
        if (!quiet) std::cout << text << "\n";
    }
    bool quiet = false;  // standard output is kept for what the command prints at its end

private:
    static std::string crlf_to_lf(std::string s) {
        for (std::size_t at = s.find("\r\n"); at != std::string::npos; at = s.find("\r\n", at)) s.erase(at, 1);
        return s;
    }
    ReadOptions opt_;
};

}  // namespace velm
