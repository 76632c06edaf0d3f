// Runs a fuzzing harness over the saved inputs of a folder, as an ordinary test, so that a repaired defect
// does not return. Usage: PROGRAM FOLDER… It is an error if the folders have no files.
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>
#include <string>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size);

int main(int argc, char** argv) {
    std::size_t inputs = 0;
    for (int i = 1; i < argc; ++i) {
        for (const auto& entry : std::filesystem::directory_iterator(argv[i])) {
            std::ifstream file(entry.path(), std::ios::binary);
            const std::string text{std::istreambuf_iterator<char>(file), {}};
            std::cout << entry.path().filename().string() << std::endl; // printed before a possible crash
            LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(text.data()), text.size());
            ++inputs;
        }
    }
    std::cout << inputs << " inputs\n";
    return inputs == 0 ? 1 : 0;
}
