#pragma once
#include <QString>
#include <QStringList>
#include <deque>
#include <functional>

#include "preview/PrintServices.h"
#include "base/Prompter.h"

namespace kestrin {

// Message boxes for a script: each one is printed as a line; its answer comes from the
// queue of "answer" lines, else the box's first button (OK or Yes).
class ScriptPrompter : public Prompter {
public:
    explicit ScriptPrompter(std::function<void(const QString&)> print) : print_(std::move(print)) {}
    void queue(Answer answer) { answers_.push_back(answer); }
    void tell(Icon icon, const std::string& text, const std::string& title) override;
    Answer ask(Icon icon, const std::string& text, Buttons buttons, const std::string& title) override;

private:
    std::function<void(const QString&)> print_;
    std::deque<Answer> answers_;
};

// File dialogs for a script: the queued "choose" paths, an empty answer (cancel) when none.
class ScriptFileChooser : public FileChooser {
public:
    void queue(const QString& path) { paths_.push_back(path); }
    QString saveFileName(QWidget*, const QString&, const QString&, const QString&) override;

private:
    std::deque<QString> paths_;
};

QString iconName(Icon icon);

}  // namespace kestrin
