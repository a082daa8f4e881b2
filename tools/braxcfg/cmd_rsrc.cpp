// rsrc dump | canon: resource strings through IoParms, as the dialogs see them.
#include <cstdio>
#include <string>
#include <vector>

#include "command.h"
#include "rsrc/io_parms.h"

namespace braxcfg::tool {
namespace {

constexpr int kNameChars = 1024;

// Each operand in a buffer of its own: parse trims it in place.
std::vector<char> writableCopy(const std::string& text) {
    return std::vector<char>(text.c_str(), text.c_str() + text.size() + 1);
}

int dumpEach(const std::vector<std::string>& strings) {
    bool allParsed = true;
    for (const std::string& text : strings) {
        std::vector<char> buffer = writableCopy(text);
        rsrc::IoParms parms;
        allParsed = parms.parse(buffer.data(), false) >= 0 && allParsed;
        parms.dump(stdout);
    }
    return allParsed ? 0 : 1;
}

int canonEach(const std::vector<std::string>& strings) {
    bool allParsed = true;
    for (const std::string& text : strings) {
        std::vector<char> buffer = writableCopy(text);
        rsrc::IoParms parms;
        const visa::ViStatus status = parms.parse(buffer.data(), false);
        allParsed = status >= 0 && allParsed;
        char canonical[kNameChars];
        char alternate[kNameChars];
        std::printf("%s\t%s\t0x%08lX\n", parms.getCanonicalName(canonical, kNameChars),
                    parms.getAltName(alternate, kNameChars),
                    static_cast<unsigned long>(static_cast<std::uint32_t>(status)));
    }
    return allParsed ? 0 : 1;
}

int runRsrc(const Args& args) {
    if (args.empty() || (args[0] != "dump" && args[0] != "canon"))
        return fail("rsrc needs 'dump' or 'canon' (see braxcfg rsrc --help)");
    SplitArgs split;
    std::string error;
    if (!splitArgs(Args(args.begin() + 1, args.end()), {}, {}, split, error)) return fail(error);
    if (split.operands.empty()) return fail("rsrc " + args[0] + " needs at least one resource string");
    const int rc = args[0] == "dump" ? dumpEach(split.operands) : canonEach(split.operands);
    std::fflush(stdout);
    return rc;
}

const CommandRegistration kRsrc({"rsrc", "parse resource strings: record dump or canonical forms",
                                 "usage: braxcfg rsrc dump [--] STRING...\n"
                                 "       braxcfg rsrc canon [--] STRING...\n"
                                 "dump parses each STRING and prints the whole parsed record.\n"
                                 "canon prints one line per STRING: canonical name, TAB, alternate name (empty\n"
                                 "when none), TAB, the parse status in hexadecimal (0xBFFF0012).\n"
                                 "After \"--\" every argument is a resource string, even one starting with \"-\".\n"
                                 "Exit status 0 when every STRING parsed without error, 1 otherwise.\n",
                                 StoreUse::Read, runRsrc});

}  // namespace
}  // namespace braxcfg::tool
