// SPDX-License-Identifier: MIT

// Feeds files, and all files of folders, to a fuzz target: the main program where no fuzzer provides one.

#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace {

namespace fs = std::filesystem;

bool feed(const fs::path& path) {
    std::ifstream file(path, std::ios::binary);
    const std::vector<char> content{std::istreambuf_iterator<char>(file), {}};
    if (!file) {
        std::fprintf(stderr, "%s cannot be read\n", path.c_str());
        return false;
    }
    const std::vector<std::uint8_t> bytes(content.begin(), content.end());
    LLVMFuzzerTestOneInput(bytes.data(), bytes.size());
    return true;
}

} // namespace

int main(int argc, char** argv) {
    int fed = 0;
    for (int i = 1; i < argc; ++i) {
        if (!fs::is_directory(argv[i])) {
            if (!feed(argv[i]))
                return 1;
            ++fed;
            continue;
        }
        for (const auto& entry : fs::directory_iterator(argv[i])) {
            if (!entry.is_regular_file())
                continue;
            if (!feed(entry.path()))
                return 1;
            ++fed;
        }
    }
    std::printf("%d inputs\n", fed);
    return fed > 0 ? 0 : 1;
}
