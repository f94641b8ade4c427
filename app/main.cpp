#include "app/cli.hpp"

int main(int argc, char** argv) { return velm::cli_main(argc, argv); }
