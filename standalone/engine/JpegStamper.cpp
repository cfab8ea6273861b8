// SPDX-License-Identifier: MIT
#include "DecodedPicture.h"
#include "JpegPatch.h"
#include "MultiPicture.h"
#include "PictureFile.h"

#include <algorithm>
#include <cstdio> // libjpeg's header needs it first
#include <cstdlib>
#include <cstring>
#include <future>
#include <new>

#include <jpeglib.h>

#include <jerror.h>

namespace engine {

namespace {

[[noreturn]] void failJpeg(j_common_ptr info) {
    if (info->err->msg_code == JERR_IMAGE_TOO_BIG)
        throw Failure(Code::tooLarge, "The picture has more than 100 million pixels.");
    if (info->err->msg_code == JERR_OUT_OF_MEMORY)
        throw std::bad_alloc();
    static const int unknown[] = {JERR_BAD_PRECISION, JERR_SOF_UNSUPPORTED,    JERR_ARITH_NOTIMPL,
                                  JERR_NOT_COMPILED,  JERR_CONVERSION_NOTIMPL, JERR_NOTIMPL};
    if (std::find(std::begin(unknown), std::end(unknown), info->err->msg_code) != std::end(unknown))
        throw Failure(Code::unsupported, "JPEG pictures of this kind cannot be stamped.");
    throw Failure(Code::damaged, "The picture is damaged.");
}

void countWarning(j_common_ptr info, int level) {
    if (level < 0)
        ++info->err->num_warnings;
}

jpeg_error_mgr* quietErrors(jpeg_error_mgr& errors) {
    jpeg_std_error(&errors);
    errors.error_exit = failJpeg;
    errors.emit_message = countWarning;
    return &errors;
}

class Decompressor {
public:
    explicit Decompressor(std::string_view file) {
        info.err = quietErrors(m_errors);
        jpeg_create_decompress(&info);
        jpeg_mem_src(&info, reinterpret_cast<const unsigned char*>(file.data()), file.size());
    }
    ~Decompressor() { jpeg_destroy_decompress(&info); }
    Decompressor(const Decompressor&) = delete;
    Decompressor& operator=(const Decompressor&) = delete;

    jpeg_decompress_struct info{};

private:
    jpeg_error_mgr m_errors{};
};

/// Compresses into memory, which is this object's own at any time: the library's destination gives and takes what it
/// grows only at the end, which a failure does not come to.
class Compressor {
public:
    Compressor() {
        info.err = quietErrors(m_errors);
        jpeg_create_compress(&info);
        m_target.init_destination = [](j_compress_ptr file) { targetOf(file).grow(); };
        m_target.empty_output_buffer = [](j_compress_ptr file) -> boolean {
            targetOf(file).grow();
            return TRUE;
        };
        m_target.term_destination = [](j_compress_ptr file) {
            auto& target = targetOf(file);
            target.bytes.resize(target.bytes.size() - target.free_in_buffer);
        };
        info.dest = &m_target;
    }
    ~Compressor() { jpeg_destroy_compress(&info); }
    Compressor(const Compressor&) = delete;
    Compressor& operator=(const Compressor&) = delete;

    /// Once it has finished.
    const std::string& bytes() const { return m_target.bytes; }

    jpeg_compress_struct info{};

private:
    struct Target : jpeg_destination_mgr {
        std::string bytes;

        /// When all that was there is used.
        void grow() {
            const auto used = bytes.size();
            bytes.resize(std::max(2 * used, std::size_t{64} << 10));
            next_output_byte = reinterpret_cast<JOCTET*>(&bytes[used]);
            free_in_buffer = bytes.size() - used;
        }
    };
    static Target& targetOf(j_compress_ptr file) { return *static_cast<Target*>(file->dest); }

