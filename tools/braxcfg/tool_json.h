#pragma once
// The tool's JSON output. Every command that reports data builds its
// answer as a JSON value and prints it here, so there is one way of making
// JSON: object members keep the order they were added in, and store text
// (cp1252) is converted to UTF-8 on the way in, so the output is always
// valid UTF-8.
#include <nlohmann/json.hpp>
#include <string_view>

#include "visacore/status_text.h"

namespace braxcfg::tool {

using Json = nlohmann::ordered_json;

// System text as a JSON string.
Json jsonText(std::string_view text);

// A VISA status: {"code": "0xBFFF0015", "name": "VI_ERROR_TMO" (null when
// VISA does not define the code), "description": ...}.
Json jsonStatus(visa::ViStatus status);

// `value` on standard output, indented, with a line end.
void printJson(const Json& value);

}  // namespace braxcfg::tool
