#pragma once
// Runs the built braxcfg tool as a child process, as a person or a script
// would, on a given store.
#include <string>
#include <vector>

namespace braxcfg::test {

std::string shellQuoted(const std::string& word);

// `env`: "NAME=value" words set for the child only. Returns the exit code
// (-1 when it did not exit), with stdout and stderr in `output`.
int runTool(const std::string& store, const std::vector<std::string>& args, std::string* output = nullptr,
            const std::vector<std::string>& env = {});

}  // namespace braxcfg::test
