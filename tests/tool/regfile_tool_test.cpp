// braxcfg import / export, run as a child process on a store file of its own.
#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "temp_store.h"
#include "tool_run.h"

namespace {

using braxcfg::test::runTool;
using braxcfg::test::ToolRun;

std::string readFile(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    std::ostringstream content;
    content << in.rdbuf();
    return content.str();
}

void writeFile(const std::string& path, const std::string& bytes) {
    std::ofstream(path, std::ios::binary) << bytes;
}

// A folder of its own for each test: the store and the files it imports and
// exports.
class RegfileTool : public ::testing::Test {
protected:
    void SetUp() override {
        const auto* info = ::testing::UnitTest::GetInstance()->current_test_info();
        dir_ = braxcfg::test::testOutputDir(std::string("regfile_tool/") + info->name() + "-" +
                                            std::to_string(getpid()));
        for (const auto& entry : std::filesystem::directory_iterator(dir_)) std::filesystem::remove(entry.path());
    }
    void TearDown() override { std::filesystem::remove_all(dir_); }

    std::string path(const std::string& name) const { return dir_ + "/" + name; }

    ToolRun run(std::vector<std::string> args) const {
        args.insert(args.begin(), {"--store", path("store.db")});
        return runTool(args);
    }

private:
    std::string dir_;
};

const std::string kFixtures = BRAXCFG_TEST_FIXTURES;

TEST_F(RegfileTool, ImportThenExportGivesTheFileBack) {
    ASSERT_EQ(run({"import", kFixtures + "/regfile_roundtrip.utf16.reg"}).exitCode, 0);

    const ToolRun toStdout = run({"export", "--utf8"});
    EXPECT_EQ(toStdout.exitCode, 0) << toStdout.err;
    EXPECT_EQ(toStdout.out, readFile(kFixtures + "/regfile_roundtrip.utf8.reg"));

    const ToolRun toFile = run({"export", path("out.reg")});
    EXPECT_EQ(toFile.exitCode, 0) << toFile.err;
    EXPECT_TRUE(toFile.out.empty());
    EXPECT_EQ(readFile(path("out.reg")), readFile(kFixtures + "/regfile_roundtrip.utf16.reg"));

    const ToolRun oneKey =
        run({"export", "--utf8", "--key", "HKEY_LOCAL_MACHINE\\SOFTWARE\\Tolvane\\Linkbase\\CurrentVersion\\INTF10"});
    EXPECT_EQ(oneKey.exitCode, 0) << oneKey.err;
    EXPECT_EQ(oneKey.out,
              "Windows Registry Editor Version 5.00\n\n"
              "[HKEY_LOCAL_MACHINE\\SOFTWARE\\Tolvane\\Linkbase\\CurrentVersion\\INTF10]\n"
              "\"VISAName\"=\"TCPIP0\"\n\"VISAIntfType\"=\"TCPIP\"\n\"VISARsrcType\"=\"SOCKET\"\n\n");
}

TEST_F(RegfileTool, ErrorsExitWithCode2AndSayWhy) {
    writeFile(path("good.reg"), "REGEDIT4\n[HKEY_LOCAL_MACHINE\\A]\n\"v\"=\"1\"\n");
    ASSERT_EQ(run({"import", path("good.reg")}).exitCode, 0);
    const std::string before = run({"export", "--utf8"}).out;
    writeFile(path("bad.reg"), "REGEDIT4\n[-HKEY_LOCAL_MACHINE\\A]\n[HKEY_LOCAL_MACHINE\\B]\n\"w\"=dword:123456789\n");

    struct Case {
        std::vector<std::string> args;
        std::string reason;
    };
    const std::vector<Case> cases = {
        {{"import", path("bad.reg")}, "bad.reg: line 4: dword: has more than 8 hex digits; nothing was imported"},
        {{"import"}, "import needs exactly one FILE"},
        {{"import", path("a.reg"), path("b.reg")}, "import needs exactly one FILE"},
        {{"import", path("missing.reg")}, "cannot read"},
        {{"export", "--key", "HKEY_LOCAL_MACHINE\\Nowhere"}, "HKEY_LOCAL_MACHINE\\Nowhere does not exist"},
        {{"export", "--key", "HKEY_USERS\\A"}, "only HKEY_LOCAL_MACHINE"},
        {{"export", "--key"}, "needs a value"},
        {{"export", path("a.reg"), path("b.reg")}, "at most one FILE"},
        {{"export", "--bogus"}, "unknown option --bogus"},
        {{"export", path("no-such-dir/out.reg")}, "cannot write"},
    };
    for (const Case& c : cases) {
        const ToolRun result = run(c.args);
        EXPECT_EQ(result.exitCode, 2) << c.reason;
        EXPECT_NE(result.err.find(c.reason), std::string::npos) << "wanted: " << c.reason << "\ngot: " << result.err;
        EXPECT_TRUE(result.out.empty()) << c.reason;
    }
    EXPECT_EQ(run({"export", "--utf8"}).out, before);
}

}  // namespace
