#include <pb/pb_abort.h>

#include <cstdio>
#include <cstdlib>

void pb___Abort(const char *message, const char *file, PB_INT line, const char *condition) noexcept
{
    std::fprintf(stderr, "%s: %s:%lld: %s\n", message ? message : "assertion failed", file ? file : "",
                 static_cast<long long>(line), condition ? condition : "");
    std::fflush(stderr);
    std::abort();
}
