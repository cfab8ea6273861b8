// SPDX-License-Identifier: MIT
// What stamping costs beside the plain rewrite `qpdf in out` and beside other stampers, in one run: the commands take
// turns, and medians of their wall-clock times are compared. The inputs are generated: light text pages, each of which
// gets a title of its own, and pages that are nothing but a scan. Also an A4 JPEG, 100 files with one and two jobs, and
// how time and memory grow.
//   stamping [--quick] [--only light|shared|scans|jpeg|jobs|growth] IMPRINTER
// With --quick the inputs are small and nothing is claimed. Otherwise a claim whose peer is missing or failed fails,
// since nothing was shown.

#include <algorithm>
#include <array>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iostream>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include <fcntl.h>
#include <sched.h>
#include <spawn.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <jpeglib.h>
#include <zlib.h>

namespace {

namespace fs = std::filesystem;
using Clock = std::chrono::steady_clock;

int failures = 0;
bool isQuick = false;

/// Says that something cannot be compared, which is a failure where anything is claimed.
void miss(const std::string& what, const char* why) {
    failures += isQuick ? 0 : 1;
    std::printf("  FAILS %s %s, so that nothing is shown against it\n", what.c_str(), why);
}

void claim(const std::string& what, double measured, double limit, const std::string& unit = {}) {
    const bool holds = measured <= limit;
    failures += holds ? 0 : 1;
    std::printf("  %s %s: %.2f%s (claim: at most %.2f)\n", holds ? "holds" : "FAILS", what.c_str(), measured,
                unit.c_str(), limit);
}

// --- Running programs
// -------------------------------------------------------------------------------------------------

struct Cost {
    double seconds = 0;
    double processor = 0; ///< Seconds of all cores.
    double peak = 0;      ///< MiB
    bool ran = false;
};

/// `where`: the only core it may run on; -1 for any.
Cost run(const std::vector<std::string>& command, int where = -1) {
    std::vector<char*> arguments;
    arguments.reserve(command.size() + 1);
    for (const auto& argument : command)
        arguments.push_back(const_cast<char*>(argument.c_str())); // as posix_spawnp asks
    arguments.push_back(nullptr);
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, 1, "/dev/null", O_WRONLY, 0);
    posix_spawn_file_actions_adddup2(&actions, 1, 2);
    cpu_set_t old;
    sched_getaffinity(0, sizeof old, &old);
    if (where >= 0) {
        cpu_set_t one;
        CPU_ZERO(&one);
        CPU_SET(static_cast<unsigned>(where), &one);
        sched_setaffinity(0, sizeof one, &one);
    }
    pid_t child = 0;
    const auto start = Clock::now();
    const bool started = ::posix_spawnp(&child, arguments[0], &actions, nullptr, arguments.data(), environ) == 0;
    if (where >= 0)
        sched_setaffinity(0, sizeof old, &old);
    posix_spawn_file_actions_destroy(&actions);
    Cost cost;
    if (!started)
        return cost;
    int status = 0;
    rusage usage{};
    ::wait4(child, &status, 0, &usage);
    cost.seconds = std::chrono::duration<double>(Clock::now() - start).count();
    const auto seconds = [](const timeval& time) {
        return static_cast<double>(time.tv_sec) + 1e-6 * static_cast<double>(time.tv_usec);
    };
    cost.processor = seconds(usage.ru_utime) + seconds(usage.ru_stime);
    cost.peak = static_cast<double>(usage.ru_maxrss) / 1024;
    cost.ran = WIFEXITED(status) && WEXITSTATUS(status) == 0;
    return cost;
}

bool installed(const std::string& program) {
    return run({"sh", "-c", "command -v " + program}).ran;
}

double median(std::vector<double> values) {
    std::sort(values.begin(), values.end());
    return values.empty() ? 0 : values[values.size() / 2];
}

struct Contender {
    std::string name;
    std::vector<std::string> command;
    fs::path output;
    int atMost = 99; ///< Turns; slow ones need fewer.
    std::vector<double> times{};
    std::vector<double> processor{};
    double peak = 0;
    bool out = false;

