// rsrc dump | canon: resource strings through IoParms, as the dialogs see them.
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include "command.h"
#include "resource_names.h"
#include "rsrc/io_parms.h"
#include "tool_json.h"
#include "tool_text.h"

namespace braxcfg::tool {
namespace {

// Each operand in a buffer of its own: parse trims it in place.
std::vector<char> writableCopy(const std::string& text) {
    return std::vector<char>(text.c_str(), text.c_str() + text.size() + 1);
}

// The record's fields as IoParms prints them (without the record's
// address, which differs from run to run), in system text.
std::string recordFields(rsrc::IoParms& parms) {
    char* text = nullptr;
    std::size_t size = 0;
    std::FILE* record = open_memstream(&text, &size);
    if (record == nullptr) return {};
    parms.dumpFields(record);
    std::fclose(record);
    std::string fields(text, size);
    std::free(text);
    return fields;
}

int dumpEach(const std::vector<std::string>& strings, bool json) {
    bool allParsed = true;
    Json list = Json::array();
    for (const std::string& text : strings) {
        std::vector<char> buffer = writableCopy(text);
        rsrc::IoParms parms;
        const visa::ViStatus status = parms.parse(buffer.data(), false);
        allParsed = status >= 0 && allParsed;
        const std::string fields = recordFields(parms);
        if (json)
            list.push_back({{"string", jsonText(text)}, {"status", jsonStatus(status)},
                            {"record", jsonText(fields)}});
        else
            std::printf("\nIoParms record\n%s", forStdout(fields, "\n").c_str());
    }
    if (json) printJson(list);
    return allParsed ? 0 : 1;
}

// One line per string: canonical name, alternate name, status. TAB or any
// other control character in the names is escaped so the columns stay
// columns.
int canonEach(const std::vector<std::string>& strings, bool json) {
    bool allParsed = true;
    Json list = Json::array();
    for (const std::string& text : strings) {
        const ResourceNames names = resourceNames(text);
        allParsed = names.status >= 0 && allParsed;
        if (json) {
            list.push_back({{"string", jsonText(text)},
                            {"canonical", jsonText(names.canonical)},
                            {"alternate", jsonText(names.alternate)},
                            {"status", jsonStatus(names.status)}});
            continue;
        }
        std::printf("%s\t%s\t0x%08lX\n", escapedUtf8(names.canonical).c_str(), escapedUtf8(names.alternate).c_str(),
                    static_cast<unsigned long>(static_cast<std::uint32_t>(names.status)));
    }
    if (json) printJson(list);
    return allParsed ? 0 : 1;
}

int runRsrc(const ParsedArgs& args) {
    const std::string action = args.operands.empty() ? std::string() : args.operands[0];
    if (action != "dump" && action != "canon") return fail("rsrc needs 'dump' or 'canon' (see braxcfg rsrc --help)");
    const std::vector<std::string> strings(args.operands.begin() + 1, args.operands.end());
    if (strings.empty()) return fail("rsrc " + action + " needs at least one resource string");
    const bool json = hasOption(args, "--json");
    const int rc = action == "dump" ? dumpEach(strings, json) : canonEach(strings, json);
    std::fflush(stdout);
    return rc;
}

const CommandRegistration kRsrc({"rsrc", "parse resource strings: record dump or canonical forms",
                                 "usage: braxcfg rsrc dump [--json] [--] STRING...\n"
                                 "       braxcfg rsrc canon [--json] [--] STRING...\n"
                                 "dump parses each STRING and prints the whole parsed record.\n"
                                 "canon prints one line per STRING: canonical name, TAB, alternate name (empty\n"
                                 "when none), TAB, the parse status in hexadecimal (0xBFFF0012).\n"
                                 "After \"--\" every argument is a resource string, even one starting with \"-\".\n"
                                 "Exit status 0 when every STRING parsed without error, 1 otherwise.\n",
                                 StoreUse::ReadOnly, runRsrc, {{"--json", nullptr, "print JSON instead of text"}}});

}  // namespace
}  // namespace braxcfg::tool
