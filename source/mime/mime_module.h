/** @file
 * The module frame: the entry point through which the product's loader starts
 * and stops the library, and the module's record and version text. */
#ifndef MIME_MODULE_H
#define MIME_MODULE_H

#include <mime/mime_api.h>
#include <pb/pb_module.h>

PB_BEGIN_DECLS

/** Returns the module object (static data; no reference is taken or given). The
 * loader runs its start-up routine once before any other call into the library
 * (pbModuleStartup) and its shut-down routine once after the last
 * (pbModuleShutdown). Start-up builds the library's read-only tables. */
MIME_API const PB_MODULE *mimeModule(void) PB_NOEXCEPT;

/** The module object, its record and its version text, as the loader reads them. */
MIME_API extern const PB_MODULE mime___module;
/** The module's record (name, description, version, dependencies), as the loader reads it. */
MIME_API extern const PB_MODULE_RECORD mime___module_record;
/** The module's version text, as the loader reads it. */
MIME_API extern const char *const mime___module_version_string;

PB_END_DECLS

#endif