    double time() const { return median(times); }
};

/// Lets the contenders take turns; the first is the floor.
void race(std::vector<Contender>& contenders, int turns, double inputSize, double pages) {
    for (int turn = 0; turn < turns; ++turn)
        for (auto& contender : contenders) {
            if (contender.out || turn >= contender.atMost)
                continue;
            fs::remove(contender.output);
            const auto cost = run(contender.command);
            if (!cost.ran || !fs::exists(contender.output)) {
                contender.out = true;
                miss(contender.name, "could not be run");
                continue;
            }
            contender.times.push_back(cost.seconds);
            contender.processor.push_back(cost.processor);
            contender.peak = std::max(contender.peak, cost.peak);
        }
    if (contenders.front().out)
        return;
    const double floor = contenders.front().time();
    const double floorSize = static_cast<double>(fs::file_size(contenders.front().output));
    for (const auto& contender : contenders) {
        if (contender.out)
            continue;
        const auto size = static_cast<double>(fs::file_size(contender.output));
        std::printf("  %-34s %7.3f s  ratio %6.2f  cores %5.3f s  peak %5.0f MiB  growth %7.0f bytes a page over the "
                    "floor, %.0f over the input\n",
                    contender.name.c_str(), contender.time(), contender.time() / floor, median(contender.processor),
                    contender.peak, (size - floorSize) / pages, (size - inputSize) / pages);
    }
}

/// The bytes of the fonts that a document embeds; its objects are not in streams.
double fontsIn(const fs::path& path) {
    std::ifstream stream(path, std::ios::binary);
    const std::string bytes((std::istreambuf_iterator<char>(stream)), {});
    const auto numberAfter = [&bytes](std::size_t at) {
        at = std::min(bytes.find_first_of("0123456789", at), bytes.size());
        return std::strtoul(bytes.c_str() + at, nullptr, 10);
    };
    double sum = 0;
    constexpr std::string_view key = "/FontFile";
    for (auto at = bytes.find(key); at != std::string::npos; at = bytes.find(key, at + 1)) {
        // Behind the digit that says which kind of file it is.
        const auto object = bytes.rfind("\n" + std::to_string(numberAfter(at + key.size() + 1)) + " 0 obj");
        if (object != std::string::npos)
            sum += static_cast<double>(numberAfter(bytes.find("/Length ", object)));
    }
    return sum;
}

// --- Generating the inputs
// ----------------------------------------------------------------------------------------------

std::string deflated(const std::string& plain) {
    uLongf size = ::compressBound(static_cast<uLong>(plain.size()));
    std::string result(size, '\0');
    ::compress(reinterpret_cast<Bytef*>(result.data()), &size, reinterpret_cast<const Bytef*>(plain.data()),
               static_cast<uLong>(plain.size()));
    result.resize(size);
    return result;
}

/// A PDF file written object by object.
class Document {
public:
    explicit Document(const fs::path& path) : m_stream(path, std::ios::binary) { put("%PDF-1.4\n%\xE2\xE3\xCF\xD3\n"); }

    std::size_t reserve() {
        m_offsets.push_back(0);
        return m_offsets.size();
    }
    void set(std::size_t number, const std::string& body) {
        m_offsets[number - 1] = m_at;
        put(std::to_string(number) + " 0 obj\n" + body + "\nendobj\n");
    }
    std::size_t add(const std::string& body) {
        const auto number = reserve();
        set(number, body);
        return number;
    }
    std::size_t addStream(const std::string& entries, const std::string& data) {
        return add("<< " + entries + " /Length " + std::to_string(data.size()) + " >>\nstream\n" + data +
                   "\nendstream");
    }
    void finish(std::size_t root) {
        const auto start = m_at;
        put("xref\n0 " + std::to_string(m_offsets.size() + 1) + "\n0000000000 65535 f \n");
        for (const auto offset : m_offsets) {
            char line[24];
            std::snprintf(line, sizeof line, "%010zu 00000 n \n", offset);
            put(line);
        }
        put("trailer\n<< /Size " + std::to_string(m_offsets.size() + 1) + " /Root " + std::to_string(root) +
            " 0 R >>\nstartxref\n" + std::to_string(start) + "\n%%EOF\n");
    }

private:
    void put(const std::string& bytes) {
        m_stream << bytes;
        m_at += bytes.size();
    }
    std::ofstream m_stream;
    std::vector<std::size_t> m_offsets;
    std::size_t m_at = 0;
};

