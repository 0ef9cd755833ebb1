// Runs the fuzz target on kept inputs: avsk_fuzz_replay FILE-OR-FOLDER...
#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <vector>

extern "C" int LLVMFuzzerInitialize(int *argc, char ***argv);
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size);

namespace {

namespace fs = std::filesystem;

bool Replay(const fs::path &path) {
    std::ifstream file(path, std::ios::binary);
    const std::vector<char> bytes{std::istreambuf_iterator<char>(file), {}};
    if (!file) {
        std::fprintf(stderr, "avsk_fuzz_replay: %s: cannot be read\n", path.c_str());
        return false;
    }
    std::printf("%s\n", path.c_str()); // the last line names an input that fails
    std::fflush(stdout);
    LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t *>(bytes.data()), bytes.size());
    return true;
}

} // namespace

int main(int argc, char **argv) {
    if (argc < 2) {
        std::fputs("usage: avsk_fuzz_replay FILE-OR-FOLDER...\n", stderr);
        return 2;
    }
    std::vector<fs::path> inputs;
    for (int i = 1; i < argc; ++i) {
        if (!fs::is_directory(argv[i])) {
            inputs.emplace_back(argv[i]);
            continue;
        }
        for (const auto &entry : fs::directory_iterator(argv[i]))
            inputs.push_back(entry.path());
    }
    std::sort(inputs.begin(), inputs.end());
    if (inputs.empty()) {
        std::fputs("avsk_fuzz_replay: the folder holds no inputs; name one that does\n", stderr);
        return 2;
    }
    LLVMFuzzerInitialize(&argc, &argv);
    for (const fs::path &input : inputs)
        if (!Replay(input))
            return 1;
    std::printf("%zu inputs\n", inputs.size());
    return 0;
}
