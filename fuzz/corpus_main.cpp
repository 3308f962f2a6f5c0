#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

// Runs a target's corpus, for compilers without libFuzzer. Usage: fuzz_TARGET FOLDER
int main(int count, char** arguments) {
    std::size_t inputs = 0;
    if (count == 2)
        for (const auto& file : std::filesystem::directory_iterator(arguments[1])) {
            std::ifstream stream(file.path(), std::ios::binary);
            const std::vector<char> input(std::istreambuf_iterator<char>(stream), {});
            std::fprintf(stderr, "%s\n", file.path().c_str());
            LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(input.data()),
                                   input.size());
            ++inputs;
        }
    std::printf("%zu inputs\n", inputs);
    return inputs > 0 ? 0 : 1;
}
