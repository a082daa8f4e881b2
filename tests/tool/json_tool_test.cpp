// --json of every reporting command, parsed as JSON: the answer's shape,
// once per command, with the store's text (cp1252) as UTF-8.
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "tool_folder.h"

namespace braxcfg::test {
namespace {

using nlohmann::json;
using JsonTool = ToolFolder;

TEST_F(JsonTool, EveryReportParsesWithItsFields) {
    const std::string cafe = "caf\xC3\xA9";  // "café" in UTF-8; one cp1252 byte in the store
    ASSERT_EQ(tool({"import", BRAXCFG_TEST_FIXTURES "/setup_every_type.reg"}).exitCode, 0);
    ASSERT_EQ(tool({"aliases", "set", cafe, "--resource", "TCPIP0::h" + cafe + "::INSTR"}).exitCode, 0);
    ASSERT_EQ(tool({"devices", "INTF0", "add", "GPIB0::" + cafe}).exitCode, 0);
    const std::string lan = "TCPIP0::127.0.0.1::1::SOCKET";  // port 1 of loopback: refused at once
    const struct { std::vector<std::string> args; int exitCode; const char* pointer; std::string expected; } cases[] = {
        {{"interfaces"}, 0, "/0",
         R"({"key": "INTF0", "visaName": "GPIB0", "type": "GPIB", "setUp": false, "autoConfig": null, "devices": 2})"},
        {{"aliases"}, 0, "/0",
         R"({"alias": ")" + cafe + R"(", "resource": "TCPIP0::h)" + cafe + R"(::INSTR", "korlAddress": null})"},
        {{"devices", "INTF0"}, 0, "/devices/0", R"({"name": "GPIB0::)" + cafe + R"(", "resources": []})"},
        {{"resolve", cafe}, 0, "",
         R"({"name": ")" + cafe + R"(", "kind": "alias", "resource": "TCPIP0::h)" + cafe + R"(::INSTR"})"},
        {{"rsrc", "canon", "gpib0::7", "GPIB0::FOO"}, 1, "/1/status/name", R"("VI_ERROR_INV_RSRC_NAME")"},
        {{"rsrc", "dump", "h" + cafe}, 1, "/0/string", R"("h)" + cafe + R"(")"},
        {{"status", "0xBFFF0015"}, 0, "", R"({"code": "0xBFFF0015", "name": "VI_ERROR_TMO",
                                               "description": "Timeout expired before operation completed."})"},
        {{"status", "0x3FFF1234"}, 0, "/name", "null"},
        {{"test", lan, "--timeout", "500"}, 1, "/found", "false"},
        {{"identify", lan, "--timeout", "500"}, 1, "/identification", "null"},
    };
    for (const auto& c : cases) {
        std::vector<std::string> args = c.args;
        args.push_back("--json");
        SCOPED_TRACE(testing::PrintToString(args) + " " + c.pointer);
        const ToolRun run = tool(args);
        EXPECT_EQ(run.exitCode, c.exitCode) << run.err;
        json answer;
        ASSERT_NO_THROW(answer = json::parse(run.out)) << run.out;
        const json::json_pointer field(c.pointer);
        EXPECT_EQ(answer.contains(field) ? answer.at(field) : json("missing"), json::parse(c.expected)) << run.out;
    }
}

}  // namespace
}  // namespace braxcfg::test
