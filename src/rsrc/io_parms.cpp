#include "rsrc/io_parms.h"

#include "rsrc/allocation.h"
#include "rsrc/c_text.h"

namespace braxcfg::rsrc {

bool IoParms::OwnedText::allocate(std::size_t chars) {
    text = allocateChars(chars);
    size = text ? static_cast<std::uint32_t>(chars) : 0;
    return text != nullptr;
}

void IoParms::OwnedText::reset() {
    text.reset();
    size = 0;
}

IoParms::IoParms() : lastError_(visa::VI_ERROR_INV_RSRC_NAME) {}

IoParms::~IoParms() { clear(); }

void IoParms::clear() {
    for (OwnedText& element : elements_) element.reset();
    rsrcString_.reset();
    canonicalName_.reset();
    altName_.reset();
    intfTypeStr_.reset();
    rsrcClassStr_.reset();
    intfType_ = 0;
    count_ = 0;
    lastError_ = visa::VI_ERROR_INV_RSRC_NAME;
}

const char* IoParms::getRsrcClassStr() const { return getParam(count_ - 1); }

const char* IoParms::getParam(int i) const {
    if (i < 0 || i >= count_) return nullptr;
    return elements_[i].text.get();
}

std::uint32_t IoParms::getNumParam(int i) const {
    if (count_ == 0 || i < 0 || i >= count_ - 1) return kNotANumber;
    const char* element = elements_[i].text.get();
    if (element == nullptr) return kNotANumber;
    if (i == 0) {
        // The board number is whatever decimal digits follow the type word;
        // what comes after them does not matter.
        while (*element != '\0' && !ctext::isDigit(*element)) ++element;
        return ctext::toUnsigned32(element, nullptr, 10);
    }
    int base = 10;
    if (element[0] == '0' && (element[1] == 'x' || element[1] == 'X')) {
        element += 2;
        base = 16;
    }
    const char* end = nullptr;
    const std::uint32_t value = ctext::toUnsigned32(element, &end, base);
    return *end == '\0' ? value : kNotANumber;
}

char* upperCaseN(char* text, std::size_t n) {
    for (std::size_t i = 0; i < n && text[i] != '\0'; ++i) text[i] = ctext::toUpper(text[i]);
    return text;
}

}  // namespace braxcfg::rsrc
