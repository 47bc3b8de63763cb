/** @file
 * Module objects and records, and the loader's part: starting and stopping a
 * module through its module object, as the product's module loader does. */
#ifndef PB_MODULE_H
#define PB_MODULE_H

#include <pb/pb_api.h>
#include <pb/pb_sort.h>
#include <pb/pb_types.h>

PB_BEGIN_DECLS

/** Module record: fourteen words describing a module and the build it came from. */
typedef struct PB_MODULE_RECORD {
    int64_t format; /* record format number: 2 */
    const char *productName;
    const char *productName2; /* the product name again */
    int64_t versionMajor;
    int64_t versionMinor;
    int64_t versionPatch;
    const char *buildTime; /* "UTC 2026-11-22 20:35:04 (Sunday)" */
    const char *company;
    const char *copyright;
    const char *moduleName;
    const char *description;
    const char *moduleVersion;
    const char *dependencies; /* module names separated by one space */
    const char *further;      /* empty */
} PB_MODULE_RECORD;

#define PB_MODULE_RECORD_FORMAT 2

typedef PB_BOOL (*PB_MODULE_STARTUP_FUNC)(void);
typedef void (*PB_MODULE_SHUTDOWN_FUNC)(void);

/** Module object: nineteen words. */
struct PB_MODULE {
    PB_OBJ_HEADER header; /* PB_OBJ_HEADER_STATIC(PB_OBJ_KIND_MODULE) */
    const PB_MODULE_RECORD *record;
    PB_MODULE_STARTUP_FUNC startup; /* returns true when the module is ready */
    const void *reserved1;          /* null */
    PB_MODULE_SHUTDOWN_FUNC shutdown;
    const void *reserved2[5]; /* null */
};

/** Runs the module's start-up routine and returns its result. Call it once,
 * before any other call into the module. module must not be null. */
PB_API PB_BOOL pbModuleStartup(const PB_MODULE *module) PB_NOEXCEPT;

/** Runs the module's shut-down routine. Call it once, after the last call into
 * the module and only after a successful start-up. */
PB_API void pbModuleShutdown(const PB_MODULE *module) PB_NOEXCEPT;

/** Returns the module's record (static data). */
PB_API const PB_MODULE_RECORD *pbModuleRecord(const PB_MODULE *module) PB_NOEXCEPT;

PB_END_DECLS

#endif
