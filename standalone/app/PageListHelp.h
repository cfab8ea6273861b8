// SPDX-License-Identifier: MIT
#pragma once

#include <QObject>
#include <QString>

class QLineEdit;

namespace app {

/// A list of pages as somebody may have written it elsewhere, in single pages: ranges such as "2-4" written out, digits
/// of other scripts as those from 0 to 9, commas of other scripts as ",". Ranges that would make the list longer than
/// `most` characters stay as they are.
QString pageListOf(const QString& written, qsizetype most = 30'000);

/// Helps in a field that takes single pages alone: what is pasted is written out, digits of other scripts count, and
/// who types a dash is told how ranges are written.
class PageListHelp final : public QObject {
public:
    /// A part of `field`.
    explicit PageListHelp(QLineEdit& field);

protected:
    bool eventFilter(QObject* object, QEvent* event) override;

private:
    QLineEdit& m_field;
};

} // namespace app
