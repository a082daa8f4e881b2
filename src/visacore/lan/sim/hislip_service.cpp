// The simulator's HiSLIP server: the synchronous channel carries Data and
// DataEnd messages both ways, the asynchronous one is only initialized.
#include "visacore/lan/sim/hislip_service.h"

#include "visacore/lan/hislip_message.h"
#include "visacore/lan/sim/sim_site.h"

namespace braxcfg::visa::lan::sim {
namespace {

constexpr std::uint64_t kMaxPayload = 1 << 20;
constexpr std::uint16_t kServerVersion = 0x0100;
// FatalError code for a message that does not belong where it came.
constexpr std::uint8_t kFatalInvalidInitialization = 3;

using Bytes = std::vector<std::uint8_t>;

bool readMessage(const Stream& stream, hislip::Header& header, Bytes& payload) {
    Bytes bytes;
    payload.clear();
    return stream.read(hislip::kHeaderSize, bytes) && hislip::parseHeader(bytes, header) &&
           header.payloadLength <= kMaxPayload && stream.read(header.payloadLength, payload);
}

Bytes textBytes(std::string_view text) { return {text.begin(), text.end()}; }

void fatal(const Stream& stream, std::string_view reason) {
    stream.write(hislip::message(hislip::kFatalError, kFatalInvalidInitialization, 0, textBytes(reason)));
}

void serveSynchronous(const Stream& stream, const LabInstrument& instrument) {
    hislip::Header header;
    std::string input;
    for (Bytes payload; readMessage(stream, header, payload);) {
        if (header.type != hislip::kData && header.type != hislip::kDataEnd) continue;
        input.append(payload.begin(), payload.end());
        if (header.type != hislip::kDataEnd) continue;
        const std::string answer = respond(instrument, input);
        input.clear();
        if (!answer.empty() &&
            !stream.write(hislip::message(hislip::kDataEnd, 0, header.parameter, textBytes(answer))))
            return;
    }
}

}  // namespace

std::uint16_t HislipSessions::open(const LabInstrument& instrument) {
    std::lock_guard lock(mutex_);
    while (next_ == 0 || sessions_.count(next_) != 0) ++next_;
    sessions_[next_] = &instrument;
    return next_++;
}

bool HislipSessions::exists(std::uint16_t id) {
    std::lock_guard lock(mutex_);
    return sessions_.count(id) != 0;
}

void HislipSessions::close(std::uint16_t id) {
    std::lock_guard lock(mutex_);
    sessions_.erase(id);
}

void serveHislip(const Stream& stream, const std::map<std::string, const LabInstrument*, NoCase>& subAddresses,
                 HislipSessions& sessions) {
    hislip::Header header;
    Bytes payload;
    if (!readMessage(stream, header, payload)) return;
    if (header.type == hislip::kAsyncInitialize) {
        const auto id = static_cast<std::uint16_t>(header.parameter & 0xFFFF);
        if (!sessions.exists(id)) return fatal(stream, "no such session");
        const std::uint32_t vendor = std::uint32_t{static_cast<std::uint8_t>(hislip::kVendorId[0])} << 8 |
                                     static_cast<std::uint8_t>(hislip::kVendorId[1]);
        if (!stream.write(hislip::message(hislip::kAsyncInitializeResponse, 0, vendor))) return;
        while (readMessage(stream, header, payload)) {
        }
        return;
    }
    if (header.type != hislip::kInitialize) return fatal(stream, "expected Initialize");
    // An empty sub-address opens the default device.
    const std::string subAddress = payload.empty() ? "hislip0" : std::string(payload.begin(), payload.end());
    const auto found = subAddresses.find(subAddress);
    if (found == subAddresses.end()) return fatal(stream, "no such sub-address");
    const std::uint16_t id = sessions.open(*found->second);
    if (stream.write(hislip::message(hislip::kInitializeResponse, 0, std::uint32_t{kServerVersion} << 16 | id)))
        serveSynchronous(stream, *found->second);
    sessions.close(id);
}

}  // namespace braxcfg::visa::lan::sim
