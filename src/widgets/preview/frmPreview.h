#pragma once
#include <QDialog>
#include <QString>

#include "PrintServices.h"
#include "card/CIClass.h"
#include "items/PreviewViews.h"

class QLabel;
class QPushButton;
class QScrollArea;
class QTableWidget;

namespace kestrin {

class RecordArray;
class Translator;

// The card's memory map, two page grids at a time: one view on the 2 kbit card, four views
// (a quarter of the card each) on the 16 kbit cards. The grids scroll inside a window that
// fits the screen, the buttons stay in sight. Prints through the given services.
class frmPreview : public QDialog {
    Q_OBJECT
public:
    frmPreview(const CIClass& card, const RecordArray& records, const Translator& translator,
               const QString& layoutFile, PrintServices services, QWidget* parent = nullptr);

    int viewIndex() const { return view_.index; }
    int viewCount() const;
    const PreviewView& view() const { return view_; }
    void showView(int index);  // repaints both grids and sets titles and buttons
    void showNext();           // cmdNext: up to the last view
    void showPrevious();       // cmdPrevious: down to view 0
    bool usesSecondGrid() const;
    // Sizes the window to show everything, or as much as fits the given room with the grids
    // scrolling; the preview does this itself for its screen's free area.
    void fitInto(const QSize& room);

    QTableWidget* grid(int index) const;

    const CIClass& card() const { return card_; }
    const Translator& translator() const { return translator_; }
    const QString& layoutFile() const { return layoutFile_; }
    const PrintServices& services() const { return services_; }

private:
    CIClass card_;  // a copy: the view's pages point at it
    const RecordArray& records_;
    const Translator& translator_;
    QString layoutFile_;
    PrintServices services_;
    PreviewView view_;

    QScrollArea* scroll_ = nullptr;
    QTableWidget* grids_[2] = {nullptr, nullptr};
    QLabel* titles_[2] = {nullptr, nullptr};
    QLabel* pageOf_ = nullptr;
    QPushButton* previous_ = nullptr;
    QPushButton* next_ = nullptr;
};

}  // namespace kestrin