/// `makePage` adds a page's content and answers the entries of its dictionary.
void writeDocument(const fs::path& path, int pages, const std::function<std::string(Document&, int)>& makePage) {
    Document document(path);
    const auto tree = document.reserve();
    const auto font = document.add("<< /Type /Font /Subtype /Type1 /BaseFont /Helvetica >>");
    std::vector<std::string> groups; // of 64 pages, as producers nest them
    std::string kids;
    int count = 0;
    auto group = document.reserve();
    const auto close = [&] {
        document.set(group, "<< /Type /Pages /Parent " + std::to_string(tree) + " 0 R /Count " + std::to_string(count) +
                                " /Kids [" + kids + "] >>");
        groups.push_back(std::to_string(group) + " 0 R ");
        kids.clear();
        count = 0;
    };
    for (int page = 0; page < pages; ++page) {
        if (count == 64) {
            close();
            group = document.reserve();
        }
        const auto entries = makePage(document, page);
        const auto resources = entries.find("/Resources") == std::string::npos
                                   ? " /Resources << /Font << /F1 " + std::to_string(font) + " 0 R >> >> "
                                   : std::string(" ");
        kids += std::to_string(document.add("<< /Type /Page /Parent " + std::to_string(group) +
                                            " 0 R /MediaBox [0 0 595 842]" + resources + entries + " >>")) +
                " 0 R ";
        ++count;
    }
    close();
    std::string all;
    for (const auto& one : groups)
        all += one;
    document.set(tree, "<< /Type /Pages /Count " + std::to_string(pages) + " /Kids [" + all + "] >>");
    document.finish(document.add("<< /Type /Catalog /Pages " + std::to_string(tree) + " 0 R >>"));
}

unsigned nextRandom() {
    static unsigned state = 12345;
    state = state * 1664525U + 1013904223U;
    return state >> 8;
}

/// Text pages: 1.3 KB of content as it is stored.
void writeLight(const fs::path& path, int pages) {
    writeDocument(path, pages, [](Document& document, int page) {
        std::string content = "BT /F1 11 Tf 72 770 Td 14 TL\n";
        for (int line = 0; line < 28; ++line) {
            content += '(';
            for (int word = 0; word < 9; ++word) {
                for (unsigned letter = 0, letters = 2 + nextRandom() % 7; letter < letters; ++letter)
                    content += static_cast<char>('a' + nextRandom() % 26 * (nextRandom() % 3) / 3);
                content += ' ';
            }
            content += ") Tj T*\n";
        }
        content += "(Page " + std::to_string(page + 1) + ") Tj ET\n";
        return "/Contents " + std::to_string(document.addStream("/Filter /FlateDecode", deflated(content))) + " 0 R";
    });
}

