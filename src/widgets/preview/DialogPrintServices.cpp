#include "DialogPrintServices.h"

#include <QFileDialog>
#include <QPrintDialog>
#include <QPrinter>

namespace kestrin {

bool DialogPrintSetup::setUp(QPrinter& printer, QWidget* parent) {
    QPrintDialog dialog(&printer, parent);
    return dialog.exec() == QDialog::Accepted;
}

QString DialogFileChooser::saveFileName(QWidget* parent, const QString& title, const QString& folder,
                                        const QString& filter) {
    return QFileDialog::getSaveFileName(parent, title, folder, filter);
}

}  // namespace kestrin
