#pragma once
#include <QString>

class QPrinter;
class QWidget;

namespace kestrin {

// Chooses the printer and the number of copies; false when the operator cancels.
class PrintSetup {
public:
    virtual ~PrintSetup() = default;
    virtual bool setUp(QPrinter& printer, QWidget* parent) = 0;
};

// Asks for the name of a file to write; an empty text when the operator cancels.
class FileChooser {
public:
    virtual ~FileChooser() = default;
    virtual QString saveFileName(QWidget* parent, const QString& title, const QString& folder,
                                 const QString& filter) = 0;
};

// The seams a preview prints through, owned by the caller.
struct PrintServices {
    PrintSetup* printSetup = nullptr;
    FileChooser* fileChooser = nullptr;
};

}  // namespace kestrin