std::string noise(int width, int height, int quality) {
    jpeg_compress_struct info{};
    jpeg_error_mgr errors{};
    info.err = jpeg_std_error(&errors);
    jpeg_create_compress(&info);
    unsigned char* bytes = nullptr;
    unsigned long size = 0;
    jpeg_mem_dest(&info, &bytes, &size);
    info.image_width = static_cast<JDIMENSION>(width);
    info.image_height = static_cast<JDIMENSION>(height);
    info.input_components = 3;
    info.in_color_space = JCS_RGB;
    jpeg_set_defaults(&info);
    jpeg_set_quality(&info, quality, TRUE);
    info.density_unit = 1;
    info.X_density = info.Y_density = 150;
    jpeg_start_compress(&info, TRUE);
    std::vector<JSAMPLE> line(static_cast<std::size_t>(width) * 3);
    while (info.next_scanline < info.image_height) {
        for (auto& sample : line)
            sample = static_cast<JSAMPLE>(200 + nextRandom() % 56);
        JSAMPROW row = line.data();
        jpeg_write_scanlines(&info, &row, 1);
    }
    jpeg_finish_compress(&info);
    std::string result(reinterpret_cast<const char*>(bytes), size);
    jpeg_destroy_compress(&info);
    std::free(bytes);
    return result;
}

/// Pages of one picture of about 250 KB each; a comment inside makes each another.
void writeScans(const fs::path& path, int pages) {
    const int width = 1240;
    const int height = 1754;
    int quality = 10;
    auto picture = noise(width, height, quality);
    while (picture.size() < 250000 && quality < 95)
        picture = noise(width, height, quality += 5);
    writeDocument(path, pages, [&](Document& document, int page) {
        auto number = std::to_string(10000 + page);
        const auto data = picture.substr(0, 2) + std::string("\xff\xfe\x00\x0apage", 8) +
                          number.substr(number.size() - 4) + picture.substr(2);
        const auto image = document.addStream(
            "/Type /XObject /Subtype /Image /Filter /DCTDecode /ColorSpace /DeviceRGB /BitsPerComponent 8 /Width " +
                std::to_string(width) + " /Height " + std::to_string(height),
            data);
        const auto content = document.addStream("", "q 595 0 0 842 0 0 cm /Im0 Do Q\n");
        return "/Contents " + std::to_string(content) + " 0 R /Resources << /XObject << /Im0 " + std::to_string(image) +
               " 0 R >> >>";
    });
}

/// Pages in whose resources stand the pictures of all of them.
void writeShared(const fs::path& path, int pages) {
    Document document(path);
    const auto tree = document.reserve();
    const auto resources = document.reserve();
    std::string pictures;
    std::string kids;
    for (int page = 0; page < pages; ++page) {
        const auto name = " /Im" + std::to_string(page);
        const auto picture = document.addStream(
            "/Type /XObject /Subtype /Image /Width 1 /Height 1 /BitsPerComponent 8 /ColorSpace /DeviceGray", "\x80");
        pictures += name + ' ' + std::to_string(picture) + " 0 R";
        const auto content = document.addStream("", "q 300 0 0 200 0 0 cm" + name + " Do Q");
        kids += std::to_string(document.add("<< /Type /Page /Parent " + std::to_string(tree) +
                                            " 0 R /MediaBox [0 0 595 842] /Resources " + std::to_string(resources) +
                                            " 0 R /Contents " + std::to_string(content) + " 0 R >>")) +
                " 0 R ";
    }
    document.set(resources, "<< /XObject <<" + pictures + " >> >>");
    document.set(tree, "<< /Type /Pages /Count " + std::to_string(pages) + " /Kids [" + kids + "] >>");
    document.finish(document.add("<< /Type /Catalog /Pages " + std::to_string(tree) + " 0 R >>"));
}

