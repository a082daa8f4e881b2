#include "visacore/module_loader.h"

#include <dlfcn.h>

#include <algorithm>
#include <cctype>
#include <cstdlib>
#include <filesystem>
#include <map>
#include <mutex>

#include "platform/debug_output.h"
#include "platform/product_settings.h"
#include "visacore/load_trust.h"

namespace braxcfg::visa {
namespace {

namespace fs = std::filesystem;

// A module name is a plain word; anything with a separator or a dot could
// point the search outside the trusted directories.
bool isPlainName(const std::string& module) {
    return !module.empty() && module.size() <= 64 && std::all_of(module.begin(), module.end(), [](char c) {
        return std::isalnum(static_cast<unsigned char>(c)) || c == '_' || c == '-';
    });
}

void addIfAbsolute(std::vector<std::string>& dirs, const fs::path& dir) {
    if (!dir.is_absolute()) return;
    const std::string text = dir.lexically_normal().string();
    if (std::find(dirs.begin(), dirs.end(), text) == dirs.end()) dirs.push_back(text);
}

fs::path ownDirectory() {
    Dl_info info{};
    static const int anchor = 0;
    if (dladdr(&anchor, &info) == 0 || info.dli_fname == nullptr) return {};
    std::error_code ec;
    const fs::path file = fs::canonical(info.dli_fname, ec);
    return ec ? fs::path{} : file.parent_path();
}

// Modules this process has loaded, by file; the handle kept here holds
// each one in memory for good.
class LoadedModules {
public:
    void* open(const std::string& file, int flag) {
        std::lock_guard lock(mutex_);
        if (const auto it = handles_.find(file); it != handles_.end()) return it->second;
        if (flag != kLoadIfNeeded) return nullptr;
        void* handle = dlopen(file.c_str(), RTLD_NOW | RTLD_LOCAL);
        if (handle == nullptr) {
            const char* reason = dlerror();
            platform::debugOutput("osLoadEntryPoint: " + (reason != nullptr ? std::string(reason) : file) + "\n");
            return nullptr;
        }
        handles_.emplace(file, handle);
        return handle;
    }

private:
    std::mutex mutex_;
    std::map<std::string, void*> handles_;
};

LoadedModules& loadedModules() {
    static LoadedModules modules;
    return modules;
}

std::string findModuleFile(const std::string& module) {
    for (const std::string& dir : moduleSearchDirectories()) {
        for (const std::string& name : moduleFileNames(module)) {
            const fs::path file = fs::path(dir) / name;
            std::error_code ec;
            if (!fs::is_regular_file(file, ec)) continue;
            // A module others could have placed or changed is passed over,
            // as if it were not there.
            std::string why;
            if (trustedForLoading(file.string(), why)) return file.string();
            platform::debugOutput("osLoadEntryPoint: " + why + "\n");
        }
    }
    return {};
}

}  // namespace

std::vector<std::string> moduleSearchDirectories() {
    std::vector<std::string> dirs;
    if (const char* path = std::getenv("BRAXCFG_MODULE_PATH")) {
        std::string entries = path;
        std::size_t start = 0;
        while (start <= entries.size()) {
            const std::size_t end = std::min(entries.find(':', start), entries.size());
            addIfAbsolute(dirs, entries.substr(start, end - start));
            start = end + 1;
        }
    }
    addIfAbsolute(dirs, ownDirectory());
    addIfAbsolute(dirs, platform::baseDir());
    return dirs;
}

std::vector<std::string> moduleFileNames(const std::string& module) {
    std::string lower = module;
    std::transform(lower.begin(), lower.end(), lower.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    return {"lib" + lower + ".so", module + ".so"};
}

ViStatus osLoadEntryPoint(const char* module, const char* name, void** slot, int flag) {
    if (slot == nullptr) return VI_ERROR_INV_PARAMETER;
    *slot = nullptr;
    if (module == nullptr || name == nullptr || !isPlainName(module)) return VI_ERROR_LIBRARY_NFOUND;
    const std::string file = findModuleFile(module);
    if (file.empty()) {
        platform::debugOutput(std::string("osLoadEntryPoint: module ") + module + " not found\n");
        return VI_ERROR_LIBRARY_NFOUND;
    }
    void* handle = loadedModules().open(file, flag);
    if (handle == nullptr) return VI_ERROR_LIBRARY_NFOUND;
    dlerror();
    *slot = dlsym(handle, name);
    return *slot != nullptr ? VI_SUCCESS : VI_ERROR_NIMPL_OPER;
}

}  // namespace braxcfg::visa