    jpeg_error_mgr m_errors{};
    Target m_target{};
};

constexpr int kFirstApplicationMarker = JPEG_APP0;
constexpr int kLastApplicationMarker = JPEG_APP0 + 15;

std::string_view dataOf(const jpeg_marker_struct& marker) {
    return {reinterpret_cast<const char*>(marker.data), marker.data_length};
}

void readHeader(jpeg_decompress_struct& info) {
    jpeg_save_markers(&info, JPEG_COM, 0xFFFF);
    for (int marker = kFirstApplicationMarker; marker <= kLastApplicationMarker; ++marker)
        jpeg_save_markers(&info, marker, 0xFFFF);
    jpeg_read_header(&info, TRUE);
    checkSize(info.image_width, info.image_height);
    if (info.jpeg_color_space == JCS_UNKNOWN)
        throw Failure(Code::unsupported, "The picture's colour model cannot be stamped.");
}

PictureGeometry geometryOf(const jpeg_decompress_struct& info) {
    PictureGeometry geometry;
    geometry.width = static_cast<int>(info.image_width);
    geometry.height = static_cast<int>(info.image_height);
    const double unit = info.density_unit == 1 ? 1 : info.density_unit == 2 ? 2.54 : 0;
    double horizontal = info.saw_JFIF_marker ? info.X_density * unit : 0;
    double vertical = info.saw_JFIF_marker ? info.Y_density * unit : 0;
    for (auto* marker = info.marker_list; marker; marker = marker->next) {
        const auto data = dataOf(*marker);
        if (marker->marker != JPEG_APP0 + 1 || !data.starts_with(std::string_view("Exif\0\0", 6)))
            continue;
        geometry.orientation = exifOrientation(data.substr(6));
        if (horizontal <= 0 || vertical <= 0)
            std::tie(horizontal, vertical) = exifResolution(data.substr(6));
        break;
    }
    if (horizontal > 0 && vertical > 0) {
        geometry.horizontalResolution = horizontal;
        geometry.verticalResolution = vertical;
    }
    return geometry;
}

bool hasFourInks(const jpeg_decompress_struct& info) {
    return info.jpeg_color_space == JCS_CMYK || info.jpeg_color_space == JCS_YCCK;
}

/// Decodes into RGB32, Grayscale8, or for four inks a 32-bit image whose bytes are the inks as the file has them.
QImage decode(jpeg_decompress_struct& info) {
    const bool grey = info.jpeg_color_space == JCS_GRAYSCALE;
    info.out_color_space = grey ? JCS_GRAYSCALE : hasFourInks(info) ? JCS_CMYK : JCS_EXT_BGRX;
    jpeg_start_decompress(&info);
    QImage image(static_cast<int>(info.output_width), static_cast<int>(info.output_height),
                 grey ? QImage::Format_Grayscale8 : QImage::Format_RGB32);
    requireMemory(image);
    while (info.output_scanline < info.output_height) {
        JSAMPROW row = image.scanLine(static_cast<int>(info.output_scanline));
        jpeg_read_scanlines(&info, &row, 1);
    }
    jpeg_finish_decompress(&info);
    return image;
}

/// Inks that the file stores the other way round: Adobe's 0 is full ink, otherwise 255 is.
bool storesInverseInks(const jpeg_decompress_struct& info) {
    return info.saw_Adobe_marker;
}

/// As `blend`, for four inks.
void blendInks(const Patch& patch, QImage& target, bool inverse) {
    for (int row = 0; row < patch.area.height(); ++row) {
        const auto* above = reinterpret_cast<const QRgb*>(patch.pixels.constScanLine(row));
        auto* below = target.scanLine(patch.area.top() + row) + 4 * patch.area.left();
        for (int i = 0; i < patch.area.width(); ++i, below += 4) {
            const int alpha = qAlpha(above[i]);
            if (alpha == 0)
                continue;
            // Colours without black ink: light of each primary is the lack of its ink.
            const int light[] = {qRed(above[i]), qGreen(above[i]), qBlue(above[i]), alpha};
            for (int ink = 0; ink < 4; ++ink) {
                const int old = inverse ? below[ink] : 255 - below[ink];
                const int value = std::min(255, light[ink] + (old * (255 - alpha) + 127) / 255);
                below[ink] = static_cast<uchar>(inverse ? value : 255 - value);
            }
        }
    }
}

/// The smallest units a file can be patched in, and which of them stamps touched.
struct Grid {
    int width; ///< Of a unit, in pixels.
    int height;
    int columns;
    int rows;
    std::vector<bool> touched;

    void touch(const Patch& patch) {
        for (int row = 0; row < patch.area.height(); ++row) {
            const auto* above = reinterpret_cast<const QRgb*>(patch.pixels.constScanLine(row));
            const int line = (patch.area.top() + row) / height * columns;
            for (int i = 0; i < patch.area.width(); ++i)
                if (qAlpha(above[i]))
                    touched[static_cast<std::size_t>(line + (patch.area.left() + i) / width)] = true;
        }
    }

