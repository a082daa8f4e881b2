#include "tcpip/resource_test.h"

#include <gtest/gtest.h>
#include <stdlib.h>

#include <chrono>
#include <vector>

#include "fake_servers.h"
#include "visacore/visa_api.h"

namespace braxcfg::tcpip {
namespace {

using ui::MessageIcon;
using visa::toStatus;

TEST(ResourceTestMessage, WordingCaptionAndIconFollowTheStatus) {
    const std::string rsrc = "TCPIP0::scope1.lab::inst0::INSTR";
    struct Case {
        const char* what;
        visa::ViStatus status;
        const char* alias;
        const char* text;
        const char* caption;
        MessageIcon icon;
        int result;
    };
    const Case cases[] = {
        {"found", visa::VI_SUCCESS, "", "The resource 'TCPIP0::scope1.lab::inst0::INSTR' was found.", "Resource Found",
         MessageIcon::Information, 1},
        {"found with an alias", visa::VI_SUCCESS, "scope1",
         "The resource 'scope1' was found.\n\n(TCPIP0::scope1.lab::inst0::INSTR)", "Resource Found",
         MessageIcon::Information, 1},
        {"a warning counts as found", toStatus(0x3FFF007Du), "scope1",
         "The resource 'scope1' was found.\n\n(TCPIP0::scope1.lab::inst0::INSTR)", "Resource Found",
         MessageIcon::Information, 1},
        {"host located", visa::VI_ERROR_RSRC_NFOUND, "",
         "The resource 'TCPIP0::scope1.lab::inst0::INSTR' was not found.", "Host Located But Resource Not Found",
         MessageIcon::Question, 0},
        {"host located, alias never named", visa::VI_ERROR_RSRC_NFOUND, "scope1",
         "The resource 'TCPIP0::scope1.lab::inst0::INSTR' was not found.", "Host Located But Resource Not Found",
         MessageIcon::Question, 0},
        {"unknown host, alias never named", visa::VI_ERROR_MACHINE_NAVAIL, "scope1",
         "The resource 'TCPIP0::scope1.lab::inst0::INSTR' was not found.", "Resource Not Found", MessageIcon::Stop,
         0},
        {"timeout", visa::VI_ERROR_TMO, "", "The resource 'TCPIP0::scope1.lab::inst0::INSTR' was not found.",
         "Resource Not Found", MessageIcon::Stop, 0},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        const ResourceTestMessage message = resourceTestMessage(c.status, c.alias, rsrc);
        EXPECT_EQ(message.text, c.text);
        EXPECT_EQ(message.caption, c.caption);
        EXPECT_EQ(message.icon, c.icon);
        EXPECT_EQ(message.result, c.result);
    }
}

class TestResourceTest : public ::testing::Test {
protected:
    void SetUp() override {
        setenv("BRAXCFG_VISA_LIBRARY", "builtin", 1);
        visa::reselectVisaLibrary();
    }
    void TearDown() override {
        unsetenv("BRAXCFG_VISA_LIBRARY");
        visa::reselectVisaLibrary();
    }
    static visa::ProbeControl quick() { return visa::ProbeControl{std::chrono::milliseconds(300)}; }
};

TEST_F(TestResourceTest, ShowsTheOutcomeOwnedByTheCaller) {
    using Reply = test::HislipScript::Reply;
    auto record = std::make_shared<test::HislipRecord>();
    test::FakeServer found(test::hislipServer({Reply::InitializeResponse}, record));
    test::FakeServer located(test::hislipServer({Reply::FatalError, 3}, record));
    test::SilentListener silent;
    const auto resource = [](std::uint16_t port) {
        return "TCPIP0::127.0.0.1::hislip0," + std::to_string(port) + "::INSTR";
    };
    struct Case {
        std::string resource;
        const char* caption;
        MessageIcon icon;
        int result;
    };
    const Case cases[] = {
        {resource(found.port()), "Resource Found", MessageIcon::Information, 1},
        {resource(located.port()), "Host Located But Resource Not Found", MessageIcon::Question, 0},
        {resource(silent.port()), "Resource Not Found", MessageIcon::Stop, 0},
    };
    auto* owner = reinterpret_cast<QWidget*>(0x1234);
    for (const Case& c : cases) {
        SCOPED_TRACE(c.caption);
        ui::MessageBoxCapture boxes;
        EXPECT_EQ(TestResource(owner, "scope1", c.resource, quick()), c.result);
        ASSERT_EQ(boxes.requests().size(), 1u);
        EXPECT_EQ(boxes.requests()[0].owner, owner);
        EXPECT_EQ(boxes.requests()[0].caption, c.caption);
        EXPECT_EQ(boxes.requests()[0].icon, c.icon);
        EXPECT_EQ(boxes.requests()[0].text, resourceTestMessage(c.result == 1 ? 0 : -1, "scope1", c.resource).text);
    }
}

TEST_F(TestResourceTest, ClosesItsSessionEveryTime) {
    // More tests than the session table holds: a leaked session would make
    // the later ones fail silently.
    ui::MessageBoxCapture boxes;
    for (int i = 0; i < 300; ++i) TestResource(nullptr, "", "TCPIP0::", quick());
    EXPECT_EQ(boxes.requests().size(), 300u);
}

TEST_F(TestResourceTest, SaysNothingWhenTheResourceManagerCannotOpen) {
    std::vector<visa::ViSession> held;
    visa::ViSession session = visa::VI_NULL;
    while (held.size() < 10000 && visa::viOpenDefaultRM(&session) == visa::VI_SUCCESS) held.push_back(session);
    ui::MessageBoxCapture boxes;
    EXPECT_EQ(TestResource(nullptr, "", "TCPIP0::127.0.0.1::1::SOCKET", quick()), 0);
    EXPECT_TRUE(boxes.requests().empty());
    for (visa::ViSession s : held) visa::viClose(s);
}

}  // namespace
}  // namespace braxcfg::tcpip
