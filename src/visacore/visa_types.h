#pragma once
// VISA scalar types and the completion/error codes this program uses, from
// their published numbers.
#include <cstdint>

namespace braxcfg::visa {

using ViStatus = std::int32_t;
using ViSession = std::uint32_t;
using ViUInt16 = std::uint16_t;
using ViUInt32 = std::uint32_t;
using ViInt32 = std::int32_t;
using ViAttr = std::uint32_t;
using ViAccessMode = std::uint32_t;
using ViObject = ViSession;
using ViChar = char;

inline constexpr ViSession VI_NULL = 0;

inline constexpr ViStatus toStatus(std::uint32_t code) { return static_cast<ViStatus>(code); }

inline constexpr ViStatus VI_SUCCESS = 0;
inline constexpr ViStatus VI_WARN_NULL_OBJECT = toStatus(0x3FFF0082u);
inline constexpr ViStatus VI_WARN_UNKNOWN_STATUS = toStatus(0x3FFF0085u);
inline constexpr ViStatus VI_ERROR_SYSTEM_ERROR = toStatus(0xBFFF0000u);
inline constexpr ViStatus VI_ERROR_INV_OBJECT = toStatus(0xBFFF000Eu);
inline constexpr ViStatus VI_ERROR_RSRC_LOCKED = toStatus(0xBFFF000Fu);
inline constexpr ViStatus VI_ERROR_RSRC_NFOUND = toStatus(0xBFFF0011u);
inline constexpr ViStatus VI_ERROR_INV_RSRC_NAME = toStatus(0xBFFF0012u);
inline constexpr ViStatus VI_ERROR_TMO = toStatus(0xBFFF0015u);
inline constexpr ViStatus VI_ERROR_ABORT = toStatus(0xBFFF0030u);
inline constexpr ViStatus VI_ERROR_ALLOC = toStatus(0xBFFF003Cu);
inline constexpr ViStatus VI_ERROR_IO = toStatus(0xBFFF003Eu);
inline constexpr ViStatus VI_ERROR_NSUP_OPER = toStatus(0xBFFF0067u);
inline constexpr ViStatus VI_ERROR_RSRC_BUSY = toStatus(0xBFFF0072u);
inline constexpr ViStatus VI_ERROR_INV_PARAMETER = toStatus(0xBFFF0078u);
inline constexpr ViStatus VI_ERROR_NIMPL_OPER = toStatus(0xBFFF0081u);
inline constexpr ViStatus VI_ERROR_LIBRARY_NFOUND = toStatus(0xBFFF009Eu);
inline constexpr ViStatus VI_ERROR_CONN_LOST = toStatus(0xBFFF00A6u);
inline constexpr ViStatus VI_ERROR_MACHINE_NAVAIL = toStatus(0xBFFF00A7u);

// Interface type numbers.
inline constexpr ViUInt16 VI_INTF_GPIB = 1;
inline constexpr ViUInt16 VI_INTF_VXI = 2;
inline constexpr ViUInt16 VI_INTF_GPIB_VXI = 3;
inline constexpr ViUInt16 VI_INTF_ASRL = 4;
inline constexpr ViUInt16 VI_INTF_PXI = 5;
inline constexpr ViUInt16 VI_INTF_TCPIP = 6;
inline constexpr ViUInt16 VI_INTF_USB = 7;
inline constexpr ViUInt16 VI_INTF_RSIB = 0x800E;

}  // namespace braxcfg::visa
