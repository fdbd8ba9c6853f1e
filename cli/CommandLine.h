#pragma once

/// Does what the command line says, reports what fails, and gives the exit code.
int runCommandLine(int argc, char** argv);
