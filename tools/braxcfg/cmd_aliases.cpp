// aliases [set NAME --resource R [--korl-address A] | remove NAME]: the
// aliases of LAN resources, through the list the LAN resource dialog uses.
#include <cstdio>
#include <iostream>

#include "command.h"
#include "loaded_aliases.h"
#include "tool_json.h"
#include "tool_text.h"

namespace braxcfg::tool {
namespace {

using tcpip::AliasEntry;
using tcpip::AList;


Json optionalText(const AliasEntry::Text& text) { return text ? jsonText(*text) : Json(nullptr); }

int printAliasesJson() {
    LoadedAliases aliases;
    Json list = Json::array();
    aliases.list().reset();
    while (const AliasEntry* entry = aliases.list().next())
        list.push_back({{"alias", optionalText(entry->name())},
                        {"resource", optionalText(entry->rsrcString())},
                        {"korlAddress", optionalText(entry->korlAddress())}});
    printJson(list);
    return 0;
}

int listAliases() {
    LoadedAliases aliases;
    if (aliases.list().count() == 0) {
        std::cout << "No aliases.\n";
        return 0;
    }
    std::printf("%-20s %-40s %s\n", "ALIAS", "RESOURCE (VISADevices)", "KORL ADDRESS (Devices)");
    aliases.list().reset();
    while (const AliasEntry* entry = aliases.list().next())
        std::cout << padded(forStdout(entry->name().value_or("")), 20) << " "
                  << padded(forStdout(entry->rsrcString().value_or("-")), 40) << " "
                  << forStdout(entry->korlAddress().value_or("-")) << "\n";
    std::cout.flush();
    return 0;
}

int commitOrFail(AList& list) {
    return list.commit() == 0 ? 0 : fail("the store did not take the change; nothing was written");
}

int setAlias(const std::string& name, const ParsedArgs& split) {
    const std::string resource = optionValue(split, "--resource");
    if (resource.empty()) return fail("usage: braxcfg aliases set NAME --resource R [--korl-address A]");
    const bool hasKorl = hasOption(split, "--korl-address");
    const std::string korl = optionValue(split, "--korl-address");
    LoadedAliases aliases;
    if (AliasEntry* entry = aliases.named(name)) {
        entry->setName(name);
        entry->setRsrcString(resource);
        if (hasKorl) entry->setKorlAddress(korl.empty() ? std::nullopt : AliasEntry::Text(korl));
        aliases.list().markChanged(entry);
    } else {
        auto* added = new AliasEntry(name, resource, hasKorl && !korl.empty() ? AliasEntry::Text(korl) : std::nullopt);
        if (aliases.list().addRecord(added) != 0) {
            delete added;
            return fail("cannot add the alias " + forStderr(name));
        }
    }
    return commitOrFail(aliases.list());
}

int removeAlias(const std::string& name) {
    LoadedAliases aliases;
    AliasEntry* entry = aliases.named(name);
    if (entry == nullptr) return fail("no alias named " + forStderr(name));
    aliases.list().markDeleted(entry);
    return commitOrFail(aliases.list());
}

int runAliases(const ParsedArgs& split) {
    const auto& words = split.operands;
    // Listing leaves no trace in the store; a change may make the store.
    if (const int rc = prepareStore(words.empty() ? StoreUse::ReadOnly : StoreUse::Write); rc != 0) return rc;
    if (words.empty() && split.options.size() == 1 && hasOption(split, "--json")) return printAliasesJson();
    if (words.empty()) return split.options.empty() ? listAliases() : fail("options belong to 'aliases set'");
    if (hasOption(split, "--json")) return fail("--json belongs to the listing");
    if (words[0] == "set" && words.size() == 2 && !words[1].empty()) return setAlias(words[1], split);
    if (words[0] == "remove" && words.size() == 2 && split.options.empty()) return removeAlias(words[1]);
    return fail("usage: braxcfg aliases [set NAME --resource R [--korl-address A] | remove NAME]");
}

const CommandRegistration kAliases(
    {"aliases", "list, set or remove the aliases of LAN resources",
     "usage: braxcfg aliases [--json]\n"
     "       braxcfg aliases set NAME --resource R [--korl-address A]\n"
     "       braxcfg aliases remove NAME\n"
     "Without an action, lists every alias with its resource string (the\n"
     "\"VISADevices\" list) and its KORL address (the \"Devices\" list). 'set' adds or\n"
     "changes an alias (names ignore case); without --korl-address an existing\n"
     "KORL address is kept, and an empty one removes it. 'remove' deletes the\n"
     "alias from both lists.\n",
     StoreUse::None, runAliases,
     {{"--json", nullptr, "list as JSON"},
      {"--resource", "R", "the alias's resource string (set)"},
      {"--korl-address", "A", "the alias's KORL address (set); empty removes it"}}});

}  // namespace
}  // namespace braxcfg::tool
