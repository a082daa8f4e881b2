#include "reg_files.h"

#include <array>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <fstream>

#include "platform/regfile/reg_export.h"
#include "platform/regfile/reg_import.h"
#include "platform/store.h"

namespace braxcfg::tool {
namespace {

// A .reg file larger than this is no configuration: refused before it is
// read, or as soon as reading passes it (a device or pipe has no size).
constexpr std::uintmax_t kImportLimitBytes = std::uintmax_t{1} << 30;

}  // namespace

bool readWholeFile(const std::string& path, std::string& bytes, std::string& error) {
    namespace fs = std::filesystem;
    std::error_code ec;
    const fs::file_status status = fs::status(path, ec);
    const char* refusal = nullptr;
    if (fs::is_directory(status))
        refusal = "it is a directory";
    else if (fs::is_character_file(status) || fs::is_block_file(status))
        refusal = "it is a device, not a file";
    else if (fs::is_regular_file(status) && fs::file_size(path, ec) > kImportLimitBytes)
        refusal = "it is larger than 1 GiB, the limit for a .reg file";
    if (refusal != nullptr) {
        error = "cannot import " + path + ": " + refusal;
        return false;
    }
    std::ifstream in(path, std::ios::binary);
    if (!in) {
        error = "cannot read " + path + ": " + std::strerror(errno);
        return false;
    }
    bytes.clear();
    std::array<char, 1 << 16> buffer{};
    while (in.read(buffer.data(), buffer.size()).gcount() > 0) {
        bytes.append(buffer.data(), static_cast<std::size_t>(in.gcount()));
        if (bytes.size() > kImportLimitBytes) {
            bytes.clear();
            error = "cannot import " + path + ": it is larger than 1 GiB, the limit for a .reg file";
            return false;
        }
    }
    if (in.bad()) {
        error = "cannot read " + path;
        return false;
    }
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
