#include "AboutBox.h"

#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

#include "base/ProductInfo.h"

namespace kestrin {

namespace {

QLabel* label(QWidget* parent, const char* name, const QString& text) {
    auto* l = new QLabel(text, parent);
    l->setObjectName(QString::fromLatin1(name));
    l->setTextFormat(Qt::PlainText);
    return l;
}

}  // namespace

QString AboutBox::versionText() {
    return QStringLiteral("Version %1.%2.%3").arg(kVersionMajor).arg(kVersionMinor).arg(kVersionRevision);
}

AboutBox::AboutBox(QWidget* parent) : QDialog(parent) {
    setObjectName(QStringLiteral("frmAbout"));
    setModal(true);
    setWindowTitle(QStringLiteral("About %1").arg(QString::fromLatin1(kProductTitle)));
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(label(this, "lblTitle", QString::fromLatin1(kProductTitle)));
    layout->addWidget(label(this, "lblVersion", versionText()));
    layout->addWidget(
        label(this, "lblDescription", QStringLiteral("Designs the memory layout of contactless smart cards.")));
    layout->addWidget(label(this, "lblWarning", QStringLiteral("<Warning: unauthorized use strictly forbidden>")));
    auto* ok = new QPushButton(QStringLiteral("OK"), this);
    ok->setObjectName(QStringLiteral("cmdOK"));
    ok->setDefault(true);
    connect(ok, &QPushButton::clicked, this, &QDialog::accept);
    layout->addWidget(ok, 0, Qt::AlignRight);
}

}  // namespace kestrin