/// The same stamp by other means: two runs of embedded fonts, a border and a translucent fill.
const char kOverlayScript[] = R"(import io, sys
import pikepdf
from reportlab.pdfbase import pdfmetrics
from reportlab.pdfbase.ttfonts import TTFont
from reportlab.pdfgen import canvas
folder = "/usr/share/fonts/truetype/dejavu/"
pdfmetrics.registerFont(TTFont("Bold", folder + "DejaVuSans-Bold.ttf"))
pdfmetrics.registerFont(TTFont("Regular", folder + "DejaVuSans.ttf"))
document = pikepdf.open(sys.argv[1])
count = len(document.pages)
buffer = io.BytesIO()
painter = canvas.Canvas(buffer, pagesize=(595, 842))
for number in range(1, count + 1):
    first = "No. %d" % number
    second = " of %d" % count
    width = pdfmetrics.stringWidth(first, "Bold", 12) + pdfmetrics.stringWidth(second, "Regular", 10)
    left = 595 - 18 - width - 9
    painter.setFillColorRGB(1, 1, 0.5, 0.5)
    painter.setStrokeColorRGB(0.8, 0.1, 0.1)
    painter.setLineWidth(1.5)
    painter.rect(left, 18, width + 9, 23, fill=1)
    painter.setFillColorRGB(0.8, 0.1, 0.1, 1)
    painter.setFont("Bold", 12)
    painter.drawString(left + 4.5, 26, first)
    painter.setFillColorRGB(0, 0, 0, 1)
    painter.setFont("Regular", 10)
    painter.drawString(left + 4.5 + pdfmetrics.stringWidth(first, "Bold", 12), 26, second)
    painter.showPage()
painter.save()
buffer.seek(0)
overlay = pikepdf.open(buffer)
for page, stamp in zip(document.pages, overlay.pages):
    page.add_overlay(stamp)
document.save(sys.argv[2])
)";

/// Two runs, placeholders, a border and a translucent fill.
const char kStore[] = R"({"format": "imprinter-configurations", "version": 1, "configurations": [{
"uniqueID": "0F0E2C5A-5B1C-4B7E-8E55-5D3C0F1B9A77", "name": "Bench", "titleTokens": [
{"fullFontName": "DejaVuSans-Bold", "fontSize": 12, "colour": {"sRGB": [0.8, 0.1, 0.1, 1]}}, "No. ", "%pageNumber%",
{"fullFontName": "DejaVuSans", "fontSize": 10, "colour": {"gray": [0, 1]}}, " of ", "%recordPageCount%"],
"position": 8, "borderEnabled": true, "borderStyle": 1, "borderThickness": 1.5,
"borderColour": {"sRGB": [0.8, 0.1, 0.1, 1]}, "fillEnabled": true, "fillColour": {"sRGB": [1, 1, 0.5, 1]},
"fillOpacity": 0.5}]})";

// --- The parts
// -------------------------------------------------------------------------------------------------------------

struct Bench {
    fs::path folder;
    std::string imprinter;
    bool quick = false;

    std::vector<std::string> stamp(const fs::path& in, const fs::path& out,
                                   const std::vector<std::string>& more = {}) const {
        std::vector<std::string> command{imprinter,  "--store",         (folder / "store.json").string(),
                                         "stamp",    "--configuration", "Bench",
                                         "--output", out.string(),      in.string()};
        command.insert(command.end() - 1, more.begin(), more.end());
        return command;
    }

