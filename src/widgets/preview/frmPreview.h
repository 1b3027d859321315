#pragma once
#include <QDialog>
#include <QString>
#include <vector>

#include "PrintServices.h"
#include "card/CIClass.h"

class QLabel;
class QPushButton;
class QTableWidget;

namespace kestrin {

class RecordArray;
class Translator;

// The card's memory map, two page grids at a time: one view on the 2 kbit card, four views
// (a quarter of the card each) on the 16 kbit cards. Prints through the given services.
class frmPreview : public QDialog {
    Q_OBJECT
public:
    frmPreview(const CIClass& card, const RecordArray& records, const Translator& translator,
               const QString& layoutFile, PrintServices services, QWidget* parent = nullptr);

    int viewIndex() const { return view_; }
    int viewCount() const;
    void showView(int index);  // repaints both grids and sets titles and buttons
    void showNext();           // cmdNext: up to the last view
    void showPrevious();       // cmdPrevious: down to view 0
    bool usesSecondGrid() const;

    QTableWidget* grid(int index) const;
    QString gridTitle(int index) const;
    QString pageOfText() const;
    // The page numbers shown by the current view of an eight-page card ("0" and "1" ...).
    std::vector<int> viewPageNumbers() const;

    const CIClass& card() const { return card_; }
    const Translator& translator() const { return translator_; }
    const QString& layoutFile() const { return layoutFile_; }
    const PrintServices& services() const { return services_; }

private:
    void paintView();
    void updateTitles();

    CIClass card_;  // a copy: the preview numbers its pages for display
    const RecordArray& records_;
    const Translator& translator_;
    QString layoutFile_;
    PrintServices services_;
    int view_ = 0;
    std::vector<CPage> virtualPages_;  // the 32-block pages of a one-page 16 kbit card

    QTableWidget* grids_[2] = {nullptr, nullptr};
    QLabel* titles_[2] = {nullptr, nullptr};
    QLabel* pageOf_ = nullptr;
    QLabel* chip_ = nullptr;
    QPushButton* previous_ = nullptr;
    QPushButton* next_ = nullptr;
    QPushButton* print_ = nullptr;
    QPushButton* ok_ = nullptr;
};

}  // namespace kestrin
