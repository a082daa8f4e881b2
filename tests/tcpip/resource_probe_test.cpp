// The resource test's box for each probe outcome, and its session handling.
// Which server answers with which status is the probe's own test.
#include "tcpip/resource_probe.h"

#include <gtest/gtest.h>
#include <stdlib.h>

#include "ui/testing/message_box_capture.h"
#include "visacore/visa_api.h"

namespace braxcfg::tcpip {
namespace {

using ui::MessageIcon;
using namespace visa;

// The built-in VISA: a VISA library installed on the machine must not answer.
[[maybe_unused]] const bool kBuiltinVisa = setenv("BRAXCFG_VISA_LIBRARY", "builtin", 1) == 0;

struct Outcome { const char* caption; MessageIcon icon; int result; };
const Outcome kFound{"Resource Found", MessageIcon::Information, 1};
const Outcome kLocated{"Host Located But Resource Not Found", MessageIcon::Question, 0};
const Outcome kNotFound{"Resource Not Found", MessageIcon::Stop, 0};

TEST(ResourceTestMessage, WordingCaptionAndIconFollowTheStatus) {
    const std::string rsrc = "TCPIP0::scope1.lab::inst0::INSTR";
    const std::string foundAlias = "The resource 'scope1' was found.\n\n(TCPIP0::scope1.lab::inst0::INSTR)";
    const std::string notFound = "The resource 'TCPIP0::scope1.lab::inst0::INSTR' was not found.";
    const struct { ViStatus status; const char* alias; std::string text; Outcome outcome; } cases[] = {
        {VI_SUCCESS, "", "The resource 'TCPIP0::scope1.lab::inst0::INSTR' was found.", kFound},
        {VI_SUCCESS, "scope1", foundAlias, kFound},
        {toStatus(0x3FFF007Du), "scope1", foundAlias, kFound},  // a warning counts as found
        {VI_ERROR_RSRC_NFOUND, "scope1", notFound, kLocated},  // the alias is never named when not found
        {VI_ERROR_MACHINE_NAVAIL, "scope1", notFound, kNotFound},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(testing::Message() << std::hex << c.status << " alias '" << c.alias << "'");
        const ResourceTestMessage message = resourceTestMessage(c.status, c.alias, rsrc);
        EXPECT_EQ(message.text, c.text);
        EXPECT_EQ(message.caption, c.outcome.caption);
        EXPECT_EQ(message.icon, c.outcome.icon);
        EXPECT_EQ(message.result, c.outcome.result);
    }
}

// More tests than the session table holds: a leaked session would make the
// later ones fail without a box. (A found resource is the LAN list's Test scenario's.)
TEST(TestResource, ClosesItsSessionEveryTime) {
    ui::MessageBoxCapture boxes;
    for (int i = 0; i < 300; ++i) EXPECT_EQ(TestResource(nullptr, "", "TCPIP0::"), 0);
    EXPECT_EQ(boxes.requests().size(), 300u);
}

TEST(TestResource, SaysNothingWhenTheResourceManagerCannotOpen) {
    std::vector<ViSession> held;
    ViSession session = VI_NULL;
    while (held.size() < 10000 && viOpenDefaultRM(&session) == VI_SUCCESS) held.push_back(session);
    ui::MessageBoxCapture boxes;
    EXPECT_EQ(TestResource(nullptr, "", "TCPIP0::127.0.0.1::1::SOCKET"), 0);
    EXPECT_TRUE(boxes.requests().empty());
    for (ViSession s : held) viClose(s);
}

}  // namespace
}  // namespace braxcfg::tcpip
