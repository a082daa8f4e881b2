#include "plugin.h"

#include <dlfcn.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <vector>

namespace braxcfg::tool {
namespace {

std::filesystem::path executableDirectory() {
    std::error_code ec;
    auto self = std::filesystem::read_symlink("/proc/self/exe", ec);
    return ec ? std::filesystem::path{} : self.parent_path();
}

std::vector<std::string> candidatePaths() {
    std::vector<std::string> paths;
    if (const char* env = std::getenv("BRAXCFG_PLUGIN"); env != nullptr && *env != '\0') paths.emplace_back(env);
    const auto dir = executableDirectory();
    if (!dir.empty()) paths.push_back((dir.parent_path() / "lib" / "libbraxcfg.so").string());
#ifdef BRAXCFG_PLUGIN_BUILD_PATH
    paths.emplace_back(BRAXCFG_PLUGIN_BUILD_PATH);
#endif
    return paths;
}

}  // namespace

void addPluginFolderToModulePath() {
    const auto dir = executableDirectory();
    if (dir.empty()) return;
    std::string path = (dir.parent_path() / "lib").string();
    if (const char* env = std::getenv("BRAXCFG_MODULE_PATH"); env != nullptr && *env != '\0')
        path = std::string(env) + ":" + path;
    setenv("BRAXCFG_MODULE_PATH", path.c_str(), 1);
}

Plugin::Plugin() {
    // Like every path the product reads from the environment, the plug-in's
    // must be absolute: a relative one would load whatever the working
    // directory holds.
    if (const char* env = std::getenv("BRAXCFG_PLUGIN"); env != nullptr && *env != '\0' && *env != '/') {
        error_ = std::string("BRAXCFG_PLUGIN must be an absolute path, not ") + env;
        return;
    }
    for (const std::string& path : candidatePaths()) {
        if (!std::filesystem::exists(path)) continue;
        handle_ = dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL);
        if (handle_ != nullptr) return;
        error_ = dlerror();
        return;
    }
    error_ = "libbraxcfg.so not found (set BRAXCFG_PLUGIN to its path)";
}

Plugin::~Plugin() {
    if (handle_ != nullptr) dlclose(handle_);
}

void* Plugin::symbol(const char* name) {
    if (handle_ == nullptr) return nullptr;
    void* fn = dlsym(handle_, name);
    if (fn == nullptr) error_ = std::string("the plug-in has no export ") + name;
    return fn;
}

}  // namespace braxcfg::tool
