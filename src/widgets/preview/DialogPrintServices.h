#pragma once
#include "PrintServices.h"

namespace kestrin {

// The operator's own choices: the system print dialog for printer and copies, the save
// dialog for a file name.
class DialogPrintSetup : public PrintSetup {
public:
    bool setUp(QPrinter& printer, QWidget* parent) override;
};

class DialogFileChooser : public FileChooser {
public:
    QString saveFileName(QWidget* parent, const QString& title, const QString& folder, const QString& filter) override;
};

}  // namespace kestrin
