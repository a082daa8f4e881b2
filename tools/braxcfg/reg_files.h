#pragma once
// .reg files to and from the store, for the import and export commands and
// the configuration window alike. Each returns why it failed, empty on
// success; a failed import has written nothing.
#include <string>

#include "platform/regfile/reg_writer.h"

namespace braxcfg::tool {

bool readWholeFile(const std::string& path, std::string& bytes, std::string& error);
bool writeWholeFile(const std::string& path, const std::string& bytes, std::string& error);

std::string importRegFileFrom(const std::string& path);
// `keyPath` empty: the whole store.
std::string exportRegFileTo(const std::string& path, const std::string& keyPath,
                            platform::regfile::RegTextEncoding encoding);

}  // namespace braxcfg::tool
