#pragma once

/// Runs the command in the arguments and gives the exit code. Throws Reader::Error and Messages::Failure.
int runCommandLine(int argc, char** argv);
