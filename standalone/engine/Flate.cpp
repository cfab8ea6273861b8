// SPDX-License-Identifier: MIT
#include "Flate.h"

#include <new>

#define ZLIB_CONST
#include <zlib.h>

namespace engine {

namespace {

constexpr std::size_t kLargestResult = 64 << 20;

void setInput(z_stream& stream, std::string_view bytes) {
    stream.next_in = reinterpret_cast<const Bytef*>(bytes.data());
    stream.avail_in = static_cast<uInt>(bytes.size());
}

} // namespace

struct Flate::Streams {
    z_stream deflating{};
    z_stream inflating{};
};

Flate::Flate() : m_streams(new Streams) {
    if (::deflateInit(&m_streams->deflating, Z_DEFAULT_COMPRESSION) != Z_OK ||
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

std::optional<std::string> Flate::inflate(std::string_view deflated) {
    z_stream& stream = m_streams->inflating;
    ::inflateReset(&stream);
    std::string result(deflated.size() * 4 + 256, '\0');
    setInput(stream, deflated);
    for (;;) {
        stream.next_out = reinterpret_cast<Bytef*>(result.data()) + stream.total_out;
        stream.avail_out = static_cast<uInt>(result.size() - stream.total_out);
        const int code = ::inflate(&stream, Z_NO_FLUSH);
        if (code == Z_STREAM_END)
            break;
        if (code != Z_OK || stream.avail_out > 0 || result.size() > kLargestResult)
            return std::nullopt;
        result.resize(result.size() * 2);
    }
    result.resize(stream.total_out);
    return result;
}

} // namespace engine
