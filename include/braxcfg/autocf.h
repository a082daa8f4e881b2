/*
 * braxcfg/autocf.h: what an auto-configuration module ("AUTOCF") sees.
 *
 * An auto-configuration module is a shared library (libautocf.so, or
 * AUTOCF.so) that searches one interface for the devices answering on it.
 * The plug-in finds it in its trusted module directories and looks each of
 * these three entry points up again before every call:
 *
 *   int32_t AUTOCF_autoConfigReset(braxcfg_autocf_record* record, int32_t flags);
 *       Starts a search of the interface the record names; `flags` is 0.
 *       Returns a VISA status, 0 to go on with the search.
 *   int32_t AUTOCF_autoConfigNextDev(braxcfg_autocf_record* record);
 *       Hands back the next device: calls record->setDevice() with its
 *       device name and returns 0; or, when no device is left, calls
 *       record->setNoMoreDevices() and returns 0. Any other status ends the
 *       search with a message to the user; 0xBFFF0011 (resource not found)
 *       tells the user to save the configuration and restart.
 *   void AUTOCF_autoConfigDone(void);
 *       The search is over (also after an error); called when present.
 *
 * Every call happens on the plug-in's user-interface thread, one at a time.
 *
 * Layout check: a record starts with its version and size, which stay where
 * they are in every version. A module calls braxcfg_autocf_check() first in
 * each entry point and returns its status when it is not 0, so a record of
 * another layout is refused with BRAXCFG_AUTOCF_ERROR_LAYOUT instead of
 * being misread.
 */
#ifndef BRAXCFG_AUTOCF_H
#define BRAXCFG_AUTOCF_H

#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

/* The layout this header describes. */
#define BRAXCFG_AUTOCF_VERSION 1u

/* VISA statuses a module returns (their published numbers). */
#define BRAXCFG_AUTOCF_SUCCESS ((int32_t)0)
#define BRAXCFG_AUTOCF_ERROR_RSRC_NFOUND ((int32_t)0xBFFF0011u)
#define BRAXCFG_AUTOCF_ERROR_INV_PARAMETER ((int32_t)0xBFFF0078u)
/* "The operation is not supported": the record is of another layout. */
#define BRAXCFG_AUTOCF_ERROR_LAYOUT ((int32_t)0xBFFF0067u)

typedef struct braxcfg_autocf_record braxcfg_autocf_record;

struct braxcfg_autocf_record {
    /* BRAXCFG_AUTOCF_VERSION and sizeof(braxcfg_autocf_record) of the
       plug-in that built the record. Never moved. */
    uint32_t version;
    uint32_t size;

    /* The interface searched: its VISA name ("GPIB0"), type word ("GPIB",
       "VXI", "GPIB-VXI"), type number (GPIB 1, VXI 2, GPIB-VXI 3) and
       board number. Valid until the search ends. */
    const char* intfName;
    const char* intfTypeStr;
    uint32_t intfType;
    uint32_t boardNumber;

    /* The absolute path of the system VISA library the plug-in uses, or ""
       when it uses none. */
    const char* visaLibrary;

    /* Hands a found device back: its device name, the resource string
       without its resource class ("GPIB0::22", "GPIB0::5::3"). Returns the
       status of reading that name (0 when it is a valid resource string). */
    int32_t (*setDevice)(braxcfg_autocf_record* record, const char* deviceName);
    /* Says that no device is left. */
    void (*setNoMoreDevices)(braxcfg_autocf_record* record);
    /* Reads the text value `name` below the product key into `buffer`
       (terminated, cut to `size`); "" when it is missing. Returns its
       length before cutting. */
    uint32_t (*readProductSetting)(const braxcfg_autocf_record* record, const char* name, char* buffer,
                                   uint32_t size);

    /* The plug-in's own; a module leaves it alone. */
    void* host;
};

/* 0 when `record` has the layout this module was built for; otherwise the
   status to return at once. */
static inline int32_t braxcfg_autocf_check(const braxcfg_autocf_record* record) {
    if (record == 0) return BRAXCFG_AUTOCF_ERROR_INV_PARAMETER;
    if (record->version != BRAXCFG_AUTOCF_VERSION || record->size < sizeof(braxcfg_autocf_record))
        return BRAXCFG_AUTOCF_ERROR_LAYOUT;
    return BRAXCFG_AUTOCF_SUCCESS;
}

typedef int32_t (*braxcfg_autocf_reset_fn)(braxcfg_autocf_record* record, int32_t flags);
typedef int32_t (*braxcfg_autocf_next_dev_fn)(braxcfg_autocf_record* record);
typedef void (*braxcfg_autocf_done_fn)(void);

#ifdef __cplusplus
}
#endif

#endif /* BRAXCFG_AUTOCF_H */
