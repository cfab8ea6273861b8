// SPDX-License-Identifier: MIT
#pragma once

#include <qpdf/QPDF.hh>

#include <map>
#include <string>
#include <string_view>

namespace engine {

/// Where the new objects of a document go. Objects are given as they stand in a file, and named by references ("12 0
/// R") that hold within the document.
class PdfObjects {
public:
    virtual ~PdfObjects() = default;

    /// Adds an object and answers a reference to it.
    virtual std::string add(std::string_view body) = 0;
    /// Answers a reference to an object that `fill` has to give its body.
    virtual std::string reserve() = 0;
    /// Gives an object its body, in place of the one it had. To be called once for each.
    virtual void fill(const std::string& reference, std::string_view body) = 0;
    /// Adds a stream whose dictionary has these entries besides its length.
    virtual std::string addStream(std::string_view entries, std::string_view data) = 0;
    /// Gives a page other contents and resources; everything else about it stays.
    virtual void changePage(QPDFObjectHandle page, const std::string& contents, const std::string& resources) = 0;
};

/// Into a document that is written anew as a whole.
class PdfRewrite final : public PdfObjects {
public:
    explicit PdfRewrite(QPDF& document) : m_document(document) {}

    std::string add(std::string_view body) override;
    std::string reserve() override;
    void fill(const std::string& reference, std::string_view body) override;
    std::string addStream(std::string_view entries, std::string_view data) override;
    void changePage(QPDFObjectHandle page, const std::string& contents, const std::string& resources) override;

private:
    QPDF& m_document;
    std::map<std::string, QPDFObjectHandle, std::less<>> m_entries; ///< Parsed once, and shared.
};

} // namespace engine
