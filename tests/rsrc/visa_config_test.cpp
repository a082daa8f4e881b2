// The VISA configuration behind IoParms::getKorlIntfName and
// isExportEnabled: store-backed and INI-backed, chosen by a product setting.
#include <gtest/gtest.h>

#include <fstream>
#include <string>

#include "rsrc/io_parms.h"
#include "store_builder.h"
#include "temp_store.h"
#include "visacore/config/reg_visa_config.h"

namespace braxcfg::rsrc {
namespace {

using test::putDword;
using test::putString;
using test::underProduct;

struct IntfAnswer {
    const char* input;
    const char* korlName;
    bool exported;
};

void expectAnswers(const std::vector<IntfAnswer>& answers) {
    for (const IntfAnswer& a : answers) {
        SCOPED_TRACE(a.input);
        std::string buffer = a.input;
        IoParms parms;
        parms.parse(buffer.data(), false);
        char name[visa::kConfigTextChars] = "stale";
        EXPECT_EQ(parms.getKorlIntfName(name, 1), name);  // the size is not what bounds it
        EXPECT_STREQ(name, a.korlName);
        EXPECT_EQ(parms.isExportEnabled(), a.exported);
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
    putKorlInterface("INTF2", "PXI0", "PXIK", 1);
    putKorlInterface("INTF3", "TCPIP0", "LAN0", 1);
    putKorlInterface("INTF5", "GPIB1", "G1", 0x10000);  // only the low 16 bits count
    putKorlInterface("INTF6", "tcpip1", "lower", 1);
    putKorlInterface("INTF7", "TCPIP0", "second", 0);  // the first key of a name wins
    expectAnswers({{"TCPIP0::host::INSTR", "LAN0", true},
                   {"GPIB1::5::INSTR", "G1", false},
                   {"GPIB0::1::INSTR", "", false},
                   {"ASRL9::INSTR", "", false},
                   {"TCPIP1::host::INSTR", "", false},
                   {"PXI3::5::INSTR", "PXIK", true}});  // legacy PXI naming: interface PXI0
    // The highest interface number: leading digits after a case-sensitive "INTF".
    for (const char* key : {"INTF10", "INTF12abc", "INTFX", "intf30"}) test::putKey(underProduct(key));
    EXPECT_EQ(visa::RegVISAConfig().getMaxIntfNum(), 12);
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
    expectAnswers({{"TCPIP0::host::INSTR", "IniLan0", true},
                   {"GPIB1::5::INSTR", "Quoted G1", false},
                   {"ASRL9::INSTR", "", false}});
    putString(underProduct(), "BaseDir", baseDir + "/missing");
    store.reopen();
    expectAnswers({{"TCPIP0::host::INSTR", "", false}});
}

}  // namespace
}  // namespace braxcfg::rsrc
