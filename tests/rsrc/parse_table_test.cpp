// IoParms::parse over realistic and hostile resource strings, the numbers
// it reads out of the elements, and what it does when allocation fails.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <string>
#include <thread>
#include <vector>

#include "platform/debug_output.h"
#include "rsrc/allocation.h"
#include "rsrc/io_parms.h"
#include "store_builder.h"
#include "temp_store.h"

namespace braxcfg::rsrc {
namespace {

using visa::ViStatus;
using Lines = std::vector<std::string>;

constexpr std::uint32_t kNaN = IoParms::kNotANumber;
constexpr ViStatus kOk = visa::VI_SUCCESS;
constexpr ViStatus kInv = visa::VI_ERROR_INV_RSRC_NAME;
constexpr ViStatus kAlloc = visa::VI_ERROR_ALLOC;
enum class PxiNaming { Legacy, BusDeviceFunction };
constexpr PxiNaming kBdf = PxiNaming::BusDeviceFunction;
const std::string kZeros260(260, '0');
const std::string kHost1100(1100, 'h');

struct ParseCase {
    std::string input;
    ViStatus status;
    std::string elements;  // joined by "|"
    const char* intfTypeStr;
    visa::ViUInt16 intfType;
    std::string intfName;
    std::uint32_t board;
    std::string canonical, alt;
    // null: only the closing "returned an error." line, and only when
    // errors are logged; "": no line at all; otherwise the one line logged
    // under VI_ERROR_ALLOC whether errors are logged or not.
    const char* log = nullptr;
    PxiNaming pxi = PxiNaming::Legacy;
};

// clang-format off
const std::vector<ParseCase> kParseCases = {
    {"gpib0::7::instr", kOk, "GPIB0|7|INSTR", "GPIB", 1, "GPIB0", 0, "GPIB0::7::INSTR", ""},
    {"GPIB0::7::0::INSTR", kOk, "GPIB0|7|0|INSTR", "GPIB", 1, "GPIB0", 0, "GPIB0::7::0::INSTR", ""},
    {"GPIB0::0x7::INSTR", kOk, "GPIB0|0x7|INSTR", "GPIB", 1, "GPIB0", 0, "GPIB0::7::INSTR", ""},
    {"GPIB0::-2::INSTR", kOk, "GPIB0|-2|INSTR", "GPIB", 1, "GPIB0", 0, "GPIB0::-2::INSTR", ""},
    {"GPIB::INTFC", kOk, "GPIB0|INTFC", "GPIB", 1, "GPIB0", 0, "GPIB0::INTFC", ""},
    {"GPIB0::servant", kOk, "GPIB0|SERVANT", "GPIB", 1, "GPIB0", 0, "GPIB0::SERVANT", ""},
    // Alone, the interface element has no board yet when the board is read.
    {"GPIB0", kInv, "GPIB0|INSTR", "GPIB", 1, "GPIB0", kNaN, "", ""},
    {"GPIB0::7::FOO", kInv, "GPIB0|7|FOO|INSTR", "GPIB", 1, "GPIB0", 0, "", ""},
    {"GPIB0::7::FOO::INSTR", kInv, "GPIB0|7|FOO|INSTR", "GPIB", 1, "GPIB0", 0, "", ""},
    {"GPIB99999999999::1::INSTR", kOk, "GPIB99999999999|1|INSTR", "GPIB", 1, "GPIB99999999999", kNaN, "GPIB99999999999::1::INSTR", ""},
    {"\tGPIB0::7::INSTR", kInv, "\tGPIB0|7|INSTR", "\tGPIB", 0, "\tGPIB0", 0, "", ""},  // only " " is trimmed
    {"VXI0::1::INSTR", kOk, "VXI0|1|INSTR", "VXI", 2, "VXI0", 0, "VXI0::1::INSTR", ""},
    {"vxi0::memacc", kOk, "VXI0|MEMACC", "VXI", 2, "VXI0", 0, "VXI0::MEMACC", ""},
    {"VXI0::0x2::BACKPLANE", kOk, "VXI0|0x2|BACKPLANE", "VXI", 2, "VXI0", 0, "VXI0::2::BACKPLANE", ""},
    {"VXI0::SERVANT", kOk, "VXI0|SERVANT", "VXI", 2, "VXI0", 0, "VXI0::SERVANT", ""},
    {"GPIB-VXI2::5", kOk, "GPIB-VXI2|5|INSTR", "GPIB-VXI", 3, "GPIB-VXI2", 2, "GPIB-VXI2::5::INSTR", ""},
    {"GPIB-VXI0::SERVANT", kInv, "GPIB-VXI0|SERVANT", "GPIB-VXI", 3, "GPIB-VXI0", 0, "", ""},
    {"ASRL1", kOk, "ASRL1|INSTR", "ASRL", 4, "ASRL1", kNaN, "ASRL1::INSTR", ""},
    {"ASRL1::INSTR", kOk, "ASRL1|INSTR", "ASRL", 4, "ASRL1", 1, "ASRL1::INSTR", ""},
    {"ASRL1::BOGUS", kInv, "ASRL1|BOGUS|INSTR", "ASRL", 4, "ASRL1", 1, "", ""},
    {"TCPIP0::myhost::INSTR", kOk, "TCPIP0|myhost|INSTR", "TCPIP", 6, "TCPIP0", 0, "TCPIP0::myhost::inst0::INSTR", ""},
    {"tcpip0::MyHost::hislip0", kOk, "TCPIP0|MyHost|hislip0|INSTR", "TCPIP", 6, "TCPIP0", 0, "TCPIP0::MyHost::hislip0::INSTR", ""},
    {"TCPIP0::192.168.1.5::gpib0,5::INSTR", kOk, "TCPIP0|192.168.1.5|gpib0,5|INSTR", "TCPIP", 6, "TCPIP0", 0, "TCPIP0::192.168.1.5::gpib0,5::INSTR", ""},
    {"TCPIP0::[fe80::1]::inst0::INSTR", kOk, "TCPIP0|[fe80::1]|inst0|INSTR", "TCPIP", 6, "TCPIP0", 0, "TCPIP0::[fe80::1]::inst0::INSTR", ""},
    {"TCPIP1::[fe80::1%eth0]::INSTR", kOk, "TCPIP1|[fe80::1%eth0]|INSTR", "TCPIP", 6, "TCPIP1", 1, "TCPIP1::[fe80::1%eth0]::inst0::INSTR", ""},
    // An unclosed bracket hides every later separator.
    {"TCPIP0::[fe80::1::INSTR", kOk, "TCPIP0|[fe80::1::INSTR|INSTR", "TCPIP", 6, "TCPIP0", 0, "TCPIP0::[fe80::1::INSTR::inst0::INSTR", ""},
    {"TCPIP0::myhost::0x13a9::socket", kOk, "TCPIP0|myhost|0x13a9|SOCKET", "TCPIP", 6, "TCPIP0", 0, "TCPIP0::myhost::5033::SOCKET", ""},
    {"TCPIP0::myhost::telnet::SOCKET", kInv, "TCPIP0|myhost|telnet|SOCKET", "TCPIP", 6, "TCPIP0", 0, "", ""},
    {"TCPIP0::SERVANT", kOk, "TCPIP0|SERVANT", "TCPIP", 6, "TCPIP0", 0, "TCPIP0::inst0::SERVANT", ""},
    {"TCPIP0::INTFC", kOk, "TCPIP0|INTFC", "TCPIP", 6, "TCPIP0", 0, "TCPIP0::INTFC", ""},
    {"TCPIP0::myhost::lan0::INTFC", kOk, "TCPIP0|myhost|lan0|INTFC", "TCPIP", 6, "TCPIP0", 0, "TCPIP0::myhost::lan0::INTFC", ""},
    {"usb0::4660::22136::SN42::INSTR", kOk, "USB0|4660|22136|SN42|INSTR", "USB", 7, "USB0", 0, "USB0::0x1234::0x5678::SN42::0::INSTR", "USB0::4660::22136::SN42::0::INSTR"},
    {"USB0::0x0957::0x1796::MY123::3::INSTR", kOk, "USB0|0x0957|0x1796|MY123|3|INSTR", "USB", 7, "USB0", 0, "USB0::0x0957::0x1796::MY123::3::INSTR", "USB0::2391::6038::MY123::3::INSTR"},
    {"USB0::0x1234::0x5678::SN42", kOk, "USB0|0x1234|0x5678|SN42|INSTR", "USB", 7, "USB0", 0, "USB0::0x1234::0x5678::SN42::0::INSTR", "USB0::4660::22136::SN42::0::INSTR"},
    {"USB0::0x12345::0x5::SN::INSTR", kOk, "USB0|0x12345|0x5|SN|INSTR", "USB", 7, "USB0", 0, "USB0::0x12345::0x0005::SN::0::INSTR", "USB0::74565::5::SN::0::INSTR"},
    // Four USB elements are vendor, product and serial number, even "INSTR".
    {"USB0::0x1234::0x5678::INSTR", kOk, "USB0|0x1234|0x5678|INSTR|INSTR", "USB", 7, "USB0", 0, "USB0::0x1234::0x5678::INSTR::0::INSTR", "USB0::4660::22136::INSTR::0::INSTR"},
    {"USB0::0x1234::0x5678::SN42::x::INSTR", kInv, "USB0|0x1234|0x5678|SN42|x|INSTR", "USB", 7, "USB0", 0, "", ""},
    {"RSIB::192.168.0.2::INSTR", kOk, "RSIB0|192.168.0.2|INSTR", "RSIB", 0x800E, "RSIB0", 0, "RSIB0::192.168.0.2::INSTR", ""},
    {"RSIB0::host::x::INSTR", kOk, "RSIB0|host|x|INSTR", "RSIB", 0x800E, "RSIB0", 0, "RSIB0::host::-1::INSTR", ""},
    {"RSIB0::INTFC", kInv, "RSIB0|INTFC", "RSIB", 0x800E, "RSIB0", 0, "", ""},
    {"PXI3::5::INSTR", kOk, "PXI3|5|INSTR", "PXI", 5, "PXI0", 0, "PXI3::5::0::INSTR", "PXI0::3-5.0::INSTR"},
    {"PXI3::5::INSTR", kOk, "PXI3|5|INSTR", "PXI", 5, "PXI3", 3, "PXI0::3-5.0::INSTR", "PXI3::5::0::INSTR", nullptr, kBdf},
    {"PXI2::5::1::INSTR", kOk, "PXI2|5|1|INSTR", "PXI", 5, "PXI0", 0, "PXI2::5::1::INSTR", "PXI0::2-5.1::INSTR"},
    {"PXI0::3-5::INSTR", kOk, "PXI0|3-5|INSTR", "PXI", 5, "PXI0", 0, "PXI3::5::0::INSTR", "PXI0::3-5.0::INSTR"},
    {"PXI0::3-5.1::INSTR", kOk, "PXI0|3-5.1|INSTR", "PXI", 5, "PXI0", 0, "PXI0::3-5.1::INSTR", "PXI3::5::1::INSTR", nullptr, kBdf},
    {"PXI0::bus5::INSTR", kInv, "PXI0|bus5|INSTR", "PXI", 5, "PXI0", 0, "", "PXI0::bus5.0::INSTR"},
    {"PXI0::bus5::INSTR", kOk, "PXI0|bus5|INSTR", "PXI", 5, "PXI0", 0, "PXI0::bus5.0::INSTR", "", nullptr, kBdf},
    {"PXI0::chassis1::slot5::INSTR", kOk, "PXI0|chassis1|slot5|INSTR", "PXI", 5, "PXI0", 0, "PXI0::CHASSIS1::SLOT5::FUNC0::INSTR", ""},
    {"PXI0::chassis1::slot5::INSTR", kOk, "PXI0|chassis1|slot5|INSTR", "PXI", 5, "PXI0", 0, "PXI0::CHASSIS1::SLOT5::FUNC0::INSTR", "", nullptr, kBdf},
    {"PXI0::chassis1::slot5::func2::INSTR", kOk, "PXI0|chassis1|slot5|func2|INSTR", "PXI", 5, "PXI0", 0, "PXI0::CHASSIS1::SLOT5::FUNC2::INSTR", ""},
    {"PXI1::2::3::4::INSTR", kInv, "PXI1|2|3|4|INSTR", "PXI", 5, "PXI0", 0, "", ""},
    {"PXI0::MEMACC", kOk, "PXI0|MEMACC", "PXI", 5, "PXI0", 0, "PXI0::MEMACC", ""},
    {"PXI0::5::BACKPLANE", kOk, "PXI0|5|BACKPLANE", "PXI", 5, "PXI0", 0, "PXI0::5::BACKPLANE", "PXI0::0-5.0::BACKPLANE"},
    {"PXI0::x::BACKPLANE", kOk, "PXI0|x|BACKPLANE", "PXI", 5, "PXI0", 0, "PXI0::-1::BACKPLANE", "PXI0::x.0::BACKPLANE"},
    // Blanks, separators and empty elements; at most eight separators.
    {"", kInv, "", nullptr, 0, "", 0, "", ""},
    {"   ", kInv, "", nullptr, 0, "", 0, "", ""},
    {"  GPIB0::7::INSTR  ", kOk, "GPIB0|7|INSTR", "GPIB", 1, "GPIB0", 0, "GPIB0::7::INSTR", ""},
    {"gpib0::::INSTR", kInv, "gpib0", nullptr, 0, "", 0, "", ""},
    {"GPIB0::7::", kInv, "GPIB0|7", nullptr, 0, "", 0, "", ""},
    {"GPIB0:::7", kInv, "GPIB0|:7|INSTR", "GPIB", 1, "GPIB0", 0, "", ""},
    {"GPIB0::1::2::3::4::5::6::7::8", kInv, "GPIB0|1|2|3|4|5|6|7|8|INSTR", "GPIB", 1, "GPIB0", 0, "", ""},
    {"A::B::C::D::E::F::G::H::I::J", kInv, "A|B|C|D|E|F|G|H|I", nullptr, 0, "", 0, "", "", "more that 10 parameters"},
    // "%%" is "%" in the last element only; any other "%" is plain text.
    {"TCPIP0::host::dev%%1", kOk, "TCPIP0|host|dev%1|INSTR", "TCPIP", 6, "TCPIP0", 0, "TCPIP0::host::dev%1::INSTR", ""},
    {"TCPIP0::host::50%d%s", kOk, "TCPIP0|host|50%d%s|INSTR", "TCPIP", 6, "TCPIP0", 0, "TCPIP0::host::50%d%s::INSTR", ""},
    {"TCPIP0::a%%b::INSTR", kOk, "TCPIP0|a%%b|INSTR", "TCPIP", 6, "TCPIP0", 0, "TCPIP0::a%%b::inst0::INSTR", ""},
    // Long elements: the interface name and the names are cut, elements are not.
    {"TCPIP" + kZeros260 + "::host::INSTR", kOk, "TCPIP" + kZeros260 + "|host|INSTR", "TCPIP", 6, "TCPIP" + kZeros260.substr(10), 0, "TCPIP" + kZeros260.substr(10) + "::host::inst0::INSTR", ""},
    {"TCPIP0::" + kHost1100 + "::INSTR", kOk, "TCPIP0|" + kHost1100 + "|INSTR", "TCPIP", 6, "TCPIP0", 0, ("TCPIP0::" + kHost1100 + "::inst0::INSTR").substr(0, 1023), ""},
    // "badRsrcName", in any case, is never reported.
    {"badRsrcName", kInv, "BADRSRCNAME0|INSTR", "BADRSRCNAME", 0, "BADRSRCNAME0", kNaN, "", "", ""},
    {"  BADRSRCNAME ", kInv, "BADRSRCNAME0|INSTR", "BADRSRCNAME", 0, "BADRSRCNAME0", kNaN, "", "", ""},
    {"badRsrcName0", kInv, "BADRSRCNAME0|INSTR", "BADRSRCNAME", 0, "BADRSRCNAME0", kNaN, "", ""},
};
// clang-format on

// One line as errLog writes it.
std::string logLine(ViStatus status, const std::string& message) {
    char prefix[16];
    std::snprintf(prefix, sizeof prefix, "0x%08X: ", static_cast<unsigned>(status));
    return prefix + message + "\n";
}

TEST(IoParmsParse, EveryFieldNameAndLogLine) {
    for (const PxiNaming naming : {PxiNaming::Legacy, kBdf}) {
        const test::TempStore store;
        if (naming == kBdf) test::putDword(test::underProduct(), "UseLegacyPxiInstrFormat", 0);
        store.reopen();  // the naming is read once per store
        for (const ParseCase& c : kParseCases) {
            if (c.pxi != naming) continue;
            SCOPED_TRACE("input '" + c.input + (naming == kBdf ? "' (bus-device.function naming)" : "'"));
            std::string trimmed = c.input;
            trimmed.erase(0, trimmed.find_first_not_of(' '));
            trimmed.erase(trimmed.find_last_not_of(' ') + 1);
            for (const bool logErrors : {false, true}) {
                std::string buffer = c.input;
                platform::DebugCapture capture;
                IoParms parms;
                EXPECT_EQ(parms.parse(buffer.data(), logErrors), c.status);
                Lines log;
                if (c.log == nullptr && logErrors)
                    log.push_back(logLine(c.status, "IoParms::parse('" + trimmed + "') returned an error."));
                else if (c.log != nullptr && *c.log != '\0')
                    log.push_back(logLine(kAlloc, "IoParms::parse: parsing '" + trimmed + "': " + c.log));
                EXPECT_EQ(capture.lines(), log) << "logErrors " << logErrors;
                if (!logErrors) continue;
                EXPECT_EQ(parms.getLastError(), c.status);
                EXPECT_STREQ(buffer.c_str(), trimmed.c_str());
                EXPECT_STREQ(parms.getRsrcString(), trimmed.c_str());
                std::string elements;
                for (int i = 0; i < parms.getCount(); ++i) elements += (i > 0 ? "|" : "") + std::string(parms.getParam(i));
                EXPECT_EQ(elements, c.elements);
                EXPECT_EQ(parms.getCount(), c.elements.empty() ? 0 : 1 + std::count(c.elements.begin(), c.elements.end(), '|'));
                EXPECT_EQ(parms.getParam(parms.getCount()), nullptr);
                EXPECT_STREQ(parms.getIntfTypeStr(), c.intfTypeStr);
                EXPECT_EQ(parms.getIntfType(), c.intfType);
                EXPECT_EQ(parms.getIntfName(), c.intfName);
                EXPECT_EQ(parms.getBoardNumber(), c.board);
                EXPECT_EQ(parms.getCanonicalName(nullptr, 0), c.canonical);
                EXPECT_EQ(parms.getAltName(nullptr, 0), c.alt);
            }
        }
    }
}

TEST(IoParmsNumParam, DecimalOrHexWholeElementWithin32Bits) {
    const test::TempStore store;
    const struct {
        const char* input;
        int index;
        std::uint32_t expected;
    } cases[] = {
        // clang-format off
        {"GPIB0::0x1F::INSTR", 1, 31},
        {"GPIB0::010::INSTR", 1, 10},  // a leading 0 is not octal
        {"GPIB0::12abc::INSTR", 1, kNaN},
        {"GPIB0::0x::INSTR", 1, 0},  // nothing after the prefix is nothing left over
        {"GPIB0::0xg::INSTR", 1, kNaN},
        {"GPIB0::0x0x5::INSTR", 1, 5},
        {"GPIB0::4294967294::INSTR", 1, 0xFFFFFFFE},
        {"GPIB0::4294967296::INSTR", 1, kNaN},  // beyond 32 bits
        {"GPIB0::0x100000000::INSTR", 1, kNaN},
        {"GPIB0::+5::INSTR", 1, 5},
        {"GPIB0:: 7::INSTR", 1, 7},
        {"GPIB0::7 ::INSTR", 1, kNaN},
        // The interface element: its digits, whatever follows them.
        {"GPIB12abc::INTFC", 0, 12},
        // The class and anything beyond it, and negative indexes.
        {"GPIB0::7::INSTR", 2, kNaN},
        {"GPIB0::7::INSTR", -1, kNaN},
        // clang-format on
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(std::string(c.input) + " #" + std::to_string(c.index));
        std::string buffer = c.input;
        IoParms parms;
        parms.parse(buffer.data(), false);
        EXPECT_EQ(parms.getNumParam(c.index), c.expected);
    }
    EXPECT_EQ(IoParms().getNumParam(0), kNaN);
}

// A record is reused: parse starts from a clean slate except for the
// interface name and board number, which only a parse that reaches them sets.
TEST(IoParmsParse, ReuseKeepsInterfaceNameAndBoardOfTheLastParseThatSetThem) {
    const test::TempStore store;
    IoParms parms;
    std::string first = "GPIB3::1::INSTR", second = "::";
    ASSERT_EQ(parms.parse(first.data(), false), kOk);
    EXPECT_EQ(parms.parse(second.data(), false), kInv);
    EXPECT_EQ(parms.getCount(), 0);
    EXPECT_EQ(parms.getIntfTypeStr(), nullptr);
    EXPECT_STREQ(parms.getIntfName(), "GPIB3");
    EXPECT_EQ(parms.getBoardNumber(), 3u);
    parms.clear();
    EXPECT_EQ(parms.getRsrcString(), nullptr);
    EXPECT_EQ(parms.getParamCount(), -2);
    EXPECT_STREQ(parms.getIntfName(), "GPIB3");
    platform::DebugCapture capture;
    EXPECT_EQ(parms.parse(nullptr, true), kInv);
    EXPECT_TRUE(capture.lines().empty());
}

TEST(IoParmsAllocation, EachFailingAllocationLogsItsOwnLine) {
    const test::TempStore store;
    const struct {
        const char* input;
        int failAt;
        ViStatus status, lastError;
        const char* what;       // the logged failure, or null for the closing line
        const char* canonical;  // null: not checked
    } cases[] = {
        // clang-format off
        // "GPIB0::7" allocates: copy, two elements, type word, class buffer, "INSTR" element, canonical name.
        {"GPIB0::7", 1, kAlloc, kInv, "unable to 'new' rsrcString", ""},
        {"GPIB0::7", 2, kInv, kInv, "unable to 'new' char[]", ""},
        {"GPIB0::7", 3, kInv, kInv, "unable to 'new' char[]", ""},
        {"GPIB0::7", 4, kInv, kInv, "unable to 'new' char[] for intfTypeStr", ""},
        {"GPIB0::7", 5, kInv, kInv, "unable to 'new' char[] for rsrcClassStr", ""},
        {"GPIB0::7", 6, kInv, kInv, "unable to 'new' char[] for 'INSTR' element", ""},
        {"GPIB0::7", 7, kInv, kInv, nullptr, nullptr},
        // Where a canonical name can still be built, the logged status stays.
        {"GPIB::INTFC", 4, kAlloc, kAlloc, "unable to 'new' char[] for intfName", "::INTFC"},
        {"GPIB0::INTFC", 5, kAlloc, kAlloc, "unable to 'new' char[] for rsrcClassStr", "GPIB0::INTFC"},
        // clang-format on
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(std::string(c.input) + " failing allocation " + std::to_string(c.failAt));
        std::string buffer = c.input;
        platform::DebugCapture capture;
        IoParms parms;
        const ScopedAllocationFault fault(c.failAt);
        EXPECT_EQ(parms.parse(buffer.data(), true), c.status);
        AllocationFaults::disarm();  // the checks below allocate too
        EXPECT_EQ(parms.getLastError(), c.lastError);
        const std::string line = c.what != nullptr
                                     ? std::string("IoParms::parse: parsing '") + c.input + "': " + c.what
                                     : std::string("IoParms::parse('") + c.input + "') returned an error.";
        EXPECT_EQ(capture.lines(), Lines{logLine(c.what ? kAlloc : c.status, line)});
        if (c.canonical != nullptr) {
            EXPECT_STREQ(parms.getCanonicalName(nullptr, 0), c.canonical);
        }
    }
}

// Every allocation a parse and both names make, failed in turn: never a
// crash or leak, only ALLOC or INV_RSRC_NAME, and the record parses
// normally once memory is back.
TEST(IoParmsAllocation, EveryAllocationOfRealisticStringsMayFail) {
    const test::TempStore store;
    for (const char* input : {"gpib0::7::instr", "GPIB::INTFC", "ASRL1", "TCPIP0::[fe80::1]::hislip0",
                              "usb0::0x1234::0x5678::SN42", "PXI0::chassis1::slot5::INSTR", "PXI3::5::INSTR",
                              "A::B::C::D::E::F::G::H::I::J"}) {
        IoParms reference;
        std::string clean = input;
        AllocationFaults::failAt(AllocationFaults::kNever);
        const ViStatus expected = reference.parse(clean.data(), false);
        reference.getAltName(nullptr, 0);
        const std::uint64_t allocations = AllocationFaults::allocationsSinceArmed();
        AllocationFaults::disarm();
        ASSERT_GT(allocations, 2u) << input;
        for (std::uint64_t n = 1; n <= allocations; ++n) {
            SCOPED_TRACE(std::string(input) + " failing allocation " + std::to_string(n));
            platform::DebugCapture capture;
            IoParms parms;
            std::string buffer = input;
            const ScopedAllocationFault fault(n);
            const ViStatus status = parms.parse(buffer.data(), false);
            EXPECT_TRUE(n == allocations || status == kAlloc || status == kInv) << status;
            parms.getAltName(nullptr, 0);
            AllocationFaults::disarm();
            for (const std::string& line : capture.lines()) EXPECT_EQ(line.rfind("0xBFFF003C: ", 0), 0u) << line;
            buffer = input;
            EXPECT_EQ(parms.parse(buffer.data(), false), expected);
            EXPECT_STREQ(parms.getCanonicalName(nullptr, 0), reference.getCanonicalName(nullptr, 0));
            EXPECT_STREQ(parms.getAltName(nullptr, 0), reference.getAltName(nullptr, 0));
        }
    }
}

// Buffers handed out at the same time never overlap, whichever thread
// released them before and whether or not it still runs.
TEST(AllocateChars, LiveBuffersNeverShareMemory) {
    std::vector<OwnedChars> released;
    std::thread([&released] {
        for (std::size_t size = 1; size <= 1100; size += 7) released.push_back(allocateChars(size));
    }).join();
    for (int round = 0; round < 2; ++round) {
        released.clear();
        std::vector<std::pair<OwnedChars, std::size_t>> live;
        for (std::size_t size = 1; size <= 1100; size += 3) live.emplace_back(allocateChars(size), size);
        for (std::size_t i = 0; i < live.size(); ++i) std::memset(live[i].first.get(), int(i), live[i].second);
        for (std::size_t i = 0; i < live.size(); ++i)
            for (std::size_t k = 0; k < live[i].second; ++k)
                ASSERT_EQ(live[i].first[k], char(i)) << "buffer " << i << " byte " << k;
        for (auto& entry : live) released.push_back(std::move(entry.first));
    }
}

}  // namespace
}  // namespace braxcfg::rsrc
