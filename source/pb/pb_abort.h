/** @file
 * The one report of a programming error: a line on standard error, then abort().
 *
 *   MESSAGE: FILE:LINE: CONDITION
 *
 * with "assertion failed" for a missing MESSAGE and nothing for a missing CONDITION.
 *
 * PB_ASSERT stringifies its argument where it is written, so the condition
 * text is the source expression exactly as the caller wrote it. */
#ifndef PB_ABORT_H
#define PB_ABORT_H

#include <pb/pb_api.h>
#include <pb/pb_types.h>

PB_BEGIN_DECLS

/** Writes the line described above and calls abort(); never returns.
 * message and condition may be null. */
PB_API PB_NORETURN void pb___Abort(const char *message, const char *file, PB_INT line,
                                   const char *condition) PB_NOEXCEPT;

PB_END_DECLS

/** Always on, whatever NDEBUG says. */
#define PB_ASSERT(expr) (PB_LIKELY(expr) ? (void)0 : pb___Abort(NULL, __FILE__, __LINE__, #expr))
#define PB_ASSERT_MSG(message, expr) (PB_LIKELY(expr) ? (void)0 : pb___Abort(message, __FILE__, __LINE__, #expr))
#define PB_ABORT() pb___Abort(NULL, __FILE__, __LINE__, NULL)
#define PB_ABORT_MSG(message) pb___Abort(message, __FILE__, __LINE__, NULL)

#endif
