#include "visacore/builtin_visa.h"

#include <algorithm>
#include <cstring>
#include <mutex>
#include <set>

#include "visacore/lan/lan_probe.h"
#include "visacore/probe_timeout.h"
#include "visacore/status_text.h"

namespace braxcfg::visa {
namespace {

// Enough for every dialog of a process at once; more open sessions mean a
// caller forgets to close them.
constexpr std::size_t kMaxSessions = 256;
constexpr ViSession kFirstSession = 0x1000;

class SessionTable {
public:
    ViStatus open(ViSession& session) {
        std::lock_guard lock(mutex_);
        if (open_.size() >= kMaxSessions) return VI_ERROR_ALLOC;
        // Numbers are not reused soon, so a stale handle reads as invalid
        // instead of closing someone else's session.
        do {
            session = next_++;
            if (next_ == VI_NULL) next_ = kFirstSession;
        } while (session == VI_NULL || open_.count(session) != 0);
        open_.insert(session);
        return VI_SUCCESS;
    }

    bool close(ViSession session) {
        std::lock_guard lock(mutex_);
        return open_.erase(session) != 0;
    }

    bool isOpen(ViSession session) {
        std::lock_guard lock(mutex_);
        return open_.count(session) != 0;
    }

private:
    std::mutex mutex_;
    std::set<ViSession> open_;
    ViSession next_ = kFirstSession;
};

class BuiltinVisa final : public VisaLibrary {
public:
    ViStatus openDefaultRM(ViSession* session) override {
        if (session == nullptr) return VI_ERROR_INV_PARAMETER;
        *session = VI_NULL;
        return sessions_.open(*session);
    }

    ViStatus close(ViObject object) override {
        if (object == VI_NULL) return VI_WARN_NULL_OBJECT;
        return sessions_.close(object) ? VI_SUCCESS : VI_ERROR_INV_OBJECT;
    }

    ViStatus statusDesc(ViObject, ViStatus status, ViChar* desc) override {
        if (desc == nullptr) return VI_ERROR_INV_PARAMETER;
        const std::string text = statusDescription(status);
        const std::size_t length = std::min(text.size(), kStatusDescLength - 1);
        std::memcpy(desc, text.data(), length);
        desc[length] = '\0';
        return findStatusText(status) != nullptr ? VI_SUCCESS : VI_WARN_UNKNOWN_STATUS;
    }

    ViStatus probe(ViSession rm, const char* resource, const ProbeControl& control) override {
        if (!sessions_.isOpen(rm)) return VI_ERROR_INV_OBJECT;
        if (resource == nullptr) return VI_ERROR_INV_RSRC_NAME;
        lan::LanProbeOptions options;
        options.budget = effectiveProbeTimeout(control.timeout);
        options.cancel = control.cancel;
        return lan::probeLanResource(resource, options);
    }

    std::string location() const override { return {}; }

private:
    SessionTable sessions_;
};

}  // namespace

std::unique_ptr<VisaLibrary> makeBuiltinVisa() { return std::make_unique<BuiltinVisa>(); }

}  // namespace braxcfg::visa
