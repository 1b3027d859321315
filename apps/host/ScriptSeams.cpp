#include "ScriptSeams.h"

namespace kestrin {

QString iconName(Icon icon) {
    switch (icon) {
    case Icon::Information: return "information";
    case Icon::Question: return "question";
    case Icon::Exclamation: return "exclamation";
    case Icon::Critical: return "critical";
    case Icon::None: break;
    }
    return "none";
}

namespace {
// A message on one line: its CR LF line breaks shown as " | ".
QString oneLine(const std::string& text) {
    return QString::fromStdString(text).replace("\r\n", " | ").replace('\n', " | ");
}
}  // namespace

void ScriptPrompter::tell(Icon icon, const std::string& text, const std::string& title) {
    print_("message " + iconName(icon) + " \"" + QString::fromStdString(title) + "\" " + oneLine(text));
}

Answer ScriptPrompter::ask(Icon icon, const std::string& text, Buttons buttons, const std::string& title) {
    print_("question " + iconName(icon) + " \"" + QString::fromStdString(title) + "\" " + oneLine(text));
    Answer answer = buttons == Buttons::OkCancel || buttons == Buttons::Ok ? Answer::Ok : Answer::Yes;
    if (!answers_.empty()) {
        answer = answers_.front();
        answers_.pop_front();
    }
    return answer;
}

QString ScriptFileChooser::saveFileName(QWidget*, const QString&, const QString&, const QString&) {
    if (paths_.empty()) return {};
    const QString path = paths_.front();
    paths_.pop_front();
    return path;
}

}  // namespace kestrin
