// .reg files come from other machines and from people: parsing must end,
// never read out of bounds, and whatever it accepts must be written back
// by the exporter's writer as text that reads as the same keys and values.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>
#include <vector>

#include "platform/regfile/reg_parser.h"
#include "platform/regfile/reg_writer.h"

namespace {

using namespace braxcfg::platform;
using namespace braxcfg::platform::regfile;

bool sameKeysAndValues(const std::vector<RegOp>& expected, const std::vector<RegOp>& actual) {
    if (expected.size() != actual.size()) return false;
    for (std::size_t i = 0; i < expected.size(); ++i) {
        const RegOp& a = expected[i];
        const RegOp& b = actual[i];
        if (a.kind != b.kind || a.keyPath != b.keyPath || a.name != b.name || a.type != b.type || a.data != b.data)
            return false;
    }
    return true;
}

void checkRoundTrip(const std::vector<RegOp>& ops, RegTextEncoding encoding) {
    RegWriter writer(encoding);
    std::vector<RegOp> expected;
    for (const RegOp& op : ops) {
        if (op.kind == RegOpKind::CreateKey) {
            writer.key(op.keyPath);
            expected.push_back(op);
        } else if (op.kind == RegOpKind::SetValue) {
            writer.value(op.name, op.type, op.data);
            expected.push_back(op);  // every value reads back byte for byte
        }
    }
    const RegParseResult again = parseRegFile(writer.finish());
    if (again.error || !sameKeysAndValues(expected, again.ops)) std::abort();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view bytes(reinterpret_cast<const char*>(data), size);
    const RegParseResult result = parseRegFile(bytes);
    if (result.error) {
        if (result.error->line < 1 || !result.ops.empty()) std::abort();
        describe(*result.error);
        return 0;
    }
    checkRoundTrip(result.ops, RegTextEncoding::Utf16);
    checkRoundTrip(result.ops, RegTextEncoding::Utf8);
    return 0;
}
