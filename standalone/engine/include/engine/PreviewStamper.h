// SPDX-License-Identifier: MIT
#pragma once

#include <engine/Outcome.h>
#include <host/ImprinterConfiguration.h>

#include <chrono>
#include <memory>

namespace engine {

/// Stamps a sample picture again and again while somebody edits a configuration.
///
/// The sample is decoded once, as long as its path, time and size stay the same, and faces stay open. Results are
/// bitmaps (BMP, 32 bits, rows from the top), which cost least to write and to load. Not for several threads at once.
class PreviewStamper {
public:
    /// Results go into `folder`, an existing folder of the user's own, beside a spare file that the next one is made
    /// in.
    explicit PreviewStamper(const std::filesystem::path& folder, std::string defaultFont = "DejaVuSans");
    ~PreviewStamper();

    /// What the sample is a picture of.
    struct Page {
        std::size_t number = 1;
        std::size_t count = 1;
        std::u16string recordName; ///< Empty: the sample's file name without its extension.
        /// A page that the configuration is not meant for bears no stamp.
        bool choosesPages = false;
    };
    /// For what is stamped from now on; page 1 of 1 before, whatever pages a configuration is meant for.
    void setPage(Page page);

    /// Stamps `configuration` onto the PNG or JPEG picture `sample`, or onto that page of a TIFF file. A blank title
    /// gives the sample itself.
    ///
    /// The outcome's path names the result. Each configuration has two names, which take turns, so that a viewer that
    /// compares names sees the change; a file is whole as soon as its name is given out, and stays so until three other
    /// configurations were stamped.
    Outcome stamp(const std::filesystem::path& sample,
                  const std::shared_ptr<host::ImprinterConfiguration>& configuration,
                  std::chrono::system_clock::time_point now = std::chrono::system_clock::now());

    /// The same into the file whose name was given out last for the configuration, so that whoever reads it again sees
    /// the change; as `stamp` where none was.
    Outcome stampAgain(const std::filesystem::path& sample,
                       const std::shared_ptr<host::ImprinterConfiguration>& configuration,
                       std::chrono::system_clock::time_point now = std::chrono::system_clock::now());

private:
    Outcome stampInto(bool sameName, const std::filesystem::path& sample,
                      const std::shared_ptr<host::ImprinterConfiguration>& configuration,
                      std::chrono::system_clock::time_point now);

    struct State;
    std::unique_ptr<State> m_state;
};

} // namespace engine
