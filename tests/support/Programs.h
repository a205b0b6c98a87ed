#pragma once
// For tests that run a built program as a user would: through the shell, with
// its standard output and error caught together, and files read whole.

#include <filesystem>
#include <string>

namespace morvane::test {

struct Outcome {
    int status = -1; // the exit status; -1 when the program did not exit normally
    std::string out; // standard output and error together
};

// The text as one shell word, whatever it holds.
std::string shellQuote(const std::string& text);
// Runs a shell command line (with 2>&1 appended) to its end.
Outcome runCommand(const std::string& command);
// The whole file; empty when it cannot be read.
std::string readFile(const std::filesystem::path& path);

} // namespace morvane::test
