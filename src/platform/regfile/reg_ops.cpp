#include "platform/regfile/reg_ops.h"

namespace braxcfg::platform::regfile {

std::string describe(const RegError& error) {
    if (error.line <= 0) return error.message;
    return "line " + std::to_string(error.line) + ": " + error.message;
}

}  // namespace braxcfg::platform::regfile
