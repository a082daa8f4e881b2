#pragma once
// Names under which the VISA configuration keeps what the core library
// reads per interface, in the store and in the INI file alike.
namespace braxcfg::visa {

// Values of an interface key "INTF<n>" (and keys of an INI section).
inline constexpr const char* kKorlIntfNameValue = "VISAKorlIntfName";    // REG_SZ
inline constexpr const char* kExportEnabledValue = "VISAExportEnabled";  // REG_DWORD / number

// Product setting that says where the configuration lives: non-zero (or
// absent) = the configuration store, 0 = the INI file.
inline constexpr const char* kUseRegistrySetting = "UseRegistryVisaConfig";

// The INI file, below "BaseDir"; one section per VISA interface name
// ("[GPIB0]") holding the two values above.
inline constexpr const char* kVisaConfigIniFile = "visacfg.ini";

}  // namespace braxcfg::visa
