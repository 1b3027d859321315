#pragma once
#include <QString>
#include <QStringList>
#include <functional>
#include <vector>

#include "ScriptSeams.h"

class QDialog;
class QObject;

namespace kestrin {

class IClass;

// Runs a host script against a control: one automation call a line, calling each member by
// name through the meta-object, printing results, events and message boxes one line each.
// "answer" and "choose" lines queue the next message-box and file-dialog answers; "set",
// "check", "pick" and "click" lines after a call act, in order, on the modal dialog that call
// opens. Lines starting with # and blank lines are skipped.
class ScriptRunner {
public:
    ScriptRunner(IClass& control, std::function<void(const QString&)> print);

    // False when a line could not be run (an unknown member, wrong arguments); the reason
    // is printed as "error ...".
    bool run(const QStringList& lines);
    static QStringList splitArguments(const QString& line);

private:
    struct Step {
        QStringList call;
        std::vector<QStringList> dialogActions;
        int line = 0;
    };
    bool runStep(const Step& step);
    int runDialog(QDialog& dialog);
    bool actOn(QDialog& dialog, const QStringList& action);

    IClass& control_;
    std::function<void(const QString&)> print_;
    ScriptPrompter prompter_;
    ScriptFileChooser chooser_;
    std::vector<QStringList> pendingActions_;
    bool raised_ = false;  // the member being called raised an error
};

}  // namespace kestrin
