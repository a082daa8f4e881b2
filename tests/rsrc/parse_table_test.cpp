// IoParms::parse over realistic and hostile resource strings: elements,
// canonical and alternate names, interface fields, status and log lines.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "platform/debug_output.h"
#include "rsrc/io_parms.h"
#include "rsrc_test_support.h"

namespace braxcfg::rsrc {
namespace {

using test::PxiNaming;
using visa::VI_ERROR_ALLOC;
using visa::VI_ERROR_INV_RSRC_NAME;
using visa::VI_SUCCESS;
using visa::ViStatus;
using Lines = std::vector<std::string>;

constexpr std::uint32_t kNaN = IoParms::kNotANumber;
constexpr ViStatus kOk = VI_SUCCESS;
constexpr ViStatus kInv = VI_ERROR_INV_RSRC_NAME;
constexpr PxiNaming kLegacy = PxiNaming::Legacy;
constexpr PxiNaming kBdf = PxiNaming::BusDeviceFunction;

const std::string kHost1100(1100, 'h');
const std::string kZeros260(260, '0');
const std::string kLongIntf = "TCPIP" + std::string(250, '0');

std::string trimmedBlanks(const std::string& text) {
    const auto first = text.find_first_not_of(' ');
    if (first == std::string::npos) return "";
    return text.substr(first, text.find_last_not_of(' ') - first + 1);
}

std::string joinedElements(const IoParms& parms) {
    std::string joined;
    for (int i = 0; i < parms.getCount(); ++i) joined += (i > 0 ? "|" : "") + std::string(parms.getParam(i));
    return joined;
}

struct ParseCase {
    std::string input;
    ViStatus status;
    std::string elements;  // joined by "|"
    std::string canonical = {};
    std::string alt = {};
    PxiNaming pxi = kLegacy;
};

// clang-format off
const std::vector<ParseCase> kParseCases = {
    // GPIB
    {"gpib0::7::instr", kOk, "GPIB0|7|INSTR", "GPIB0::7::INSTR"},
    {"GPIB0::7::0::INSTR", kOk, "GPIB0|7|0|INSTR", "GPIB0::7::0::INSTR"},
    {"GPIB0::07::INSTR", kOk, "GPIB0|07|INSTR", "GPIB0::7::INSTR"},
    {"GPIB0::0x7::INSTR", kOk, "GPIB0|0x7|INSTR", "GPIB0::7::INSTR"},
    {"GPIB0::-2::INSTR", kOk, "GPIB0|-2|INSTR", "GPIB0::-2::INSTR"},
    {"GPIB::INTFC", kOk, "GPIB0|INTFC", "GPIB0::INTFC"},
    {"GPIB0::servant", kOk, "GPIB0|SERVANT", "GPIB0::SERVANT"},
    {"GPIB0", kInv, "GPIB0|INSTR"},
    {"GPIB0::7::FOO", kInv, "GPIB0|7|FOO|INSTR"},
    {"GPIB0::7::FOO::INSTR", kInv, "GPIB0|7|FOO|INSTR"},
    // VXI and GPIB-VXI
    {"VXI0::1::INSTR", kOk, "VXI0|1|INSTR", "VXI0::1::INSTR"},
    {"vxi0::memacc", kOk, "VXI0|MEMACC", "VXI0::MEMACC"},
    {"VXI0::0x2::BACKPLANE", kOk, "VXI0|0x2|BACKPLANE", "VXI0::2::BACKPLANE"},
    {"VXI0::SERVANT", kOk, "VXI0|SERVANT", "VXI0::SERVANT"},
    {"GPIB-VXI2::5", kOk, "GPIB-VXI2|5|INSTR", "GPIB-VXI2::5::INSTR"},
    {"GPIB-VXI0::SERVANT", kInv, "GPIB-VXI0|SERVANT"},
    // ASRL
    {"ASRL1", kOk, "ASRL1|INSTR", "ASRL1::INSTR"},
    {"ASRL1::BOGUS", kInv, "ASRL1|BOGUS|INSTR"},
    // TCPIP
    {"TCPIP0::myhost::INSTR", kOk, "TCPIP0|myhost|INSTR", "TCPIP0::myhost::inst0::INSTR"},
    {"tcpip0::MyHost::hislip0", kOk, "TCPIP0|MyHost|hislip0|INSTR", "TCPIP0::MyHost::hislip0::INSTR"},
    {"TCPIP0::192.168.1.5::gpib0,5::INSTR", kOk, "TCPIP0|192.168.1.5|gpib0,5|INSTR",
     "TCPIP0::192.168.1.5::gpib0,5::INSTR"},
    {"TCPIP0::[fe80::1]::inst0::INSTR", kOk, "TCPIP0|[fe80::1]|inst0|INSTR", "TCPIP0::[fe80::1]::inst0::INSTR"},
    {"TCPIP1::[fe80::1%eth0]::INSTR", kOk, "TCPIP1|[fe80::1%eth0]|INSTR", "TCPIP1::[fe80::1%eth0]::inst0::INSTR"},
    // An unclosed bracket hides every later separator.
    {"TCPIP0::[fe80::1::INSTR", kOk, "TCPIP0|[fe80::1::INSTR|INSTR", "TCPIP0::[fe80::1::INSTR::inst0::INSTR"},
    {"TCPIP0::myhost::5025::SOCKET", kOk, "TCPIP0|myhost|5025|SOCKET", "TCPIP0::myhost::5025::SOCKET"},
    {"TCPIP0::myhost::0x13a9::socket", kOk, "TCPIP0|myhost|0x13a9|SOCKET", "TCPIP0::myhost::5033::SOCKET"},
    {"TCPIP0::myhost::telnet::SOCKET", kInv, "TCPIP0|myhost|telnet|SOCKET"},
    {"TCPIP0::SERVANT", kOk, "TCPIP0|SERVANT", "TCPIP0::inst0::SERVANT"},
    {"TCPIP0::INTFC", kOk, "TCPIP0|INTFC", "TCPIP0::INTFC"},
    {"TCPIP0::myhost::lan0::INTFC", kOk, "TCPIP0|myhost|lan0|INTFC", "TCPIP0::myhost::lan0::INTFC"},
    // USB
    {"usb0::4660::22136::SN42::INSTR", kOk, "USB0|4660|22136|SN42|INSTR",
     "USB0::0x1234::0x5678::SN42::0::INSTR", "USB0::4660::22136::SN42::0::INSTR"},
    {"USB0::0x0957::0x1796::MY123::3::INSTR", kOk, "USB0|0x0957|0x1796|MY123|3|INSTR",
     "USB0::0x0957::0x1796::MY123::3::INSTR", "USB0::2391::6038::MY123::3::INSTR"},
    {"USB0::0x1234::0x5678::SN42", kOk, "USB0|0x1234|0x5678|SN42|INSTR",
     "USB0::0x1234::0x5678::SN42::0::INSTR", "USB0::4660::22136::SN42::0::INSTR"},
    {"USB0::0x12345::0x5::SN::INSTR", kOk, "USB0|0x12345|0x5|SN|INSTR", "USB0::0x12345::0x0005::SN::0::INSTR",
     "USB0::74565::5::SN::0::INSTR"},
    // Four USB elements are vendor, product and serial number, even "INSTR".
    {"USB0::0x1234::0x5678::INSTR", kOk, "USB0|0x1234|0x5678|INSTR|INSTR",
     "USB0::0x1234::0x5678::INSTR::0::INSTR", "USB0::4660::22136::INSTR::0::INSTR"},
    {"USB0::0x1234::0x5678::SN42::x::INSTR", kInv, "USB0|0x1234|0x5678|SN42|x|INSTR"},
    // RSIB
    {"RSIB::192.168.0.2::INSTR", kOk, "RSIB0|192.168.0.2|INSTR", "RSIB0::192.168.0.2::INSTR"},
    {"RSIB0::host::x::INSTR", kOk, "RSIB0|host|x|INSTR", "RSIB0::host::-1::INSTR"},
    {"RSIB0::INTFC", kInv, "RSIB0|INTFC"},
    // PXI, under both namings
    {"PXI3::5::INSTR", kOk, "PXI3|5|INSTR", "PXI3::5::0::INSTR", "PXI0::3-5.0::INSTR"},
    {"PXI3::5::INSTR", kOk, "PXI3|5|INSTR", "PXI0::3-5.0::INSTR", "PXI3::5::0::INSTR", kBdf},
    {"PXI2::5::1::INSTR", kOk, "PXI2|5|1|INSTR", "PXI2::5::1::INSTR", "PXI0::2-5.1::INSTR"},
    {"PXI0::3-5::INSTR", kOk, "PXI0|3-5|INSTR", "PXI3::5::0::INSTR", "PXI0::3-5.0::INSTR"},
    {"PXI0::3-5.1::INSTR", kOk, "PXI0|3-5.1|INSTR", "PXI0::3-5.1::INSTR", "PXI3::5::1::INSTR", kBdf},
    {"PXI0::bus5::INSTR", kInv, "PXI0|bus5|INSTR", "", "PXI0::bus5.0::INSTR"},
    {"PXI0::bus5::INSTR", kOk, "PXI0|bus5|INSTR", "PXI0::bus5.0::INSTR", "", kBdf},
    {"PXI0::chassis1::slot5::INSTR", kOk, "PXI0|chassis1|slot5|INSTR", "PXI0::CHASSIS1::SLOT5::FUNC0::INSTR"},
    {"PXI0::chassis1::slot5::INSTR", kOk, "PXI0|chassis1|slot5|INSTR",
     "PXI0::CHASSIS1::SLOT5::FUNC0::INSTR", "", kBdf},
    {"PXI0::chassis1::slot5::func2::INSTR", kOk, "PXI0|chassis1|slot5|func2|INSTR",
     "PXI0::CHASSIS1::SLOT5::FUNC2::INSTR"},
    {"PXI1::2::3::4::INSTR", kInv, "PXI1|2|3|4|INSTR"},
    {"PXI0::MEMACC", kOk, "PXI0|MEMACC", "PXI0::MEMACC"},
    {"PXI0::5::BACKPLANE", kOk, "PXI0|5|BACKPLANE", "PXI0::5::BACKPLANE", "PXI0::0-5.0::BACKPLANE"},
    {"PXI0::x::BACKPLANE", kOk, "PXI0|x|BACKPLANE", "PXI0::-1::BACKPLANE", "PXI0::x.0::BACKPLANE"},
    // Blanks, separators and empty elements; at most eight separators
    {"", kInv, ""},
    {"   ", kInv, ""},
    {"  GPIB0::7::INSTR  ", kOk, "GPIB0|7|INSTR", "GPIB0::7::INSTR"},
    {"gpib0::::INSTR", kInv, "gpib0"},
    {"GPIB0::7::", kInv, "GPIB0|7"},
    {"GPIB0:::7", kInv, "GPIB0|:7|INSTR"},
    {"GPIB0::1::2::3::4::5::6::7::8", kInv, "GPIB0|1|2|3|4|5|6|7|8|INSTR"},
    {"A::B::C::D::E::F::G::H::I::J", kInv, "A|B|C|D|E|F|G|H|I"},
    // "%" in the last element, and elsewhere
    {"TCPIP0::host::dev%%1", kOk, "TCPIP0|host|dev%1|INSTR", "TCPIP0::host::dev%1::INSTR"},
    {"TCPIP0::host::50%d%s", kOk, "TCPIP0|host|50%d%s|INSTR", "TCPIP0::host::50%d%s::INSTR"},
    {"TCPIP0::a%%b::INSTR", kOk, "TCPIP0|a%%b|INSTR", "TCPIP0::a%%b::inst0::INSTR"},
    // Long elements: names are cut, parameters are not
    {"TCPIP" + kZeros260 + "::host::INSTR", kOk, "TCPIP" + kZeros260 + "|host|INSTR",
     kLongIntf + "::host::inst0::INSTR"},
    {"TCPIP0::" + kHost1100 + "::INSTR", kOk, "TCPIP0|" + kHost1100 + "|INSTR",
     ("TCPIP0::" + kHost1100 + "::inst0::INSTR").substr(0, 1023)},
};
// clang-format on

// Parses every case's input under a store with the case's PXI naming and
// hands the record to `check`.
template <typename Case, typename Check>
void parseUnderItsNaming(const std::vector<Case>& cases, Check check) {
    for (const PxiNaming naming : {kLegacy, kBdf}) {
        const test::PxiStore store(naming);
        for (const Case& c : cases) {
            if (c.pxi != naming) continue;
            SCOPED_TRACE("input '" + c.input + (naming == kBdf ? "' (bus-device.function naming)" : "'"));
            std::vector<char> buffer = test::writable(c.input);
            IoParms parms;
            const ViStatus status = parms.parse(buffer.data(), false);
            check(c, parms, status, buffer.data());
        }
    }
}

TEST(IoParmsParse, ElementsStatusAndBothNames) {
    parseUnderItsNaming(kParseCases, [](const ParseCase& c, IoParms& parms, ViStatus status, const char* buffer) {
        EXPECT_EQ(status, c.status);
        EXPECT_EQ(parms.getLastError(), c.status);
        const std::string trimmed = trimmedBlanks(c.input);
        EXPECT_STREQ(buffer, trimmed.c_str());
        EXPECT_STREQ(parms.getRsrcString(), trimmed.c_str());
        EXPECT_EQ(joinedElements(parms), c.elements);
        EXPECT_EQ(parms.getParam(parms.getCount()), nullptr);
        EXPECT_EQ(parms.getCanonicalName(nullptr, 0), c.canonical);
        EXPECT_EQ(parms.getAltName(nullptr, 0), c.alt);
    });
}

struct InterfaceCase {
    std::string input;
    const char* intfTypeStr;
    visa::ViUInt16 intfType;
    std::string intfName;
    std::uint32_t board;
    PxiNaming pxi = kLegacy;
};

TEST(IoParmsParse, InterfaceTypeNameAndBoard) {
    const std::vector<InterfaceCase> cases = {
        {"GPIB0", "GPIB", 1, "GPIB0", kNaN},  // alone, it has no board yet when it is read
        {"GPIB::INTFC", "GPIB", 1, "GPIB0", 0},
        {"GPIB1::INTFC", "GPIB", 1, "GPIB1", 1},
        {"GPIB99999999999::1::INSTR", "GPIB", 1, "GPIB99999999999", kNaN},
        {"vxi0::memacc", "VXI", 2, "VXI0", 0},
        {"GPIB-VXI2::5", "GPIB-VXI", 3, "GPIB-VXI2", 2},
        {"ASRL1", "ASRL", 4, "ASRL1", kNaN},
        {"ASRL1::INSTR", "ASRL", 4, "ASRL1", 1},
        {"PXI3::5::INSTR", "PXI", 5, "PXI0", 0},
        {"PXI3::5::INSTR", "PXI", 5, "PXI3", 3, kBdf},
        {"tcpip2::host::INSTR", "TCPIP", 6, "TCPIP2", 2},
        {"usb1::1::2::SN", "USB", 7, "USB1", 1},
        {"RSIB::192.168.0.2::INSTR", "RSIB", 0x800E, "RSIB0", 0},
        {"\tGPIB0::7::INSTR", "\tGPIB", 0, "\tGPIB0", 0},
        {"badRsrcName", "BADRSRCNAME", 0, "BADRSRCNAME0", kNaN},
        {"gpib0::::INSTR", nullptr, 0, "", 0},
    };
    parseUnderItsNaming(cases, [](const InterfaceCase& c, IoParms& parms, ViStatus, const char*) {
        EXPECT_EQ(parms.getIntfTypeStr() ? std::string(parms.getIntfTypeStr()) : "(null)",
                  c.intfTypeStr ? c.intfTypeStr : "(null)");
        EXPECT_EQ(parms.getIntfType(), c.intfType);
        EXPECT_EQ(parms.getIntfName(), c.intfName);
        EXPECT_EQ(parms.getBoardNumber(), c.board);
    });
}

TEST(IoParmsParse, LogLines) {
    const test::TempStore store;
    const auto closing = [](ViStatus status, const std::string& text) {
        return test::logLine(status, "IoParms::parse('" + text + "') returned an error.");
    };
    const std::string moreThat = "IoParms::parse: parsing 'A::B::C::D::E::F::G::H::I::J': more that 10 parameters";
    const struct {
        const char* input;
        bool logErrors;
        Lines lines;
    } cases[] = {
        {"gpib0::7::instr", true, {closing(kOk, "gpib0::7::instr")}},  // success is reported too
        {"GPIB0::7::FOO", true, {closing(kInv, "GPIB0::7::FOO")}},
        {"GPIB0::7::FOO", false, {}},
        {"   ", true, {closing(kInv, "")}},
        {"TCPIP0::host::50%d%s", true, {closing(kOk, "TCPIP0::host::50%d%s")}},
        {"A::B::C::D::E::F::G::H::I::J", true, {test::logLine(VI_ERROR_ALLOC, moreThat)}},
        {"A::B::C::D::E::F::G::H::I::J", false, {test::logLine(VI_ERROR_ALLOC, moreThat)}},
        {"badRsrcName", true, {}},
        {"  BADRSRCNAME ", true, {}},
        {"badRsrcName0", true, {closing(kInv, "badRsrcName0")}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.input);
        std::vector<char> buffer = test::writable(c.input);
        platform::DebugCapture capture;
        IoParms().parse(buffer.data(), c.logErrors);
        EXPECT_EQ(capture.lines(), c.lines);
    }
    platform::DebugCapture capture;
    EXPECT_EQ(IoParms().parse(nullptr, true), kInv);
    EXPECT_TRUE(capture.lines().empty());
}

// A record is reused: parse starts from a clean slate except for the
// interface name and board number, which only a parse that reaches them sets.
TEST(IoParmsParse, ReuseKeepsInterfaceNameAndBoardOfTheLastParseThatSetThem) {
    const test::TempStore store;
    IoParms parms;
    std::vector<char> first = test::writable("GPIB3::1::INSTR");
    ASSERT_EQ(parms.parse(first.data(), false), kOk);
    std::vector<char> second = test::writable("::");
    EXPECT_EQ(parms.parse(second.data(), false), kInv);
    EXPECT_EQ(parms.getCount(), 0);
    EXPECT_EQ(parms.getIntfTypeStr(), nullptr);
    EXPECT_STREQ(parms.getIntfName(), "GPIB3");
    EXPECT_EQ(parms.getBoardNumber(), 3u);
    parms.clear();
    EXPECT_EQ(parms.getRsrcString(), nullptr);
    EXPECT_EQ(parms.getParamCount(), -2);
    EXPECT_STREQ(parms.getIntfName(), "GPIB3");
}

}  // namespace
}  // namespace braxcfg::rsrc
