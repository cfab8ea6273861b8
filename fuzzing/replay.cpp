// SPDX-License-Identifier: MIT
// Runs a fuzz target on files and folders of files. Answers 1 where there was nothing to run.

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>
#include <string>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace {

int replayed = 0;

void replay(const std::filesystem::path& path) {
    std::ifstream file(path, std::ios::binary);
    const std::string bytes{std::istreambuf_iterator<char>(file), {}};
    std::cout << path.filename().string() << std::endl; // so that the last line names what failed
    LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size());
    ++replayed;
}

} // namespace

int main(int argc, char** argv) {
    for (int i = 1; i < argc; ++i) {
        if (!std::filesystem::is_directory(argv[i])) {
            replay(argv[i]);
            continue;
        }
        for (const auto& entry : std::filesystem::directory_iterator(argv[i]))
            replay(entry.path());
    }
    std::cout << replayed << " inputs replayed\n";
    return replayed == 0;
}
