#pragma once
// A subtree of the store as text, for comparing whole trees in one
// expectation: every key (path relative to the dumped one, as stored) in
// enumeration order, each followed by its values in their order with type
// and data:
//   [INTF0\VISADev]
//     "Driver" sz "INSTR"
//     "Flag" binary 01
#include <string>

namespace braxcfg::test {

// The subtree below the product key's `sub`; "<missing>" when it does not exist.
std::string treeText(const std::string& sub);

}  // namespace braxcfg::test
