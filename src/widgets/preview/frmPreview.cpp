#include "frmPreview.h"

#include <QBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QScreen>
#include <QScrollArea>
#include <QScrollBar>
#include <QStyle>
#include <QTableWidget>

#include "PagePainter.h"
#include "PreviewPrinting.h"
#include "text/Translator.h"

namespace kestrin {

namespace {

QString translated(const Translator& translator, const TextRef& ref) {
    return QString::fromStdString(translator.text(ref));
}

// A focused button runs itself on Enter; the default button answers only when none has the focus.
QPushButton* makeButton(QWidget* parent, const char* name, const QString& text) {
    auto* button = new QPushButton(text, parent);
    button->setObjectName(name);
    button->setAutoDefault(true);
    return button;
}

QLabel* makeLabel(QWidget* parent, const char* name) {
    auto* label = new QLabel(parent);
    label->setObjectName(name);
    return label;
}

// Asks for room to show its whole content, so the window is as large as the grids unless the
// screen is smaller.
class GridScrollArea : public QScrollArea {
public:
    using QScrollArea::QScrollArea;
    QSize sizeHint() const override {
        const int frame = 2 * frameWidth();
        return widget() ? widget()->sizeHint() + QSize(frame, frame) : QScrollArea::sizeHint();
    }
};

}  // namespace

frmPreview::frmPreview(const CIClass& card, const RecordArray& records, const Translator& translator,
                       const QString& layoutFile, PrintServices services, QWidget* parent)
    : QDialog(parent), card_(card), records_(records), translator_(translator), layoutFile_(layoutFile),
      services_(services), view_(previewView(card_, 0, translator_)) {
    setObjectName("frmPreview");
    setWindowTitle(translated(translator_, kTextPreviewCaption));

    auto* chip = makeLabel(this, "lblChip");
    chip->setText(QString::fromStdString(chipDescription(card_.ChipSize(), translator_)));
    pageOf_ = makeLabel(this, "lblPageOf");
    pageOf_->setAlignment(Qt::AlignRight | Qt::AlignVCenter);

    auto* content = new QWidget;
    auto* gridsRow = new QHBoxLayout(content);
    for (int i = 0; i < 2; ++i) {
        titles_[i] = makeLabel(content, i == 0 ? "lblPreview0" : "lblPreview1");
        grids_[i] = createPageGrid(content, i == 0 ? "grdPreview0" : "grdPreview1");
        auto* column = new QVBoxLayout;
        column->addWidget(titles_[i]);
        column->addWidget(grids_[i]);
        column->addStretch();
        gridsRow->addLayout(column);
    }
    gridsRow->addStretch();
    scroll_ = new GridScrollArea(this);
    scroll_->setObjectName("scrPreview");
    scroll_->setWidgetResizable(true);
    scroll_->setWidget(content);

    previous_ = makeButton(this, "cmdPrevious", translated(translator_, kTextPreviewPrevious));
    next_ = makeButton(this, "cmdNext", translated(translator_, kTextPreviewNext));
    auto* print = makeButton(this, "cmdPrint", translated(translator_, kTextPreviewPrint));
    auto* ok = makeButton(this, "cmdOK", QString::fromUtf8(kTextPreviewOk.data(), static_cast<qsizetype>(kTextPreviewOk.size())));
    ok->setDefault(true);
    auto* buttons = new QHBoxLayout;
    buttons->addWidget(previous_);
    buttons->addWidget(next_);
    buttons->addStretch();
    buttons->addWidget(print);
    buttons->addWidget(ok);

    auto* top = new QHBoxLayout;
    top->addWidget(chip);
    top->addStretch();
    top->addWidget(pageOf_);

    auto* layout = new QVBoxLayout(this);
    layout->addLayout(top);
    layout->addWidget(scroll_, 1);
    layout->addLayout(buttons);

    connect(previous_, &QPushButton::clicked, this, &frmPreview::showPrevious);
    connect(next_, &QPushButton::clicked, this, &frmPreview::showNext);
    connect(print, &QPushButton::clicked, this, [this] { runPrintCommand(*this); });
    connect(ok, &QPushButton::clicked, this, &QDialog::accept);

    const bool second = usesSecondGrid();
    grids_[1]->setVisible(second);
    titles_[1]->setVisible(second);
    pageOf_->setVisible(second);

    showView(0);
    for (QTableWidget* grid : grids_) fitPageGrid(*grid);
    ok->setFocus();
    if (const QScreen* s = screen()) {
        // The room of the screen less the window's title bar and frame.
        const int frame = style()->pixelMetric(QStyle::PM_TitleBarHeight) + 2 * style()->pixelMetric(QStyle::PM_DefaultFrameWidth);
        fitInto(s->availableGeometry().size() - QSize(frame, frame));
    }
}

int frmPreview::viewCount() const {
    return previewViewCount(card_.ChipSize());
}

bool frmPreview::usesSecondGrid() const {
    return view_.titles.size() > 1;
}

void frmPreview::fitInto(const QSize& room) {
    // The grids' size is known once they are painted; widgets not yet shown pass no size
    // changes up to their layouts, so every layout starts afresh.
    scroll_->updateGeometry();
    for (QLayout* l : findChildren<QLayout*>()) l->invalidate();
    QSize wanted = sizeHint();
    if (wanted.height() > room.height()) wanted.rwidth() += scroll_->verticalScrollBar()->sizeHint().width();
    resize(wanted.boundedTo(room).expandedTo(minimumSizeHint()));
}

void frmPreview::showView(int index) {
    if (index < 0 || index >= viewCount()) return;
    // Both grids and the titles change together; nothing is drawn until all of them have.
    const bool wasOn = !testAttribute(Qt::WA_ForceUpdatesDisabled);
    setUpdatesEnabled(false);
    view_ = previewView(card_, index, translator_);
    for (size_t i = 0; i < 2; ++i) {
        titles_[i]->setText(i < view_.titles.size() ? QString::fromStdString(view_.titles[i]) : QString());
        if (i < view_.pages.size()) paintPage(*grids_[i], view_.pages[i], records_);
    }
    pageOf_->setText(QString::fromStdString(view_.position));
    previous_->setEnabled(view_.hasPrevious);
    next_->setEnabled(view_.hasNext);
    setUpdatesEnabled(wasOn);
}

void frmPreview::showNext() {
    if (view_.hasNext) showView(view_.index + 1);
}

void frmPreview::showPrevious() {
    if (view_.hasPrevious) showView(view_.index - 1);
}

QTableWidget* frmPreview::grid(int index) const {
    return index == 0 || index == 1 ? grids_[index] : nullptr;
}

}  // namespace kestrin
