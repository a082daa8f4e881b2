#pragma once
// Loading of the outside modules the dialogs call by name (the
// auto-configuration module "AUTOCF"). A module is searched only in trusted
// absolute directories, in this order:
//   1. the absolute entries of BRAXCFG_MODULE_PATH (colon-separated; empty
//      and relative entries are skipped),
//   2. the directory of the binary this code is linked into (the plug-in's
//      own directory),
//   3. the product's "BaseDir", when it is absolute.
// Never the working directory. In each directory module "AUTOCF" is the
// file libautocf.so, else AUTOCF.so. A file that is not trustedForLoading
// (owned by root or this user, writable by nobody else, nor its directories)
// is passed over.
#include <string>
#include <vector>

#include "visacore/visa_types.h"

namespace braxcfg::visa {

// osLoadEntryPoint's last argument.
inline constexpr int kLoadIfNeeded = 1;  // load the module when it is not loaded yet
inline constexpr int kLoadedOnly = 0;    // only use a module an earlier call has loaded

// Finds `module`, loads it (see `flag`) and stores the address of its
// export `name` in `*slot`. The symbol is looked up afresh at every call;
// a loaded module stays loaded for the life of the process, so an entry
// point stays valid. VI_SUCCESS, or VI_ERROR_LIBRARY_NFOUND (no such module,
// or a name that is not a plain word), VI_ERROR_NIMPL_OPER (no such
// export), VI_ERROR_INV_PARAMETER (no slot); on every failure the slot is
// left null.
ViStatus osLoadEntryPoint(const char* module, const char* name, void** slot, int flag);

// The directories searched, in order (for diagnostics and tests).
std::vector<std::string> moduleSearchDirectories();

// The file names tried in each directory for `module`, in order.
std::vector<std::string> moduleFileNames(const std::string& module);

}  // namespace braxcfg::visa
