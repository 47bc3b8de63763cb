// Any bytes as mimetool reads a message file: strictly, the part tree is built
// and printed both ways, or refused with one line that names the part; as mail
// readers read it, the tree is always built, and so is each message of the
// bytes taken as an mbox file, read whole and read a few bytes at a time.
// Nothing aborts, leaks or recurses without bound.
#include "fuzz_support.hpp"

#include "cli.hpp"
#include "io.hpp"
#include "mailbox.hpp"
#include "render.hpp"

#include <sys/mman.h>
#include <unistd.h>

namespace {

// The mbox reader, reading the bytes a few at a time (so that messages and
// their separators straddle its read-ahead blocks), finds the messages that
// the whole bytes hold.
void checkStreamed(const uint8_t *d, size_t n, const std::vector<mimetool::Ref<PB_BUFFER>> &expected)
{
    using namespace mimetool;
    const int fd = memfd_create("mbox", MFD_CLOEXEC);
    PB_ASSERT_MSG("memfd", fd >= 0 && write(fd, d, n) == static_cast<ssize_t>(n) && lseek(fd, 0, SEEK_SET) == 0);
    {
        MboxReader reader("/proc/self/fd/" + std::to_string(fd), 1 + d[n - 1] % 61);
        StoredMessage message;
        size_t index = 0;
        for (; reader.next(message); ++index) {
            PB_ASSERT_MSG("no more messages than the whole bytes hold", index < expected.size());
            Ref<PB_BUFFER> bytes = messageBytes(message);
            PB_ASSERT_MSG("the same message", pbBufferCompare(bytes.get(), expected[index].get()) == 0);
        }
        PB_ASSERT_MSG("every message", index == expected.size());
    }
    close(fd);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    return fuzz::run(data, size, [](const uint8_t *d, size_t n) {
        using namespace mimetool;
        Ref<PB_BUFFER> content = adopt(pbBufferCreateFromBytesCopy(d, static_cast<PB_INT>(n)));
        content = withWireLineEnds(std::move(content));
        Ref<MIME_OPTIONS> options = defaultOptions();
        try {
            const Part message = readMessage(content.get(), options.get());
            const std::string text = treeText(message);
            const std::string json = treeJson(message);
            PB_ASSERT_MSG("one block per part", text.compare(0, 2, "1 ") == 0 && json.compare(0, 2, "{\n") == 0);
        } catch (const InputError &error) {
            PB_ASSERT_MSG("one line naming the part", error.message.compare(0, 6, "part 1") == 0 &&
                                                            error.message.find('\n') == std::string::npos);
        }
        Ref<PB_BUFFER> raw = adopt(pbBufferCreateFromBytesCopy(d, static_cast<PB_INT>(n)));
        const Part mail = readMail(raw.get(), options.get());
        PB_ASSERT_MSG("the tree of any bytes", treeText(mail).compare(0, 2, "1 ") == 0);
        const std::vector<Ref<PB_BUFFER>> messages = mboxMessages(raw.get());
        size_t index = 0;
        for (const Ref<PB_BUFFER> &message : messages) {
            const std::string prefix = std::to_string(++index) + ":";
            PB_ASSERT_MSG("numbered", treeJson(readMail(message.get(), options.get(), prefix)).find(prefix) != std::string::npos);
        }
        if (isMbox(raw.get()))
            checkStreamed(d, n, messages);
    });
}
