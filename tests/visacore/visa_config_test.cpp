// The VISA configuration of one interface (its KORL name, whether it is
// exported): store-backed and INI-backed, chosen by a product setting.
#include <gtest/gtest.h>

#include <fstream>
#include <string>

#include "store_builder.h"
#include "temp_store.h"
#include "visacore/config/reg_visa_config.h"
#include "visacore/config/use_registry.h"

namespace braxcfg::visa {
namespace {

using test::putDword;
using test::putString;
using test::underProduct;

struct IntfAnswer {
    const char* intf;  // VISA interface name
    const char* korlName;
    ViUInt32 exported;  // as kept; readers count only the low 16 bits
};

void expectAnswers(const std::vector<IntfAnswer>& answers) {
    for (const IntfAnswer& a : answers) {
        SCOPED_TRACE(a.intf);
        const VisaIntfConfig config = openVisaIntfConfig(a.intf);
        ASSERT_NE(config.intf, nullptr);
        char name[kConfigTextChars] = "stale";
        EXPECT_STREQ(config.intf->getKorlIntfName(name), a.korlName);
        EXPECT_EQ(config.intf->isExportEnabled(), a.exported);
    }
}

void putKorlInterface(const std::string& key, const std::string& visaName, const char* korlName, std::uint32_t flag) {
    test::putInterface(key, visaName, "");
    putString(underProduct(key), "VISAKorlIntfName", korlName);
    putDword(underProduct(key), "VISAExportEnabled", flag);
}

TEST(VisaConfig, StoreBackedAnswersComeFromTheKeyWithThatVisaName) {
    const test::TempStore store;
    test::putInterface("INTF0", "GPIB0", "GPIB");
    putKorlInterface("INTF3", "TCPIP0", "LAN0", 1);
    putKorlInterface("INTF6", "tcpip1", "lower", 1);
    putKorlInterface("INTF7", "TCPIP0", "second", 0);  // the first key of a name wins
    // TCPIP1: names compare with their case.
    expectAnswers({{"TCPIP0", "LAN0", 1}, {"GPIB0", "", 0}, {"ASRL9", "", 0},
                   {"TCPIP1", "", 0}});
    // The highest interface number: leading digits after a case-sensitive "INTF".
    for (const char* key : {"INTF10", "INTF12abc", "INTFX", "intf30"}) test::putKey(underProduct(key));
    EXPECT_EQ(RegVISAConfig().getMaxIntfNum(), 12);
}

TEST(VisaConfig, IniBackedAnswersComeFromTheSectionOfTheInterfaceName) {
    const test::TempStore store;
    const std::string baseDir = test::testOutputDir("visacfg-ini");
    std::ofstream(baseDir + "/visacfg.ini") << "[TCPIP0]\nVISAKorlIntfName = IniLan0\nVISAExportEnabled=1\n"
                                               "[gpib1]\nVISAKorlIntfName=\"Quoted G1\"\nVISAExportEnabled=65536\n";
    putKorlInterface("INTF0", "TCPIP0", "LAN0", 0);  // not read while the INI file is used
    putDword(underProduct(), "UseRegistryVisaConfig", 0);
    putString(underProduct(), "BaseDir", baseDir);
    store.reopen();  // "BaseDir" is read once per store
    expectAnswers({{"TCPIP0", "IniLan0", 1}, {"GPIB1", "Quoted G1", 65536}, {"ASRL9", "", 0}});
    putString(underProduct(), "BaseDir", baseDir + "/missing");
    store.reopen();
    expectAnswers({{"TCPIP0", "", 0}});
}

}  // namespace
}  // namespace braxcfg::visa
