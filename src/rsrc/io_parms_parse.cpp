// IoParms::parse and the steps it is made of.
#include <cstring>

#include "platform/product_settings.h"
#include "rsrc/c_text.h"
#include "rsrc/io_parms.h"
#include "rsrc/resource_rules.h"
#include "visacore/err_log.h"
#include "visacore/interface_types.h"

namespace braxcfg::rsrc {

using visa::errLog;
using visa::VI_ERROR_ALLOC;
using visa::VI_ERROR_INV_RSRC_NAME;
using visa::ViStatus;

// Where parsing stands: the status so far and whether a line was already
// logged for it (then the closing "returned an error." line is not written).
struct IoParms::Outcome {
    ViStatus status = visa::VI_SUCCESS;
    bool logged = false;

    bool fail(ViStatus failure) {
        status = failure;
        return false;
    }
    bool failLogged(ViStatus loggedStatus) {
        status = loggedStatus;
        logged = true;
        return false;
    }
};

namespace {

// A parse may see at most eight separators: nine elements, and room for
// the class that parse appends when it is missing.
constexpr int kMaxSeparatedElements = 9;

constexpr char kDefaultClass[] = "INSTR";

}  // namespace

bool IoParms::appendElement(const char* text, std::size_t length) {
    OwnedText& element = elements_[count_];
    if (!element.allocate(length + 1)) return false;
    std::memcpy(element.text.get(), text, length);
    element.text[length] = '\0';
    ++count_;
    return true;
}

bool IoParms::appendLastElement(const char* text, std::size_t length) {
    // The last element has always been copied as if it were a format, so
    // "%%" in it stands for one "%"; every other "%" is kept as written.
    const std::size_t collapsed = ctext::percentCollapsedLength(text, length);
    OwnedText& element = elements_[count_];
    if (!element.allocate(collapsed + 1)) return false;
    ctext::copyPercentCollapsed(text, length, element.text.get());
    ++count_;
    return true;
}

bool IoParms::splitElements(const char* input, Outcome& outcome) {
    char* token = rsrcString_.text.get();
    for (char* p = token + std::strcspn(token, ":["); *p != '\0'; p += std::strcspn(p, ":[")) {
        // An IPv6 address in [...] keeps its "::" to itself: "[" reaches to
        // the next "]" without nesting, a stray "]" is a plain character,
        // and an unclosed bracket hides the rest of the string. The LAN
        // probe's splitPartsBalanced is stricter on purpose.
        if (*p == '[') {
            char* close = std::strchr(p + 1, ']');
            if (close == nullptr) break;
            p = close + 1;
            continue;
        }
        if (p[1] != ':') {
            ++p;
            continue;
        }
        *p = '\0';
        if (*token == '\0') return outcome.fail(VI_ERROR_INV_RSRC_NAME);
        if (!appendElement(token, static_cast<std::size_t>(p - token)))
            return outcome.failLogged(
                errLog(VI_ERROR_ALLOC, "IoParms::parse: parsing '%s': unable to 'new' char[]", input));
        p += 2;
        token = p;
        if (count_ >= kMaxSeparatedElements)
            return outcome.failLogged(
                errLog(VI_ERROR_ALLOC, "IoParms::parse: parsing '%s': more that %d parameters", input, kMaxElements));
    }
    if (*token == '\0') return outcome.fail(VI_ERROR_INV_RSRC_NAME);
    if (!appendLastElement(token, std::strlen(token)))
        return outcome.failLogged(
            errLog(VI_ERROR_ALLOC, "IoParms::parse: parsing '%s': unable to 'new' char[]", input));
    if (count_ == 0) return outcome.failLogged(errLog(VI_ERROR_INV_RSRC_NAME, "IoParms::parse: rsrcString was empty"));
    return true;
}

bool IoParms::nameInterface(const char* input, Outcome& outcome) {
    char* first = elements_[0].text.get();
    upperCaseN(first, elements_[0].size);
    const char* digit = first;
    while (*digit != '\0' && !ctext::isDigit(*digit)) ++digit;
    if (*digit != '\0') {
        const auto typeLength = static_cast<std::size_t>(digit - first);
        if (!intfTypeStr_.allocate(typeLength + 1))
            return outcome.failLogged(
                errLog(VI_ERROR_ALLOC, "IoParms::parse: parsing '%s': unable to 'new' char[] for intfTypeStr", input));
        std::memcpy(intfTypeStr_.text.get(), first, typeLength);
        intfTypeStr_.text[typeLength] = '\0';
        intfType_ = visa::interfaceTypeOf(intfTypeStr_.text.get());
    } else {
        // A bare type word names board 0: "GPIB" is GPIB0.
        const std::size_t typeLength = std::strlen(first);
        intfTypeStr_ = std::move(elements_[0]);
        elements_[0].size = 0;
        intfType_ = visa::interfaceTypeOf(intfTypeStr_.text.get());
        if (!elements_[0].allocate(typeLength + 2))
            return outcome.failLogged(
                errLog(VI_ERROR_ALLOC, "IoParms::parse: parsing '%s': unable to 'new' char[] for intfName", input));
        std::memcpy(elements_[0].text.get(), intfTypeStr_.text.get(), typeLength);
        std::memcpy(elements_[0].text.get() + typeLength, "0", 2);
    }
    boardNumber_ = getNumParam(0);
    // Under the legacy PXI naming every PXI resource lives on PXI0.
    if (std::strncmp(elements_[0].text.get(), "PXI", 3) == 0 && useLegacyPxi()) {
        std::memcpy(intfName_, "PXI0", 5);
        boardNumber_ = 0;
    } else {
        ctext::copyBounded(intfName_, elements_[0].text.get(), kIntfNameSize - 1);
    }
    return true;
}

bool IoParms::settleResourceClass(const char* input, Outcome& outcome) {
    if (!rsrcClassStr_.allocate(kClassBufferSize))
        return outcome.failLogged(
            errLog(VI_ERROR_ALLOC, "IoParms::parse: parsing '%s': unable to 'new' char[] for rsrcClassStr", input));
    char* rsrcClass = rsrcClassStr_.text.get();
    rsrcClass[0] = '\0';
    bool missing = true;
    if (count_ > 1) {
        ctext::copyBounded(rsrcClass, elements_[count_ - 1].text.get(), kClassBufferSize - 1);
        upperCaseN(rsrcClass, kClassBufferSize);
        missing = resourceClassOf(rsrcClass) == RsrcClass::None;
    }
    // Four USB elements are read as vendor, product and serial number: a
    // serial number may well read "INSTR".
    if (getIntfType() == visa::VI_INTF_USB && count_ == 4) missing = true;
    if (missing) {
        std::memcpy(rsrcClass, kDefaultClass, sizeof kDefaultClass);
        if (!appendElement(kDefaultClass, sizeof kDefaultClass - 1))
            return outcome.failLogged(errLog(
                VI_ERROR_ALLOC, "IoParms::parse: parsing '%s': unable to 'new' char[] for 'INSTR' element", input));
    } else {
        OwnedText& last = elements_[count_ - 1];
        upperCaseN(last.text.get(), last.size);
    }
    return true;
}

ViStatus IoParms::parse(char* rsrc, bool logErrors) {
    clear();
    char noText[1] = {'\0'};
    char* input = rsrc != nullptr ? rsrc : noText;
    ctext::trimBlanks(input);
    const std::size_t length = std::strlen(input);
    if (!rsrcString_.allocate(length + 1))
        return errLog(VI_ERROR_ALLOC, "IoParms::parse: parsing '%s': unable to 'new' rsrcString", input);
    std::memcpy(rsrcString_.text.get(), input, length + 1);

    Outcome outcome;
    if (splitElements(input, outcome) && nameInterface(input, outcome) && settleResourceClass(input, outcome) &&
        !isAllowedParamCount(resourceClassOf(classText()), getIntfType(), getParamCount()))
        outcome.fail(VI_ERROR_INV_RSRC_NAME);

    // The canonical form is the final judge, also after a failure: without
    // a type and class nothing can be built and the string is invalid.
    const char* canonical = getCanonicalName(nullptr, 0);
    if (canonical == nullptr || *canonical == '\0') outcome.status = VI_ERROR_INV_RSRC_NAME;

    std::memcpy(rsrcString_.text.get(), input, length + 1);
    lastError_ = outcome.status;
    if (outcome.logged) return outcome.status;
    if (logErrors && rsrc != nullptr && !ctext::equalsIgnoreCase(rsrc, "badRsrcName"))
        errLog(outcome.status, "IoParms::parse('%s') returned an error.", rsrc);
    return outcome.status;
}

bool IoParms::useLegacyPxi() const { return platform::useLegacyPxiInstrFormat() != 0; }

}  // namespace braxcfg::rsrc