    void light(int pages, int turns, bool withPeers) const {
        const auto in = folder / "light.pdf";
        const auto overlay = folder / "overlay.pdf";
        writeLight(in, pages);
        const auto out = [&](const char* name) { return folder / (std::string(name) + ".pdf"); };
        std::vector<Contender> contenders{
            {"qpdf in out (floor)", {"qpdf", in, out("floor")}, out("floor")},
            {"imprinter, incremental", stamp(in, out("incremental"), {"--incremental"}), out("incremental")},
            {"imprinter, rewritten", stamp(in, out("rewritten"), {"--rewrite"}), out("rewritten")}};
        if (withPeers) {
            // What is stamped, alone on empty pages: those who stamp with an overlay get it ready made.
            writeDocument(folder / "blank.pdf", pages, [](Document&, int) { return std::string(); });
            if (!run(stamp(folder / "blank.pdf", overlay, {"--rewrite"})).ran)
                ++failures;
            std::ofstream(folder / "overlay.py") << kOverlayScript;
            contenders.push_back(
                {"qpdf --overlay, ready made", {"qpdf", in, "--overlay", overlay, "--", out("qpdf")}, out("qpdf"), 3});
            if (!installed("pdftk"))
                miss("pdftk multistamp", "is not installed");
            else
                contenders.push_back({"pdftk multistamp, ready made",
                                      {"pdftk", in, "multistamp", overlay, "output", out("pdftk")},
                                      out("pdftk"),
                                      3});
            if (!run({"/usr/bin/python3", "-c", "import pikepdf, reportlab"}).ran)
                miss("pikepdf with reportlab", "is not installed");
            else
                contenders.push_back({"pikepdf with reportlab",
                                      {"/usr/bin/python3", folder / "overlay.py", in, out("pikepdf")},
                                      out("pikepdf"),
                                      3});
        }
        std::printf("%d light pages\n", pages);
        const auto inputSize = static_cast<double>(fs::file_size(in));
        race(contenders, turns, inputSize, pages);
        const auto& floor = contenders[0];
        const auto& incremental = contenders[1];
        const auto& rewritten = contenders[2];
        if (quick || floor.out || incremental.out || rewritten.out)
            return;
        claim("incremental to floor", incremental.time() / floor.time(), 1.8);
        claim("rewrite to floor", rewritten.time() / floor.time(), 2.4);
        if (pages >= 10000) {
            claim("peak memory, incremental to floor", incremental.peak / floor.peak, 2.0);
            claim("peak memory, rewrite to floor", rewritten.peak / floor.peak, 2.0);
        }
        // The subsets of the fonts are no growth of a page.
        const auto growth = [&](const Contender& contender, double before) {
            const double fonts = fontsIn(contender.output);
            if (fonts <= 0)
                miss("growth", "has no fonts to leave out");
            return (static_cast<double>(fs::file_size(contender.output)) - before - fonts) / pages;
        };
        claim("growth, incremental", growth(incremental, inputSize), 800, " bytes a page");
        claim("growth, rewritten", growth(rewritten, static_cast<double>(fs::file_size(floor.output))), 600,
              " bytes a page");
        for (std::size_t i = 3; i < contenders.size(); ++i) {
            const auto& peer = contenders[i];
            if (peer.out)
                continue;
            const bool isPdftk = peer.name.starts_with("pdftk");
            const bool isQpdf = peer.name.starts_with("qpdf");
            claim("incremental to " + peer.name, incremental.time() / peer.time(),
                  1.0 / (isPdftk  ? 5
                         : isQpdf ? 4
                                  : 8));
            claim("rewrite to " + peer.name, rewritten.time() / peer.time(), 1.0 / (isPdftk ? 4 : isQpdf ? 3 : 7));
        }
    }

    /// Pages that share one list of as many pictures.
    void shared(int pages, int turns) const {
        const auto in = folder / "shared.pdf";
        writeShared(in, pages);
        std::printf("%d pages that share a list of %d pictures\n", pages, pages);
        const auto out = [&](const char* name) { return folder / (std::string(name) + ".pdf"); };
        std::vector<Contender> contenders{
            {"qpdf in out (floor)", {"qpdf", in, out("floor")}, out("floor")},
            {"imprinter, incremental", stamp(in, out("incremental"), {"--incremental"}), out("incremental")},
            {"imprinter, rewritten", stamp(in, out("rewritten"), {"--rewrite"}), out("rewritten")}};
        const auto inputSize = static_cast<double>(fs::file_size(in));
        race(contenders, turns, inputSize, pages);
        if (!quick && !contenders[0].out && !contenders[1].out && !contenders[2].out) {
            claim("incremental to floor", contenders[1].time() / contenders[0].time(), 1.8);
            claim("rewrite to floor", contenders[2].time() / contenders[0].time(), 2.4);
            const auto growth = [pages](const Contender& contender, double before) {
                return (static_cast<double>(fs::file_size(contender.output)) - before - fontsIn(contender.output)) /
                       pages;
            };
            // Whatever the length of the list, which each page would else have for itself.
            claim("growth, incremental", growth(contenders[1], inputSize), 800, " bytes a page");
            claim("growth, rewritten", growth(contenders[2], static_cast<double>(fs::file_size(contenders[0].output))),
                  800, " bytes a page");
        }
        fs::remove(in);
    }

