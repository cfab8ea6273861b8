// SPDX-License-Identifier: MIT
// What documents do to those who write onto their pages: wherever the stamp belongs it stands, and every other pixel is
// what it was, for two renderers and both ways of saving.

#include "Documents.h"
#include "Render.h"

#include <Foundation/NSString.h>

#include <gtest/gtest.h>

using namespace render;
using engine::Saving;

namespace {

const char kTitle[] = "Trap no. 1";
const char16_t kTitle16[] = u"Trap no. 1";

/// A page's picture as one of the renderers shows it, a pixel a point.
struct Renderer {
    const char* name;
    bool knowsUserUnit;
    std::vector<QImage> (*show)(const std::filesystem::path& document, int pages, int dotsPerInch);
};

std::vector<QImage> numbered(const Folder& folder, int pages) {
    std::vector<QImage> pictures;
    for (int page = 1; page <= pages; ++page) {
        QImage picture((folder / (std::to_string(page) + ".png")).c_str());
        EXPECT_FALSE(picture.isNull()) << page;
        pictures.push_back(picture.convertToFormat(QImage::Format_RGB32));
    }
    return pictures;
}

std::vector<QImage> byPoppler(const std::filesystem::path& document, int pages, int dotsPerInch) {
    const Folder folder;
    const auto result = run("pdftoppm -png -cropbox -aa no -aaVector no -r " + std::to_string(dotsPerInch) + " " +
                            quoted(document) + " " + quoted(folder / "p"));
    EXPECT_EQ(result.status, 0) << result.output;
    for (const auto& name : folder.names())
        std::filesystem::rename(folder / name, folder / (std::to_string(std::stoi(name.substr(2))) + ".png"));
    return numbered(folder, pages);
}

std::vector<QImage> byMupdf(const std::filesystem::path& document, int pages, int dotsPerInch) {
    const Folder folder;
    const auto result = run("mutool draw -q -A 0 -r " + std::to_string(dotsPerInch) + " -o " +
                            quoted(folder / "%d.png") + " " + quoted(document));
    EXPECT_LE(result.status, 1) << result.output; // it shows what it complains about
    return numbered(folder, pages);
}

constexpr Renderer kRenderers[] = {{"pdftoppm", false, byPoppler}, {"mutool", true, byMupdf}};
constexpr Saving kSavings[] = {Saving::automatic, Saving::rewrite};

std::string nameOf(Saving saving) {
    return saving == Saving::rewrite ? "rewritten" : "as it comes";
}

/// A box with sharp edges, at the lower right.
std::shared_ptr<support::PlainConfiguration> box() {
    auto with = configuration(kTitle16);
    with->anchor = 8;
    with->shift = {-3, 5};
    with->style = 1;
    with->filled = true;
    with->areaColour = host::NSColor::colorWithSRGB(1, 1, 0, 1);
    return with;
}

std::string textOf(const std::filesystem::path& document, int page, const std::string& options = {}) {
    const auto n = std::to_string(page);
    return run("pdftotext -q " + options + " -f " + n + " -l " + n + " " + quoted(document) + " -").output;
}

/// Checks one page: the stamp's box stands where it belongs on a page of this size, and nothing else changed.
void expectStamped(const QImage& before, const QImage& after) {
    const QRect area = differingArea(before, after);
    EXPECT_GT(area.width(), 60);
    EXPECT_LT(area.width(), 110);
    EXPECT_GT(area.height(), 14);
    EXPECT_LT(area.height(), 30);
    EXPECT_NEAR(area.right() + 1, before.width() - 18 - 3, 1.6);
    EXPECT_NEAR(area.bottom() + 1, before.height() - 18 - 5, 1.6);
}

} // namespace

