// SPDX-License-Identifier: MIT
#include "store_support.h"

#include <Foundation/NSString.h>

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <iterator>

#include <unistd.h>

namespace fs = std::filesystem;

const std::vector<std::string> suppliedNames{"Received", "Page of Pages", "Confidential"};

StoreTest::StoreTest() {
    // In memory where that is possible, so that no test waits for a disk.
    const fs::path memory("/dev/shm");
    const bool hasMemory = ::access(memory.c_str(), W_OK | X_OK) == 0;
    auto name = ((hasMemory ? memory : fs::temp_directory_path()) / "imprinter-store-XXXXXX").string();
    if (!::mkdtemp(name.data()))
        throw std::runtime_error("no folder for the test");
    data = name;
    m_environment.set("XDG_DATA_HOME", data.string());
    folder = data / "imprinter";
    fs::create_directory(folder);
    file = folder / "configurations.json";
}

StoreTest::~StoreTest() {
    std::error_code ignored;
    fs::remove_all(data, ignored);
}

void StoreTest::put(const std::string& text) const {
    std::ofstream(file, std::ios::binary) << text;
}

std::string StoreTest::content() const {
    return readAll(file);
}

std::vector<std::string> StoreTest::othersInFolder() const {
    std::vector<std::string> names;
    for (const auto& entry : fs::directory_iterator(folder))
        if (entry.path() != file && !entry.path().filename().string().starts_with("configurations.previous-"))
            names.push_back(entry.path().filename().string());
    std::sort(names.begin(), names.end());
    return names;
}

std::string documentOf(const std::string& configurations) {
    return R"({"format": "imprinter-configurations", "version": 1, "configurations": [)" + configurations + "]}";
}

std::string readAll(const fs::path& path) {
    std::ifstream stream(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), {}};
}

std::shared_ptr<model::ImprinterModel> modelOf(const Configurations& configurations) {
    auto made = std::make_shared<model::ImprinterModel>();
    made->setConfigurations(configurations);
    return made;
}

std::vector<std::string> namesOf(const Configurations& configurations) {
    std::vector<std::string> names;
    for (const auto& configuration : configurations)
        names.push_back(platform::toUtf8(configuration->name()));
    return names;
}

std::string sentenceOf(const store::LoadResult& result) {
    return result.messages.empty() ? std::string() : platform::toUtf8(result.messages.front().sentence);
}

std::string sentenceOf(const std::optional<store::Failure>& failure) {
    return failure ? platform::toUtf8(failure->sentence) : std::string();
}
