#include "visacore/system_visa.h"

#include <dlfcn.h>

#include <filesystem>

#include "visacore/load_trust.h"
#include "visacore/probe_timeout.h"

namespace braxcfg::visa {
namespace {

// viOpen access mode: no lock, so the probe never keeps others out.
constexpr ViAccessMode kNoLock = 0;

using OpenDefaultRMFn = ViStatus (*)(ViSession*);
using OpenFn = ViStatus (*)(ViSession, const ViChar*, ViAccessMode, ViUInt32, ViSession*);
using CloseFn = ViStatus (*)(ViObject);
using StatusDescFn = ViStatus (*)(ViObject, ViStatus, ViChar*);

class SystemVisa final : public VisaLibrary {
public:
    SystemVisa(void* handle, std::string path) : handle_(handle), path_(std::move(path)) {}
    ~SystemVisa() override { dlclose(handle_); }
    SystemVisa(const SystemVisa&) = delete;
    SystemVisa& operator=(const SystemVisa&) = delete;

    bool bind(std::string& error) {
        return bindOne("viOpenDefaultRM", openDefaultRM_, error) && bindOne("viOpen", open_, error) &&
               bindOne("viClose", close_, error) && bindOne("viStatusDesc", statusDesc_, error);
    }

    ViStatus openDefaultRM(ViSession* session) override {
        if (session == nullptr) return VI_ERROR_INV_PARAMETER;
        return openDefaultRM_(session);
    }

    ViStatus close(ViObject object) override { return close_(object); }

    ViStatus statusDesc(ViObject object, ViStatus status, ViChar* desc) override {
        if (desc == nullptr) return VI_ERROR_INV_PARAMETER;
        return statusDesc_(object, status, desc);
    }

    ViStatus probe(ViSession rm, const char* resource, const ProbeControl& control) override {
        if (resource == nullptr) return VI_ERROR_INV_RSRC_NAME;
        ViSession instrument = VI_NULL;
        const auto timeout = static_cast<ViUInt32>(effectiveProbeTimeout(control.timeout).count());
        const ViStatus status = open_(rm, resource, kNoLock, timeout, &instrument);
        if (status >= VI_SUCCESS) close_(instrument);
        return status;
    }

    std::string location() const override { return path_; }

private:
    template <typename Fn>
    bool bindOne(const char* name, Fn& slot, std::string& error) {
        slot = reinterpret_cast<Fn>(dlsym(handle_, name));
        if (slot == nullptr) error = path_ + " has no " + name;
        return slot != nullptr;
    }

    void* handle_;
    std::string path_;
    OpenDefaultRMFn openDefaultRM_ = nullptr;
    OpenFn open_ = nullptr;
    CloseFn close_ = nullptr;
    StatusDescFn statusDesc_ = nullptr;
};

}  // namespace

std::vector<std::string> standardVisaLocations() {
    std::vector<std::string> paths;
    for (const char* dir : {"/usr/local/lib", "/usr/lib/x86_64-linux-gnu", "/usr/lib/aarch64-linux-gnu", "/usr/lib64",
                            "/usr/lib"})
        for (const char* name : {"libvisa.so", "libvisa.so.0"})
            paths.push_back(std::string(dir) + "/" + name);
    return paths;
}

std::unique_ptr<VisaLibrary> loadSystemVisa(const std::string& path, std::string& error) {
    if (!std::filesystem::path(path).is_absolute()) {
        error = path + " is not an absolute path";
        return nullptr;
    }
    if (!trustedForLoading(path, error)) return nullptr;
    void* handle = dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL);
    if (handle == nullptr) {
        const char* reason = dlerror();
        error = reason != nullptr ? reason : path + " could not be loaded";
        return nullptr;
    }
    auto library = std::make_unique<SystemVisa>(handle, path);
    if (!library->bind(error)) return nullptr;
    return library;
}

}  // namespace braxcfg::visa
