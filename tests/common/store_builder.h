#pragma once
// Builds store content for a test in a few lines, below HKEY_LOCAL_MACHINE
// or below the product key.
#include <cstdint>
#include <string>

namespace braxcfg::test {

// Full paths below HKEY_LOCAL_MACHINE, e.g. "SOFTWARE\\Tolvane\\Linkbase".
void putString(const std::string& keyPath, const std::string& name, const std::string& value);
void putDword(const std::string& keyPath, const std::string& name, std::uint32_t value);
void putBytes(const std::string& keyPath, const std::string& name, std::uint32_t type, const std::string& bytes);
void putKey(const std::string& keyPath);
bool keyExists(const std::string& keyPath);
// The value's type and bytes; false when it is missing.
bool readValue(const std::string& keyPath, const std::string& name, std::uint32_t& type, std::string& bytes);

// The product key path, "SOFTWARE\\Tolvane\\Linkbase\\CurrentVersion" on a
// fresh store, followed by "\\" + sub when sub is not empty.
std::string underProduct(const std::string& sub = "");

// An interface key INTF<n> with "VISAName" and "VISAIntfType".
void putInterface(const std::string& intf, const std::string& visaName, const std::string& typeWord);

}  // namespace braxcfg::test
