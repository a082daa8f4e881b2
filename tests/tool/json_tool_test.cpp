// --json of every reporting command, parsed as JSON: the fields are there
// with the store's text (cp1252) as UTF-8, so the output is valid.
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "temp_store.h"
#include "tool_run.h"

namespace braxcfg::test {
namespace {

using nlohmann::json;

const std::string kCafe = "caf\xC3\xA9";  // "café" in UTF-8; one cp1252 byte in the store

TEST(JsonTool, EveryReportParsesWithItsFields) {
    const TempStore store;
    const std::string& path = store.path();
    ASSERT_EQ(runTool({"--store", path, "import", BRAXCFG_SOURCE_DIR "/tests/fixtures/setup_every_type.reg"}).exitCode, 0);
    ASSERT_EQ(runTool({"--store", path, "aliases", "set", kCafe, "--resource", "TCPIP0::h" + kCafe + "::INSTR"}).exitCode, 0);
    ASSERT_EQ(runTool({"--store", path, "devices", "INTF0", "add", "GPIB0::" + kCafe}).exitCode, 0);

    const struct {
        std::vector<std::string> args;
        int exitCode;
        const char* pointer;  // a field of the answer, as a JSON pointer
        json expected;
    } cases[] = {
        {{"interfaces"}, 0, "/0/key", "INTF0"},
        {{"interfaces"}, 0, "/0/visaName", "GPIB0"},
        {{"interfaces"}, 0, "/0/type", "GPIB"},
        {{"interfaces"}, 0, "/0/setUp", false},
        {{"interfaces"}, 0, "/0/autoConfig", nullptr},
        {{"interfaces"}, 0, "/0/devices", 2},
        {{"aliases"}, 0, "/0/alias", kCafe},
        {{"aliases"}, 0, "/0/resource", "TCPIP0::h" + kCafe + "::INSTR"},
        {{"aliases"}, 0, "/0/korlAddress", nullptr},
        {{"devices", "INTF0"}, 0, "/visaName", "GPIB0"},
        {{"devices", "INTF0"}, 0, "/devices/0/name", "GPIB0::" + kCafe},
        {{"devices", "INTF0"}, 0, "/devices/1/resources/0/name", "GPIB1::22::INSTR"},
        {{"resolve", kCafe}, 0, "/kind", "alias"},
        {{"resolve", kCafe}, 0, "/resource", "TCPIP0::h" + kCafe + "::INSTR"},
        {{"resolve", "gpib0::7"}, 0, "/resource", "GPIB0::7::INSTR"},
        {{"rsrc", "canon", "gpib0::7", "GPIB0::FOO"}, 1, "/0/canonical", "GPIB0::7::INSTR"},
        {{"rsrc", "canon", "gpib0::7", "GPIB0::FOO"}, 1, "/1/status/name", "VI_ERROR_INV_RSRC_NAME"},
        {{"rsrc", "dump", "h" + kCafe}, 1, "/0/string", "h" + kCafe},
        {{"status", "0xBFFF0015"}, 0, "/name", "VI_ERROR_TMO"},
        {{"status", "0xBFFF0015"}, 0, "/description", "Timeout expired before operation completed."},
        {{"status", "0x3FFF1234"}, 0, "/name", nullptr},
        // Port 1 of loopback: refused at once, and the reasons say so.
        {{"test", "TCPIP0::127.0.0.1::1::SOCKET", "--timeout", "500"}, 1, "/found", false},
        {{"test", "TCPIP0::127.0.0.1::1::SOCKET", "--timeout", "500"}, 1, "/resource", "TCPIP0::127.0.0.1::1::SOCKET"},
        {{"identify", "TCPIP0::127.0.0.1::1::SOCKET", "--timeout", "500"}, 1, "/identification", nullptr},
    };
    for (const auto& c : cases) {
        std::vector<std::string> args{"--store", path};
        args.insert(args.end(), c.args.begin(), c.args.end());
        args.push_back("--json");
        std::string line;
        for (const std::string& word : args) line += " [" + word + "]";
        SCOPED_TRACE(line + " " + c.pointer);
        const ToolRun run = runTool(args);
        EXPECT_EQ(run.exitCode, c.exitCode) << run.err;
        json answer;
        ASSERT_NO_THROW(answer = json::parse(run.out)) << run.out;
        const json::json_pointer field(c.pointer);
        EXPECT_EQ(answer.contains(field) ? answer.at(field) : json("missing"), c.expected) << run.out;
    }
}

}  // namespace
}  // namespace braxcfg::test
