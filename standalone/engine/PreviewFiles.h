// SPDX-License-Identifier: MIT
#pragma once

#include <sys/types.h>

#include <filesystem>
#include <map>
#include <optional>
#include <string>
#include <string_view>

namespace engine {

/// Rows of a picture.
struct Rows {
    int first = 0;
    int count = 0;
};

/// Puts pictures that differ in a few rows from one base into files, again and again, for the price of those rows.
///
/// A picture is made in a spare file, a former result whose rows are first set right, and changes places with the
/// result it replaces in one step: whoever opens a name meets a whole file. A spare that somebody still reads is left
/// to him, and a new one is made. The spare lies in the folder too, and goes with this object.
class PreviewFiles {
public:
    explicit PreviewFiles(std::filesystem::path folder);
    ~PreviewFiles();
    PreviewFiles(const PreviewFiles&) = delete;
    PreviewFiles& operator=(const PreviewFiles&) = delete;

    /// What the files are made of: `header`, then rows of `rowSize` bytes from `pixels`, which must stay as it is. What
    /// was written before counts as foreign.
    void setBase(std::string header, const char* pixels, int rowCount, std::size_t rowSize);

    /// Makes the file `name` the base with `rows` replaced by what lies at `band`. Raises std::system_error.
    std::filesystem::path put(const std::string& name, const char* band, Rows rows);
    /// Removes the file, if it was made here.
    void remove(const std::string& name);

private:
    /// One file and where it differs from the base.
    struct Known {
        ino_t inode = 0;
        Rows rows;
    };

    int openSpare(Known& spare);
    void writeRows(int descriptor, const char* from, Rows rows) const;
    void dropSpare();

    std::filesystem::path m_folder;
    std::filesystem::path m_sparePath;
    std::string m_header;
    const char* m_pixels = nullptr;
    int m_rowCount = 0;
    std::size_t m_rowSize = 0;
    std::optional<Known> m_spare;
    std::map<std::string, Known> m_results;
};

} // namespace engine