TEST(Traps, EveryTurnCropUnitAndInheritanceLeavesTheStampInItsPlaceAndAllElseAsItWas) {
    struct Boxes {
        const char* name;
        const char* entries;
    };
    const Boxes boxes[] = {
        {"no crop box", "/MediaBox [0 0 300 200]"},
        {"a smaller crop box away from the origin", "/MediaBox [10 20 330 240] /CropBox [33 41 250 215]"},
        {"a crop box that is larger", "/MediaBox [0 0 300 200] /CropBox [-50 -60 400 260]"},
        {"a media box that lies below and left of the origin", "/MediaBox [-200 -150 100 50]"},
        {"an inverted media box and crop box", "/MediaBox [310 220 10 20] /CropBox [260 200 30 40]"},
        {"fractions", "/MediaBox [0.25 0.5 300.25 200.5] /CropBox [20.25 10.5 270.25 190.5]"},
    };
    for (const int unit : {1, 2}) {
        // One document of all combinations: the content draws something everywhere, and over the stamp's place.
        DocumentBytes file;
        file.add("<< /Type /Catalog /Pages 2 0 R >>");
        const int treeNumber = file.add("");
        ASSERT_EQ(treeNumber, 2);
        const auto content = std::to_string(file.addStream("0.8 0.9 1 rg -500 -500 1500 1500 re f 0.5 g 0 0 40 30 re f "
                                                           "q 1 0 0 RG 4 w -400 -400 m 600 600 l S Q"));
        std::vector<std::string> names;
        std::string nodes;
        int count = 0;
        for (const auto& row : boxes)
            for (const int rotate : {0, 90, 180, 270, -90, 45})
                for (const bool inherited : {false, true}) {
                    const auto attributes = std::string(row.entries) + " /Rotate " + std::to_string(rotate) +
                                            " /Resources << /ProcSet [/PDF] >> ";
                    // UserUnit is never inherited.
                    const auto own = "/Contents " + content + " 0 R /UserUnit " + std::to_string(unit);
                    const int node = 4 + 2 * count;
                    EXPECT_EQ(file.add("<< /Type /Pages /Parent 2 0 R /Count 1 /Kids [" + std::to_string(node + 1) +
                                       " 0 R] " + (inherited ? attributes : "") + " >>"),
                              node);
                    file.add("<< /Type /Page /Parent " + std::to_string(node) + " 0 R " + own +
                             (inherited ? "" : attributes) + " >>");
                    nodes += std::to_string(node) + " 0 R ";
                    names.push_back(std::string(row.name) + ", turned " + std::to_string(rotate) +
                                    (inherited ? ", inherited" : ", of its own"));
                    ++count;
                }
        file.replace(2, "<< /Type /Pages /Count " + std::to_string(count) + " /Kids [" + nodes + "] >>");
        Folder folder;
        writeFile(folder / "in.pdf", file.bytes());
        for (const auto saving : kSavings) {
            auto task = job(folder / "in.pdf", folder / "out.pdf", {box()});
            task.saving = saving;
            const auto outcome = engine::stampFile(task);
            ASSERT_TRUE(outcome) << outcome.sentence;
            EXPECT_EQ(run("qpdf --check " + quoted(folder / "out.pdf")).status, 0);
            for (const auto& renderer : kRenderers) {
                const int dotsPerInch = renderer.knowsUserUnit ? 72 : 72 * unit;
                const auto before = renderer.show(folder / "in.pdf", count, dotsPerInch);
                const auto after = renderer.show(folder / "out.pdf", count, dotsPerInch);
                for (std::size_t i = 0; i < names.size(); ++i) {
                    // This one turns to the nearest quarter what is no quarter turn; the rules leave it upright.
                    if (names[i].find("turned 45") != std::string::npos && renderer.knowsUserUnit)
                        continue;
                    SCOPED_TRACE(names[i] + ", unit " + std::to_string(unit) + ", " + nameOf(saving) + ", " +
                                 renderer.name);
                    expectStamped(before[i], after[i]);
                }
            }
            for (int page = 1; page <= count; page += 7)
                EXPECT_EQ(textOf(folder / "out.pdf", page), std::string(kTitle) + "\n\n\f")
                    << names[std::size_t(page - 1)];
        }
    }
}

