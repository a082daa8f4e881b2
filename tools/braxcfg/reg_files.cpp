#include "reg_files.h"

#include <cerrno>
#include <cstring>
#include <fstream>
#include <sstream>

#include "platform/regfile/reg_export.h"
#include "platform/regfile/reg_import.h"
#include "platform/store.h"

namespace braxcfg::tool {

bool readWholeFile(const std::string& path, std::string& bytes, std::string& error) {
    std::ifstream in(path, std::ios::binary);
    if (!in) {
        error = "cannot read " + path + ": " + std::strerror(errno);
        return false;
    }
    std::ostringstream content;
    content << in.rdbuf();
    if (in.bad()) {
        error = "cannot read " + path;
        return false;
    }
    bytes = std::move(content).str();
    return true;
}

bool writeWholeFile(const std::string& path, const std::string& bytes, std::string& error) {
    std::ofstream out(path, std::ios::binary | std::ios::trunc);
    if (out) out.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    if (out) out.close();
    if (!out) {
        error = "cannot write " + path + ": " + std::strerror(errno);
        return false;
    }
    return true;
}

std::string importRegFileFrom(const std::string& path) {
    std::string bytes;
    std::string error;
    if (!readWholeFile(path, bytes, error)) return error;
    if (const auto problem = platform::regfile::importRegFile(platform::currentStore(), bytes))
        return path + ": " + platform::regfile::describe(*problem) + "; nothing was imported";
    return {};
}

std::string exportRegFileTo(const std::string& path, const std::string& keyPath,
                            platform::regfile::RegTextEncoding encoding) {
    const auto result = platform::regfile::exportRegFile(platform::currentStore(), keyPath, encoding);
    if (result.error) return *result.error;
    std::string error;
    writeWholeFile(path, result.bytes, error);
    return error;
}

}  // namespace braxcfg::tool
