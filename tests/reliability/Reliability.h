// SPDX-License-Identifier: MIT
#pragma once

#include <cstdlib>
#include <iostream>
#include <random>
#include <string>

namespace reliability {

/// How often a test repeats what it does; a short run unless the environment asks for a long one.
inline int rounds(int few) {
    const char* asked = std::getenv("RELIABILITY_ROUNDS");
    return asked ? std::atoi(asked) : few;
}

/// The seed of a run, told so that it can be repeated.
inline unsigned seed() {
    const char* asked = std::getenv("RELIABILITY_SEED");
    const auto chosen = asked ? static_cast<unsigned>(std::strtoul(asked, nullptr, 10)) : std::random_device()();
    std::cout << "seed " << chosen << std::endl;
    return chosen;
}

/// Changes the store as a window does, one round for each byte that comes in; prints what has to be there at the end.
int runWindow(const std::string& name, const std::string& store, unsigned seed);

} // namespace reliability
