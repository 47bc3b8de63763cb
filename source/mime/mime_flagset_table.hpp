// Internal: what the two flag families share. Each keeps one flag set, built at
// start-up from its names and released at shut-down.
#pragma once

#include <pb/pb_abort.h>
#include <pb/pb_flagset.h>
#include <pb/pb_obj.hpp>
#include <pb/pb_string.h>

// Adds one flag by its macro name; a name the set already holds aborts.
#define MIME___FLAGSET_ADD(set, NAME) \
    do { \
        PB_ASSERT( !pbFlagsetHasFlagCstr( set, #NAME, -1 ) ); \
        pbFlagsetSetFlagCstr(&set, #NAME, -1, NAME); \
    } while (0)

namespace mime {

inline void flagsetShutdown(PB_FLAGSET *&set)
{
    pb::releaseField(set);
}

} // namespace mime
