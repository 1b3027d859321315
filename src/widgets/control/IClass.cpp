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

#include "DbUpdateGridModel.h"
#include "ItemGridModel.h"
#include "MessageBoxPrompter.h"
#include "base/ProductInfo.h"

namespace kestrin {

namespace {

constexpr int kTextItemsTip = 3195;
constexpr int kTextUpdatesTip = 3196;
const QString kGridItems = QStringLiteral("FieldsFunctions");
const QString kGridUpdates = QStringLiteral("DBUpdates");

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

IClass::IClass(QWidget* parent) : QWidget(parent) {
    setObjectName(QStringLiteral("iClass"));
    ownPrompter_ = std::make_unique<MessageBoxPrompter>(this);
    prompter_ = ownPrompter_.get();
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
}

void IClass::applyMode() {
    imgIClass_->setVisible(designMode_);
    grdItems_->setVisible(!designMode_);
    grdDBUpdateFields_->setVisible(!designMode_);
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

// The strip between the grids can be dragged to give one grid more room.
void IClass::mousePressEvent(QMouseEvent* event) {
    splitterDrag_ = !designMode_ && event->button() == Qt::LeftButton;
    QWidget::mousePressEvent(event);
}

void IClass::mouseMoveEvent(QMouseEvent* event) {
    if (splitterDrag_) {
        itemsHeight_ = std::clamp(static_cast<int>(event->position().y()), 0, height());
        layoutSurface();
    }
    QWidget::mouseMoveEvent(event);
}

void IClass::mouseReleaseEvent(QMouseEvent* event) {
    if (splitterDrag_) {
        splitterDrag_ = false;
        grdDBUpdateFields_->setVisible(!designMode_);
    }
    QWidget::mouseReleaseEvent(event);
}

bool IClass::eventFilter(QObject* watched, QEvent* event) {
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
    itemModel_->rebuild(records_, translator_);
    dbModel_->rebuild(records_, translator_);
    const int dpi = logicalDpiX();
    for (int c = 0; c < ItemGridModel::ColumnCount; ++c)
        grdItems_->setColumnWidth(c, itemModel_->columnWidthPixels(c, dpi));
    for (int c = 0; c < DbUpdateGridModel::ColumnCount; ++c)
        grdDBUpdateFields_->setColumnWidth(c, dbModel_->columnWidthPixels(c, dpi));
}

// Every change of the records ends here: the grids show it and the host hears of it.
void IClass::refresh() {
    rebuildGrids();
    changedFlag_ = true;
    saved_ = false;
    emit Changed();
    emit GenericEvent(QStringLiteral("Hallo"), QStringLiteral("xyz"));
}

int IClass::currentRow(const QTableView* grid) const {
    const QModelIndex current = grid->currentIndex();
    // No current row counts as the header row, which moves to the first row.
    return current.isValid() ? current.row() : 0;
}

void IClass::setUseBit(bool v) {
    useBit_ = v;
    if (card_) card_->setEnableBitwise(v);
}

void IClass::setUseHID(bool v) {
    useHID_ = v;
    if (card_ && card_->UseHIDSection() != v) card_->setUseHIDSection(v);
}

void IClass::setLanguageDLL(int handle) {
    translator_.setLanguageDLL(handle);
    rebuildGrids();
    if (!designMode_) applyToolTips();
}

void IClass::setCustomLanguageDLL(int handle) {
    translator_.setCustomLanguageDLL(handle);
    rebuildGrids();
    if (!designMode_) applyToolTips();
}

void IClass::setPrompter(Prompter* prompter) { prompter_ = prompter ? prompter : ownPrompter_.get(); }

void IClass::setFileChooser(FileChooser* chooser) { chooser_ = chooser ? chooser : &ownChooser_; }

void IClass::setPrintSetup(PrintSetup* setup) { printSetup_ = setup ? setup : &ownPrintSetup_; }

void IClass::setCatalogRegistry(const CatalogRegistry* registry) {
    Translator next(registry ? registry : &ownRegistry_);
    next.setLanguageDLL(translator_.LanguageDLL());
    next.setCustomLanguageDLL(translator_.CustomLanguageDLL());
    translator_ = next;
    rebuildGrids();
    if (!designMode_) applyToolTips();
}

void IClass::setDialogRunner(std::function<int(QDialog&)> runner) { dialogRunner_ = std::move(runner); }

int IClass::runDialog(QDialog& dialog) { return dialogRunner_ ? dialogRunner_(dialog) : dialog.exec(); }

QString IClass::text(int32_t id, const char* defaultText) const {
    return QString::fromStdString(translator_.text(id, defaultText));
}

void IClass::tell(Icon icon, const QString& message, const QString& title) {
    prompter_->tell(icon, message.toStdString(), (title.isNull() ? QString(kProductTitle) : title).toStdString());
}

Answer IClass::ask(Icon icon, const QString& message, Buttons buttons, const QString& title) {
    return prompter_->ask(icon, message.toStdString(), buttons,
                          (title.isNull() ? QString(kProductTitle) : title).toStdString());
}

}  // namespace kestrin
