// SPDX-License-Identifier: MIT
#include "ContentReader.h"

#include "ContentScan.h"

#include <qpdf/QPDFExc.hh>

#include <algorithm>

namespace engine {

namespace {

constexpr std::size_t kBatch = 64;

void judge(std::string& text, PageContent& content) {
    const auto balance = scanContent(text);
    content.openStates = balance.openStates;
    content.openMarks = balance.openMarks;
    content.openText = balance.openText;
    content.closing = balance.closing;
    content.text.reset();
    if (balance.surplusRestores.empty())
        return;
    // Viewers pass over a restore without a save. Inside the wrapper it would end the wrapper.
    for (const auto offset : balance.surplusRestores)
        text[offset] = ' ';
    content.text = text;
}

} // namespace

std::string decodedStream(QPDFObjectHandle stream, Flate& flate) {
    auto dictionary = stream.getDict();
    if (dictionary.getKey("/Filter").isNameAndEquals("/FlateDecode") && !dictionary.hasKey("/DecodeParms")) {
        const auto raw = stream.getRawStreamData();
        std::string plain;
        if (flate.inflate({reinterpret_cast<const char*>(raw->getBuffer()), raw->getSize()}, plain))
            return plain;
    }
    const auto data = stream.getStreamData(qpdf_dl_specialized);
    return {reinterpret_cast<const char*>(data->getBuffer()), data->getSize()};
}

ContentReader::ContentReader(std::string_view bytes, bool aside) : m_bytes(bytes) {
    if (aside && !bytes.empty())
        // Where there can be no thread more, all is read when it is waited for.
        m_worker = std::async(std::launch::async | std::launch::deferred, [this] { work(); });
}

ContentReader::~ContentReader() {
    {
        const std::lock_guard lock(m_mutex);
        m_batches.clear();
        m_closed = true;
    }
    m_wake.notify_one();
    if (m_worker.valid())
        m_worker.wait();
}

std::size_t ContentReader::add(const std::vector<QPDFObjectHandle>& streams) {
    auto& places = m_places[streams.empty() ? 0 : streams.front().getObjectID()];
    for (const auto place : places)
        if (std::equal(streams.begin(), streams.end(), m_contents[place].streams.begin(),
                       m_contents[place].streams.end(),
                       [](const QPDFObjectHandle& stream, const QPDFObjGen& id) { return stream.getObjGen() == id; }))
            return place;
    places.push_back(m_contents.size());
    auto& content = m_contents.emplace_back();
    Task task{&content, {}};
    for (auto stream : streams) {
        content.streams.push_back(stream.getObjGen());
        m_document = stream.getOwningQPDF();
        auto dictionary = stream.getDict();
        auto filter = dictionary.getKey("/Filter");
        auto length = dictionary.getKey("/Length");
        const auto offset = stream.getParsedOffset();
        const bool deflated = filter.isNameAndEquals("/FlateDecode");
        // The data of an object that was read from the file stands where it says.
        if (m_bytes.empty() || !length.isInteger() || offset <= 0 || length.getIntValue() < 0 ||
            static_cast<std::size_t>(offset) > m_bytes.size() ||
            static_cast<std::size_t>(length.getIntValue()) > m_bytes.size() - static_cast<std::size_t>(offset) ||
            !(deflated || filter.isNull()) || dictionary.hasKey("/DecodeParms") || dictionary.hasKey("/F")) {
            task.extents.clear();
            task.content = nullptr;
            break;
        }
        task.extents.push_back(
            {static_cast<std::size_t>(offset), static_cast<std::size_t>(length.getIntValue()), deflated});
    }
    if (streams.empty())
        return m_contents.size() - 1;
    if (!task.content) {
        content.streams.clear();
        for (const auto& stream : streams)
            content.streams.push_back(stream.getObjGen());
        readThroughLibrary(content, streams);
    } else if (m_worker.valid()) {
        m_gathered.push_back(std::move(task));
        if (m_gathered.size() == kBatch) {
            {
                const std::lock_guard lock(m_mutex);
                m_batches.push_back(std::move(m_gathered));
            }
            m_gathered.clear();
            m_wake.notify_one();
        }
    } else {
        std::string buffer;
        if (!read(task, m_bytes, m_flate, buffer))
            readThroughLibrary(content, streams);
    }
    return m_contents.size() - 1;
}

std::size_t ContentReader::add(std::string text) {
    auto& content = m_contents.emplace_back();
    judge(text, content);
    content.text = std::move(text);
    return m_contents.size() - 1;
}

std::size_t ContentReader::add(const std::vector<QPDFObjectHandle>& streams, std::string tail) {
    auto& content = m_contents.emplace_back();
    for (const auto& stream : streams) {
        content.streams.push_back(stream.getObjGen());
        m_document = stream.getOwningQPDF();
    }
    content.tail = std::move(tail);
    content.isUnread = true;
    return m_contents.size() - 1;
}

void ContentReader::work() {
    Flate flate;
    std::string buffer;
    for (;;) {
        std::vector<Task> batch;
        {
            std::unique_lock lock(m_mutex);
            m_wake.wait(lock, [this] { return m_closed || !m_batches.empty(); });
            if (m_batches.empty())
                return;
            batch = std::move(m_batches.front());
            m_batches.pop_front();
        }
        for (const auto& task : batch)
            if (!read(task, m_bytes, flate, buffer))
                m_failed.push_back(task.content);
    }
}

bool ContentReader::read(const Task& task, std::string_view bytes, Flate& flate, std::string& buffer) {
    buffer.clear();
    for (const auto& extent : task.extents) {
        const auto data = bytes.substr(extent.offset, extent.length);
        if (!extent.deflated)
            buffer += data;
        else if (!flate.inflate(data, buffer))
            return false;
        buffer += '\n';
    }
    judge(buffer, *task.content);
    return true;
}

void ContentReader::readThroughLibrary(PageContent& content, const std::vector<QPDFObjectHandle>& streams) {
    std::string text;
    try {
        for (const auto& stream : streams) {
            text += decodedStream(stream, m_flate);
            text += '\n';
        }
    } catch (const QPDFExc&) {
        content.isUnread = true; // and cannot be mended
        return;
    }
    content.isUnread = false;
    judge(text, content);
}

void ContentReader::finish(bool distrusted) {
    if (m_worker.valid()) {
        {
            const std::lock_guard lock(m_mutex);
            if (!m_gathered.empty())
                m_batches.push_back(std::move(m_gathered));
            m_gathered.clear();
            m_closed = true;
        }
        m_wake.notify_one();
        m_worker.get();
    }
    const auto again = [this](PageContent& content) {
        if (content.streams.empty())
            return;
        std::vector<QPDFObjectHandle> streams;
        for (const auto& id : content.streams)
            streams.push_back(m_document->getObjectByObjGen(id));
        readThroughLibrary(content, streams);
    };
    if (distrusted && !m_bytes.empty()) {
        for (auto& content : m_contents)
            again(content);
    } else {
        for (auto* content : m_failed)
            again(*content);
    }
    m_failed.clear();
}

} // namespace engine
