#include "frmPrintPreview.h"

#include <QDialogButtonBox>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QPushButton>
#include <QRadioButton>
#include <QVBoxLayout>

#include "items/PreviewViews.h"
#include "text/Translator.h"

namespace kestrin {

namespace {

QString caption(const Translator& translator, const TextRef& ref) {
    return QString::fromStdString(translator.text(ref));
}

// A frame with two options, the first selected.
QGroupBox* optionPair(QWidget* parent, const QString& frameName, const QString& caption, const QString& baseName,
                      const QString& first, const QString& second, QRadioButton*& a, QRadioButton*& b) {
    auto* frame = new QGroupBox(caption, parent);
    frame->setObjectName(frameName);
    a = new QRadioButton(first, frame);
    a->setObjectName(baseName + "(0)");
    b = new QRadioButton(second, frame);
    b->setObjectName(baseName + "(1)");
    a->setChecked(true);
    auto* layout = new QVBoxLayout(frame);
    layout->addWidget(a);
    layout->addWidget(b);
    return frame;
}

}  // namespace

frmPrintPreview::frmPrintPreview(const Translator& translator, QWidget* parent) : QDialog(parent) {
    setObjectName("frmPrintPreview");
    setWindowTitle(caption(translator, kTextPrintOptionsCaption));
    auto* destination = optionPair(this, "fraDestination", caption(translator, kTextDestination), "optPrint",
                                   caption(translator, kTextPrintToPrinter), caption(translator, kTextPrintToFile),
                                   printToPrinter_, printToFile_);
    auto* range = optionPair(this, "fraRange", caption(translator, kTextPrintRange), "optRange",
                             caption(translator, kTextCurrentPages), caption(translator, kTextAllPages),
                             currentPages_, allPages_);
    auto* ok = new QPushButton(QStringLiteral("OK"), this);
    ok->setObjectName("cmdOK");
    ok->setDefault(true);
    auto* cancel = new QPushButton(QStringLiteral("Cancel"), this);
    cancel->setObjectName("cmdCancel");
    connect(ok, &QPushButton::clicked, this, &QDialog::accept);
    connect(cancel, &QPushButton::clicked, this, &QDialog::reject);

    auto* frames = new QHBoxLayout;
    frames->addWidget(destination);
    frames->addWidget(range);
    auto* buttons = new QHBoxLayout;
    buttons->addStretch();
    buttons->addWidget(ok);
    buttons->addWidget(cancel);
    auto* layout = new QVBoxLayout(this);
    layout->addLayout(frames);
    layout->addLayout(buttons);
}

bool frmPrintPreview::toFile() const {
    return printToFile_->isChecked();
}

bool frmPrintPreview::allPages() const {
    return allPages_->isChecked();
}

void frmPrintPreview::done(int result) {
    Cancelled = result != QDialog::Accepted;
    QDialog::done(result);
}

}  // namespace kestrin
