// mime::Library: the library started for as long as the object lives.
#ifndef MIME_CPP_LIBRARY_HPP
#define MIME_CPP_LIBRARY_HPP

#include <mime/mime.h>
#include <pb/pb.h>

namespace mime {

// Starts the library (pbModuleStartup(mimeModule())) and shuts it down at the
// end of its scope; every other object of the interface lives inside that.
class Library {
public:
    Library() noexcept : started_(pbModuleStartup(mimeModule())) {}
    ~Library()
    {
        if (started_)
            pbModuleShutdown(mimeModule());
    }
    Library(const Library &) = delete;
    Library &operator=(const Library &) = delete;
    // Whether it started (false: no other call may be made).
    bool ok() const noexcept { return started_; }

private:
    bool started_;
};

} // namespace mime

#endif
