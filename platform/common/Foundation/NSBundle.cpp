// SPDX-License-Identifier: MIT
#include <Foundation/NSBundle.h>

#include <Foundation/NSException.h>

#include "InformationList.h"
#include "LoadingBundle.h"
#include "StringsTable.h"

#include <algorithm>
#include <cstdlib>
#include <dlfcn.h>
#include <fstream>
#include <sstream>

namespace platform {

namespace {

namespace fs = std::filesystem;

/// No information list or string table of ours comes near it.
constexpr std::uintmax_t largestFile = 4 << 20;

std::optional<std::string> bytesOfFile(const fs::path& path) {
    std::error_code error;
    const auto size = fs::file_size(path, error);
    std::ifstream file(path, std::ios::binary);
    if (error || size > largestFile || !file)
        return std::nullopt;
    std::ostringstream bytes;
    bytes << file.rdbuf();
    return bytes.str();
}

/// The language with the script that is written in a territory.
std::string writingOfChinese(const std::string& territory) {
    return territory == "TW" || territory == "HK" || territory == "MO" || territory == "Hant" ? "zh-Hant" : "zh-Hans";
}

/// The user's languages, the wanted one first, from the locale's environment: LANGUAGE, else the first set of LC_ALL,
/// LC_MESSAGES and LANG. Encodings are cut off; "C" and "POSIX" stand for English.
std::vector<std::string> userLanguages() {
    std::string wish;
    for (const char* name : {"LC_ALL", "LC_MESSAGES", "LANG"})
        if (const char* value = std::getenv(name); wish.empty() && value)
            wish = value;
    const bool plain = wish.empty() || wish == "C" || wish == "POSIX" || wish.starts_with("C.");
    if (const char* order = std::getenv("LANGUAGE"); order && *order && !plain)
        wish = order;
    std::vector<std::string> languages;
    std::istringstream list(plain ? "en" : wish);
    for (std::string language; std::getline(list, language, ':');) {
        language.resize(std::min(language.find_first_of(".@"), language.size()));
        std::replace(language.begin(), language.end(), '_', '-');
        if (language == "zh")
            language = "zh-Hans";
        while (!language.empty()) {
            languages.push_back(language);
            const auto part = language.rfind('-');
            if (part == std::string::npos)
                break;
            // Whoever names a territory means its writing.
            if (language.starts_with("zh-") && part == 2)
                languages.push_back(writingOfChinese(language.substr(3)));
            language.resize(part);
        }
    }
    return languages;
}

/// Bundles whose classes are registered live as long as the program.
std::vector<std::shared_ptr<NSBundle>>& loadedBundles() {
    static std::vector<std::shared_ptr<NSBundle>> bundles;
    return bundles;
}

} // namespace

std::shared_ptr<NSBundle> NSBundle::bundleWithPath(const fs::path& path) {
    std::error_code error;
    for (const auto& loaded : loadedBundles())
        if (fs::equivalent(loaded->bundlePath(), path, error))
            return loaded;
    const auto xml = bytesOfFile(path / "Info.plist");
    auto information = xml ? textsOfPropertyList(*xml) : std::nullopt;
    if (!information) {
        NSLog(path.string() + " is no bundle: its Info.plist cannot be read");
        return nullptr;
    }
    auto bundle = std::make_shared<NSBundle>();
    bundle->m_path = path;
    bundle->m_information = std::move(*information);
    const auto present = bundle->localizations();
    for (const auto& language : userLanguages())
        if (bundle->m_localization.empty() && std::find(present.begin(), present.end(), language) != present.end())
            bundle->m_localization = language;
    if (bundle->m_localization.empty() && std::find(present.begin(), present.end(), "en") != present.end())
        bundle->m_localization = "en";
    return bundle;
}

std::shared_ptr<NSBundle> NSBundle::bundleForClass(const NSClass* cls) {
    return cls ? cls->bundle.lock() : nullptr;
}

std::optional<std::u16string> NSBundle::objectForInfoDictionaryKey(const std::u16string& key) const {
    const auto found = m_information.find(key);
    return found == m_information.end() ? std::nullopt : std::optional(found->second);
}

bool NSBundle::load(std::string& error) {
    const auto library = m_path / toUtf8(objectForInfoDictionaryKey(u"CFBundleExecutable").value_or(u""));
    const auto self = std::static_pointer_cast<NSBundle>(shared_from_this());
    if (std::find(loadedBundles().begin(), loadedBundles().end(), self) != loadedBundles().end())
        return true;
    loadingBundle() = self;
    // Never closed: objects of its classes may outlive everything else.
    const bool loaded = dlopen(library.c_str(), RTLD_NOW | RTLD_LOCAL | RTLD_NODELETE) != nullptr;
    loadingBundle().reset();
    if (loaded)
        loadedBundles().push_back(self);
    else
        error = dlerror();
    return loaded;
}

const NSClass* NSBundle::principalClass() const {
    return NSClassFromString(objectForInfoDictionaryKey(u"NSPrincipalClass").value_or(u""));
}

std::optional<NSURL> NSBundle::URLForResourceWithExtension(const std::u16string& name,
                                                           const std::u16string& extension) const {
    const auto file = toUtf8(name) + (extension.empty() ? "" : "." + toUtf8(extension));
    std::error_code error;
    for (const auto& folder : {m_path / (m_localization + ".lproj"), m_path})
        if (fs::is_regular_file(folder / file, error))
            return NSURL::fileURLWithPath(folder / file);
    return std::nullopt;
}

std::u16string NSBundle::localizedStringForKeyValueTable(const std::u16string& key, const std::u16string& value,
                                                         const std::u16string& table) const {
    const std::u16string name = table.empty() ? u"Localizable" : table;
    auto known = m_tables.find(name);
    if (known == m_tables.end()) {
        known = m_tables.emplace(name, Table()).first;
        if (const auto url = URLForResourceWithExtension(name, u"strings")) {
            std::string problem = "cannot be read";
            const auto bytes = bytesOfFile(url->path());
            if (auto read = bytes ? readStringsTable(textOfFile(*bytes), problem) : std::nullopt)
                known->second = std::move(*read);
            else
                NSLog(url->path().string() + " is left out: " + problem);
        }
    }
    const auto found = known->second.find(key);
    return found != known->second.end() ? found->second : value.empty() ? key : value;
}

std::vector<std::string> NSBundle::localizations() const {
    std::vector<std::string> languages;
    std::error_code error;
    for (const auto& entry : fs::directory_iterator(m_path, error))
        if (entry.path().extension() == ".lproj")
            languages.push_back(entry.path().stem().string());
    std::sort(languages.begin(), languages.end());
    return languages;
}

} // namespace platform
