/** @file
 * Export and language-linkage macros shared by every public header of the
 * runtime. Public headers are plain C11 and also compile as C++. */
#ifndef PB_API_H
#define PB_API_H

#if defined(PB_BUILDING_LIBRARY)
#define PB_API __attribute__((visibility("default")))
#else
#define PB_API
#endif

#ifdef __cplusplus
#define PB_BEGIN_DECLS extern "C" {
#define PB_END_DECLS }
#define PB_NOEXCEPT noexcept
#else
#define PB_BEGIN_DECLS
#define PB_END_DECLS
#define PB_NOEXCEPT
#endif

#define PB_NORETURN __attribute__((noreturn))

#define PB_LIKELY(x) __builtin_expect(!!(x), 1)
#define PB_UNLIKELY(x) __builtin_expect(!!(x), 0)

#endif
