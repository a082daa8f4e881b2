// Allocation failure at every point of a parse: the status parse returns,
// the line it logs, and a record that stays usable; and the buffers the
// allocation helper keeps for reuse.
#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <thread>
#include <vector>

#include "platform/debug_output.h"
#include "rsrc/allocation.h"
#include "rsrc/io_parms.h"
#include "rsrc_test_support.h"

namespace braxcfg::rsrc {
namespace {

using visa::VI_ERROR_ALLOC;
using visa::VI_ERROR_INV_RSRC_NAME;
using visa::ViStatus;

TEST(IoParmsAllocation, EachFailingAllocationLogsItsOwnLine) {
    const test::TempStore store;
    const struct {
        const char* input;
        int failAt;
        ViStatus status;
        ViStatus lastError;
        const char* what;  // the logged failure, or null for the closing line
        const char* canonical;
    } cases[] = {
        // "GPIB0::7" allocates: copy, two elements, type word, class buffer,
        // "INSTR" element, canonical name.
        {"GPIB0::7", 1, VI_ERROR_ALLOC, VI_ERROR_INV_RSRC_NAME, "unable to 'new' rsrcString", ""},
        {"GPIB0::7", 2, VI_ERROR_INV_RSRC_NAME, VI_ERROR_INV_RSRC_NAME, "unable to 'new' char[]", ""},
        {"GPIB0::7", 3, VI_ERROR_INV_RSRC_NAME, VI_ERROR_INV_RSRC_NAME, "unable to 'new' char[]", ""},
        {"GPIB0::7", 4, VI_ERROR_INV_RSRC_NAME, VI_ERROR_INV_RSRC_NAME, "unable to 'new' char[] for intfTypeStr", ""},
        {"GPIB0::7", 5, VI_ERROR_INV_RSRC_NAME, VI_ERROR_INV_RSRC_NAME, "unable to 'new' char[] for rsrcClassStr", ""},
        {"GPIB0::7", 6, VI_ERROR_INV_RSRC_NAME, VI_ERROR_INV_RSRC_NAME, "unable to 'new' char[] for 'INSTR' element",
         ""},
        {"GPIB0::7", 7, VI_ERROR_INV_RSRC_NAME, VI_ERROR_INV_RSRC_NAME, nullptr, nullptr},
        // Where a canonical name can still be built, the logged status stays.
        {"GPIB::INTFC", 4, VI_ERROR_ALLOC, VI_ERROR_ALLOC, "unable to 'new' char[] for intfName", "::INTFC"},
        {"GPIB0::INTFC", 5, VI_ERROR_ALLOC, VI_ERROR_ALLOC, "unable to 'new' char[] for rsrcClassStr", "GPIB0::INTFC"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(std::string(c.input) + " failing allocation " + std::to_string(c.failAt));
        std::vector<char> buffer = test::writable(c.input);
        platform::DebugCapture capture;
        IoParms parms;
        ViStatus status;
        {
            const ScopedAllocationFault fault(c.failAt);
            status = parms.parse(buffer.data(), true);
        }
        EXPECT_EQ(status, c.status);
        EXPECT_EQ(parms.getLastError(), c.lastError);
        const std::string expected =
            c.what != nullptr
                ? test::logLine(VI_ERROR_ALLOC, std::string("IoParms::parse: parsing '") + c.input + "': " + c.what)
                : test::logLine(c.status, std::string("IoParms::parse('") + c.input + "') returned an error.");
        EXPECT_EQ(capture.lines(), std::vector<std::string>{expected});
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
    const char* inputs[] = {"gpib0::7::instr",
                            "GPIB::INTFC",
                            "ASRL1",
                            "TCPIP0::[fe80::1]::hislip0",
                            "usb0::0x1234::0x5678::SN42",
                            "PXI0::chassis1::slot5::INSTR",
                            "PXI3::5::INSTR",
                            "A::B::C::D::E::F::G::H::I::J"};
    for (const char* input : inputs) {
        IoParms reference;
        std::vector<char> clean = test::writable(input);
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
            std::vector<char> buffer = test::writable(input);
            {
                const ScopedAllocationFault fault(n);
                const ViStatus status = parms.parse(buffer.data(), false);
                if (n < allocations) {
                    EXPECT_TRUE(status == VI_ERROR_ALLOC || status == VI_ERROR_INV_RSRC_NAME) << status;
                }
                parms.getAltName(nullptr, 0);
            }
            for (const std::string& line : capture.lines()) EXPECT_EQ(line.rfind("0xBFFF003C: ", 0), 0u) << line;
            buffer = test::writable(input);
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
        for (std::size_t i = 0; i < live.size(); ++i)
            std::memset(live[i].first.get(), static_cast<int>(i), live[i].second);
        for (std::size_t i = 0; i < live.size(); ++i)
            for (std::size_t k = 0; k < live[i].second; ++k)
                ASSERT_EQ(live[i].first[k], static_cast<char>(i)) << "buffer " << i << " byte " << k;
        for (auto& entry : live) released.push_back(std::move(entry.first));
    }
}

}  // namespace
}  // namespace braxcfg::rsrc
