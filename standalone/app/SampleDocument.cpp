// SPDX-License-Identifier: MIT
#include "SampleDocument.h"

#include "HostBundle.h"

#include <Foundation/NSUserDefaults.h>

#include <QImage>
#include <QImageReader>
#include <QProcess>

#include <engine/Stamper.h>
#include <qpdf/Buffer.hh>
#include <qpdf/QPDF.hh>
#include <qpdf/QPDFExc.hh>
#include <qpdf/QPDFPageDocumentHelper.hh>
#include <qpdf/QPDFPageObjectHelper.hh>
#include <qpdf/QPDFWriter.hh>
#include <qpdf/QUtil.hh>

#include <algorithm>
#include <cmath>
#include <fstream>

namespace app {

namespace fs = std::filesystem;

namespace {

constexpr char16_t pageKey[] = u"ImprinterSamplePage";
constexpr double resolution = 150;     // pixels per inch, as the supplied page has it
constexpr double mostPixels = 4e6;     // of a picture of a page
constexpr int longestDrawing = 15'000; // milliseconds
constexpr double letterWidth = 612;
constexpr double letterHeight = 792;

double resolutionFor(double width, double height) {
    const double inches = width * height / (72 * 72);
    return std::min(resolution, std::sqrt(mostPixels / std::max(inches, 1e-3)));
}

/// Width and height of a page as it is shown; those of a letter where the document says nothing of use.
std::pair<double, double> shownSizeOf(QPDFPageObjectHelper page) {
    const auto box = page.getCropBox().getArrayAsRectangle();
    const auto media = page.getMediaBox().getArrayAsRectangle();
    const double left = std::max(std::min(box.llx, box.urx), std::min(media.llx, media.urx));
    const double right = std::min(std::max(box.llx, box.urx), std::max(media.llx, media.urx));
    const double bottom = std::max(std::min(box.lly, box.ury), std::min(media.lly, media.ury));
    const double top = std::min(std::max(box.lly, box.ury), std::max(media.lly, media.ury));
    double width = right - left;
    double height = top - bottom;
    if (!(width > 0 && height > 0))
        std::tie(width, height) = std::pair(letterWidth, letterHeight);
    auto turn = page.getAttribute("/Rotate", false);
    if (turn.isInteger() && turn.getIntValue() / 90 % 2 != 0)
        std::swap(width, height);
    return {width, height};
}

bool isTiff(const fs::path& file) {
    std::string head(4, '\0');
    std::ifstream(file, std::ios::binary).read(head.data(), static_cast<std::streamsize>(head.size()));
    return head == std::string("II*\0", 4) || head == std::string("MM\0*", 4) || head == std::string("II+\0", 4) ||
           head == std::string("MM\0+", 4);
}

/// Reads a document. Older ciphers know a password as bytes of an encoding that depends on who set it.
void open(QPDF& document, const fs::path& file, const std::string& password) {
    document.setSuppressWarnings(true);
    const auto encodings =
        password.empty() ? std::vector<std::string>{{}} : QUtil::possible_repaired_encodings(password);
    for (const auto& encoded : encodings) {
        try {
            return document.processFile(file.c_str(), encoded.c_str());
        } catch (const QPDFExc& problem) {
            if (problem.getErrorCode() != qpdf_e_password || &encoded == &encodings.back())
                throw;
        }
    }
}

/// A document of that page alone, which everybody can read; null where it cannot be made.
std::shared_ptr<Buffer> decryptedPage(const fs::path& file, const std::string& password, std::size_t index) {
    try {
        QPDF whole;
        open(whole, file, password);
        QPDF alone;
        alone.emptyPDF();
        QPDFPageDocumentHelper(alone).addPage(QPDFPageDocumentHelper(whole).getAllPages().at(index), false);
        QPDFWriter writer(alone);
        writer.setOutputMemory();
        writer.write();
        return writer.getBufferSharedPointer();
    } catch (const std::exception&) {
        return nullptr;
    }
}

} // namespace

SampleDocument::SampleDocument(fs::path folder) : m_folder(std::move(folder)) {}

SampleDocument::~SampleDocument() {
    dropPicture();
}

void SampleDocument::dropPicture() {
    std::error_code none;
    if (!m_picture.empty())
        fs::remove(m_picture, none);
    m_picture.clear();
}

std::optional<QString> SampleDocument::read(const fs::path& file, const std::string& password,
                                            std::vector<Page>& pages) {
    m_lacksPassword = false;
    std::error_code error;
    if (!fs::exists(file, error))
        return text(u"The file does not exist.");
    if (!fs::is_regular_file(file, error))
        return text(u"The file cannot be read.");
    QImageReader reader(shown(file));
    reader.setDecideFormatFromContent(true);
    if (const auto format = reader.format(); format == "png" || format == "jpeg") {
        pages = {{}};
        return std::nullopt;
    }
    if (isTiff(file)) {
        engine::StampJob job;
        job.input = file;
        pages.resize(engine::countPages(job));
        return pages.empty() ? std::optional(text(u"The file is damaged.")) : std::nullopt;
    }
    try {
        QPDF document;
        open(document, file, password);
        for (const auto& page : QPDFPageDocumentHelper(document).getAllPages()) {
            const auto [width, height] = shownSizeOf(page);
            pages.push_back({width, height});
        }
        return pages.empty() ? std::optional(text(u"The file is damaged.")) : std::nullopt;
    } catch (const QPDFExc& problem) {
        m_lacksPassword = problem.getErrorCode() == qpdf_e_password;
        if (m_lacksPassword)
            return password.empty() ? text(u"The document needs a password.") : text(u"The password is wrong.");
        return text(u"Only PDF documents and PNG, JPEG and TIFF pictures can be the sample.");
    } catch (const std::exception&) {
        return text(u"The file cannot be read.");
    }
}

std::optional<QString> SampleDocument::choose(const fs::path& file, const std::string& password) {
    std::error_code none;
    const auto whole = fs::absolute(file, none);
    std::vector<Page> pages;
    if (auto problem = read(whole, password, pages))
        return problem;
    dropPicture();
    m_file = whole;
    m_password = password;
    m_pages = std::move(pages);
    m_page = 1;
    m_time = fs::last_write_time(m_file, none);
    remember();
    return std::nullopt;
}

void SampleDocument::chooseSupplied() {
    dropPicture();
    m_file.clear();
    m_password.clear();
    m_pages.clear();
    m_page = 1;
    remember();
}

std::optional<QString> SampleDocument::recall() {
    auto& defaults = platform::NSUserDefaults::standardUserDefaults();
    const auto file = defaults.stringForKey(fileKey);
    if (!file || file->empty())
        return std::nullopt;
    const auto page = toQt(defaults.stringForKey(pageKey).value_or(u"1")).toULongLong();
    if (auto problem = choose(toQt(*file).toStdString())) {
        chooseSupplied();
        return problem;
    }
    m_page = std::clamp<std::size_t>(page, 1, m_pages.size());
    remember();
    return std::nullopt;
}

void SampleDocument::remember() const {
    auto& defaults = platform::NSUserDefaults::standardUserDefaults();
    if (!isChosen()) {
        defaults.removeObjectForKey(fileKey);
        defaults.removeObjectForKey(pageKey);
        return;
    }
    defaults.setObjectForKey(shown(m_file).toStdU16String(), fileKey);
    defaults.setObjectForKey(QString::number(m_page).toStdU16String(), pageKey);
}

bool SampleDocument::step(int pages) {
    const auto last = static_cast<long long>(m_pages.size());
    const auto target = std::clamp(static_cast<long long>(m_page) + pages, 1LL, std::max(last, 1LL));
    if (!isChosen() || target == static_cast<long long>(m_page))
        return false;
    m_page = static_cast<std::size_t>(target);
    dropPicture();
    remember();
    return true;
}

std::optional<fs::path> SampleDocument::picture() {
    std::error_code error;
    const auto time = fs::last_write_time(m_file, error);
    if (error)
        return std::nullopt;
    if (time != m_time) {
        // It was written anew, and may have other pages now.
        const auto page = m_page;
        if (choose(fs::path(m_file), std::string(m_password)))
            return std::nullopt;
        m_page = std::min(page, m_pages.size());
        remember();
    }
    if (m_pages.front().width == 0)
        return m_file; // which is read as it is
    if (m_picture.empty()) {
        m_picture = m_folder / ("sample-" + std::to_string(m_page) + ".png");
        draw(m_picture);
    }
    return m_picture;
}

void SampleDocument::draw(const fs::path& target) const {
    const auto& page = m_pages[m_page - 1];
    const double dots = resolutionFor(page.width, page.height);
    QProcess program;
    // What is encrypted is handed over decrypted, and only the page that is shown: an argument or a file could be read
    // by others.
    const auto decrypted = m_password.empty() ? nullptr : decryptedPage(m_file, m_password, m_page - 1);
    if (!decrypted)
        program.setStandardInputFile(QProcess::nullDevice());
    program.setStandardOutputFile(QProcess::nullDevice());
    program.setStandardErrorFile(QProcess::nullDevice());
    const auto number = decrypted ? QStringLiteral("1") : QString::number(m_page);
    auto stem = target;
    stem.replace_extension();
    program.start(QStringLiteral("pdftoppm"),
                  {QStringLiteral("-png"), QStringLiteral("-singlefile"), QStringLiteral("-cropbox"),
                   QStringLiteral("-r"), QString::number(dots, 'f', 3), QStringLiteral("-f"), number,
                   QStringLiteral("-l"), number, decrypted ? QStringLiteral("-") : shown(m_file), shown(stem)});
    bool finished = program.waitForStarted();
    if (finished && decrypted) {
        program.write(reinterpret_cast<const char*>(decrypted->getBuffer()), static_cast<qint64>(decrypted->getSize()));
        program.closeWriteChannel();
    }
    finished = finished && program.waitForFinished(longestDrawing);
    if (!finished)
        program.kill();
    program.waitForFinished(1000);
    std::error_code none;
    if (finished && program.exitStatus() == QProcess::NormalExit && program.exitCode() == 0 && fs::exists(target, none))
        return;
    QImage blank(std::max(1, static_cast<int>(std::lround(page.width * dots / 72))),
                 std::max(1, static_cast<int>(std::lround(page.height * dots / 72))), QImage::Format_RGB32);
    blank.fill(Qt::white);
    const auto dotsPerMeter = static_cast<int>(std::lround(dots / 0.0254));
    blank.setDotsPerMeterX(dotsPerMeter);
    blank.setDotsPerMeterY(dotsPerMeter);
    blank.save(shown(target), "png");
}

} // namespace app
