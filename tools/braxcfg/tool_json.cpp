#include "tool_json.h"

#include <iostream>

#include "platform/cp1252.h"

namespace braxcfg::tool {

Json jsonText(std::string_view text) { return platform::cp1252ToUtf8(text); }

Json jsonStatus(visa::ViStatus status) {
    const visa::StatusText* known = visa::findStatusText(status);
    return {{"code", visa::statusCodeText(status)},
            {"name", known != nullptr ? Json(known->name) : Json(nullptr)},
            {"description", visa::statusDescription(status)}};
}

void printJson(const Json& value) {
    // Converted text is UTF-8 already; should anything else slip in, the
    // output stays valid rather than the tool stopping half-way.
    std::cout << value.dump(2, ' ', false, Json::error_handler_t::replace) << "\n";
    std::cout.flush();
}

}  // namespace braxcfg::tool
