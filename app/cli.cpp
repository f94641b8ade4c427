#include "app/cli.hpp"

#include <iostream>

namespace velm {
int cli_main(int, char**) {
    std::cerr << "velm: not yet\n";
    return 2;
}
}  // namespace velm
