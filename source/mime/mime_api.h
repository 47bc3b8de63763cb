/** @file
 * Export macro of the mime library's public headers.
 */
#ifndef MIME_API_H
#define MIME_API_H

#include <pb/pb_api.h>

#if defined(MIME_BUILDING_LIBRARY)
#define MIME_API __attribute__((visibility("default")))
#else
#define MIME_API
#endif

#endif
