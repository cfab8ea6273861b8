// SPDX-License-Identifier: MIT
#pragma once

#include <engine/Warning.h>

#include <filesystem>
#include <string>
#include <vector>

namespace engine {

enum class Code {
    ok,
    unreadable,      ///< The input cannot be opened or read.
    otherKind,       ///< The input is no kind of file that can be stamped, whatever its name says.
    unsupported,     ///< The input is of a known kind, in a form that cannot be stamped.
    damaged,         ///< The input is of a known kind, but broken.
    encrypted,       ///< The password is missing or wrong.
    notPermitted,    ///< The document forbids changes, and the owner's password was not given.
    isSigned,        ///< Stamping would break a signature, and the job does not allow that.
    certified,       ///< The document is certified against any change of its pages.
    tooLarge,        ///< A picture of more than `kLargestPicture` pixels.
    noMemory,        ///< The machine, or what the program may take of it, has too little memory for the file.
    nothingToStamp,  ///< No page is chosen, or the title is blank.
    nothingToRemove, ///< No page bears a stamp that could be removed.
    sameFile,        ///< Output and input are one file, and the job does not say in place.
    writeProtected,  ///< The file that would be replaced may not be written, and the job does not say that it shall be.
    cannotWrite,     ///< The output cannot be written.
    changed,         ///< Somebody changed the input in the meantime.
    cancelled,       ///< The job's progress function answered no.
};

/// Pictures of more pixels are refused: decoded with 16 bits a channel such a one takes 800 MB.
inline constexpr long long kLargestPicture = 100'000'000;

/// A stamp that a document bears.
struct FoundStamp {
    std::string identifier;         ///< Of its configuration; UTF-8.
    std::vector<std::size_t> pages; ///< Ascending, from 1.
};

/// How a run ended. Texts are UTF-8.
struct Outcome {
    Code code = Code::ok;
    std::string sentence;          ///< For people; says what went wrong, or what was done.
    std::filesystem::path path;    ///< The file concerned: the output where all went well.
    std::vector<Warning> warnings; ///< By their English sentences.
    std::size_t pagesStamped = 0;
    std::vector<FoundStamp> stamps = {}; ///< Where they were asked for.

    explicit operator bool() const { return code == Code::ok; }
};

} // namespace engine
