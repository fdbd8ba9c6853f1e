#pragma once

/// Does what the command line says and gives the exit code. Throws Reader::Error and
/// Messages::Failure.
int runCommandLine(int argc, char** argv);
