// SPDX-License-Identifier: MIT
#pragma once

#include <engine/Stamp.h>
#include <engine/Warning.h>
#include <host/ImprinterConfiguration.h>

#include <map>
#include <set>

namespace engine {

/// What placeholders stand for.
struct Facts {
    std::size_t pageNumber = 1;
    std::size_t recordPageCount = 1;
    std::size_t runningNumber = 1; ///< Counts on from file to file.
    std::u16string recordName;
    std::u16string user;
    std::u16string day;  ///< As `WrittenTime` has it.
    std::u16string time; ///< Likewise.
};

/// What a person should hear about a run that worked all the same; each once.
struct Report {
    std::set<Warning> warnings;
    /// Whether to tell of characters that come from another font than their run's; nobody needs to hear of them who
    /// sees the result.
    bool namesFallbacks = false;

    void warn(Warning::Kind kind, std::vector<std::string> arguments = {}) {
        warnings.insert({kind, std::move(arguments)});
    }
};

/// The style of text between two font runs.
struct TextStyle {
    std::shared_ptr<const Face> face;
    double size = 12;
    Colour colour;
    bool outlined = false;
    double strokeWidth = 0;
    bool underline = false;
    bool strikethrough = false;
};

/// All that the layout needs of an ordinary configuration, read from it once, with faces looked up.
struct Appearance {
    struct Piece {
        std::u16string text; ///< A placeholder with its percent signs, or literal text.
        bool placeholder = false;
        std::size_t style = 0; ///< Index into `styles`.
    };
    std::vector<TextStyle> styles; ///< Never empty; its first is what text before the first font run is set in.
    std::vector<Piece> pieces;
    double alignment = 0; ///< Of the lines: 0 left, 0.5 centred, 1 right.
    host::NSInteger borderStyle = 0;
    bool bordered = false;
    double borderThickness = 0;
    Colour borderColour;
    bool filled = false;
    Colour fillColour;
};

/// Reads `configuration`. Text before the first font run is set in the default face, black, 12 points; a font run
/// without a colour is black, a border without one too, a fill without one white. A name the machine lacks is replaced
/// by the default face, and `report` says so. Sizes and widths that are not finite or negative count as 0; a size of 0
/// as 12 points.
Appearance readAppearance(const host::ImprinterConfiguration& configuration, FaceLibrary& faces, Report& report);

/// The title with placeholders filled in, its pieces joined by U+0000: two pages whose keys are equal bear equal
/// stamps. An unknown placeholder stays as it stands, and `report` says so.
std::u16string resolveTitle(const Appearance& appearance, const Facts& facts, Report& report);

/// Lays the resolved title out. A line ends at "\n", "\r\n", U+2028 and U+2029. Null for a title without text: it
/// stamps nothing, not even its border. Characters that no face of the machine has are drawn as the missing glyph, and
/// `report` says so.
std::shared_ptr<const Stamp> layOut(const Appearance& appearance, const std::u16string& resolvedTitle,
                                    FaceLibrary& faces, Report& report);

} // namespace engine
