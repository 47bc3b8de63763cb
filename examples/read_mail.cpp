// read_mail: the tree of a mail message as mail readers read it, one line a
// part, with what departs from the RFCs. C++ through <mime/mime.hpp>.
#include <mime/mime.hpp>

#include <cstdio>
#include <fstream>
#include <iterator>
#include <string>

int main(int argc, char **argv)
{
    mime::Library library;
    std::ifstream file(argc == 2 ? argv[1] : "", std::ios::binary);
    if (!library.ok() || !file)
        return std::fprintf(stderr, "usage: read_mail FILE\n"), 2;
    const std::string bytes(std::istreambuf_iterator<char>(file), {});
    const mime::Part message = mime::Part::read(mime::Buffer(bytes));
    for (const mime::Part &part : message.parts()) {
        const auto name = part.contentDisposition() ? part.contentDisposition()->parameter("filename") : std::nullopt;
        std::printf("%-8s %-28s %8zu bytes  %s\n", part.number().c_str(), part.contentType().name().c_str(),
                    part.body().size(), name.value_or("").c_str());
        for (const mime::Defect &defect : part.defects())
            std::printf("         warning: %s\n", defect.to_string().c_str());
    }
    return 0;
}
