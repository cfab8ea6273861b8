// SPDX-License-Identifier: MIT
#pragma once

#include <Foundation/NSObject.h>

#include <functional>
#include <stdexcept>

namespace platform {

/// An error of the vocabulary: a name and a reason, both texts for developers. It is no std::exception itself, so that
/// the range and the argument error can be what the standard library's own are.
class NSException {
public:
    NSException(std::string name, std::string reason);
    virtual ~NSException();

    const std::string& name() const { return m_name; }
    const std::string& reason() const { return m_reason; }
    /// The reason, or the name where there is no reason.
    const std::string& description() const { return m_reason.empty() ? m_name : m_reason; }

private:
    std::string m_name;
    std::string m_reason;
};

/// NSRangeException: an index beyond the end of what it counts.
class NSRangeException final : public NSException, public std::out_of_range {
public:
    explicit NSRangeException(const std::string& reason);
};

/// NSInvalidArgumentException: an argument that the message cannot take.
class NSInvalidArgumentException final : public NSException, public std::invalid_argument {
public:
    explicit NSInvalidArgumentException(const std::string& reason);
};

/// Writes one line to standard error, prefixed with date, program and process number; never throws.
void NSLog(const std::string& line) noexcept;

/// The outer edge of the program: runs `handler`, and an exception that leaves it is logged and ends there.
void runGuarded(const std::function<void()>& handler) noexcept;

} // namespace platform