    void scans(int pages, int turns) const {
        const auto in = folder / "scans.pdf";
        writeScans(in, pages);
        std::printf("%d scanned pages, %.0f MB\n", pages, static_cast<double>(fs::file_size(in)) / 1e6);
        const auto out = [&](const char* name) { return folder / (std::string(name) + ".pdf"); };
        std::vector<Contender> contenders{
            {"qpdf in out (floor)", {"qpdf", in, out("floor")}, out("floor")},
            {"imprinter, incremental", stamp(in, out("incremental"), {"--incremental"}), out("incremental")},
            {"imprinter, rewritten", stamp(in, out("rewritten"), {"--rewrite"}), out("rewritten")}};
        race(contenders, turns, static_cast<double>(fs::file_size(in)), pages);
        if (!quick && !contenders[0].out && !contenders[1].out && !contenders[2].out) {
            claim("incremental to floor", contenders[1].time() / contenders[0].time(), 0.5);
            claim("rewrite to floor", contenders[2].time() / contenders[0].time(), 0.9);
        }
        fs::remove(in);
    }

    void jpeg(int turns) const {
        const auto in = folder / "scan.jpg";
        fs::copy_file(SAMPLE_PAGE, in, fs::copy_options::overwrite_existing);
        // The program itself, past any wrapper of its name, which would only make it slower.
        const std::string convert = fs::exists("/usr/bin/convert") ? "/usr/bin/convert" : "convert";
        std::vector<Contender> contenders{{"convert -annotate",
                                           {convert, in, "-gravity", "SouthEast", "-pointsize", "24", "-annotate",
                                            "+20+20", "No. 1 of 1", folder / "convert.jpg"},
                                           folder / "convert.jpg"},
                                          {"imprinter", stamp(in, folder / "imprinter.jpg"), folder / "imprinter.jpg"}};
        std::printf("an A4 JPEG at 150 dpi, %.0f KB\n", static_cast<double>(fs::file_size(in)) / 1e3);
        race(contenders, turns, static_cast<double>(fs::file_size(in)), 1);
        // In process: what a picture more costs in one run, so that starting does not count.
        const auto many = folder / "many";
        fs::create_directories(many);
        const int pictures = 40;
        std::vector<std::string> one = stamp(in, folder / "stamped");
        one.insert(one.end() - 1, {"--jobs", "1"});
        auto all = one;
        for (int i = 1; i < pictures; ++i) {
            const auto copy = many / (std::to_string(i) + ".jpg");
            fs::copy_file(in, copy, fs::copy_options::overwrite_existing);
            all.push_back(copy);
        }
        one[one.size() - 2] = "1";
        std::vector<double> times;
        for (int turn = 0; turn < 3; ++turn) {
            fs::remove_all(folder / "stamped");
            const auto whole = run(all);
            fs::remove_all(folder / "stamped");
            const auto single = run(one);
            if (!whole.ran || !single.ran) {
                ++failures;
                return;
            }
            times.push_back((whole.seconds - single.seconds) * 1000 / (pictures - 1));
        }
        claim("in process", median(times), quick ? 1000 : 40, " ms");
        if (!contenders[0].out && !quick)
            claim("in process to convert -annotate", median(times) / 1000 / contenders[0].time(), 0.25);
        fs::remove_all(many);
        fs::remove_all(folder / "stamped");
    }

