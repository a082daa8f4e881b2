// IoParms::parse over realistic and hostile resource strings: elements,
// interface, board, canonical and alternate names, status and log lines.
#include <gtest/gtest.h>

#include <optional>
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

constexpr std::uint32_t kNaN = 0xFFFFFFFF;
constexpr ViStatus kInv = VI_ERROR_INV_RSRC_NAME;
constexpr ViStatus kOk = VI_SUCCESS;
constexpr PxiNaming kLegacy = PxiNaming::Legacy;
constexpr PxiNaming kBdf = PxiNaming::BusDeviceFunction;

// Columns: input, PXI naming, status, elements, intfTypeStr, intfName,
// board number, canonical name, alternate name, log lines.
struct ParseCase {
    std::string input;
    PxiNaming pxi = PxiNaming::Legacy;
    ViStatus status = VI_SUCCESS;
    Lines elements = {};
    const char* intfTypeStr = nullptr;
    const char* intfName = "";
    std::uint32_t board = 0;
    std::string canonical = {};
    std::string alt = {};
    // Unset: the closing "returned an error." line, which every parse that
    // logged nothing else writes when asked to log.
    std::optional<Lines> logs = {};
};

std::string trimmedBlanks(const std::string& text) {
    const auto first = text.find_first_not_of(' ');
    if (first == std::string::npos) return "";
    return text.substr(first, text.find_last_not_of(' ') - first + 1);
}

const std::string kHost300(300, 'h');
const std::string kHost1100(1100, 'h');
const std::string kZeros260(260, '0');
const std::string kLongIntf = "TCPIP" + std::string(250, '0');