namespace {

struct Trap {
    const char* name;
    std::string bytes;
    std::string makeOver; ///< Options for qpdf, which makes the document over.
    std::string password;
};

/// A page of 300 by 200 points whose contents entry is `contents`, with the objects it names from number 4 on.
std::string page(const std::string& entries, const std::vector<std::pair<std::string, std::string>>& objects) {
    DocumentBytes file;
    file.add("<< /Type /Catalog /Pages 2 0 R >>");
    file.add("<< /Type /Pages /Kids [3 0 R] /Count 1 >>");
    file.add("<< /Type /Page /Parent 2 0 R /MediaBox [0 0 300 200] " + entries + " >>");
    for (const auto& [dictionary, data] : objects) {
        if (data.empty() && !dictionary.empty())
            file.add(dictionary);
        else
            file.addStream(data, dictionary);
    }
    return file.bytes();
}

std::string plain(const std::string& content) {
    return document(1, "/MediaBox [0 0 300 200]", content);
}

std::string runLengths(const std::string& plain) {
    std::string result;
    for (std::size_t at = 0; at < plain.size(); at += 100) {
        const auto part = plain.substr(at, 100);
        result += static_cast<char>(part.size() - 1) + part;
    }
    return result + '\x80';
}

/// A document whose page is in an object stream that only its table's /XRefStm leads to.
std::string hybrid(const std::string& content) {
    std::string bytes = "%PDF-1.5\n%\xE2\xE3\xCF\xD3\n";
    std::vector<std::size_t> offsets(7);
    const auto add = [&](std::size_t number, const std::string& body) {
        offsets[number] = bytes.size();
        bytes += std::to_string(number) + " 0 obj\n" + body + "\nendobj\n";
    };
    const auto stream = [](const std::string& data, const std::string& entries) {
        return "<<" + entries + "/Length " + std::to_string(data.size()) + ">>\nstream\n" + data + "\nendstream";
    };
    add(1, "<</Type/Catalog/Pages 2 0 R>>");
    add(2, "<</Type/Pages/Kids[3 0 R]/Count 1>>");
    add(4, stream(content, ""));
    add(5, stream("3 0 <</Type/Page/Parent 2 0 R/MediaBox[0 0 300 200]/Contents 4 0 R>>", "/Type/ObjStm/N 1/First 4"));
    const auto hidden = std::to_string(bytes.size());
    add(6, stream(std::string("\x02\x05\0", 3), "/Type/XRef/Size 7/W[1 1 1]/Index[3 1]/Root 1 0 R"));
    const auto start = std::to_string(bytes.size());
    bytes += "xref\n0 3\n0000000000 65535 f \n";
    for (const std::size_t number : {1, 2, 4, 5, 6}) {
        char line[32];
        std::snprintf(line, sizeof line, "%010zu 00000 n \n", offsets[number]);
        bytes += (number == 4 ? "4 3\n" : "") + std::string(line);
    }
    return bytes + "trailer\n<</Size 7/Root 1 0 R/XRefStm " + hidden + ">>\nstartxref\n" + start + "\n%%EOF\n";
}

std::vector<Trap> traps() {
    const std::string drawn = "0.5 g 5 5 250 100 re f";
    const std::string pixel = "q 40 0 0 40 5 5 cm BI /W 1 /H 1 /BPC 8 /CS /G ";
    return {
        {"nothing special", plain(drawn), {}, {}},
        {"a transformation left over", plain("2 0 0 2 40 40 cm 0 1 0 rg 0 0 10 10 re f"), {}, {}},
        {"one missing restore", plain("q 0.5 0 0 0.5 0 0 cm 0 0 50 50 re f"), {}, {}},
        {"three missing restores", plain("q q q 2 0 0 2 0 0 cm 0 0 50 50 re f"), {}, {}},
        {"surplus restores", plain("Q Q q 3 0 0 3 0 0 cm 1 0 0 rg 5 5 10 10 re f Q Q 60 60 9 9 re f"), {}, {}},
        {"text left open", plain("5 5 30 30 re f BT 3 0 0 3 0 0 Tm"), {}, {}},
        {"marked content left open", plain("/Span BMC /Span <</A 1>> BDC 5 5 30 30 re f"), {}, {}},
        {"a clip and a clip in a state", plain("0 0 100 100 re W n 5 5 300 30 re f"), {}, {}},
        {"a comment at the end", plain("5 5 30 30 re f % Q Q Q"), {}, {}},
        {"contents in several streams, cut inside an operation",
         page("/Contents [4 0 R 5 0 R 6 0 R]", {{"", "q 2 0 0 2"}, {"", "0 0 cm 5 5 30"}, {"", "30 re f % end"}}),
         {},
         {}},
        {"contents as an indirect array", page("/Contents 4 0 R", {{"[5 0 R]", ""}, {"", drawn}}), {}, {}},
        {"no contents", page("", {}), {}, {}},
        {"contents that are null", page("/Contents null", {}), {}, {}},
        {"an empty array of contents", page("/Contents []", {}), {}, {}},
        {"no resources", page("/Contents 4 0 R", {{"", drawn}}), {}, {}},
        {"resources that are indirect, their forms too",
         page("/Contents 4 0 R /Resources 5 0 R",
              {{"", "q /ImprinterStamp0 Do Q /A gs"},
               {"<< /XObject 6 0 R /ExtGState << /A << /ca 0.1 /CA 0.1 /BM /Multiply >> >> >>", ""},
               {"<< /ImprinterStamp0 7 0 R >>", ""},
               {"/Type /XObject /Subtype /Form /BBox [0 0 50 50]", "1 0 0 rg 0 0 50 50 re f"}}),
         {},
         {}},
        {"a transparency group in four inks",
         page("/Contents 4 0 R /Group << /S /Transparency /CS /DeviceCMYK /I true >> /Resources << /ExtGState << /A << "
              "/ca 0.5 >> >> >>",
              {{"", "/A gs 0 1 1 0 k 5 5 100 100 re f"}}),
         {},
         {}},
        {"an annotation over the place",
         page("/Contents 4 0 R /Annots [<< /Type /Annot /Subtype /Square /Rect [0 150 40 190] /C [1 0 0] /F 4 /AP << "
              "/N 5 0 R >> >>]",
              {{"", drawn}, {"/Type /XObject /Subtype /Form /BBox [0 0 40 40]", "1 0 0 rg 0 0 40 40 re f"}}),
         {},
         {}},
        {"an inline image with operators in its data",
         plain("q 20 0 0 20 5 5 cm BI /W 4 /H 1 /BPC 8 /CS /G ID Q Q\nEI Q 1 0 0 rg 50 50 9 9 re f"),
         {},
         {}},
        {"run lengths",
         page("/Contents 4 0 R", {{"/Filter /RunLengthDecode", runLengths("q 2 0 0 2 40 40 cm " + drawn)}}),
         {},
         {}},
        {"an inline image of characters, its end right behind them",
         plain(pixel + "/F /A85 ID J,~>EI Q 1 0 0 rg 60 60 20 20 re f"),
         {},
         {}},
        {"an inline image of hexadecimals, its end right behind them",
         plain(pixel + "/F /AHx ID 40>EI Q 1 0 0 rg 60 60 20 20 re f"),
         {},
         {}},
        {"an inline image of bytes, its end right behind them",
         plain(pixel + "ID \x80"
                       "EI\nQ 1 0 0 rg 60 60 20 20 re f"),
         {},
         {}},
        {"a string at the end that nothing closes", plain("q 2 0 0 2 0 0 cm " + drawn + " (open (twice"), {}, {}},
        {"a hexadecimal string at the end that nothing closes", plain("q " + drawn + " <41"), {}, {}},
        {"an array at the end that nothing closes", plain("q " + drawn + " [1 (2) 3"), {}, {}},
        {"a dictionary at the end that nothing closes", plain("q " + drawn + " /P <</MCID 0"), {}, {}},
        {"an inline image that ends before its data", plain(drawn + " BI /W 9 /H 9 /BPC 8 /CS /G"), {}, {}},
        {"an inline image that ends before its data, with long names",
         plain("q " + drawn + " 90 0 0 90 0 0 cm BI /Width 9 /Height 9 /BitsPerComponent 8 /ColorSpace /DeviceGray"),
         {},
         {}},
        {"a mask that ends before its data", plain(drawn + " BI /IM true /W 9 /H 9"), {}, {}},
        {"an inline image that ends within its dictionary", plain(drawn + " BI /W 9 /H 9 /BPC 8 /CS /G /D [1"), {}, {}},
        {"an inline image that ends behind a key", plain(drawn + " BI /W 9 /H 9 /BPC 8 /CS /G /D"), {}, {}},
        {"the beginning of an image among operators",
         plain("90 0 0 90 0 0 cm BI /W 9 /H 9 /BPC 8 /CS /G 0 0 1 1 re f 0 1 0 rg 0 0 1 1 re f"),
         {},
         {}},
        {"a comment at the end of every stream",
         page("/Contents [4 0 R 5 0 R]", {{"", drawn + " % q"}, {"", "5 5 9 9 re f %"}}),
         {},
         {}},
        {"a surplus restore at the very end", plain(drawn + " Q"), {}, {}},
        {"a hybrid cross-reference", hybrid(drawn), {}, {}},
        {"object streams", plain(drawn), "--object-streams=generate", {}},
        {"linearized", plain(drawn), "--linearize", {}},
        {"linearized with object streams", plain(drawn), "--linearize --object-streams=generate", {}},
        {"compressed content", plain(drawn + std::string(500, ' ') + drawn), "--stream-data=compress", {}},
        {"encrypted, 256 bits", plain(drawn), "--encrypt user owner 256 --", "user"},
        {"encrypted, 128 bits, AES", plain(drawn), "--allow-weak-crypto --encrypt user owner 128 --use-aes=y --",
         "user"},
        {"encrypted, 40 bits", plain(drawn), "--allow-weak-crypto --encrypt user owner 40 --", "user"},
        {"an owner's password alone", plain(drawn), "--encrypt '' owner 256 --", ""},
        {"junk before the header", "junk\n" + plain(drawn), {}, {}},
        {"a damaged cross-reference",
         [&] {
             auto bytes = plain(drawn);
             bytes.replace(bytes.find("\nxref\n") + 1, 4, "xrxx");
             return bytes;
         }(),
         {},
         {}},
        {"no line end after the end",
         [&] {
             auto bytes = plain(drawn);
             bytes.pop_back();
             return bytes;
         }(),
         {},
         {}},
    };
}

} // namespace

