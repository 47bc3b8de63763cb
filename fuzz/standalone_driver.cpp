// Runs a fuzz target over files and directories of inputs, without libFuzzer, so
// that every build's ctest replays the corpora.
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size);
extern "C" int LLVMFuzzerInitialize(int *argc, char ***argv);

namespace {

void runFile(const std::filesystem::path &path)
{
    std::ifstream in(path, std::ios::binary);
    std::vector<char> bytes((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
    LLVMFuzzerTestOneInput(reinterpret_cast<const uint8_t *>(bytes.data()), bytes.size());
}

} // namespace

int main(int argc, char **argv)
{
    LLVMFuzzerInitialize(&argc, &argv);
    int inputs = 0;
    LLVMFuzzerTestOneInput(nullptr, 0);
    for (int i = 1; i < argc; ++i) {
        std::filesystem::path path(argv[i]);
        if (std::filesystem::is_directory(path)) {
            for (const auto &entry : std::filesystem::recursive_directory_iterator(path))
                if (entry.is_regular_file()) {
                    runFile(entry.path());
                    ++inputs;
                }
        } else {
            runFile(path);
            ++inputs;
        }
    }
    std::printf("ran %d inputs\n", inputs);
    return 0;
}
