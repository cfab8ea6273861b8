// SPDX-License-Identifier: MIT
#include "Flate.h"

#include <algorithm>
#include <new>

#define ZLIB_CONST
#include <zlib.h>

namespace engine {

namespace {

constexpr std::size_t kLargestResult = 64 << 20;
constexpr int kWindowBits = 12;
constexpr int kMemoryLevel = 5;

void setInput(z_stream& stream, std::string_view bytes) {
    stream.next_in = reinterpret_cast<const Bytef*>(bytes.data());
    stream.avail_in = static_cast<uInt>(bytes.size());
}

} // namespace

std::uint32_t checkSum(std::string_view bytes) {
    return static_cast<std::uint32_t>(
        ::crc32_z(0, reinterpret_cast<const Bytef*>(bytes.data()), static_cast<z_size_t>(bytes.size())));
}

struct Flate::Streams {
    z_stream deflating{};
    z_stream inflating{};
};

Flate::Flate(int effort) : m_streams(new Streams) {
    // Small pieces need small tables, which are quick to clear.
    if (::deflateInit2(&m_streams->deflating, effort, Z_DEFLATED, kWindowBits, kMemoryLevel, Z_DEFAULT_STRATEGY) !=
            Z_OK ||
        ::inflateInit(&m_streams->inflating) != Z_OK)
        throw std::bad_alloc();
}

Flate::~Flate() {
    ::deflateEnd(&m_streams->deflating);
    ::inflateEnd(&m_streams->inflating);
}

std::string Flate::deflate(std::string_view plain) {
    z_stream& stream = m_streams->deflating;
    ::deflateReset(&stream);
    std::string result(::deflateBound(&stream, plain.size()), '\0');
    setInput(stream, plain);
    stream.next_out = reinterpret_cast<Bytef*>(result.data());
    stream.avail_out = static_cast<uInt>(result.size());
    ::deflate(&stream, Z_FINISH); // the bound leaves room for all of it
    result.resize(stream.total_out);
    return result;
}

bool Flate::inflate(std::string_view deflated, std::string& plain) {
    z_stream& stream = m_streams->inflating;
    ::inflateReset(&stream);
    const auto before = plain.size();
    setInput(stream, deflated);
    plain.resize(std::max(plain.capacity(), before + deflated.size() * 4 + 256));
    for (;;) {
        stream.next_out = reinterpret_cast<Bytef*>(plain.data()) + before + stream.total_out;
        stream.avail_out = static_cast<uInt>(plain.size() - before - stream.total_out);
        const int code = ::inflate(&stream, Z_NO_FLUSH);
        if (code == Z_STREAM_END)
            break;
        if (code != Z_OK || stream.avail_out > 0 || plain.size() > kLargestResult)
            return false;
        plain.resize(plain.size() * 2);
    }
    plain.resize(before + stream.total_out);
    return true;
}

} // namespace engine
