#pragma once
// IoParms: the descriptor of one VISA resource string ("GPIB0::7::INSTR").
// parse() cuts the string at its "::" separators (not inside [...]) into at
// most ten elements: the interface element, the parameters, the resource
// class. It derives interface type, interface name, board number and class,
// checks the parameter count and builds the canonical form, which is what
// makes the string valid. Every failure is a VISA status; nothing throws.
#include <cstdint>
#include <cstdio>
#include <memory>

#include "rsrc/allocation.h"
#include "visacore/visa_types.h"

namespace braxcfg::rsrc {

class IoParms {
public:
    static constexpr int kMaxElements = 10;
    static constexpr std::uint32_t kNameBufferSize = 1024;    // canonical and alternate names
    static constexpr std::uint32_t kClassBufferSize = 256;    // rsrcClassStr
    static constexpr std::size_t kIntfNameSize = 256;         // intfName, terminator included
    static constexpr std::uint32_t kNotANumber = 0xFFFFFFFF;  // getNumParam's "no number"

    IoParms();
    ~IoParms();
    IoParms(const IoParms&) = delete;
    IoParms& operator=(const IoParms&) = delete;

    // Frees every element and owned string; count 0, lastError
    // VI_ERROR_INV_RSRC_NAME. The interface name and board number stay.
    void clear();

    // Parses `rsrc`, which is trimmed of blanks in place. Returns the status
    // (also kept as lastError, except when the record's own copy cannot be
    // allocated). With `logErrors`, a parse that logged nothing else writes
    // one "returned an error." line whatever its status.
    visa::ViStatus parse(char* rsrc, bool logErrors);

    const char* getRsrcString() const { return rsrcString_.text.get(); }
    visa::ViStatus getLastError() const { return lastError_; }
    const char* getIntfTypeStr() const { return intfTypeStr_.text.get(); }
    const char* getIntfName() const { return intfName_; }
    std::uint32_t getBoardNumber() const { return boardNumber_; }
    int getCount() const { return count_; }
    int getParamCount() const { return count_ - 2; }
    // The interface type number of intfTypeStr; 0 when unknown or unparsed.
    visa::ViUInt16 getIntfType() const { return intfType_; }
    // The last element (the class); null when there is no element.
    const char* getRsrcClassStr() const;
    // Element i (0 is the interface element), null when i is out of range.
    const char* getParam(int i) const;
    // Element i as a number, kNotANumber when it is none: the interface
    // element gives its decimal digits; a parameter must be wholly decimal,
    // or hexadecimal after "0x"/"0X". The class and beyond give kNotANumber.
    std::uint32_t getNumParam(int i) const;

    // The canonical / alternate name, built on first request after a parse.
    // With a buffer (size >= 1) the buffer is emptied, receives the name
    // (bounded by size) and is returned; otherwise the record's own text is
    // returned, null when it could not be allocated.
    char* getCanonicalName(char* buf, int size);
    char* getAltName(char* buf, int size);

    // The two PXI INSTR writings: bus-device.function and bus::device::function.
    void buildPxiBdfName(char* target, std::uint32_t size);
    void buildPxiLegacyName(char* target, std::uint32_t size);

    // The interface's KORL interface name, from the VISA configuration of
    // the interface named intfName. `buf` must hold 256 characters whatever
    // `size` says.
    char* getKorlIntfName(char* buf, int size);
    bool isExportEnabled();

    // Writes the whole record, one field a line, to `out` (stdout by default).
    void dump();
    void dump(std::FILE* out);
    // The same without the first line (the record's address).
    void dumpFields(std::FILE* out);

private:
    struct OwnedText {
        OwnedChars text;
        std::uint32_t size = 0;
        bool allocate(std::size_t chars);
        void reset();
    };

    struct Outcome;
    bool splitElements(const char* input, Outcome& outcome);
    bool nameInterface(const char* input, Outcome& outcome);
    bool settleResourceClass(const char* input, Outcome& outcome);
    bool appendElement(const char* text, std::size_t length);
    bool appendLastElement(const char* text, std::size_t length);

    // The class word the name builders use: "" when there is none.
    const char* classText() const;
    bool useLegacyPxi() const;
    void buildCanonicalName();
    void buildAltName();
    void writeCanonicalName(char* target, std::uint32_t size);
    enum class UsbIds { Hexadecimal, Decimal };
    void writeUsbName(char* target, std::uint32_t size, UsbIds ids);
    bool writePxiChassisName(std::uint32_t size);
    static char* copyOut(const OwnedText& name, char* buf, int size);

    int count_ = 0;
    visa::ViStatus lastError_;
    OwnedText elements_[kMaxElements];
    OwnedText rsrcString_;
    OwnedText canonicalName_;
    OwnedText altName_;
    OwnedText intfTypeStr_;
    OwnedText rsrcClassStr_;
    visa::ViUInt16 intfType_ = 0;  // of intfTypeStr, kept so the name builders need not look it up
    std::uint32_t boardNumber_ = 0;
    char intfName_[kIntfNameSize] = {};
};

// Upper-cases at most n characters of `text` in place, stopping at the
// terminator; returns text.
char* upperCaseN(char* text, std::size_t n);

}  // namespace braxcfg::rsrc
