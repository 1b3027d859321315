#pragma once
#include <QDialog>

namespace kestrin {

// The control's about box: product title, version, what it is for and the usage warning.
// Labels lblTitle, lblVersion, lblDescription, lblWarning; closed by cmdOK.
class AboutBox : public QDialog {
    Q_OBJECT
public:
    explicit AboutBox(QWidget* parent = nullptr);

    // "Version 6.1.4" style, from the build.
    static QString versionText();
};

}  // namespace kestrin
