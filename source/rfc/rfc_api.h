/** @file
 * Export macro of the codec library's public headers.
 */
#ifndef RFC_API_H
#define RFC_API_H

#include <pb/pb_api.h>

#if defined(RFC_BUILDING_LIBRARY)
#define RFC_API __attribute__((visibility("default")))
#else
#define RFC_API
#endif

#endif