TEST(Traps, NoneOfThemMovesTheStampOrChangesAnythingElse) {
    for (const auto& trap : traps())
        for (const auto saving : kSavings) {
            SCOPED_TRACE(std::string(trap.name) + ", " + nameOf(saving));
            Folder folder;
            writeFile(folder / "in.pdf", trap.bytes);
            if (!trap.makeOver.empty()) {
                const auto made = run("qpdf " + trap.makeOver + " --replace-input " + quoted(folder / "in.pdf"));
                ASSERT_EQ(made.status, 0) << made.output;
            }
            auto task = job(folder / "in.pdf", folder / "out.pdf", {box()});
            task.saving = saving;
            task.password = trap.password;
            const auto outcome = engine::stampFile(task);
            ASSERT_TRUE(outcome) << outcome.sentence;
            const auto password = trap.password.empty() ? "" : "--password=" + trap.password + " ";
            const auto check = run("qpdf --check " + password + quoted(folder / "out.pdf"));
            EXPECT_EQ(check.status, 0) << check.output;
            EXPECT_EQ(textOf(folder / "out.pdf", 1, trap.password.empty() ? "" : "-upw " + trap.password),
                      std::string(kTitle) + "\n\n\f");
            auto back = job(folder / "out.pdf", folder / "back.pdf", {});
            back.password = trap.password;
            EXPECT_TRUE(engine::unstampFile(back));
            EXPECT_EQ(textOf(folder / "back.pdf", 1, trap.password.empty() ? "" : "-upw " + trap.password), "\f");
            // What they render is compared without the cipher, which not every renderer is asked for here.
            for (const char* name : {"in.pdf", "out.pdf"}) {
                if (trap.makeOver.find("encrypt") == std::string::npos)
                    continue;
                const auto opened =
                    run("qpdf --allow-weak-crypto --decrypt " + password + "--replace-input " + quoted(folder / name));
                ASSERT_EQ(opened.status, 0) << opened.output;
            }
            for (const auto& renderer : kRenderers) {
                SCOPED_TRACE(renderer.name);
                // Viewers pass over such restores; this one shows nothing of what follows.
                if (std::string(trap.name) == "surplus restores" && std::string(renderer.name) == "pdftoppm")
                    continue;
                const auto before = renderer.show(folder / "in.pdf", 1, 72);
                const auto after = renderer.show(folder / "out.pdf", 1, 72);
                expectStamped(before[0], after[0]);
            }
        }
}

