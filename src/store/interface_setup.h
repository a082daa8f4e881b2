#pragma once
// The silent part of the interface workflow: first set-up of a new
// interface and the end of a configuration pass. The application object
// calls these for its setupVisaIntf and doVisaEndStuff exports; none of
// them shows anything.
#include <string>

#include "store/config_store.h"

namespace braxcfg::store {

// Where the serial interface's default is kept: "<BaseDir>/intfcfg/intfcfg.ini".
std::string interfaceProfilePath();

// 1 when "VISAAutoConfig" in section "Cfg232" of the profile says that
// serial devices are identified at run time ("true", "yes" or "1" once its
// first character is lowered; the rest keeps its case), else 0.
int serialAutoConfigDefault();

// Sets the interface up so that its devices are identified at run time.
platform::StoreFailure configureAtRunTime(const ConfigStore& store, const std::string& intf);

// First set-up of a new interface, once only: serial interfaces take the
// profile's default, TCPIP keeps its devices in the store, every other known
// type is identified at run time, unknown types are left alone. A known type
// without a VISA name is set up too; a missing key is left alone.
// Returns why nothing was written when the store refused the change.
platform::StoreFailure setupVisaIntf(const ConfigStore& store, const std::string& intf);

// End of a configuration pass: renames stale entries of every valid
// INTF<n> key and sets up any that is not yet. Stops at the first change
// the store refuses (busy, disk full) and returns why.
platform::StoreFailure doVisaEndStuff(const ConfigStore& store);

}  // namespace braxcfg::store
