// resolve NAME: what a program should open for NAME. An alias of the
// store's alias lists stands for its resource string; anything else must
// be a resource string, and comes out in its canonical form.
#include <iostream>

#include "command.h"
#include "loaded_aliases.h"
#include "resource_names.h"
#include "tool_json.h"
#include "tool_text.h"

namespace braxcfg::tool {
namespace {

// What NAME stands for; `kind` says how it was read ("alias", "resource").
int printResolved(const ParsedArgs& args, const char* kind, const std::string& resource) {
    if (hasOption(args, "--json"))
        printJson({{"name", jsonText(args.operands[0])}, {"kind", kind}, {"resource", jsonText(resource)}});
    else
        std::cout << forStdout(resource) << "\n";
    return 0;
}

int runResolve(const ParsedArgs& split) {
    if (split.operands.size() != 1 || split.operands[0].empty()) return fail("resolve needs exactly one NAME");
    const std::string& name = split.operands[0];
    {
        LoadedAliases aliases;
        const tcpip::AliasEntry* alias = aliases.named(name);
        // An alias with only a KORL address stands for no resource string.
        if (alias != nullptr && alias->rsrcString() && !alias->rsrcString()->empty())
            return printResolved(split, "alias", *alias->rsrcString());
    }
    const ResourceNames names = resourceNames(name);
    if (names.status >= 0 && !names.canonical.empty()) return printResolved(split, "resource", names.canonical);
    std::cerr << "braxcfg: " << forStderr(name) << " is neither an alias nor a resource string\n";
    return 1;
}

const CommandRegistration kResolve({"resolve", "the resource string for an alias or a resource string",
                                    "usage: braxcfg resolve [--json] [--] NAME\n"
                                    "Prints the resource string the alias NAME stands for (the \"VISADevices\"\n"
                                    "list; names ignore case), else the canonical form of NAME as a resource\n"
                                    "string (gpib0::7 gives GPIB0::7::INSTR).\n"
                                    "Exit status 0 when NAME resolved, 1 when it is neither, 2 on an error.\n",
                                    StoreUse::ReadOnly, runResolve, {{"--json", nullptr, "print JSON instead of text"}}});

}  // namespace
}  // namespace braxcfg::tool
