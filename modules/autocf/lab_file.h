#pragma once
// A simulated lab: an INI file with one section per instrument, named by its
// VISA resource string, holding at least its identification string.
//
//   ; comment
//   [GPIB0::22::INSTR]
//   Identification = Tolvane,DMM 7,1001,1.2
//
// Section and key names ignore case; blanks around names and values are
// dropped. Lines that are neither a section, a key = value, a comment nor
// blank are errors.
#include <string>
#include <vector>

namespace braxcfg::lab {

struct LabInstrument {
    std::string resource;        // the section name, "GPIB0::22::INSTR"
    std::string identification;  // "Identification", empty when missing
    std::vector<std::pair<std::string, std::string>> values;  // every key, in file order
};

struct LabFile {
    std::vector<LabInstrument> instruments;  // in file order
    std::string error;                       // "line N: reason" when the file was refused
};

// Reads the file at `path`; a missing file or a bad line sets `error` and
// gives no instrument.
LabFile readLabFile(const std::string& path);
LabFile parseLabText(const std::string& text);

// The device name of a resource string: without its resource class
// ("GPIB0::22::INSTR" -> "GPIB0::22"); a string without a class is itself.
std::string deviceNameOf(const std::string& resource);

// True when `resource` is on the interface named `intfName` ("GPIB0"),
// the interface part compared without regard to case.
bool isOnInterface(const std::string& resource, const std::string& intfName);

}  // namespace braxcfg::lab
