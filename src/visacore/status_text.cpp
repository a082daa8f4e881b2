#include "visacore/status_text.h"

#include <algorithm>
#include <array>
#include <cstdio>

namespace braxcfg::visa {
namespace {

constexpr std::array kStatusTexts = std::to_array<StatusText>({
    {0x00000000u, "VI_SUCCESS",
     "Operation completed successfully."},
    {0x3FFF0002u, "VI_SUCCESS_EVENT_EN",
     "Specified event is already enabled for at least one of the specified mechanisms."},
    {0x3FFF0003u, "VI_SUCCESS_EVENT_DIS",
     "Specified event is already disabled for at least one of the specified mechanisms."},
    {0x3FFF0004u, "VI_SUCCESS_QUEUE_EMPTY",
     "Operation completed successfully, but queue was already empty."},
    {0x3FFF0005u, "VI_SUCCESS_TERM_CHAR",
     "The specified termination character was read."},
    {0x3FFF0006u, "VI_SUCCESS_MAX_CNT",
     "The number of bytes transferred is equal to the requested input count. More data may be available."},
    {0x3FFF000Cu, "VI_WARN_QUEUE_OVERFLOW",
     "VISA received more event information of the specified type than the configured queue size could hold."},
    {0x3FFF0077u, "VI_WARN_CONFIG_NLOADED",
     "The specified configuration either does not exist or could not be loaded. VISA-specified defaults "
     "will be used."},
    {0x3FFF007Du, "VI_SUCCESS_DEV_NPRESENT",
     "Session opened successfully, but the device at the specified address is not responding."},
    {0x3FFF007Eu, "VI_SUCCESS_TRIG_MAPPED",
     "The path from trigSrc to trigDest is already mapped."},
    {0x3FFF0080u, "VI_SUCCESS_QUEUE_NEMPTY",
     "Wait terminated successfully on receipt of an event notification. There is at least one more event "
     "object of the requested type(s) available for this session."},
    {0x3FFF0082u, "VI_WARN_NULL_OBJECT",
     "The specified object reference is uninitialized."},
    {0x3FFF0084u, "VI_WARN_NSUP_ATTR_STATE",
     "Although the specified state of the attribute is valid, it is not supported by this implementation."},
    {0x3FFF0085u, "VI_WARN_UNKNOWN_STATUS",
     "The status code passed to the operation could not be interpreted."},
    {0x3FFF0088u, "VI_WARN_NSUP_BUF",
     "The specified I/O buffer type is not supported."},
    {0x3FFF0098u, "VI_SUCCESS_NCHAIN",
     "Event handled successfully. Do not invoke any other handlers on this session for this event."},
    {0x3FFF0099u, "VI_SUCCESS_NESTED_SHARED",
     "Operation completed successfully, and this session has nested shared locks."},
    {0x3FFF009Au, "VI_SUCCESS_NESTED_EXCLUSIVE",
     "Operation completed successfully, and this session has nested exclusive locks."},
    {0x3FFF009Bu, "VI_SUCCESS_SYNC",
     "Operation completed successfully, but the operation was actually synchronous rather than asynchronous."},
    {0x3FFF00A9u, "VI_WARN_EXT_FUNC_NIMPL",
     "The operation succeeded, but a lower level driver did not implement the extended functionality."},
    {0xBFFF0000u, "VI_ERROR_SYSTEM_ERROR",
     "Unknown system error (miscellaneous error)."},
    {0xBFFF000Eu, "VI_ERROR_INV_OBJECT",
     "The given session or object reference is invalid."},
    {0xBFFF000Fu, "VI_ERROR_RSRC_LOCKED",
     "Specified type of lock cannot be obtained, or specified operation cannot be performed, because the "
     "resource is locked."},
    {0xBFFF0010u, "VI_ERROR_INV_EXPR",
     "Invalid expression specified for search."},
    {0xBFFF0011u, "VI_ERROR_RSRC_NFOUND",
     "Insufficient location information or the requested device or resource is not present in the system."},
    {0xBFFF0012u, "VI_ERROR_INV_RSRC_NAME",
     "Invalid resource reference specified. Parsing error."},
    {0xBFFF0013u, "VI_ERROR_INV_ACC_MODE",
     "Invalid access mode."},
    {0xBFFF0015u, "VI_ERROR_TMO",
     "Timeout expired before operation completed."},
    {0xBFFF0016u, "VI_ERROR_CLOSING_FAILED",
     "The VISA driver failed to properly close the session or object reference. This might be due to an "
     "error freeing internal or OS resources, a failed network connection, or a lower-level driver or OS "
     "error."},
    {0xBFFF001Bu, "VI_ERROR_INV_DEGREE",
     "Specified degree is invalid."},
    {0xBFFF001Cu, "VI_ERROR_INV_JOB_ID",
     "Specified job identifier is invalid."},
    {0xBFFF001Du, "VI_ERROR_NSUP_ATTR",
     "The specified attribute is not defined or supported by the referenced object."},
    {0xBFFF001Eu, "VI_ERROR_NSUP_ATTR_STATE",
     "The specified state of the attribute is not valid, or is not supported as defined by the object."},
    {0xBFFF001Fu, "VI_ERROR_ATTR_READONLY",
     "The specified attribute is read-only."},
    {0xBFFF0020u, "VI_ERROR_INV_LOCK_TYPE",
     "The specified type of lock is not supported by this resource."},
    {0xBFFF0021u, "VI_ERROR_INV_ACCESS_KEY",
     "The access key to the resource associated with the specified session is invalid."},
    {0xBFFF0026u, "VI_ERROR_INV_EVENT",
     "Specified event type is not supported by the resource."},
    {0xBFFF0027u, "VI_ERROR_INV_MECH",
     "Invalid mechanism specified."},
    {0xBFFF0028u, "VI_ERROR_HNDLR_NINSTALLED",
     "A handler was not installed."},
    {0xBFFF0029u, "VI_ERROR_INV_HNDLR_REF",
     "The given handler reference is either invalid or was not installed."},
    {0xBFFF002Au, "VI_ERROR_INV_CONTEXT",
     "Specified event context is invalid."},
    {0xBFFF002Du, "VI_ERROR_QUEUE_OVERFLOW",
     "The event queue for the specified type has overflowed (usually due to previous events not having "
     "been closed)."},
    {0xBFFF002Fu, "VI_ERROR_NENABLED",
     "You must be enabled for events of the specified type in order to receive them."},
    {0xBFFF0030u, "VI_ERROR_ABORT",
     "User abort occurred during transfer."},
    {0xBFFF0034u, "VI_ERROR_RAW_WR_PROT_VIOL",
     "Violation of raw write protocol occurred during transfer."},
    {0xBFFF0035u, "VI_ERROR_RAW_RD_PROT_VIOL",
     "Violation of raw read protocol occurred during transfer."},
    {0xBFFF0036u, "VI_ERROR_OUTP_PROT_VIOL",
     "Device reported an output protocol error during transfer."},
    {0xBFFF0037u, "VI_ERROR_INP_PROT_VIOL",
     "Device reported an input protocol error during transfer."},
    {0xBFFF0038u, "VI_ERROR_BERR",
     "Bus error occurred during transfer."},
    {0xBFFF0039u, "VI_ERROR_IN_PROGRESS",
     "Unable to queue the asynchronous operation because there is already an operation in progress."},
    {0xBFFF003Au, "VI_ERROR_INV_SETUP",
     "Unable to start operation because setup is invalid (usually due to attributes being set to an "
     "inconsistent state)."},
    {0xBFFF003Bu, "VI_ERROR_QUEUE_ERROR",
     "Unable to queue the asynchronous operation (usually due to the I/O completion event not being "
     "enabled or insufficient space in the session's queue)."},
    {0xBFFF003Cu, "VI_ERROR_ALLOC",
     "Insufficient system resources to perform necessary memory allocation."},
    {0xBFFF003Du, "VI_ERROR_INV_MASK",
     "Invalid buffer mask specified."},
    {0xBFFF003Eu, "VI_ERROR_IO",
     "Could not perform operation because of I/O error."},
    {0xBFFF003Fu, "VI_ERROR_INV_FMT",
     "A format specifier in the format string is invalid."},
    {0xBFFF0041u, "VI_ERROR_NSUP_FMT",
     "A format specifier in the format string is not supported."},
    {0xBFFF0042u, "VI_ERROR_LINE_IN_USE",
     "The specified trigger line is currently in use."},
    {0xBFFF0046u, "VI_ERROR_NSUP_MODE",
     "The specified mode is not supported by this VISA implementation."},
    {0xBFFF004Au, "VI_ERROR_SRQ_NOCCURRED",
     "Service request has not been received for the session."},
    {0xBFFF004Eu, "VI_ERROR_INV_SPACE",
     "Invalid address space specified."},
    {0xBFFF0051u, "VI_ERROR_INV_OFFSET",
     "Invalid offset specified."},
    {0xBFFF0052u, "VI_ERROR_INV_WIDTH",
     "Invalid access width specified."},
    {0xBFFF0054u, "VI_ERROR_NSUP_OFFSET",
     "Specified offset is not accessible from this hardware."},
    {0xBFFF0055u, "VI_ERROR_NSUP_VAR_WIDTH",
     "Cannot support source and destination widths that are different."},
    {0xBFFF0057u, "VI_ERROR_WINDOW_NMAPPED",
     "The specified session is not currently mapped."},
    {0xBFFF0059u, "VI_ERROR_RESP_PENDING",
     "A previous response is still pending, causing a multiple query error."},
    {0xBFFF005Fu, "VI_ERROR_NLISTENERS",
     "No listeners condition is detected (both NRFD and NDAC are deasserted)."},
    {0xBFFF0060u, "VI_ERROR_NCIC",
     "The interface associated with this session is not currently the controller in charge."},
    {0xBFFF0061u, "VI_ERROR_NSYS_CNTLR",
     "The interface associated with this session is not the system controller."},
    {0xBFFF0067u, "VI_ERROR_NSUP_OPER",
     "The given session or object reference does not support this operation."},
    {0xBFFF0068u, "VI_ERROR_INTR_PENDING",
     "An interrupt is still pending from a previous call."},
    {0xBFFF006Au, "VI_ERROR_ASRL_PARITY",
     "A parity error occurred during transfer."},
    {0xBFFF006Bu, "VI_ERROR_ASRL_FRAMING",
     "A framing error occurred during transfer."},
    {0xBFFF006Cu, "VI_ERROR_ASRL_OVERRUN",
     "An overrun error occurred during transfer. A character was not read from the hardware before the "
     "next character arrived."},
    {0xBFFF006Eu, "VI_ERROR_TRIG_NMAPPED",
     "The path from trigSrc to trigDest is not currently mapped."},
    {0xBFFF0070u, "VI_ERROR_NSUP_ALIGN_OFFSET",
     "The specified offset is not properly aligned for the access width of the operation."},
    {0xBFFF0071u, "VI_ERROR_USER_BUF",
     "A specified user buffer is not valid or cannot be accessed for the required size."},
    {0xBFFF0072u, "VI_ERROR_RSRC_BUSY",
     "The resource is valid, but VISA cannot currently access it."},
    {0xBFFF0076u, "VI_ERROR_NSUP_WIDTH",
     "Specified width is not supported by this hardware."},
    {0xBFFF0078u, "VI_ERROR_INV_PARAMETER",
     "The value of some parameter (which parameter is not known) is invalid."},
    {0xBFFF0079u, "VI_ERROR_INV_PROT",
     "The protocol specified is invalid."},
    {0xBFFF007Bu, "VI_ERROR_INV_SIZE",
     "Invalid size of window specified."},
    {0xBFFF0080u, "VI_ERROR_WINDOW_MAPPED",
     "The specified session currently contains a mapped window."},
    {0xBFFF0081u, "VI_ERROR_NIMPL_OPER",
     "The given operation is not implemented."},
    {0xBFFF0083u, "VI_ERROR_INV_LENGTH",
     "Invalid length specified."},
    {0xBFFF0091u, "VI_ERROR_INV_MODE",
     "Invalid mode specified."},
    {0xBFFF009Cu, "VI_ERROR_SESN_NLOCKED",
     "The current session did not have a lock on the resource."},
    {0xBFFF009Du, "VI_ERROR_MEM_NSHARED",
     "The device does not export any memory."},
    {0xBFFF009Eu, "VI_ERROR_LIBRARY_NFOUND",
     "A code library required by VISA could not be located or loaded."},
    {0xBFFF009Fu, "VI_ERROR_NSUP_INTR",
     "The interface cannot generate an interrupt on the requested level or with the requested statusID value."},
    {0xBFFF00A0u, "VI_ERROR_INV_LINE",
     "The value specified by the line parameter is invalid."},
    {0xBFFF00A1u, "VI_ERROR_FILE_ACCESS",
     "An error occurred while trying to open the specified file. Possible reasons include an invalid path "
     "or lack of access rights."},
    {0xBFFF00A2u, "VI_ERROR_FILE_IO",
     "An error occurred while performing I/O on the specified file."},
    {0xBFFF00A3u, "VI_ERROR_NSUP_LINE",
     "One of the specified lines (trigSrc or trigDest) is not supported by this VISA implementation, or "
     "the combination of lines is not a valid mapping."},
    {0xBFFF00A4u, "VI_ERROR_NSUP_MECH",
     "The specified mechanism is not supported for the given event type."},
    {0xBFFF00A5u, "VI_ERROR_INTF_NUM_NCONFIG",
     "The interface type is valid but the specified interface number is not configured."},
    {0xBFFF00A6u, "VI_ERROR_CONN_LOST",
     "The connection for the given session has been lost."},
    {0xBFFF00A7u, "VI_ERROR_MACHINE_NAVAIL",
     "The remote machine does not exist or is not accepting any connections."},
    {0xBFFF00A8u, "VI_ERROR_NPERMISSION",
     "Access to the resource or remote machine is denied. This is due to lack of sufficient privileges for "
     "the current user or machine."},
});

constexpr bool ascending() {
    for (std::size_t i = 1; i < kStatusTexts.size(); ++i)
        if (kStatusTexts[i - 1].code >= kStatusTexts[i].code) return false;
    return true;
}
static_assert(ascending(), "the status table is searched by halving and must stay sorted");

}  // namespace

std::span<const StatusText> statusTexts() { return kStatusTexts; }

const StatusText* findStatusText(ViStatus status) {
    const auto code = static_cast<ViUInt32>(status);
    const auto* it = std::lower_bound(kStatusTexts.begin(), kStatusTexts.end(), code,
                                      [](const StatusText& entry, ViUInt32 value) { return entry.code < value; });
    return it != kStatusTexts.end() && it->code == code ? &*it : nullptr;
}

std::string statusDescription(ViStatus status) {
    if (const StatusText* entry = findStatusText(status)) return entry->description;
    char text[64];
    std::snprintf(text, sizeof text, status < 0 ? "Unknown error code 0x%08X." : "Unknown completion code 0x%08X.",
                  static_cast<unsigned>(status));
    return text;
}

std::string statusCodeText(ViStatus status) {
    char text[16];
    std::snprintf(text, sizeof text, "0x%08X", static_cast<unsigned>(status));
    return text;
}

}  // namespace braxcfg::visa
