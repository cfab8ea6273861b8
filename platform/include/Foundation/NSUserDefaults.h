// SPDX-License-Identifier: MIT
#pragma once

#include <Foundation/NSObject.h>

#include <optional>

namespace platform {

/// The user's settings, kept in a file by the toolkit; a host writes them, the pane only reads.
class NSUserDefaults {
public:
    virtual ~NSUserDefaults();
    static NSUserDefaults& standardUserDefaults();
    /// Puts another store in place, for a test or for a host with settings of its own; null gives the user's back.
    static void setStandardUserDefaults(std::shared_ptr<NSUserDefaults> defaults);

    /// None when absent.
    virtual std::optional<std::u16string> stringForKey(const std::u16string& key) const = 0;
    virtual void setObjectForKey(const std::u16string& value, const std::u16string& key) = 0;
    virtual void removeObjectForKey(const std::u16string& key) = 0;

    /// Absent: NO. A text counts as YES when it starts, after sign and zeros, with Y, T or a digit from 1 to 9.
    bool boolForKey(const std::u16string& key) const;
    void setBoolForKey(bool value, const std::u16string& key);
};

} // namespace platform
