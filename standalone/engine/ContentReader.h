// SPDX-License-Identifier: MIT
#pragma once

#include "Flate.h"

#include <qpdf/QPDF.hh>

#include <condition_variable>
#include <deque>
#include <future>
#include <mutex>
#include <optional>
#include <unordered_map>
#include <vector>

namespace engine {

/// A page's content: streams that together leave something open.
struct PageContent {
    std::vector<QPDFObjGen> streams;
    std::size_t openStates = 0;
    std::size_t openMarks = 0;
    bool openText = false;
    std::string closing; ///< See `ContentBalance`.
    /// In place of the streams: content without the restores that nothing was saved for, or without stamps it had.
    std::optional<std::string> text;
    std::optional<std::string> tail; ///< Content that follows the streams.
    bool isUnread = false;           ///< Whether streams could not be decoded, so that nothing is known of them.

    bool isEmpty() const { return streams.empty() && !text; }
};

/// The decoded data of a stream. Throws QPDFExc for one that cannot be decoded.
std::string decodedStream(QPDFObjectHandle stream, Flate& flate);

/// Reads the contents of pages and finds out what they leave open, beside the thread that walks through the document.
class ContentReader {
public:
    /// `bytes` are the file's own, where a stream's data can be read at its offset; none where it cannot. With `aside`
    /// they are read on a thread of this object's own.
    ContentReader(std::string_view bytes, bool aside);
    ~ContentReader();

    /// Takes a page's streams and answers the place of its content. Equal lists are one content.
    std::size_t add(const std::vector<QPDFObjectHandle>& streams);

    /// Takes content that is in no stream of the file.
    std::size_t add(std::string text);

    /// Takes a page's streams, some of which cannot be decoded, and content that follows them and is balanced with
    /// them.
    std::size_t add(const std::vector<QPDFObjectHandle>& streams, std::string tail);

    /// Waits until all is read. With `distrusted` everything is read once more through the library, since offsets
    /// turned out not to be what they seemed.
    void finish(bool distrusted);

    const PageContent& content(std::size_t place) const { return m_contents[place]; }

private:
    struct Extent {
        std::size_t offset;
        std::size_t length;
        bool deflated;
    };
    struct Task {
        PageContent* content;
        std::vector<Extent> extents;
    };

    void work();
    static bool read(const Task& task, std::string_view bytes, Flate& flate, std::string& buffer);
    void readThroughLibrary(PageContent& content, const std::vector<QPDFObjectHandle>& streams);

    std::string_view m_bytes;
    QPDF* m_document = nullptr;
    Flate m_flate;
    std::deque<PageContent> m_contents;
    std::unordered_map<int, std::vector<std::size_t>> m_places; ///< By the number of the first stream.

    std::mutex m_mutex;
    std::condition_variable m_wake;
    std::vector<Task> m_gathered;
    std::deque<std::vector<Task>> m_batches;
    std::vector<PageContent*> m_failed;
    bool m_closed = false;
    std::future<void> m_worker;
};

} // namespace engine