// clang-format off
std::vector<ParseCase> cases() {
    return {
        // GPIB
        {"gpib0::7::instr", kLegacy, kOk, {"GPIB0", "7", "INSTR"}, "GPIB", "GPIB0", 0, "GPIB0::7::INSTR"},
        {"GPIB0::7::0::INSTR", kLegacy, kOk, {"GPIB0", "7", "0", "INSTR"}, "GPIB", "GPIB0", 0, "GPIB0::7::0::INSTR"},
        {"GPIB0::07::INSTR", kLegacy, kOk, {"GPIB0", "07", "INSTR"}, "GPIB", "GPIB0", 0, "GPIB0::7::INSTR"},
        {"GPIB0::0x7::INSTR", kLegacy, kOk, {"GPIB0", "0x7", "INSTR"}, "GPIB", "GPIB0", 0, "GPIB0::7::INSTR"},
        {"GPIB0::-2::INSTR", kLegacy, kOk, {"GPIB0", "-2", "INSTR"}, "GPIB", "GPIB0", 0, "GPIB0::-2::INSTR"},
        {"GPIB0::-1::INSTR", kLegacy, kInv, {"GPIB0", "-1", "INSTR"}, "GPIB", "GPIB0"},
        {"GPIB0::10::8", kLegacy, kOk, {"GPIB0", "10", "8", "INSTR"}, "GPIB", "GPIB0", 0, "GPIB0::10::8::INSTR"},
        {"GPIB1::INTFC", kLegacy, kOk, {"GPIB1", "INTFC"}, "GPIB", "GPIB1", 1, "GPIB1::INTFC"},
        {"GPIB::INTFC", kLegacy, kOk, {"GPIB0", "INTFC"}, "GPIB", "GPIB0", 0, "GPIB0::INTFC"},
        {"GPIB0::servant", kLegacy, kOk, {"GPIB0", "SERVANT"}, "GPIB", "GPIB0", 0, "GPIB0::SERVANT"},
        // Alone, the interface element has no board yet when it is read.
        {"GPIB0", kLegacy, kInv, {"GPIB0", "INSTR"}, "GPIB", "GPIB0", kNaN},
        {"GPIB0::7::FOO", kLegacy, kInv, {"GPIB0", "7", "FOO", "INSTR"}, "GPIB", "GPIB0"},
        {"GPIB0::7::FOO::INSTR", kLegacy, kInv, {"GPIB0", "7", "FOO", "INSTR"}, "GPIB", "GPIB0"},
        {"GPIB99999999999::1::INSTR", kLegacy, kOk, {"GPIB99999999999", "1", "INSTR"}, "GPIB", "GPIB99999999999", kNaN,
         "GPIB99999999999::1::INSTR"},
        // VXI and GPIB-VXI
        {"VXI0::1::INSTR", kLegacy, kOk, {"VXI0", "1", "INSTR"}, "VXI", "VXI0", 0, "VXI0::1::INSTR"},
        {"vxi0::memacc", kLegacy, kOk, {"VXI0", "MEMACC"}, "VXI", "VXI0", 0, "VXI0::MEMACC"},
        {"VXI0::BACKPLANE", kLegacy, kOk, {"VXI0", "BACKPLANE"}, "VXI", "VXI0", 0, "VXI0::BACKPLANE"},
        {"VXI0::0x2::BACKPLANE", kLegacy, kOk, {"VXI0", "0x2", "BACKPLANE"}, "VXI", "VXI0", 0, "VXI0::2::BACKPLANE"},
        {"VXI0::SERVANT", kLegacy, kOk, {"VXI0", "SERVANT"}, "VXI", "VXI0", 0, "VXI0::SERVANT"},
        {"GPIB-VXI2::5", kLegacy, kOk, {"GPIB-VXI2", "5", "INSTR"}, "GPIB-VXI", "GPIB-VXI2", 2, "GPIB-VXI2::5::INSTR"},
        {"GPIB-VXI0::1::BACKPLANE", kLegacy, kOk, {"GPIB-VXI0", "1", "BACKPLANE"}, "GPIB-VXI", "GPIB-VXI0", 0,
         "GPIB-VXI0::1::BACKPLANE"},
        {"GPIB-VXI0::SERVANT", kLegacy, kInv, {"GPIB-VXI0", "SERVANT"}, "GPIB-VXI", "GPIB-VXI0"},
        // ASRL
        {"ASRL1", kLegacy, kOk, {"ASRL1", "INSTR"}, "ASRL", "ASRL1", kNaN, "ASRL1::INSTR"},
        {"ASRL1::INSTR", kLegacy, kOk, {"ASRL1", "INSTR"}, "ASRL", "ASRL1", 1, "ASRL1::INSTR"},
        {"ASRL1::BOGUS", kLegacy, kInv, {"ASRL1", "BOGUS", "INSTR"}, "ASRL", "ASRL1", 1},
        // TCPIP
        {"TCPIP0::myhost::INSTR", kLegacy, kOk, {"TCPIP0", "myhost", "INSTR"}, "TCPIP", "TCPIP0", 0,
         "TCPIP0::myhost::inst0::INSTR"},
        {"tcpip0::MyHost::hislip0", kLegacy, kOk, {"TCPIP0", "MyHost", "hislip0", "INSTR"}, "TCPIP", "TCPIP0", 0,
         "TCPIP0::MyHost::hislip0::INSTR"},
        {"TCPIP0::192.168.1.5::gpib0,5::INSTR", kLegacy, kOk, {"TCPIP0", "192.168.1.5", "gpib0,5", "INSTR"}, "TCPIP",
         "TCPIP0", 0, "TCPIP0::192.168.1.5::gpib0,5::INSTR"},
        {"TCPIP0::[fe80::1]::inst0::INSTR", kLegacy, kOk, {"TCPIP0", "[fe80::1]", "inst0", "INSTR"}, "TCPIP", "TCPIP0",
         0, "TCPIP0::[fe80::1]::inst0::INSTR"},
        {"TCPIP1::[fe80::1%eth0]::INSTR", kLegacy, kOk, {"TCPIP1", "[fe80::1%eth0]", "INSTR"}, "TCPIP", "TCPIP1", 1,
         "TCPIP1::[fe80::1%eth0]::inst0::INSTR"},
        // An unclosed bracket hides every later separator.
        {"TCPIP0::[fe80::1::INSTR", kLegacy, kOk, {"TCPIP0", "[fe80::1::INSTR", "INSTR"}, "TCPIP", "TCPIP0", 0,
         "TCPIP0::[fe80::1::INSTR::inst0::INSTR"},
        {"TCPIP0::myhost::5025::SOCKET", kLegacy, kOk, {"TCPIP0", "myhost", "5025", "SOCKET"}, "TCPIP", "TCPIP0", 0,
         "TCPIP0::myhost::5025::SOCKET"},
        {"TCPIP0::myhost::0x13a9::socket", kLegacy, kOk, {"TCPIP0", "myhost", "0x13a9", "SOCKET"}, "TCPIP", "TCPIP0", 0,
         "TCPIP0::myhost::5033::SOCKET"},
        {"TCPIP0::myhost::telnet::SOCKET", kLegacy, kInv, {"TCPIP0", "myhost", "telnet", "SOCKET"}, "TCPIP", "TCPIP0"},
        {"TCPIP0::myhost::SOCKET", kLegacy, kInv, {"TCPIP0", "myhost", "SOCKET"}, "TCPIP", "TCPIP0"},
        {"TCPIP0::SERVANT", kLegacy, kOk, {"TCPIP0", "SERVANT"}, "TCPIP", "TCPIP0", 0, "TCPIP0::inst0::SERVANT"},
        {"TCPIP0::inst1::SERVANT", kLegacy, kOk, {"TCPIP0", "inst1", "SERVANT"}, "TCPIP", "TCPIP0", 0,
         "TCPIP0::inst1::SERVANT"},
        {"TCPIP0::INTFC", kLegacy, kOk, {"TCPIP0", "INTFC"}, "TCPIP", "TCPIP0", 0, "TCPIP0::INTFC"},
        {"TCPIP0::myhost::lan0::INTFC", kLegacy, kOk, {"TCPIP0", "myhost", "lan0", "INTFC"}, "TCPIP", "TCPIP0", 0,
         "TCPIP0::myhost::lan0::INTFC"},
        {"TCPIP0::myhost::INTFC", kLegacy, kInv, {"TCPIP0", "myhost", "INTFC"}, "TCPIP", "TCPIP0"},
        // USB
        {"usb0::4660::22136::SN42::INSTR", kLegacy, kOk, {"USB0", "4660", "22136", "SN42", "INSTR"}, "USB", "USB0", 0,
         "USB0::0x1234::0x5678::SN42::0::INSTR", "USB0::4660::22136::SN42::0::INSTR"},
        {"USB0::0x0957::0x1796::MY123::3::INSTR", kLegacy, kOk, {"USB0", "0x0957", "0x1796", "MY123", "3", "INSTR"},
         "USB", "USB0", 0, "USB0::0x0957::0x1796::MY123::3::INSTR", "USB0::2391::6038::MY123::3::INSTR"},
        {"USB0::0x1234::0x5678::SN42", kLegacy, kOk, {"USB0", "0x1234", "0x5678", "SN42", "INSTR"}, "USB", "USB0", 0,
         "USB0::0x1234::0x5678::SN42::0::INSTR", "USB0::4660::22136::SN42::0::INSTR"},
        // Four USB elements are vendor, product and serial number, even "INSTR".
        {"USB0::0x1234::0x5678::INSTR", kLegacy, kOk, {"USB0", "0x1234", "0x5678", "INSTR", "INSTR"}, "USB", "USB0", 0,
         "USB0::0x1234::0x5678::INSTR::0::INSTR", "USB0::4660::22136::INSTR::0::INSTR"},
        {"USB0::0x1234::SN42::INSTR", kLegacy, kInv, {"USB0", "0x1234", "SN42", "INSTR", "INSTR"}, "USB", "USB0"},
        {"USB0::0x1234::0x5678::SN42::x::INSTR", kLegacy, kInv, {"USB0", "0x1234", "0x5678", "SN42", "x", "INSTR"},
         "USB", "USB0"},
        // RSIB
        {"RSIB::192.168.0.2::INSTR", kLegacy, kOk, {"RSIB0", "192.168.0.2", "INSTR"}, "RSIB", "RSIB0", 0,
         "RSIB0::192.168.0.2::INSTR"},
        {"RSIB0::host::x::INSTR", kLegacy, kOk, {"RSIB0", "host", "x", "INSTR"}, "RSIB", "RSIB0", 0,
         "RSIB0::host::-1::INSTR"},
        {"RSIB0::INTFC", kLegacy, kInv, {"RSIB0", "INTFC"}, "RSIB", "RSIB0"},
        // PXI, under both namings
        {"PXI3::5::INSTR", kLegacy, kOk, {"PXI3", "5", "INSTR"}, "PXI", "PXI0", 0, "PXI3::5::0::INSTR",
         "PXI0::3-5.0::INSTR"},
        {"PXI3::5::INSTR", kBdf, kOk, {"PXI3", "5", "INSTR"}, "PXI", "PXI3", 3, "PXI0::3-5.0::INSTR",
         "PXI3::5::0::INSTR"},
        {"PXI2::5::1::INSTR", kLegacy, kOk, {"PXI2", "5", "1", "INSTR"}, "PXI", "PXI0", 0, "PXI2::5::1::INSTR",
         "PXI0::2-5.1::INSTR"},
        {"PXI0::3-5::INSTR", kLegacy, kOk, {"PXI0", "3-5", "INSTR"}, "PXI", "PXI0", 0, "PXI3::5::0::INSTR",
         "PXI0::3-5.0::INSTR"},
        {"PXI0::3-5.1::INSTR", kBdf, kOk, {"PXI0", "3-5.1", "INSTR"}, "PXI", "PXI0", 0, "PXI0::3-5.1::INSTR",
         "PXI3::5::1::INSTR"},
        {"PXI0::bus5::INSTR", kLegacy, kInv, {"PXI0", "bus5", "INSTR"}, "PXI", "PXI0", 0, "", "PXI0::bus5.0::INSTR"},
        {"PXI0::bus5::INSTR", kBdf, kOk, {"PXI0", "bus5", "INSTR"}, "PXI", "PXI0", 0, "PXI0::bus5.0::INSTR"},
        {"PXI0::chassis1::slot5::INSTR", kLegacy, kOk, {"PXI0", "chassis1", "slot5", "INSTR"}, "PXI", "PXI0", 0,
         "PXI0::CHASSIS1::SLOT5::FUNC0::INSTR"},
        {"PXI0::chassis1::slot5::INSTR", kBdf, kOk, {"PXI0", "chassis1", "slot5", "INSTR"}, "PXI", "PXI0", 0,
         "PXI0::CHASSIS1::SLOT5::FUNC0::INSTR"},
        {"PXI0::chassis1::slot5::func2::INSTR", kLegacy, kOk, {"PXI0", "chassis1", "slot5", "func2", "INSTR"}, "PXI",
         "PXI0", 0, "PXI0::CHASSIS1::SLOT5::FUNC2::INSTR"},
        {"PXI1::2::3::4::INSTR", kLegacy, kInv, {"PXI1", "2", "3", "4", "INSTR"}, "PXI", "PXI0"},
        {"PXI0::MEMACC", kLegacy, kOk, {"PXI0", "MEMACC"}, "PXI", "PXI0", 0, "PXI0::MEMACC"},
        {"PXI0::5::BACKPLANE", kLegacy, kOk, {"PXI0", "5", "BACKPLANE"}, "PXI", "PXI0", 0, "PXI0::5::BACKPLANE",
         "PXI0::0-5.0::BACKPLANE"},
        {"PXI0::x::BACKPLANE", kLegacy, kOk, {"PXI0", "x", "BACKPLANE"}, "PXI", "PXI0", 0, "PXI0::-1::BACKPLANE",
         "PXI0::x.0::BACKPLANE"},
        {"PXI0::BACKPLANE", kLegacy, kInv, {"PXI0", "BACKPLANE"}, "PXI", "PXI0"},
        // Separators, blanks and empty elements
        {"", kLegacy, kInv},
        {" ", kLegacy, kInv},
        {" GPIB0::7::INSTR ", kLegacy, kOk, {"GPIB0", "7", "INSTR"}, "GPIB", "GPIB0", 0, "GPIB0::7::INSTR"},
        {"\tGPIB0::7::INSTR", kLegacy, kInv, {"\tGPIB0", "7", "INSTR"}, "\tGPIB", "\tGPIB0"},
        {"gpib0::::INSTR", kLegacy, kInv, {"gpib0"}},
        {"::GPIB0", kLegacy, kInv},
        {"GPIB0::7::", kLegacy, kInv, {"GPIB0", "7"}},
        {"GPIB0::7::instr::", kLegacy, kInv, {"GPIB0", "7", "instr"}},
        {"GPIB0:::7", kLegacy, kInv, {"GPIB0", ":7", "INSTR"}, "GPIB", "GPIB0"},
        {"GPIB0::1::2::3::4::5::6::7::8", kLegacy, kInv, {"GPIB0", "1", "2", "3", "4", "5", "6", "7", "8", "INSTR"},
         "GPIB", "GPIB0"},
        {"A::B::C::D::E::F::G::H::I::J", kLegacy, kInv, {"A", "B", "C", "D", "E", "F", "G", "H", "I"}, nullptr, "", 0,
         "", "",
         Lines{test::logLine(VI_ERROR_ALLOC,
                             "IoParms::parse: parsing 'A::B::C::D::E::F::G::H::I::J': more that 10 parameters")}},
        {"A::B::C::D::E::F::G::H::I::", kLegacy, kInv, {"A", "B", "C", "D", "E", "F", "G", "H", "I"}, nullptr, "", 0,
         "", "",
         Lines{test::logLine(VI_ERROR_ALLOC,
                             "IoParms::parse: parsing 'A::B::C::D::E::F::G::H::I::': more that 10 parameters")}},
        // "%" in the last element, and elsewhere
        {"TCPIP0::host::dev%%1", kLegacy, kOk, {"TCPIP0", "host", "dev%1", "INSTR"}, "TCPIP", "TCPIP0", 0,
         "TCPIP0::host::dev%1::INSTR"},
        {"TCPIP0::host::50%d%s", kLegacy, kOk, {"TCPIP0", "host", "50%d%s", "INSTR"}, "TCPIP", "TCPIP0", 0,
         "TCPIP0::host::50%d%s::INSTR"},
        {"TCPIP0::host::%%%", kLegacy, kOk, {"TCPIP0", "host", "%%", "INSTR"}, "TCPIP", "TCPIP0", 0,
         "TCPIP0::host::%%::INSTR"},
        {"TCPIP0::a%%b::INSTR", kLegacy, kOk, {"TCPIP0", "a%%b", "INSTR"}, "TCPIP", "TCPIP0", 0,
         "TCPIP0::a%%b::inst0::INSTR"},
        // Long elements: names are cut, parameters are not
        {"TCPIP0::" + kHost300 + "::INSTR", kLegacy, kOk, {"TCPIP0", kHost300, "INSTR"}, "TCPIP", "TCPIP0", 0,
         "TCPIP0::" + kHost300 + "::inst0::INSTR"},
        {"TCPIP" + kZeros260 + "::host::INSTR", kLegacy, kOk, {"TCPIP" + kZeros260, "host", "INSTR"}, "TCPIP",
         kLongIntf.c_str(), 0, kLongIntf + "::host::inst0::INSTR"},
        {"TCPIP0::" + kHost1100 + "::INSTR", kLegacy, kOk, {"TCPIP0", kHost1100, "INSTR"}, "TCPIP", "TCPIP0", 0,
         ("TCPIP0::" + kHost1100 + "::inst0::INSTR").substr(0, 1023)},
        // The name callers pass when they want no closing line
        {"badRsrcName", kLegacy, kInv, {"BADRSRCNAME0", "INSTR"}, "BADRSRCNAME", "BADRSRCNAME0", kNaN, "", "", Lines{}},
        {" BADRSRCNAME ", kLegacy, kInv, {"BADRSRCNAME0", "INSTR"}, "BADRSRCNAME", "BADRSRCNAME0", kNaN, "", "",
         Lines{}},
        {"badRsrcName0", kLegacy, kInv, {"BADRSRCNAME0", "INSTR"}, "BADRSRCNAME", "BADRSRCNAME0", kNaN},
    };
}
// clang-format on

