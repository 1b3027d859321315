#include "IClass.h"

#include <QDialog>
#include <QHeaderView>
#include <QKeyEvent>
#include <QLabel>
#include <QLocale>
#include <QMouseEvent>
#include <QPainter>
#include <QPixmap>
#include <QTableView>
#include <algorithm>
#include <filesystem>

#include "DbUpdateGridModel.h"
#include "ItemGridModel.h"
#include "LanguageLibraries.h"
#include "MessageBoxPrompter.h"
#include "base/ProductInfo.h"

namespace kestrin {

namespace {

constexpr int kTextItemsTip = 3195;
constexpr int kTextUpdatesTip = 3196;
const QString kGridItems = QStringLiteral("FieldsFunctions");
const QString kGridUpdates = QStringLiteral("DBUpdates");
constexpr int kSplitterStripHeight = 6;

// The picture a host's form shows in place of the grids while it is being designed.
QPixmap designPicture() {
    QPixmap picture(96, 64);
    picture.fill(Qt::white);
    QPainter p(&picture);
    p.setPen(QPen(Qt::darkBlue, 2));
    p.drawRoundedRect(QRect(4, 4, 88, 56), 8, 8);
    p.fillRect(QRect(14, 22, 18, 14), QColor(0xD4, 0xAF, 0x37));
    p.drawText(QRect(36, 18, 52, 24), Qt::AlignCenter, QStringLiteral("iClass"));
    return picture;
}

}  // namespace

IClass::IClass(QWidget* parent)
    : QWidget(parent), ownPrompter_(std::make_unique<MessageBoxPrompter>(this)),
      doc_(*ownPrompter_, &processLanguageLibraries()) {
    setObjectName(QStringLiteral("iClass"));
    doc_.setListener([this](LayoutDocument::Change change) { documentChanged(change); });
    selectedGrid_ = kGridItems;
    // The separator the locale puts into 1.1; typed decimals are read with it.
    const QString sample = QLocale().toString(1.1f);
    decimalSeparator_ = sample.size() > 1 ? sample.at(1) : QChar('.');
    buildSurface();
    rebuildGrids();
}

IClass::~IClass() = default;

void IClass::buildSurface() {
    itemModel_ = new ItemGridModel(this);
    dbModel_ = new DbUpdateGridModel(this);

    auto makeGrid = [this](const QString& name, QAbstractItemModel* model) {
        auto* grid = new QTableView(this);
        grid->setObjectName(name);
        grid->setModel(model);
        grid->verticalHeader()->hide();
        grid->setEditTriggers(QAbstractItemView::NoEditTriggers);
        grid->setSelectionBehavior(QAbstractItemView::SelectRows);
        grid->setSelectionMode(QAbstractItemView::SingleSelection);
        grid->installEventFilter(this);
        grid->viewport()->installEventFilter(this);
        return grid;
    };
    grdItems_ = makeGrid(QStringLiteral("grdItems"), itemModel_);
    grdDBUpdateFields_ = makeGrid(QStringLiteral("grdDBUpdateFields"), dbModel_);
    connect(grdItems_, &QTableView::doubleClicked, this, [this] { EditItem(); });
    connect(grdDBUpdateFields_, &QTableView::doubleClicked, this, [this] { editDbUpdateRow(); });

    // A strip over the boundary of the two grids, on top of both, takes the mouse for the drag.
    splitterStrip_ = new QWidget(this);
    splitterStrip_->setObjectName(QStringLiteral("splitterStrip"));
    splitterStrip_->setCursor(Qt::SplitVCursor);
    splitterStrip_->installEventFilter(this);

    imgIClass_ = new QLabel(this);
    imgIClass_->setObjectName(QStringLiteral("imgIClass"));
    imgIClass_->setPixmap(designPicture());
    imgIClass_->setAlignment(Qt::AlignCenter);
    applyMode();
}

void IClass::layoutSurface() {
    const int w = width();
    const int h = height();
    if (designMode_) {
        imgIClass_->setGeometry(0, 0, w, h);
        return;
    }
    const int top = itemsHeight_ >= 0 ? std::min(itemsHeight_, h) : h / 2;
    const int bottom = itemsHeight_ >= 0 ? h - top : h / 2;
    grdItems_->setGeometry(0, 0, w, top);
    grdDBUpdateFields_->setGeometry(0, grdItems_->height(), w, bottom);
    const int strip = std::min(kSplitterStripHeight, h);
    splitterStrip_->setGeometry(0, std::clamp(top - strip / 2, 0, h - strip), w, strip);
    splitterStrip_->raise();
}

void IClass::applyMode() {
    imgIClass_->setVisible(designMode_);
    grdItems_->setVisible(!designMode_);
    grdDBUpdateFields_->setVisible(!designMode_);
    splitterStrip_->setVisible(!designMode_);
    if (!designMode_) applyToolTips();
    layoutSurface();
}

void IClass::applyToolTips() {
    grdItems_->setToolTip(text(kTextItemsTip));
    grdDBUpdateFields_->setToolTip(text(kTextUpdatesTip));
}

void IClass::setDesignMode(bool on) {
    designMode_ = on;
    applyMode();
}

void IClass::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    layoutSurface();
}

