// SPDX-License-Identifier: MIT
#include "SamplePdf.h"

#include <QImageReader>

#include <qpdf/QPDF.hh>
#include <qpdf/QPDFPageDocumentHelper.hh>
#include <qpdf/QPDFPageObjectHelper.hh>
#include <qpdf/QPDFWriter.hh>

#include <fstream>
#include <sstream>

namespace app {

void writeSamplePdf(const std::filesystem::path& page, const std::filesystem::path& pdf) {
    std::ifstream file(page, std::ios::binary);
    std::ostringstream picture;
    picture << file.rdbuf();
    const auto size = QImageReader(QString::fromStdString(page.string())).size();
    if (!file || !size.isValid())
        throw std::runtime_error(page.string() + " cannot be read");

    QPDF document;
    document.emptyPDF();
    auto image = document.newStream(picture.str());
    image.replaceDict(QPDFObjectHandle::parse("<< /Type /XObject /Subtype /Image /ColorSpace /DeviceRGB "
                                              "/BitsPerComponent 8 /Filter /DCTDecode /Width " +
                                              std::to_string(size.width()) + " /Height " +
                                              std::to_string(size.height()) + " >>"));
    auto object =
        document.makeIndirectObject(QPDFObjectHandle::parse("<< /Type /Page /MediaBox [0 0 595.276 841.89] >>"));
    auto resources = QPDFObjectHandle::parse("<< /XObject << >> >>");
    resources.getKey("/XObject").replaceKey("/Page", image);
    object.replaceKey("/Resources", resources);
    object.replaceKey("/Contents", document.newStream("q 595.276 0 0 841.89 0 0 cm /Page Do Q\n"));
    QPDFPageDocumentHelper(document).addPage(QPDFPageObjectHelper(object), false);
    QPDFWriter(document, pdf.c_str()).write();
}

} // namespace app
