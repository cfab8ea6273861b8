// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

#include <filesystem>
#include <optional>
#include <vector>

namespace app {

/// The user's own document that previews show in place of the supplied sample page: a PDF document, of which one page
/// at a time is shown, a TIFF file, likewise, or a PNG or JPEG picture. It is remembered in the user's settings; the
/// password of an encrypted document is not, nor is it written anywhere.
///
/// Pages are drawn by the program `pdftoppm`, in a process of its own with a bounded time: what is wrong with a
/// document ends that one. Where it is missing or fails, a page is blank, and has its size and turn all the same.
class SampleDocument {
public:
    /// Under which the file is remembered.
    static constexpr char16_t fileKey[] = u"ImprinterSampleDocument";

    /// Pictures of pages go into `folder`, which belongs to this program.
    explicit SampleDocument(std::filesystem::path folder);
    ~SampleDocument();

    /// From now on this document. Answers why it cannot be, in the user's language; the former one then stays.
    std::optional<QString> choose(const std::filesystem::path& file, const std::string& password = {});
    /// Whether a password was what the last choice lacked.
    bool lacksPassword() const { return m_lacksPassword; }
    /// From now on the supplied page.
    void chooseSupplied();
    /// Takes the remembered one up again. Answers why that is impossible; it is then remembered no more.
    std::optional<QString> recall();

    bool isChosen() const { return !m_file.empty(); }
    const std::filesystem::path& file() const { return m_file; }
    std::size_t page() const { return m_page; } ///< From 1.
    std::size_t pageCount() const { return m_pages.size(); }
    /// Goes on by that many pages, back with a negative number, as far as there are pages. NO where that is not at all.
    bool step(int pages);

    /// A picture of the page as it is, made where it is not there yet; none where the document is gone.
    std::optional<std::filesystem::path> picture();

private:
    /// The size of a page as it is shown, in points; nothing for a page of a picture.
    struct Page {
        double width = 0;
        double height = 0;
    };

    std::optional<QString> read(const std::filesystem::path& file, const std::string& password,
                                std::vector<Page>& pages);
    void draw(const std::filesystem::path& target) const;
    void remember() const;
    void dropPicture();

    std::filesystem::path m_folder;
    std::filesystem::path m_file;
    std::vector<Page> m_pages;
    std::string m_password; // empty for one that needs none
    bool m_lacksPassword = false;
    std::size_t m_page = 1;
    std::filesystem::path m_picture; // of a page of a document
    std::filesystem::file_time_type m_time;
};

} // namespace app
