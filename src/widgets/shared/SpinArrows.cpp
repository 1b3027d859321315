#include "SpinArrows.h"

#include <QLineEdit>
#include <QStyle>
#include <QStyleOptionSpinBox>

namespace kestrin {

SpinArrows::SpinArrows(QWidget* parent) : QAbstractSpinBox(parent) {
    setFocusPolicy(Qt::NoFocus);
    setButtonSymbols(UpDownArrows);
    setFrame(false);
    lineEdit()->setReadOnly(true);
    lineEdit()->setFocusPolicy(Qt::NoFocus);
    // As wide as the arrows themselves: the number stands in the box beside them.
    QStyleOptionSpinBox option;
    initStyleOption(&option);
    const QRect up = style()->subControlRect(QStyle::CC_SpinBox, &option, QStyle::SC_SpinBoxUp, this);
    setFixedWidth(up.width() > 0 ? up.width() : sizeHint().height());
}

void SpinArrows::stepBy(int steps) {
    emit stepped(steps);
}

}  // namespace kestrin