TEST(IoParmsParse, EveryFieldOfTheParsedRecord) {
    for (const PxiNaming naming : {PxiNaming::Legacy, kBdf}) {
        const test::PxiStore store(naming);
        for (const ParseCase& c : cases()) {
            if (c.pxi != naming) continue;
            SCOPED_TRACE("input '" + c.input + (c.pxi == kBdf ? "' (bus-device.function naming)" : "'"));
            std::vector<char> buffer = test::writable(c.input);
            const std::string trimmed = trimmedBlanks(c.input);
            platform::DebugCapture capture;
            IoParms parms;

            EXPECT_EQ(parms.parse(buffer.data(), true), c.status);
            EXPECT_EQ(parms.getLastError(), c.status);
            EXPECT_STREQ(buffer.data(), trimmed.c_str());
            EXPECT_STREQ(parms.getRsrcString(), trimmed.c_str());
            ASSERT_EQ(parms.getCount(), static_cast<int>(c.elements.size()));
            for (int i = 0; i < parms.getCount(); ++i) EXPECT_EQ(parms.getParam(i), c.elements[i]) << "element " << i;
            EXPECT_EQ(parms.getParam(parms.getCount()), nullptr);
            if (c.intfTypeStr == nullptr)
                EXPECT_EQ(parms.getIntfTypeStr(), nullptr);
            else
                EXPECT_STREQ(parms.getIntfTypeStr(), c.intfTypeStr);
            EXPECT_STREQ(parms.getIntfName(), c.intfName);
            EXPECT_EQ(parms.getBoardNumber(), c.board);
            EXPECT_EQ(parms.getCanonicalName(nullptr, 0), c.canonical);
            EXPECT_EQ(parms.getAltName(nullptr, 0), c.alt);
            const Lines closing{test::logLine(c.status, "IoParms::parse('" + trimmed + "') returned an error.")};
            EXPECT_EQ(capture.lines(), c.logs.value_or(closing));
        }
    }
}

