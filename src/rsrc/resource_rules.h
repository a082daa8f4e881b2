#pragma once
// The fixed vocabulary of resource strings: interface type words with their
// VISA interface type numbers, the resource classes, and which parameter
// counts each class allows on each interface type.
#include "visacore/visa_types.h"

namespace braxcfg::rsrc {

// The interface type number of a type word ("GPIB", "GPIB-VXI", ...),
// compared exactly; 0 for any other word or for null.
visa::ViUInt16 interfaceTypeOf(const char* typeWord);

enum class RsrcClass { None, Instr, Memacc, Intfc, Backplane, Socket, Servant };

// The resource class `word` names, exactly as written (upper case); None
// for any other word or for null.
RsrcClass resourceClassOf(const char* word);

// Whether `paramCount` parameters are allowed for class `rsrcClass` on an
// interface of type `intfType`.
bool isAllowedParamCount(RsrcClass rsrcClass, visa::ViUInt16 intfType, int paramCount);

}  // namespace braxcfg::rsrc
