#include "MessageBoxPrompter.h"

#include <QMessageBox>

namespace kestrin {

namespace {

QMessageBox::Icon iconOf(Icon icon) {
    switch (icon) {
    case Icon::Information: return QMessageBox::Information;
    case Icon::Question: return QMessageBox::Question;
    case Icon::Exclamation: return QMessageBox::Warning;
    case Icon::Critical: return QMessageBox::Critical;
    case Icon::None: break;
    }
    return QMessageBox::NoIcon;
}

QMessageBox::StandardButtons buttonsOf(Buttons buttons) {
    switch (buttons) {
    case Buttons::Ok: return QMessageBox::Ok;
    case Buttons::OkCancel: return QMessageBox::Ok | QMessageBox::Cancel;
    case Buttons::YesNo: return QMessageBox::Yes | QMessageBox::No;
    case Buttons::YesNoCancel: return QMessageBox::Yes | QMessageBox::No | QMessageBox::Cancel;
    }
    return QMessageBox::Ok;
}

}  // namespace

void MessageBoxPrompter::tell(Icon icon, const std::string& text, const std::string& title) {
    QMessageBox box(iconOf(icon), QString::fromStdString(title), QString::fromStdString(text), QMessageBox::Ok,
                    parent_);
    box.exec();
}

Answer MessageBoxPrompter::ask(Icon icon, const std::string& text, Buttons buttons, const std::string& title) {
    QMessageBox box(iconOf(icon), QString::fromStdString(title), QString::fromStdString(text), buttonsOf(buttons),
                    parent_);
    switch (box.exec()) {
    case QMessageBox::Ok: return Answer::Ok;
    case QMessageBox::Yes: return Answer::Yes;
    case QMessageBox::No: return Answer::No;
    default: return Answer::Cancel;
    }
}

}  // namespace kestrin
