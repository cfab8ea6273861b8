// SPDX-License-Identifier: MIT
// The floor for opening a window: the toolkit, one window, one label. Says so once the window was painted, then ends.

#include <QApplication>
#include <QLabel>
#include <QTimer>

#include <iostream>

namespace {

class Window final : public QLabel {
public:
    using QLabel::QLabel;

protected:
    bool event(QEvent* event) override {
        const bool answer = QLabel::event(event);
        if (event->type() == QEvent::Paint)
            QTimer::singleShot(0, this, [] {
                std::cout << "painted" << std::endl;
                QApplication::quit();
            });
        return answer;
    }
};

} // namespace

int main(int argc, char** argv) {
    QApplication application(argc, argv);
    Window window(QStringLiteral("Imprinter"));
    window.resize(860, 540);
    window.show();
    return QApplication::exec();
}
