#include "platform/sqlite_key_path.h"

#include <algorithm>

namespace braxcfg::platform {

RegResult splitKeyPath(const char* path, std::vector<std::string_view>* names) {
    names->clear();
    if (path == nullptr) return kErrorSuccess;
    const std::string_view text(path);
    if (!text.empty() && text.front() == '\\') return kErrorBadPathname;
    std::size_t pos = 0;
    while (pos < text.size()) {
        const std::size_t end = std::min(text.find('\\', pos), text.size());
        if (end > pos) {
            if (end - pos > kMaxKeyNameLength) return kErrorInvalidParameter;
            names->push_back(text.substr(pos, end - pos));
        }
        pos = end + 1;
    }
    return kErrorSuccess;
}

}  // namespace braxcfg::platform
