// A VISA library as the system might have one, reduced to what the core
// services call. Its answers depend on the device name, so a test can ask
// for each outcome; its status texts tell what it was asked.
#include <cstdint>
#include <cstdio>
#include <cstring>

namespace {

constexpr std::uint32_t kRm = 0x5151;
constexpr std::uint32_t kInstrument = 0x6161;
int closedInstruments = 0;
std::uint32_t lastTimeout = 0;

}  // namespace

extern "C" {

__attribute__((visibility("default"))) std::int32_t viOpenDefaultRM(std::uint32_t* session) {
    *session = kRm;
    return 0;
}

#ifndef FAKE_VISA_WITHOUT_OPEN
__attribute__((visibility("default"))) std::int32_t viOpen(std::uint32_t rm, const char* name, std::uint32_t,
                                                           std::uint32_t timeout, std::uint32_t* vi) {
    lastTimeout = timeout;
    if (rm != kRm) return static_cast<std::int32_t>(0xBFFF000Eu);
    *vi = kInstrument;  // even on failure, where a caller must not close it
    if (std::strstr(name, "::found0::") != nullptr) return 0;
    if (std::strstr(name, "::quiet0::") != nullptr) return static_cast<std::int32_t>(0x3FFF007Du);  // not responding
    return static_cast<std::int32_t>(0xBFFF00A7u);
}
#endif

__attribute__((visibility("default"))) std::int32_t viClose(std::uint32_t object) {
    if (object == kInstrument) ++closedInstruments;
    return 0;
}

__attribute__((visibility("default"))) std::int32_t viStatusDesc(std::uint32_t, std::int32_t status, char* desc) {
    std::snprintf(desc, 256, "system text for %08X; %d closed, timeout %u", static_cast<unsigned>(status),
                  closedInstruments, lastTimeout);
    return 0;
}

// Resources on GPIB0 only, as a search of "GPIB0::?*INSTR" lists them.
constexpr const char* kGpib0Resources[] = {"GPIB0::7::INSTR", "GPIB0::3::INSTR", "GPIB0::5::3::INSTR"};
constexpr std::uint32_t kFindList = 0x7171;
static std::uint32_t nextFound = 0;

__attribute__((visibility("default"))) std::int32_t viFindRsrc(std::uint32_t rm, const char* pattern,
                                                               std::uint32_t* list, std::uint32_t* count,
                                                               char* first) {
    if (rm != kRm) return static_cast<std::int32_t>(0xBFFF000Eu);
    if (std::strcmp(pattern, "GPIB0::?*INSTR") != 0) return static_cast<std::int32_t>(0xBFFF0011u);
    *list = kFindList;
    *count = sizeof kGpib0Resources / sizeof kGpib0Resources[0];
    std::strcpy(first, kGpib0Resources[0]);
    nextFound = 1;
    return 0;
}

__attribute__((visibility("default"))) std::int32_t viFindNext(std::uint32_t list, char* name) {
    if (list != kFindList || nextFound >= sizeof kGpib0Resources / sizeof kGpib0Resources[0])
        return static_cast<std::int32_t>(0xBFFF0011u);
    std::strcpy(name, kGpib0Resources[nextFound++]);
    return 0;
}

}  // extern "C"
