#include <sys/socket.h>

#include <cerrno>

#include "visacore/lan/onc_rpc.h"
#include "visacore/lan/sim/sim_site.h"

namespace braxcfg::visa::lan::sim {
namespace {

// Larger records are not what a client of a simulated instrument sends.
constexpr std::size_t kMaxRecord = 1 << 20;

}  // namespace

bool NoCase::operator()(const std::string& a, const std::string& b) const {
    const auto lower = [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; };
    return std::lexicographical_compare(a.begin(), a.end(), b.begin(), b.end(),
                                        [&](char x, char y) { return lower(x) < lower(y); });
}

bool Stream::read(std::size_t size, std::vector<std::uint8_t>& out) const {
    std::size_t done = 0;
    out.resize(out.size() + size);
    std::uint8_t* start = out.data() + out.size() - size;
    while (done < size) {
        const ssize_t n = recv(fd, start + done, size - done, 0);
        if (n < 0 && errno == EINTR) continue;
        if (n <= 0) return false;
        done += static_cast<std::size_t>(n);
    }
    return true;
}

bool Stream::readRecord(std::vector<std::uint8_t>& record) const {
    record.clear();
    for (;;) {
        std::vector<std::uint8_t> mark;
        if (!read(4, mark)) return false;
        const std::uint32_t word = std::uint32_t{mark[0]} << 24 | std::uint32_t{mark[1]} << 16 |
                                   std::uint32_t{mark[2]} << 8 | mark[3];
        const std::uint32_t size = word & ~rpc::kLastFragment;
        if (record.size() + size > kMaxRecord || !read(size, record)) return false;
        if ((word & rpc::kLastFragment) != 0) return true;
    }
}

bool Stream::write(const std::vector<std::uint8_t>& bytes) const {
    std::size_t done = 0;
    while (done < bytes.size()) {
        const ssize_t n = send(fd, bytes.data() + done, bytes.size() - done, MSG_NOSIGNAL);
        if (n < 0 && errno == EINTR) continue;
        if (n <= 0) return false;
        done += static_cast<std::size_t>(n);
    }
    return true;
}

std::string respond(const LabInstrument& instrument, std::string_view command) {
    while (!command.empty() && (command.back() == '\n' || command.back() == '\r')) command.remove_suffix(1);
    std::string answer;
    return answerQuery(instrument, command, answer) ? answer + "\n" : std::string();
}

}  // namespace braxcfg::visa::lan::sim
