#include "resource_names.h"

#include <vector>

#include "rsrc/io_parms.h"

namespace braxcfg::tool {

ResourceNames resourceNames(const std::string& text) {
    constexpr int kNameChars = 1024;
    // parse trims the string in place: it gets a buffer of its own.
    std::vector<char> buffer(text.c_str(), text.c_str() + text.size() + 1);
    rsrc::IoParms parms;
    ResourceNames names;
    names.status = parms.parse(buffer.data(), false);
    // The names are fetched one after the other into one buffer, canonical
    // first, as the dialogs fetch them.
    char name[kNameChars];
    names.canonical = parms.getCanonicalName(name, kNameChars);
    names.alternate = parms.getAltName(name, kNameChars);
    return names;
}

}  // namespace braxcfg::tool