TEST(IoParmsParse, NullInputFailsWithoutAClosingLine) {
    const test::TempStore store;
    platform::DebugCapture capture;
    IoParms parms;
    EXPECT_EQ(parms.parse(nullptr, true), VI_ERROR_INV_RSRC_NAME);
    EXPECT_STREQ(parms.getRsrcString(), "");
    EXPECT_TRUE(capture.lines().empty());
}

TEST(IoParmsParse, WithoutLoggingOnlyOwnFailuresAreLogged) {
    const test::TempStore store;
    const struct {
        const char* input;
        std::size_t lines;
    } cases[] = {{"GPIB0::7::INSTR", 0}, {"GPIB0::7::FOO", 0}, {"A::B::C::D::E::F::G::H::I::J", 1}};
    for (const auto& c : cases) {
        SCOPED_TRACE(c.input);
        platform::DebugCapture capture;
        std::vector<char> buffer = test::writable(c.input);
        IoParms().parse(buffer.data(), false);
        EXPECT_EQ(capture.lines().size(), c.lines);
    }
}

// A record is reused: parse starts from a clean slate except for the
// interface name and board number, which only a parse that reaches them sets.
TEST(IoParmsParse, ReuseKeepsInterfaceNameAndBoardOfTheLastParseThatSetThem) {
    const test::TempStore store;
    IoParms parms;
    std::vector<char> first = test::writable("GPIB3::1::INSTR");
    ASSERT_EQ(parms.parse(first.data(), false), VI_SUCCESS);
    ASSERT_STREQ(parms.getCanonicalName(nullptr, 0), "GPIB3::1::INSTR");
    std::vector<char> second = test::writable("::");
    EXPECT_EQ(parms.parse(second.data(), false), VI_ERROR_INV_RSRC_NAME);
    EXPECT_EQ(parms.getCount(), 0);
    EXPECT_EQ(parms.getIntfTypeStr(), nullptr);
    EXPECT_STREQ(parms.getCanonicalName(nullptr, 0), "");
    EXPECT_STREQ(parms.getIntfName(), "GPIB3");
    EXPECT_EQ(parms.getBoardNumber(), 3u);
    parms.clear();
    EXPECT_EQ(parms.getRsrcString(), nullptr);
    EXPECT_EQ(parms.getLastError(), VI_ERROR_INV_RSRC_NAME);
    EXPECT_EQ(parms.getParamCount(), -2);
    EXPECT_STREQ(parms.getIntfName(), "GPIB3");
}

}  // namespace
}  // namespace braxcfg::rsrc
