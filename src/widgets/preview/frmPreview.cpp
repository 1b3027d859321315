#include "frmPreview.h"

#include <QBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QTableWidget>
#include <array>

#include "PagePainter.h"
#include "PreviewPrinting.h"
#include "text/Translator.h"

namespace kestrin {

namespace {

constexpr int kViewsOf16k = 4;
constexpr int kVirtualPages = 8;  // 32-block pages of the one-page 16 kbit card

// What each view of a 16 kbit card shows, after the words "Blocks" or "Page"/"Pages".
constexpr std::array<std::array<const char*, 2>, kViewsOf16k> kBlockRanges = {{
    {" 0 - 31", " 32 - 63"},
    {" 64 - 95 ", " 96 - 127"},
    {" 128 - 159", " 160 - 191"},
    {" 192 - 223", " 224 - 255"},
}};
constexpr std::array<const char*, kViewsOf16k> kBlockViews = {" 0 - 63 of 255", " 64 - 127 of 255",
                                                               " 128 - 191 of 255", " 192 - 255 of 255"};
constexpr std::array<std::array<const char*, 2>, kViewsOf16k> kPageNumbers = {{
    {" 0", " 1"},
    {" 2", " 3"},
    {" 4", " 5"},
    {" 6", " 7"},
}};
constexpr std::array<const char*, kViewsOf16k> kPageViews = {" 0/1 of 7", " 2/3 of 7", " 4/5 of 7", " 6/7 of 7"};

QString translated(const Translator& translator, int32_t id, const char* defaultText) {
    return QString::fromStdString(translator.text(id, defaultText));
}

QString chipDescription(const Translator& translator, IClassType chip) {
    switch (chip) {
    case iBigOnePage:
        return translated(translator, 4627, "<16 kbit (2 kbyte) card, non-paged>");
    case iBigEightPages:
        return translated(translator, 4628, "<16 kbit (2 kbyte) card, paged>");
    case iSmallOnePage:
        break;
    }
    return translated(translator, 4626, "<2 kbit/256 bytes card>");
}

QPushButton* makeButton(QWidget* parent, const char* name, const QString& text) {
    auto* button = new QPushButton(text, parent);
    button->setObjectName(name);
    button->setAutoDefault(false);
    return button;
}

QLabel* makeLabel(QWidget* parent, const char* name) {
    auto* label = new QLabel(parent);
    label->setObjectName(name);
    return label;
}

}  // namespace

frmPreview::frmPreview(const CIClass& card, const RecordArray& records, const Translator& translator,
                       const QString& layoutFile, PrintServices services, QWidget* parent)
    : QDialog(parent), card_(card), records_(records), translator_(translator), layoutFile_(layoutFile),
      services_(services) {
    setObjectName("frmPreview");
    setWindowTitle(translated(translator_, 4622, "Preview iClass Layout"));

    // The one 2048-byte page is shown 32 blocks a grid; only the first part holds the fixed areas.
    if (card_.ChipSize() == iBigOnePage) {
        if (const CPage* whole = card_.page(0)) {
            for (int32_t v = 0; v < kVirtualPages; ++v) {
                CPage part = *whole;
                part.VirtualPage = v;
                part.PageNumber = 0;
                part.Parent = &card_;
                part.HasHeader = v == 0 && whole->HasHeader;
                part.HasHIDSpace = v == 0 && whole->HasHIDSpace;
                virtualPages_.push_back(part);
            }
        }
    }

    chip_ = makeLabel(this, "lblChip");
    chip_->setText(chipDescription(translator_, card_.ChipSize()));
    pageOf_ = makeLabel(this, "lblPageOf");
    pageOf_->setAlignment(Qt::AlignRight | Qt::AlignVCenter);

    auto* gridsRow = new QHBoxLayout;
    for (int i = 0; i < 2; ++i) {
        titles_[i] = makeLabel(this, i == 0 ? "lblPreview0" : "lblPreview1");
        grids_[i] = createPageGrid(this, i == 0 ? "grdPreview0" : "grdPreview1");
        auto* column = new QVBoxLayout;
        column->addWidget(titles_[i]);
        column->addWidget(grids_[i]);
        column->addStretch();
        gridsRow->addLayout(column);
    }
    gridsRow->addStretch();

    previous_ = makeButton(this, "cmdPrevious", translated(translator_, 4624, "<Previous>"));
    next_ = makeButton(this, "cmdNext", translated(translator_, 4625, "<Next>"));
    print_ = makeButton(this, "cmdPrint", translated(translator_, 4623, "<Print>"));
    ok_ = makeButton(this, "cmdOK", "<OK>");
    ok_->setDefault(true);
    auto* buttons = new QHBoxLayout;
    buttons->addWidget(previous_);
    buttons->addWidget(next_);
    buttons->addStretch();
    buttons->addWidget(print_);
    buttons->addWidget(ok_);

    auto* top = new QHBoxLayout;
    top->addWidget(chip_);
    top->addStretch();
    top->addWidget(pageOf_);

    auto* layout = new QVBoxLayout(this);
    layout->addLayout(top);
    layout->addLayout(gridsRow);
    layout->addLayout(buttons);
    layout->setSizeConstraint(QLayout::SetFixedSize);

    connect(previous_, &QPushButton::clicked, this, &frmPreview::showPrevious);
    connect(next_, &QPushButton::clicked, this, &frmPreview::showNext);
    connect(print_, &QPushButton::clicked, this, [this] { runPrintCommand(*this); });
    connect(ok_, &QPushButton::clicked, this, &QDialog::accept);

    const bool second = usesSecondGrid();
    grids_[1]->setVisible(second);
    titles_[1]->setVisible(second);
    pageOf_->setVisible(second);

    showView(0);
    for (QTableWidget* grid : grids_) fitPageGrid(*grid);
}

int frmPreview::viewCount() const {
    return card_.ChipSize() == iSmallOnePage ? 1 : kViewsOf16k;
}

bool frmPreview::usesSecondGrid() const {
    return card_.ChipSize() != iSmallOnePage;
}

void frmPreview::showView(int index) {
    if (index < 0 || index >= viewCount()) return;
    // Both grids and the titles change together; nothing is drawn until all of them have.
    const bool wasOn = !testAttribute(Qt::WA_ForceUpdatesDisabled);
    setUpdatesEnabled(false);
    view_ = index;
    updateTitles();
    paintView();
    setUpdatesEnabled(wasOn);
}

void frmPreview::showNext() {
    if (view_ < viewCount() - 1) showView(view_ + 1);
}

void frmPreview::showPrevious() {
    if (view_ > 0) showView(view_ - 1);
}

QTableWidget* frmPreview::grid(int index) const {
    return index == 0 || index == 1 ? grids_[index] : nullptr;
}

QString frmPreview::gridTitle(int index) const {
    return index == 0 || index == 1 ? titles_[index]->text() : QString();
}

QString frmPreview::pageOfText() const {
    return pageOf_->text();
}

std::vector<int> frmPreview::viewPageNumbers() const {
    if (card_.ChipSize() == iBigEightPages) return {2 * view_, 2 * view_ + 1};
    return {0};
}

void frmPreview::paintView() {
    switch (card_.ChipSize()) {
    case iSmallOnePage:
        if (const CPage* page = card_.page(0)) paintPage(*grids_[0], *page, records_);
        break;
    case iBigOnePage:
        for (int i = 0; i < 2 && static_cast<size_t>(2 * view_ + i) < virtualPages_.size(); ++i)
            paintPage(*grids_[i], virtualPages_[static_cast<size_t>(2 * view_ + i)], records_);
        break;
    case iBigEightPages:
        for (int i = 0; i < 2; ++i)
            if (const CPage* page = card_.page(2 * view_ + i)) paintPage(*grids_[i], *page, records_);
        break;
    }
}

void frmPreview::updateTitles() {
    const size_t k = static_cast<size_t>(view_);
    switch (card_.ChipSize()) {
    case iSmallOnePage:
        titles_[0]->setText(translated(translator_, 4630, "<Card Layout>"));
        titles_[1]->clear();
        pageOf_->clear();
        break;
    case iBigOnePage: {
        const QString word = translated(translator_, 4629, "Blocks");
        for (size_t i = 0; i < 2; ++i) titles_[i]->setText(word + QLatin1String(kBlockRanges[k][i]));
        pageOf_->setText(word + QLatin1String(kBlockViews[k]));
        break;
    }
    case iBigEightPages: {
        const QString word = translated(translator_, 4606, "Page");
        for (size_t i = 0; i < 2; ++i) titles_[i]->setText(word + QLatin1String(kPageNumbers[k][i]));
        pageOf_->setText(translated(translator_, 4621, "Pages") + QLatin1String(kPageViews[k]));
        break;
    }
    }
    previous_->setEnabled(view_ > 0);
    next_->setEnabled(view_ < viewCount() - 1);
}

}  // namespace kestrin
