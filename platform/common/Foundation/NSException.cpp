// SPDX-License-Identifier: MIT
#include <Foundation/NSException.h>

#include <array>
#include <chrono>
#include <cstdio>
#include <ctime>
#include <unistd.h>

namespace platform {

NSException::NSException(std::string name, std::string reason) : m_name(std::move(name)), m_reason(std::move(reason)) {}
NSException::~NSException() = default;

NSRangeException::NSRangeException(const std::string& reason)
    : NSException("NSRangeException", reason), std::out_of_range(reason) {}

NSInvalidArgumentException::NSInvalidArgumentException(const std::string& reason)
    : NSException("NSInvalidArgumentException", reason), std::invalid_argument(reason) {}

void NSLog(const std::string& line) noexcept {
    const auto now = std::chrono::system_clock::to_time_t(std::chrono::system_clock::now());
    std::tm local{};
    localtime_r(&now, &local);
    std::array<char, 32> date{};
    std::strftime(date.data(), date.size(), "%Y-%m-%d %H:%M:%S", &local);
    std::fprintf(stderr, "%s imprinter[%d] %s\n", date.data(), static_cast<int>(getpid()), line.c_str());
}

void runGuarded(const std::function<void()>& handler) noexcept {
    try {
        handler();
    } catch (const NSException& exception) {
        NSLog(exception.name() + ": " + exception.description());
    } catch (const std::exception& exception) {
        NSLog(std::string("exception: ") + exception.what());
    } catch (...) {
        NSLog("exception of unknown type");
    }
}

} // namespace platform
