// Runs the fuzz target on kept inputs: avsk_fuzz_replay FOLDER
#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <vector>

extern "C" int LLVMFuzzerInitialize(int *argc, char ***argv);
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size);

namespace fs = std::filesystem;

int main(int argc, char **argv) {
    std::vector<fs::path> inputs;
    if (argc == 2 && fs::is_directory(argv[1]))
        inputs.assign(fs::directory_iterator(argv[1]), {});
    if (inputs.empty()) {
        std::fputs("usage: avsk_fuzz_replay FOLDER, which holds inputs; for one input use "
                   "build/fuzz/avsk_fuzz_sanitize FILE\n",
                   stderr);
        return 2;
    }
    std::sort(inputs.begin(), inputs.end());
    LLVMFuzzerInitialize(&argc, &argv);
    for (const fs::path &input : inputs) {
        std::printf("%s\n", input.c_str()); // the last line names an input that fails
        std::fflush(stdout);
        std::ifstream file(input, std::ios::binary);
        const std::vector<char> bytes{std::istreambuf_iterator<char>(file), {}};
        LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t *>(bytes.data()), bytes.size());
    }
    std::printf("%zu inputs\n", inputs.size());
    return 0;
}