void IClass::showEvent(QShowEvent* event) {
    QWidget::showEvent(event);
    applyMode();
}

// The boundary between the grids follows the pointer while the strip over it is dragged.
void IClass::startDrag() {
    splitterDrag_ = !designMode_;
}

void IClass::dragTo(int y) {
    if (!splitterDrag_) return;
    itemsHeight_ = std::clamp(y, 0, height());
    layoutSurface();
}

void IClass::endDrag() {
    if (!splitterDrag_) return;
    splitterDrag_ = false;
    grdDBUpdateFields_->setVisible(!designMode_);
}

bool IClass::eventFilter(QObject* watched, QEvent* event) {
    if (watched == splitterStrip_) {
        switch (event->type()) {
        case QEvent::MouseButtonPress:
            if (static_cast<QMouseEvent*>(event)->button() == Qt::LeftButton) startDrag();
            return true;
        case QEvent::MouseMove:
            dragTo(splitterStrip_->mapTo(this, static_cast<QMouseEvent*>(event)->position().toPoint()).y());
            return true;
        case QEvent::MouseButtonRelease:
            endDrag();
            return true;
        default:
            return QWidget::eventFilter(watched, event);
        }
    }
    const bool items = watched == grdItems_ || watched == grdItems_->viewport();
    const bool updates = watched == grdDBUpdateFields_ || watched == grdDBUpdateFields_->viewport();
    if (!items && !updates) return QWidget::eventFilter(watched, event);

    if (event->type() == QEvent::MouseButtonPress) {
        selectedGrid_ = items ? kGridItems : kGridUpdates;
    } else if (event->type() == QEvent::KeyPress && (watched == grdItems_ || watched == grdDBUpdateFields_)) {
        selectedGrid_ = items ? kGridItems : kGridUpdates;
        const int key = static_cast<QKeyEvent*>(event)->key();
        if (key == Qt::Key_Delete) {
            items ? RemoveItem() : RemoveDBUpdateItem();
            return true;
        }
        if (key == Qt::Key_Return || key == Qt::Key_Enter) {
            items ? EditItem() : editDbUpdateRow();
            return true;
        }
    }
    return QWidget::eventFilter(watched, event);
}

// Rebuilds both grids from the records, headers in the current language.
void IClass::rebuildGrids() {
    const RecordArray& records = doc_.records();
    const Translator& translator = doc_.translator();
    itemModel_->rebuild(records, translator);
    dbModel_->rebuild(records, translator);
    const int dpi = logicalDpiX();
    for (int c = 0; c < ItemGridModel::ColumnCount; ++c)
        grdItems_->setColumnWidth(c, itemModel_->columnWidthPixels(c, dpi));
    for (int c = 0; c < DbUpdateGridModel::ColumnCount; ++c)
        grdDBUpdateFields_->setColumnWidth(c, dbModel_->columnWidthPixels(c, dpi));
}

// The document changed: the grids show it and the host hears of it.
void IClass::documentChanged(LayoutDocument::Change change) {
    rebuildGrids();
    emit Changed();
    if (change == LayoutDocument::Change::Records) emit GenericEvent(QStringLiteral("Hallo"), QStringLiteral("xyz"));
}

int IClass::currentRow(const QTableView* grid) const {
    const QModelIndex current = grid->currentIndex();
    // No current row counts as the header row, which moves to the first row.
    return current.isValid() ? current.row() : 0;
}

QString IClass::LayoutFile() const {
    return QString::fromStdU16String(doc_.layoutFile().u16string());
}

void IClass::setEncodePath(const QString& v) {
    encodePath_ = v;
    doc_.setEncodePath(std::filesystem::path(v.toStdU16String()));
}

void IClass::setLanguageDLL(LanguageHandle handle) {
    doc_.translator().setLanguageDLL(handle);
    rebuildGrids();
    if (!designMode_) applyToolTips();
}

void IClass::setCustomLanguageDLL(LanguageHandle handle) {
    doc_.translator().setCustomLanguageDLL(handle);
    // The same library as the standard one changes no text.
    if (handle == LanguageDLL()) return;
    rebuildGrids();
    if (!designMode_) applyToolTips();
}

void IClass::setPrompter(Prompter* prompter) { doc_.setPrompter(prompter ? *prompter : *ownPrompter_); }

void IClass::setFileChooser(FileChooser* chooser) { chooser_ = chooser ? chooser : &ownChooser_; }

void IClass::setPrintSetup(PrintSetup* setup) { printSetup_ = setup ? setup : &ownPrintSetup_; }

void IClass::setCatalogRegistry(const CatalogRegistry* registry) {
    doc_.setCatalogRegistry(registry ? registry : &processLanguageLibraries());
    rebuildGrids();
    if (!designMode_) applyToolTips();
}

void IClass::setDialogRunner(std::function<int(QDialog&)> runner) { dialogRunner_ = std::move(runner); }

int IClass::runDialog(QDialog& dialog) { return dialogRunner_ ? dialogRunner_(dialog) : dialog.exec(); }

void IClass::raise(int code, const QString& source, const QString& description) {
    emit exception(code, source, description, QString());
}

QString IClass::text(int32_t id, const char* defaultText) const {
    return QString::fromStdString(doc_.text(id, defaultText));
}

}  // namespace kestrin
