#include "platform/regfile/reg_decode.h"

#include "platform/cp1252.h"

namespace braxcfg::platform::regfile {
namespace {

constexpr std::string_view kUtf16Bom = "\xFF\xFE";
constexpr std::string_view kUtf8Bom = "\xEF\xBB\xBF";

bool firstLineIsVersion5Header(std::string_view bytes) {
    const std::size_t start = bytes.find_first_not_of(" \t");
    return start != std::string_view::npos && bytes.substr(start).starts_with(kVersion5Header);
}

// `note` explains, after the fault, why the file was read in this form.
NarrowRegText narrowFromUnicode(std::string_view bytes, UnicodeForm form, std::string_view note = {}) {
    NarrowRegText result;
    result.text.reserve(form == UnicodeForm::Utf16Le ? bytes.size() / 2 : bytes.size());
    if (auto message = appendNarrow(bytes, form, result.text)) {
        // The text converted so far ends on the line of the fault.
        const int line = static_cast<int>(splitLines(result.text).size());
        *message += note;
        result.error = RegError{line, std::move(*message)};
    }
    return result;
}

}  // namespace

NarrowRegText decodeRegFile(std::string_view bytes) {
    if (bytes.starts_with(kUtf16Bom)) return narrowFromUnicode(bytes.substr(kUtf16Bom.size()), UnicodeForm::Utf16Le);
    if (bytes.starts_with(kUtf8Bom)) return narrowFromUnicode(bytes.substr(kUtf8Bom.size()), UnicodeForm::Utf8);
    if (firstLineIsVersion5Header(bytes))
        return narrowFromUnicode(bytes, UnicodeForm::Utf8,
                                 " (without a byte order mark, a file with the 5.00 header is read as UTF-8; "
                                 "ANSI text needs the REGEDIT4 header)");
    return NarrowRegText{std::string(bytes), std::nullopt};
}

}  // namespace braxcfg::platform::regfile
