#pragma once
namespace velm {
// Runs the velm command; returns the exit status.
int cli_main(int argc, char** argv);
}  // namespace velm
