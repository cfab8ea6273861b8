// SPDX-License-Identifier: MIT
#include "MatrixPeer.h"

#include "ButtonGroupKeys.h"

#include <QKeyEvent>

#include <algorithm>

namespace platform::qt {

ChoiceButton::ChoiceButton(QWidget* parent) : QRadioButton(parent) {
    setAutoExclusive(false);
}

void ChoiceButton::keyPressEvent(QKeyEvent* event) {
    const int key = event->key();
    if (key != Qt::Key_Up && key != Qt::Key_Left && key != Qt::Key_Down && key != Qt::Key_Right) {
        QRadioButton::keyPressEvent(event);
        return;
    }
    enter([this, key] {
        if (m_moved)
            m_moved(key == Qt::Key_Up || key == Qt::Key_Left ? -1 : 1);
    });
}

namespace {

class ChoicesPeer final : public WidgetPeer, public MatrixPeer {
public:
    ChoicesPeer(QWidget& widget, const std::vector<ChoiceButton*>& choices)
        : WidgetPeer(widget), m_choices(choices.begin(), choices.end()) {}

    void showCells(const NSMatrix& matrix) override {
        const auto& cells = matrix.cells();
        for (std::size_t i = 0; i < m_choices.size() && i < cells.size(); ++i) {
            if (!m_choices[i])
                continue;
            m_choices[i]->setText(withoutShortcut(cells[i]->title()));
            m_choices[i]->setChecked(cells[i] == matrix.selectedCell());
        }
    }

    bool focus() override {
        if (!widget() || !endEditingInWindow(*widget()))
            return false;
        const auto isOn = [](const auto& choice) { return choice && choice->isChecked(); };
        const auto on = std::find_if(m_choices.begin(), m_choices.end(), isOn);
        const auto taker = on != m_choices.end() || m_choices.empty() ? on : m_choices.begin();
        if (taker == m_choices.end() || !*taker)
            return false;
        (*taker)->setFocus(Qt::OtherFocusReason);
        return true;
    }

private:
    std::vector<QPointer<ChoiceButton>> m_choices;
};

void chooseAt(const std::weak_ptr<NSMatrix>& weak, std::size_t index) {
    if (const auto matrix = weak.lock(); matrix && index < matrix->cells().size())
        matrix->userSelects(matrix->cells()[index]);
}

} // namespace

std::unique_ptr<ViewPeer> makeMatrixPeer(const std::shared_ptr<NSMatrix>& view, QWidget& widget,
                                         const std::vector<ChoiceButton*>& choices) {
    const std::weak_ptr<NSMatrix> weak = view;
    for (std::size_t i = 0; i < choices.size(); ++i) {
        QObject::connect(choices[i], &QAbstractButton::clicked, choices[i],
                         [weak, i] { enter([&weak, i] { chooseAt(weak, i); }); });
        choices[i]->setMoved([weak, choices, i](int step) {
            const auto next = i + static_cast<std::size_t>(step); // before the first wraps to a number past the last
            if (next >= choices.size())
                return;
            choices[next]->setFocus(Qt::OtherFocusReason);
            chooseAt(weak, next);
        });
    }
    new ButtonGroupKeys(widget, ButtonGroupKeys::Arrows::leave); // belongs to the widget
    return std::make_unique<ChoicesPeer>(widget, choices);
}

} // namespace platform::qt
