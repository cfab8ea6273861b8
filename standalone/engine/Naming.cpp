// SPDX-License-Identifier: MIT
#include <engine/Naming.h>

#include <string>

namespace engine {

namespace fs = std::filesystem;

fs::path nameOfDuplicate(const fs::path& input, const char* suffix, const std::set<fs::path>& taken) {
    for (int number = 1;; ++number) {
        auto name = input.stem().string() + suffix;
        if (number > 1)
            name += '-' + std::to_string(number);
        auto path = input.parent_path() / (name + input.extension().string());
        std::error_code none;
        if (!fs::exists(fs::symlink_status(path, none)) && taken.count(path) == 0)
            return path;
    }
}

} // namespace engine