    /// In units; empty where nothing was touched.
    QRect bounds() const {
        QRect result;
        for (int row = 0; row < rows; ++row)
            for (int column = 0; column < columns; ++column)
                if (touched[static_cast<std::size_t>(row * columns + column)])
                    result |= QRect(column, row, 1, 1);
        return result;
    }
};

/// Encodes the pixels of `units` as the file itself is encoded; what lies beyond the picture repeats its edge.
/// `image` is the part of the picture that begins at `corner`.
std::string encodePatch(const jpeg_decompress_struct& file, const QImage& image, QPoint corner, const Grid& grid,
                        const QRect& units) {
    Compressor compressor;
    auto& info = compressor.info;
    info.image_width = static_cast<JDIMENSION>(units.width() * grid.width);
    info.image_height = static_cast<JDIMENSION>(units.height() * grid.height);
    const bool grey = file.jpeg_color_space == JCS_GRAYSCALE;
    info.in_color_space = grey ? JCS_GRAYSCALE : hasFourInks(file) ? JCS_CMYK : JCS_EXT_BGRX;
    info.input_components = grey ? 1 : 4;
    jpeg_set_defaults(&info);
    jpeg_set_colorspace(&info, file.jpeg_color_space);
    for (int i = 0; i < NUM_QUANT_TBLS; ++i) {
        if (!file.quant_tbl_ptrs[i])
            continue;
        if (!info.quant_tbl_ptrs[i])
            info.quant_tbl_ptrs[i] = jpeg_alloc_quant_table(reinterpret_cast<j_common_ptr>(&info));
        // The encoder multiplies by 8 in 16 bits. No coefficient is half as large as this limit, so that what is above
        // it gives the same: 0.
        static constexpr UINT16 most = 0xFFFF / 8;
        std::transform(std::begin(file.quant_tbl_ptrs[i]->quantval), std::end(file.quant_tbl_ptrs[i]->quantval),
                       std::begin(info.quant_tbl_ptrs[i]->quantval),
                       [](UINT16 value) { return std::min(value, most); });
    }
    for (int i = 0; i < info.num_components; ++i) {
        info.comp_info[i].h_samp_factor = file.comp_info[i].h_samp_factor;
        info.comp_info[i].v_samp_factor = file.comp_info[i].v_samp_factor;
        info.comp_info[i].quant_tbl_no = file.comp_info[i].quant_tbl_no;
    }
    info.optimize_coding = TRUE; // tables for every value, whatever the quantization
    jpeg_start_compress(&info, TRUE);
    const int bytesPerPixel = info.input_components;
    std::vector<JSAMPLE> line(std::size_t(info.image_width) * static_cast<std::size_t>(bytesPerPixel));
    const int left = units.left() * grid.width - corner.x();
    const int top = units.top() * grid.height - corner.y();
    while (info.next_scanline < info.image_height) {
        const int y = std::min(top + static_cast<int>(info.next_scanline), image.height() - 1);
        const uchar* const from = image.constScanLine(y);
        for (int i = 0; i < static_cast<int>(info.image_width); ++i) {
            const int x = std::min(left + i, image.width() - 1);
            std::memcpy(&line[static_cast<std::size_t>(i * bytesPerPixel)], from + x * bytesPerPixel,
                        static_cast<std::size_t>(bytesPerPixel));
        }
        JSAMPROW row = line.data();
        jpeg_write_scanlines(&info, &row, 1);
    }
    jpeg_finish_compress(&info);
    return compressor.bytes();
}

/// Refuses tables that divide by zero; to be asked when the whole file has been read, since they may stand in any part.
void requireTables(const jpeg_decompress_struct& file) {
    for (const auto* table : file.quant_tbl_ptrs)
        if (table && std::count(std::begin(table->quantval), std::end(table->quantval), 0) > 0)
            throw Failure(Code::damaged, "The picture is damaged.");
}

/// The pixels of these units and nothing else, from the coefficients that the file has for them.
QImage decodeUnits(Decompressor& file, jvirt_barray_ptr* blocks, const Grid& grid, const QRect& units) {
    Compressor compressor;
    auto& info = compressor.info;
    jpeg_copy_critical_parameters(&file.info, &info);
    info.image_width = static_cast<JDIMENSION>(units.width() * grid.width);
    info.image_height = static_cast<JDIMENSION>(units.height() * grid.height);
    info.optimize_coding = TRUE;
    auto* const fileInfo = reinterpret_cast<j_common_ptr>(&file.info);
    auto* const partInfo = reinterpret_cast<j_common_ptr>(&info);
    std::vector<jvirt_barray_ptr> parts;
    for (int component = 0; component < file.info.num_components; ++component) {
        const auto& shape = file.info.comp_info[component];
        parts.push_back(info.mem->request_virt_barray(partInfo, JPOOL_IMAGE, FALSE,
                                                      static_cast<JDIMENSION>(units.width() * shape.h_samp_factor),
                                                      static_cast<JDIMENSION>(units.height() * shape.v_samp_factor),
                                                      static_cast<JDIMENSION>(shape.v_samp_factor)));
    }
    jpeg_write_coefficients(&info, parts.data()); // they are written when it finishes
    for (int component = 0; component < file.info.num_components; ++component) {
        const int across = file.info.comp_info[component].h_samp_factor;
        const int down = file.info.comp_info[component].v_samp_factor;
        for (int row = 0; row < units.height() * down; ++row) {
            JBLOCKROW to = info.mem->access_virt_barray(partInfo, parts[static_cast<std::size_t>(component)],
                                                        static_cast<JDIMENSION>(row), 1, TRUE)[0];
            JBLOCKROW from = file.info.mem->access_virt_barray(
                fileInfo, blocks[component], static_cast<JDIMENSION>(row + units.top() * down), 1, FALSE)[0];
            std::memcpy(to, from + units.left() * across,
                        sizeof(JBLOCK) * static_cast<std::size_t>(units.width() * across));
        }
    }
    jpeg_finish_compress(&info);
    const auto bytes = compressor.bytes();
    Decompressor part(bytes);
    jpeg_read_header(&part.info, TRUE);
    return decode(part.info);
}

/// What of the patch lies within the rectangle.
Patch within(const Patch& patch, const QRect& rectangle) {
    const QRect area = patch.area & rectangle;
    return {area, patch.pixels.copy(area.translated(-patch.area.topLeft()))};
}

/// Puts the touched units of the patch in place of the file's.
void replaceBlocks(Decompressor& file, jvirt_barray_ptr* blocks, Decompressor& patch, jvirt_barray_ptr* patchBlocks,
                   const Grid& grid, const QRect& units) {
    auto* const fileInfo = reinterpret_cast<j_common_ptr>(&file.info);
    auto* const patchInfo = reinterpret_cast<j_common_ptr>(&patch.info);
    for (int component = 0; component < file.info.num_components; ++component) {
        const int across = file.info.comp_info[component].h_samp_factor;
        const int down = file.info.comp_info[component].v_samp_factor;
        for (int row = units.top() * down; row < (units.bottom() + 1) * down; ++row) {
            JBLOCKROW to = file.info.mem->access_virt_barray(fileInfo, blocks[component], static_cast<JDIMENSION>(row),
                                                             1, TRUE)[0];
            JBLOCKROW from = patch.info.mem->access_virt_barray(
                patchInfo, patchBlocks[component], static_cast<JDIMENSION>(row - units.top() * down), 1, FALSE)[0];
            for (int column = units.left() * across; column < (units.right() + 1) * across; ++column)
                if (grid.touched[static_cast<std::size_t>(row / down * grid.columns + column / across)])
                    std::memcpy(to[column], from[column - units.left() * across], sizeof(JBLOCK));
        }
    }
}

void writeMarkers(jpeg_compress_struct& out, const jpeg_decompress_struct& file) {
    for (auto* marker = file.marker_list; marker; marker = marker->next) {
        const auto data = dataOf(*marker);
        // These two the library writes itself.
        if (out.write_JFIF_header && marker->marker == JPEG_APP0 && data.starts_with(std::string_view("JFIF\0", 5)))
            continue;
        if (out.write_Adobe_marker && marker->marker == JPEG_APP0 + 14 && data.starts_with("Adobe"))
            continue;
        jpeg_write_marker(&out, marker->marker, marker->data, marker->data_length);
    }
}

} // namespace

DecodedPicture decodeJpeg(std::string_view file) {
    Decompressor decompressor(file);
    readHeader(decompressor.info);
    const auto geometry = geometryOf(decompressor.info);
    QImage image = decode(decompressor.info);
    if (hasFourInks(decompressor.info)) {
        const bool inverse = storesInverseInks(decompressor.info);
        for (int y = 0; y < image.height(); ++y) {
            auto* line = image.scanLine(y);
            for (int x = 0; x < image.width(); ++x, line += 4) {
                const auto light = [&](int ink) { return inverse ? line[ink] : 255 - line[ink]; };
                const QRgb colour =
                    qRgb(light(0) * light(3) / 255, light(1) * light(3) / 255, light(2) * light(3) / 255);
                std::memcpy(line, &colour, sizeof colour);
            }
        }
    }
    image.convertTo(QImage::Format_RGB32);
    requireMemory(image);
    return {image, geometry};
}

namespace {

/// Whether a table has a code for everything that a block may hold.
bool isComplete(const JHUFF_TBL* table, bool ofBrightness) {
    if (!table)
        return false;
    std::size_t codes = 0;
    for (int length = 1; length <= 16; ++length)
        codes += table->bits[length];
    const auto* const end = table->huffval + std::min<std::size_t>(codes, 256);
    const auto has = [&](int value) { return std::find(table->huffval, end, value) != end; };
    // Of 8 bits: differences of 11 bits; runs of up to 15 before 10 bits, a run of 16, and the end. (ITU-T T.81,
    // F.1.2.)
    if (ofBrightness) {
        for (int bits = 0; bits <= 11; ++bits)
            if (!has(bits))
                return false;
        return true;
    }
    for (int run = 0; run < 16; ++run)
        for (int bits = 1; bits <= 10; ++bits)
            if (!has(run << 4 | bits))
                return false;
    return has(0x00) && has(0xF0);
}

void copyTable(const JHUFF_TBL* from, JHUFF_TBL*& to, jpeg_compress_struct& out) {
    if (!to)
        to = jpeg_alloc_huff_table(reinterpret_cast<j_common_ptr>(&out));
    std::memcpy(to->bits, from->bits, sizeof to->bits);
    std::memcpy(to->huffval, from->huffval, sizeof to->huffval);
}

/// Gives the output the codes of the input. False where they do not suffice.
bool keepCodes(const jpeg_decompress_struct& file, jpeg_compress_struct& out) {
    if (file.progressive_mode || file.arith_code)
        return false;
    for (int i = 0; i < file.num_components; ++i) {
        const auto& component = file.comp_info[i];
        if (!isComplete(file.dc_huff_tbl_ptrs[component.dc_tbl_no], true) ||
            !isComplete(file.ac_huff_tbl_ptrs[component.ac_tbl_no], false))
            return false;
    }
    for (int i = 0; i < file.num_components; ++i) {
        const auto& component = file.comp_info[i];
        out.comp_info[i].dc_tbl_no = component.dc_tbl_no;
        out.comp_info[i].ac_tbl_no = component.ac_tbl_no;
        copyTable(file.dc_huff_tbl_ptrs[component.dc_tbl_no], out.dc_huff_tbl_ptrs[component.dc_tbl_no], out);
        copyTable(file.ac_huff_tbl_ptrs[component.ac_tbl_no], out.ac_huff_tbl_ptrs[component.ac_tbl_no], out);
    }
    return true;
}

using Coefficients = std::future<jvirt_barray_ptr*>;

/// `source`, whose header was read, may next be asked for more than that when they are there.
Coefficients readCoefficients(Decompressor& source, std::launch way) {
    return std::async(way, [&source] { return jpeg_read_coefficients(&source.info); });
}

/// To be asked before coefficients are on their way: a damaged file may have a second header, which changes what the
/// first one said before it is refused.
Grid gridOf(const jpeg_decompress_struct& file) {
    Grid grid{8 * file.max_h_samp_factor, 8 * file.max_v_samp_factor, 0, 0, {}};
    grid.columns = (static_cast<int>(file.image_width) + grid.width - 1) / grid.width;
    grid.rows = (static_cast<int>(file.image_height) + grid.height - 1) / grid.height;
    grid.touched.resize(static_cast<std::size_t>(grid.columns) * static_cast<std::size_t>(grid.rows));
    return grid;
}

/// The stream of `source`, whose header was read and whose coefficients are on their way, with the patches painted in;
/// what follows its end in `file` stays. `keepsCodes`: whether the codes shall be kept; afterwards whether they were.
std::string patched(Decompressor& source, Grid grid, Coefficients coefficients, std::string_view file,
                    const std::vector<Patch>& patches, bool& keepsCodes) {
    // 1. The units of the file that the stamps touch.
    for (const auto& patch : patches)
        grid.touch(patch);
    const QRect units = grid.bounds();
    if (units.isEmpty())
        return std::string(file);

    // 2. The file's coefficients, those of the touched units replaced. Pixels of subsampled colour depend on the units
    //    beside them, which are decoded too.
    jvirt_barray_ptr* const blocks = coefficients.get();
    requireTables(source.info);
    const QRect around = units.adjusted(-1, -1, 1, 1) & QRect(0, 0, grid.columns, grid.rows);
    const QPoint corner(around.left() * grid.width, around.top() * grid.height);
    QImage image = decodeUnits(source, blocks, grid, around);
    for (const auto& patch : patches) {
        auto part = within(patch, QRect(corner, image.size()));
        part.area.translate(-corner);
        if (hasFourInks(source.info))
            blendInks(part, image, storesInverseInks(source.info));
        else
            blend(part, image);
    }
    const std::string encoded = encodePatch(source.info, image, corner, grid, units);
    Decompressor patch(encoded);
    jpeg_read_header(&patch.info, TRUE);
    jvirt_barray_ptr* const patchBlocks = jpeg_read_coefficients(&patch.info);
    replaceBlocks(source, blocks, patch, patchBlocks, grid, units);

    // 3. The same file again: its kind of coding, markers, and whatever follows its end.
    Compressor result;
    auto& out = result.info;
    jpeg_copy_critical_parameters(&source.info, &out);
    out.write_JFIF_header = source.info.saw_JFIF_marker;
    out.write_Adobe_marker = source.info.saw_Adobe_marker || out.write_Adobe_marker;
    out.arith_code = source.info.arith_code;
    out.restart_interval = source.info.restart_interval;
    keepsCodes = keepsCodes && keepCodes(source.info, out);
    out.optimize_coding = keepsCodes ? FALSE : TRUE;
    if (source.info.progressive_mode)
        jpeg_simple_progression(&out);
    jpeg_write_coefficients(&out, blocks);
    writeMarkers(out, source.info);
    jpeg_finish_compress(&out);
    jpeg_finish_decompress(&source.info);
    const auto length = file.size() - std::min<std::size_t>(source.info.src->bytes_in_buffer, file.size());
    auto bytes = result.bytes();
    correctIndex(bytes, file, length);
    return bytes.append(file.substr(length));
}

} // namespace

std::string patchJpeg(std::string_view stream, const std::vector<Patch>& patches, JpegColours colours, bool keepsCodes,
                      bool& hasNewCodes) {
    Decompressor source(stream);
    readHeader(source.info);
    if (source.info.num_components == 3 && colours != JpegColours::asItSays)
        source.info.jpeg_color_space = colours == JpegColours::rgb ? JCS_RGB : JCS_YCbCr;
    const QRect whole(0, 0, static_cast<int>(source.info.image_width), static_cast<int>(source.info.image_height));
    for (const auto& patch : patches)
        if (!whole.contains(patch.area))
            throw Failure(Code::damaged, "The picture is damaged.");
    const auto grid = gridOf(source.info);
    auto result = patched(source, grid, readCoefficients(source, std::launch::deferred), stream, patches, keepsCodes);
    hasNewCodes = !keepsCodes;
    return result;
}

std::string stampJpeg(std::string_view file, const PartsFor& partsFor, Report& report) {
    Decompressor source(file);
    readHeader(source.info);
    const auto geometry = geometryOf(source.info);
    const QSize size(geometry.width, geometry.height);
    const Matrix toPixels = pixelsFromShown(geometry);
    const auto grid = gridOf(source.info);
    // While the fonts are looked for and the titles set; where there can be no thread more, when they are asked for.
    auto coefficients = readCoefficients(source, std::launch::async | std::launch::deferred);
    std::vector<Patch> patches;
    for (const auto& part : partsFor(geometry))
        patches.push_back(paintStamp(*part.stamp, part.shownFromStamp.then(toPixels), size, false));
    bool keepsCodes = false;
    auto result = patched(source, grid, std::move(coefficients), file, patches, keepsCodes);
    if (source.info.err->num_warnings > 0)
        report.warn(Warning::Kind::pictureDamaged);
    return result;
}

} // namespace engine
