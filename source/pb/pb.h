/** @file
 * The base object runtime: objects and reference counts, abort, strings, buffers,
 * dictionaries, vectors, stores, character sets, flag sets, identifiers, random
 * numbers and the module loader's part. */
#ifndef PB_H
#define PB_H

#include <pb/pb_abort.h>
#include <pb/pb_api.h>
#include <pb/pb_buffer.h>
#include <pb/pb_charset.h>
#include <pb/pb_dict.h>
#include <pb/pb_flagset.h>
#include <pb/pb_identifier.h>
#include <pb/pb_int.h>
#include <pb/pb_mem.h>
#include <pb/pb_module.h>
#include <pb/pb_obj.h>
#include <pb/pb_random.h>
#include <pb/pb_sort.h>
#include <pb/pb_store.h>
#include <pb/pb_string.h>
#include <pb/pb_types.h>
#include <pb/pb_unicode.h>
#include <pb/pb_vector.h>

#endif
