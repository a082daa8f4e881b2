#include "visacore/probe_timeout.h"

#include <gtest/gtest.h>

#include "platform/product_settings.h"
#include "platform/registry.h"
#include "temp_store.h"

namespace braxcfg::visa {
namespace {

using std::chrono::milliseconds;

TEST(ProbeTimeout, ProductSettingIsReadAndClamped) {
    struct Case {
        const char* what;
        void (*write)(const platform::Registry&);
        milliseconds expected;
    };
    const Case cases[] = {
        {"missing", [](const platform::Registry&) {}, milliseconds(3000)},
        {"number", [](const platform::Registry& key) { key.setDword(kProbeTimeoutValue, 500); }, milliseconds(500)},
        {"text", [](const platform::Registry& key) { key.setString(kProbeTimeoutValue, "1500"); }, milliseconds(1500)},
        {"zero", [](const platform::Registry& key) { key.setDword(kProbeTimeoutValue, 0); }, milliseconds(3000)},
        {"not a number", [](const platform::Registry& key) { key.setString(kProbeTimeoutValue, "soon"); },
         milliseconds(3000)},
        {"beyond the maximum", [](const platform::Registry& key) { key.setDword(kProbeTimeoutValue, 3600000); },
         milliseconds(60000)},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        test::TempStore store;
        {
            platform::Registry product(platform::kLocalMachine, platform::productKey(), platform::kRegOpenOrCreate);
            c.write(product);
        }
        EXPECT_EQ(configuredProbeTimeout(), c.expected);
        EXPECT_EQ(effectiveProbeTimeout(milliseconds(250)), milliseconds(250)) << "a caller's own timeout wins";
        EXPECT_EQ(effectiveProbeTimeout(milliseconds(0)), c.expected);
    }
}

}  // namespace
}  // namespace braxcfg::visa