TEST(Traps, TheInputIsContinuedWhereItCanBeAndWrittenAnewWhereNot) {
    for (const auto& trap : traps()) {
        SCOPED_TRACE(trap.name);
        Folder folder;
        writeFile(folder / "in.pdf", trap.bytes);
        if (!trap.makeOver.empty())
            run("qpdf " + trap.makeOver + " --replace-input " + quoted(folder / "in.pdf"));
        auto task = job(folder / "in.pdf", folder / "out.pdf", {box()});
        task.password = trap.password;
        ASSERT_TRUE(engine::stampFile(task));
        const std::string name = trap.name;
        const bool anew = name.find("linearized") != std::string::npos || name.find("encrypted") != std::string::npos ||
                          name.find("password") != std::string::npos || name.find("junk") != std::string::npos ||
                          name.find("damaged") != std::string::npos;
        EXPECT_EQ(readFile(folder / "out.pdf").starts_with(readFile(folder / "in.pdf")), !anew);
        if (name.find("junk") != std::string::npos || name.find("damaged") != std::string::npos ||
            name.find("encrypted") != std::string::npos) {
            task.saving = Saving::update;
            EXPECT_EQ(engine::stampFile(task).code, engine::Code::unsupported);
        }
    }
}

TEST(Traps, AStampWiderThanThePageIsCutAtItsEdgesOnly) {
    const auto with = configuration(u"A title that is much wider than such a narrow page can ever be");
    with->anchor = 4;
    Folder folder;
    writeFile(folder / "in.pdf", document(1, "/MediaBox [0 0 100 100]", ""));
    ASSERT_TRUE(engine::stampFile(job(folder / "in.pdf", folder / "out.pdf", {with})));
    for (const auto& renderer : kRenderers) {
        const QRect area =
            differingArea(renderer.show(folder / "in.pdf", 1, 72)[0], renderer.show(folder / "out.pdf", 1, 72)[0]);
        EXPECT_LE(area.left(), 3);
        EXPECT_GE(area.right(), 96);
        EXPECT_NEAR(area.center().y(), 50, 5);
    }
}