    void jobs(int files, int pages, int turns) const {
        const auto many = folder / "many";
        fs::create_directories(many);
        writeLight(many / "1.pdf", pages);
        std::vector<std::string> command = stamp(many / "1.pdf", folder / "stamped");
        for (int i = 2; i <= files; ++i) {
            const auto copy = many / (std::to_string(i) + ".pdf");
            fs::copy_file(many / "1.pdf", copy, fs::copy_options::overwrite_existing);
            command.push_back(copy);
        }
        std::map<std::string, std::vector<double>> times;
        for (int turn = 0; turn < turns; ++turn)
            for (const std::string number : {"1", "held", "2"}) {
                auto numbered = command;
                numbered.insert(numbered.begin() + 4, {"--jobs", number == "2" ? "2" : "1"});
                fs::remove_all(folder / "stamped");
                const auto cost = run(numbered, number == "held" ? 0 : -1);
                if (!cost.ran) {
                    ++failures;
                    return;
                }
                times[number].push_back(cost.seconds);
            }
        std::printf("%d files of %d pages: --jobs 1 %.2f s, held to one core %.2f s, --jobs 2 %.2f s\n", files, pages,
                    median(times["1"]), median(times["held"]), median(times["2"]));
        if (!quick) {
            claim("--jobs 2 to --jobs 1", median(times["2"]) / median(times["1"]), 0.7);
            claim("--jobs 2 to --jobs 1 held to one core", median(times["2"]) / median(times["held"]), 0.55);
        }
        fs::remove_all(many);
        fs::remove_all(folder / "stamped");
    }

    void growth(int pages) const {
        std::printf("growth\n");
        for (const char* mode : {"--incremental", "--rewrite"}) {
            std::map<int, Cost> costs;
            for (const int times : {1, 5}) {
                writeLight(folder / "light.pdf", pages * times);
                std::array<Cost, 3> turns;
                for (auto& turn : turns)
                    turn = run(stamp(folder / "light.pdf", folder / "out.pdf", {mode}));
                std::sort(turns.begin(), turns.end(),
                          [](const Cost& a, const Cost& b) { return a.seconds < b.seconds; });
                costs[times] = turns[1];
                if (!turns[1].ran)
                    ++failures;
            }
            std::printf("  %s: %d pages %.2f s, %.0f MiB; %d pages %.2f s, %.0f MiB\n", mode, pages, costs[1].seconds,
                        costs[1].peak, pages * 5, costs[5].seconds, costs[5].peak);
            if (!quick) {
                claim("five times the pages, time", costs[5].seconds / costs[1].seconds, 6);
                claim("five times the pages, memory", costs[5].peak / costs[1].peak, 5.5);
            }
        }
    }
};

} // namespace

int main(int argc, char** argv) {
    Bench bench;
    std::string only;
    for (int i = 1; i < argc; ++i) {
        const std::string argument = argv[i];
        if (argument == "--quick")
            bench.quick = isQuick = true;
        else if (argument == "--only" && i + 1 < argc)
            only = argv[++i];
        else
            bench.imprinter = argument;
    }
    if (bench.imprinter.empty()) {
        std::cerr << "usage: stamping [--quick] [--only light|shared|scans|jpeg|jobs|growth] IMPRINTER\n";
        return 64;
    }
    std::string name = (fs::temp_directory_path() / "imprinter-bench-XXXXXX").string();
    bench.folder = ::mkdtemp(name.data());
    std::ofstream(bench.folder / "store.json") << kStore;
    std::setvbuf(stdout, nullptr, _IOLBF, 0);
    const auto wanted = [&](const char* part) { return only.empty() || only == part; };
    if (wanted("light")) {
        bench.light(bench.quick ? 100 : 1000, bench.quick ? 1 : 9, true);
        if (!bench.quick)
            bench.light(10000, 7, true);
    }
    if (wanted("shared"))
        bench.shared(bench.quick ? 100 : 1500, bench.quick ? 1 : 7);
    if (wanted("scans"))
        bench.scans(bench.quick ? 10 : 1000, bench.quick ? 1 : 5);
    if (wanted("jpeg"))
        bench.jpeg(bench.quick ? 1 : 9);
    if (wanted("jobs"))
        bench.jobs(bench.quick ? 10 : 100, bench.quick ? 5 : 200, bench.quick ? 1 : 7);
    if (wanted("growth"))
        bench.growth(bench.quick ? 100 : 10000);
    std::error_code none;
    fs::remove_all(bench.folder, none);
    return failures == 0 ? 0 : 1;
}
