#pragma once
#include <QDialog>

class QRadioButton;

namespace kestrin {

class Translator;

// The print options of the preview: printer or file, current view or all pages.
class frmPrintPreview : public QDialog {
    Q_OBJECT
public:
    explicit frmPrintPreview(const Translator& translator, QWidget* parent = nullptr);

    // Set by Cancel (and by closing the box any other way than OK); false after OK.
    bool Cancelled = false;
    bool toFile() const;
    bool allPages() const;

    void done(int result) override;

private:
    QRadioButton* printToPrinter_ = nullptr;
    QRadioButton* printToFile_ = nullptr;
    QRadioButton* currentPages_ = nullptr;
    QRadioButton* allPages_ = nullptr;
};

}  // namespace kestrin
