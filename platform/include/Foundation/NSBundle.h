// SPDX-License-Identifier: MIT
#pragma once

#include <Foundation/NSClass.h>
#include <Foundation/NSObject.h>
#include <Foundation/NSString.h>
#include <Foundation/NSURL.h>

#include <map>
#include <optional>

namespace platform {

/// A folder with an information list (`Info.plist`), a loadable library and resources.
///
/// String tables stand in `<language>.lproj/<table>.strings`; one localization, chosen by the user's language order
/// when the bundle is opened, answers every look-up.
class NSBundle final : public NSObject {
public:
    /// The bundle in a folder; the very same object once its library is loaded. Null, with a line in the log, where the
    /// folder has no readable information list.
    static std::shared_ptr<NSBundle> bundleWithPath(const std::filesystem::path& path);
    /// The bundle whose loading registered the class; null for classes of the program.
    static std::shared_ptr<NSBundle> bundleForClass(const NSClass* cls);

    const std::filesystem::path& bundlePath() const { return m_path; }
    /// A text of the information list.
    std::optional<std::u16string> objectForInfoDictionaryKey(const std::u16string& key) const;

    /// Loads the library named by "CFBundleExecutable"; NO, with the reason in `error`, where that fails.
    bool load(std::string& error);
    /// The class named by "NSPrincipalClass", or null.
    const NSClass* principalClass() const;

    /// The localized file first, then the common one; none where neither is there.
    std::optional<NSURL> URLForResourceWithExtension(const std::u16string& name, const std::u16string& extension) const;

    /// The text under `key`, even an empty one; where there is none, `value`, or the key itself if `value` is empty. An
    /// empty table name means "Localizable".
    std::u16string localizedStringForKeyValueTable(const std::u16string& key, const std::u16string& value,
                                                   const std::u16string& table) const;

    /// The languages for which the bundle has a folder, as they are spelt there.
    std::vector<std::string> localizations() const;
    /// The one that answers; empty where none fits.
    const std::string& preferredLocalization() const { return m_localization; }

private:
    using Table = std::map<std::u16string, std::u16string, std::less<>>;
    std::filesystem::path m_path;
    std::map<std::u16string, std::u16string, std::less<>> m_information;
    std::string m_localization;
    mutable std::map<std::u16string, Table, std::less<>> m_tables;
};

} // namespace platform