TEST(Traps, PagesThatShareAStreamKeepItAndEachGetsItsOwnStamp) {
    for (const auto saving : kSavings) {
        Folder folder;
        writeFile(folder / "in.pdf", document(3, "/MediaBox [0 0 300 200]", "q 0.5 g 5 5 20 20 re f"));
        const auto with = configuration(u"");
        with->setTitle({std::u16string(u"Number "), std::u16string(u"%pageNumber%")});
        auto task = job(folder / "in.pdf", folder / "out.pdf", {with});
        task.saving = saving;
        ASSERT_TRUE(engine::stampFile(task));
        for (int number = 1; number <= 3; ++number)
            EXPECT_EQ(textOf(folder / "out.pdf", number), "Number " + std::to_string(number) + "\n\n\f");
    }
}

TEST(Traps, WhatADocumentHasBesideItsPagesIsKept) {
    DocumentBytes file;
    file.add(
        "<< /Type /Catalog /Pages 2 0 R /Outlines 5 0 R /PageLabels << /Nums [0 << /S /r /St 3 >>] >> /Metadata 7 0 R "
        "/Names << /EmbeddedFiles << /Names [(a.txt) << /Type /Filespec /F (a.txt) /EF << /F 8 0 R >> >>] >> >> "
        "/MarkInfo << /Marked true >> /StructTreeRoot 9 0 R /AcroForm << /Fields [12 0 R] >> /Lang (de) >>");
    file.add("<< /Type /Pages /Kids [3 0 R] /Count 1 >>");
    file.add("<< /Type /Page /Parent 2 0 R /MediaBox [0 0 300 200] /Contents 4 0 R /StructParents 0 /Annots [12 0 R] "
             "/Resources << /Font << /F1 13 0 R >> >> >>");
    file.addStream("/P <</MCID 0>> BDC BT /F1 12 Tf 20 150 Td (Tagged words) Tj ET EMC");
    file.add("<< /Type /Outlines /First 6 0 R /Last 6 0 R /Count 1 >>");
    file.add("<< /Title (Chapter) /Parent 5 0 R /Dest [3 0 R /Fit] >>");
    file.addStream("<x:xmpmeta xmlns:x='adobe:ns:meta/'/>", "/Type /Metadata /Subtype /XML");
    file.addStream("attached", "/Type /EmbeddedFile");
    file.add("<< /Type /StructTreeRoot /K 10 0 R /ParentTree << /Nums [0 [11 0 R]] >> >>");
    file.add("<< /Type /StructElem /S /Document /P 9 0 R /K [11 0 R] >>");
    file.add("<< /Type /StructElem /S /P /P 10 0 R /Pg 3 0 R /K 0 >>");
    file.add("<< /Type /Annot /Subtype /Widget /FT /Tx /T (field) /V (value) /Rect [20 100 120 120] >>");
    file.add("<< /Type /Font /Subtype /Type1 /BaseFont /Helvetica >>");
    for (const auto saving : kSavings) {
        Folder folder;
        writeFile(folder / "in.pdf", file.bytes());
        auto task = job(folder / "in.pdf", folder / "out.pdf", {box()});
        task.saving = saving;
        ASSERT_TRUE(engine::stampFile(task));
        for (const std::string command :
             {"pdfinfo -struct-text", "pdfinfo -meta", "pdfdetach -list",
              "qpdf --json --json-key=outlines --json-key=pagelabels --json-key=acroform"}) {
            SCOPED_TRACE(command + ", " + nameOf(saving));
            auto before = run(command + " " + quoted(folder / "in.pdf")).output;
            auto after = run(command + " " + quoted(folder / "out.pdf")).output;
            EXPECT_FALSE(before.empty());
            // Rewriting gives objects other numbers.
            const auto withoutNumbers = [](const std::string& text) {
                std::string result;
                for (const char c : text)
                    if (c < '0' || c > '9')
                        result += c;
                return result;
            };
            EXPECT_EQ(withoutNumbers(before), withoutNumbers(after));
        }
        EXPECT_NE(run("pdfinfo -struct-text " + quoted(folder / "out.pdf")).output.find("Tagged words"),
                  std::string::npos);
        EXPECT_NE(textOf(folder / "out.pdf", 1).find(kTitle), std::string::npos);
    }
}
