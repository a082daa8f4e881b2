#pragma once
// The fixed vocabulary of resource strings: the resource classes, and which
// parameter counts each class allows on each interface type. The interface
// type words and numbers are visacore/interface_types.h.
#include "visacore/visa_types.h"

namespace braxcfg::rsrc {

enum class RsrcClass { None, Instr, Memacc, Intfc, Backplane, Socket, Servant };

// The resource class `word` names, exactly as written (upper case); None
// for any other word or for null.
RsrcClass resourceClassOf(const char* word);

// Whether `paramCount` parameters are allowed for class `rsrcClass` on an
// interface of type `intfType`.
bool isAllowedParamCount(RsrcClass rsrcClass, visa::ViUInt16 intfType, int paramCount);

}  // namespace braxcfg::rsrc
