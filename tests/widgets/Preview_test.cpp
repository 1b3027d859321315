// The preview's views and page grids, and printing to PDF through the print seams.
#include <QPrinter>
#include <QRegularExpression>
#include "DialogFixture.h"
#include "items/MapGrid.h"
#include "items/PageMap.h"
#include "preview/PreviewPrinting.h"
#include "preview/frmPreview.h"

namespace kestrin::test {
namespace {

// The view after Previous, Next four times and Previous; the first title; a cell of a grid and its text.
struct StepCase { IClassType chip; int view; const char *title0, *grid; int row, column; const char* text; };

TEST(Preview, ButtonsStepThroughTheViewsAndTheGridsShowTheirPages) {
    const StepCase cases[] = {
        {iSmallOnePage, 0, "<Card Layout>", "grdPreview0", 1, 1, "Card Serial Number"},
        {iBigOnePage, 2, "Blocks 128 - 159", "grdPreview1", 32, 0, "191"},
        {iBigEightPages, 2, "Page 4", "grdPreview1", 9, 1, "Badge"},
    };
    for (const StepCase& c : cases) {
        CIClass card;
        card.setChipSize(c.chip);
        RecordArray records;
        records.add(field("Badge", 5, 8, 0, 1, 0, 0x0000FF));
        const Translator translator;
        frmPreview form(card, records, translator, "card.iif", PrintServices{});
        const Controls ui{&form};
        for (const char* button : {"cmdPrevious", "cmdNext", "cmdNext", "cmdNext", "cmdNext"}) ui.click(button);
        EXPECT_FALSE(ui.child("cmdNext")->isEnabled());
        ui.click("cmdPrevious");
        // In room enough the window shows the grids whole, with no scroll bar; in a room too low for it the
        // window is as high as the room and wider by the grids' scroll bar, so that no column is hidden.
        form.fitInto(QSize(4000, 4000));
        form.show();
        ASSERT_TRUE(QTest::qWaitForWindowExposed(&form));
        EXPECT_EQ(std::make_tuple(form.viewIndex(), ui.child<QLabel>("lblPreview0")->text(), ui.child("cmdPrevious")->isEnabled(),
                                  ui.shown({"grdPreview1", "lblPreview1", "lblPageOf"}).size(),
                                  ui.child<QTableWidget>(c.grid)->item(c.row, c.column)->text()),
                  std::make_tuple(c.view, QString(c.title0), c.view > 0, c.chip == iSmallOnePage ? 0 : 3, QString(c.text)));
        const QScrollArea& scroll = *ui.child<QScrollArea>("scrPreview");
        EXPECT_EQ(std::make_pair(scroll.verticalScrollBar()->isVisible(), scroll.horizontalScrollBar()->isVisible()),
                  std::make_pair(false, false));
        const QSize whole = form.size();
        form.fitInto(QSize(4000, whole.height() / 2));
        const int bar = scroll.verticalScrollBar()->sizeHint().width();
        EXPECT_EQ(form.size(), QSize(whole.width() + bar, whole.height() / 2)) << whole.width() << "x" << whole.height();
        ui.click("cmdOK");  // OK closes the preview
        EXPECT_EQ(std::make_pair(form.isVisible(), form.result()), std::make_pair(false, int(QDialog::Accepted)));
    }
}

// What a poppler tool prints about a PDF.
std::string run(const char* tool, const QStringList& arguments) {
    QProcess process;
    process.start(tool, arguments);
    process.waitForFinished();
    return process.readAllStandardOutput().toStdString();
}

int pdfPages(const std::filesystem::path& pdf) {
    const std::string info = run("pdfinfo", {QString::fromStdString(pdf.string())});
    return info.find("Pages:") == std::string::npos ? -1 : std::stoi(info.substr(info.find("Pages:") + 6));
}

// A PDF's first page as pdftotext finds it: the page's size, the box in points of each word (the
// first of equal words) and of all of them.
struct PrintedPage { QSizeF size; std::map<std::string, QRectF> words; QRectF reach; };

PrintedPage printedPage(const QString& pdf) {
    const QString html = QString::fromStdString(run("pdftotext", {"-bbox", "-f", "1", "-l", "1", pdf, "-"}));
    const auto size = QRegularExpression(R"re(<page width="([\d.]+)" height="([\d.]+)")re").match(html);
    PrintedPage page{QSizeF(size.captured(1).toDouble(), size.captured(2).toDouble()), {}, {}};
    const QRegularExpression word(
        R"re(<word xMin="([\d.]+)" yMin="([\d.]+)" xMax="([\d.]+)" yMax="([\d.]+)">([^<]*)</word>)re");
    for (auto m = word.globalMatch(html); m.hasNext();) {
        const auto w = m.next();
        const QRectF box(QPointF(w.captured(1).toDouble(), w.captured(2).toDouble()),
                         QPointF(w.captured(3).toDouble(), w.captured(4).toDouble()));
        page.words.emplace(w.captured(5).replace("&lt;", "<").replace("&gt;", ">").toStdString(), box);
        page.reach |= box;
    }
    return page;
}

// Answers the modal print options with the given choices once they are shown (by a click on the
// given Print button, if any). They open with the first option of each frame chosen: the printer and
// the current pages.
void answerPrintOptions(bool toFile, bool allPages, bool cancel, QAbstractButton* print = nullptr) {
    QTimer::singleShot(0, [=] {
        const Controls box{QApplication::activeModalWidget()};
        ASSERT_EQ(box.root ? box.root->objectName() : QString(), "frmPrintPreview");
        EXPECT_TRUE(box.checked("optPrint(0)") && box.checked("optRange(0)") &&
                    box.child("fraDestination")->isAncestorOf(box.child("optPrint(1)")) &&
                    box.child("fraRange")->isAncestorOf(box.child("optRange(1)")));
        box.click(toFile ? "optPrint(1)" : "optPrint(0)");
        box.click(allPages ? "optRange(1)" : "optRange(0)");
        box.click(cancel ? "cmdCancel" : "cmdOK");
    });
    if (print) print->click();
}

// The print seams: the file chooser names a PDF, the system print dialog is a PDF printer.
class Printing : public ::testing::TestWithParam<IClassType>, public FileChooser, public PrintSetup {
protected:
    void SetUp() override {
        card.setChipSize(GetParam());
        records.add(field("Name", 0, 19, 0, 16));
        preview = std::make_unique<frmPreview>(card, records, tr, "C:/layouts/Staff.IIF", PrintServices{this, this});
        preview->adjustSize();
    }
    QString saveFileName(QWidget*, const QString& title, const QString&, const QString& filter) override {
        chooser << title << filter;
        return ++asked, file;
    }
    bool setUp(QPrinter& printer, QWidget*) override {
        printer.setOutputFormat(QPrinter::PdfFormat);
        printer.setOutputFileName(QString::fromStdString((dir / "printed.pdf").string()));
        printer.setCopyCount(copies);
        return !cancel;
    }
    int views() const { return GetParam() == iSmallOnePage ? 1 : 4; }

    TempDir dir;
    CIClass card;
    RecordArray records;
    const Translator tr;
    std::unique_ptr<frmPreview> preview;
    QString file = QString::fromStdString((dir / "map.pdf").string());  // the chooser's answer
    QStringList chooser;  // the titles and filters the file chooser was shown
    int asked = 0, copies = 1;
    bool cancel = false;  // the print dialog's answer
};

// Cancelled choices and unwritable files print nothing; all pages to a file give one sheet per view
// and bring back the view shown; Enter on the focused Print runs it.
TEST_P(Printing, OptionsDialogDrivesThePrintingAndEnterOnTheFocusedPrintRunsIt) {
    cancel = true;
    EXPECT_FALSE(printPreview(*preview, true, false));
    cancel = false;
    for (const QString& unwritable : {QString(), QString::fromStdString((dir / "missing" / "map.pdf").string())}) {
        file = unwritable;
        EXPECT_FALSE(printPreview(*preview, true, true)) << unwritable.toStdString();
    }
    answerPrintOptions(false, false, true, preview->findChild<QPushButton*>("cmdPrint"));
    EXPECT_FALSE(std::filesystem::exists(dir / "printed.pdf"));
    file = QString::fromStdString((dir / "map.pdf").string());
    if (views() > 1) preview->showNext();
    answerPrintOptions(true, true, false, preview->findChild<QPushButton*>("cmdPrint"));
    EXPECT_EQ(std::make_pair(pdfPages(dir / "map.pdf"), preview->viewIndex()), std::make_pair(views(), views() > 1 ? 1 : 0));
    const std::string text = run("pdftotext", {"-layout", file, "-"});
    EXPECT_EQ(std::make_pair(text.find("<PAGES> 6 <and> 7") != std::string::npos, chooser.mid(0, 2)),
              std::make_pair(GetParam() == iBigEightPages, QStringList({"<Print to file>", "PDF (*.pdf)"}))) << text;
    // The header line; the grids drawn as lines and text, not pictures: the fixed areas, the blocks and the item read.
    EXPECT_EQ(run("pdfimages", {"-list", file}).find("image"), std::string::npos);
    for (const char* shown : {"<Filename>: C:/layouts/Staff.IIF; <Date>: ", "; <Time>: ", "Card Serial Number",
                              "Configuration Data", "Name", " 19 ", " 31"})
        EXPECT_NE(text.find(shown), std::string::npos) << shown << " in\n" << text;
    // On the sheet: the pages heading under the header line, the grids as large as the paper
    // allows and on it whole.
    const PrintedPage page = printedPage(file);
    ASSERT_EQ(std::make_pair(page.words.count("<Filename>:"), page.words.count("<PAGES>")),
              std::make_pair(std::size_t(1), std::size_t(GetParam() == iBigEightPages)));
    EXPECT_EQ(std::make_tuple(GetParam() != iBigEightPages || page.words.at("<PAGES>").top() > page.words.at("<Filename>:").bottom(),
                              QRectF(QPointF(), page.size).contains(page.reach),
                              page.reach.right() > 0.75 * page.size.width() || page.reach.bottom() > 0.75 * page.size.height()),
              std::make_tuple(true, true, true))
        << page.reach.right() << " " << page.reach.bottom() << " on " << page.size.width() << " x " << page.size.height();
    preview->show();
    ASSERT_TRUE(QTest::qWaitForWindowActive(preview.get()));
    preview->findChild<QPushButton*>("cmdPrint")->setFocus();
    answerPrintOptions(false, false, false);
    copies = 2;  // the current view, twice
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Enter);
    EXPECT_EQ(std::make_tuple(pdfPages(dir / "printed.pdf"), asked, preview->isVisible()), std::make_tuple(2, 3, true));
}

INSTANTIATE_TEST_SUITE_P(Chips, Printing, ::testing::Values(iSmallOnePage, iBigOnePage, iBigEightPages));

// A map painted over an earlier one: the grid takes the new map's rows, columns and cells, and
// of the merged runs only the new map's; none of the earlier map's stays.
TEST(PagePainter, RepaintingShowsOnlyTheNewMapsCellsAndMergedRuns) {
    const std::unique_ptr<QTableWidget> grid(createPageGrid(nullptr, "grdMap"));
    MapGrid old(4, kPageMapColumns);
    old.at(2, 1).text = old.addText("Old");
    old.merge(2, 1, 6);
    showMapGrid(*grid, old);
    EXPECT_EQ(std::make_pair(grid->columnSpan(2, 1), grid->item(2, 1)->text()), std::make_pair(6, QString("Old")));
    MapGrid next(4, kPageMapColumns);
    next.at(1, 3) = {next.addText("New"), 0x00A0B0C0};
    next.merge(1, 3, 2);
    showMapGrid(*grid, next);
    EXPECT_EQ(std::make_tuple(grid->columnSpan(2, 1), grid->item(2, 1)->text(), grid->columnSpan(1, 3), grid->item(1, 3)->text(),
                              grid->item(1, 3)->background().color()),
              std::make_tuple(1, QString(), 2, QString("New"), memoryMapColor(0x00A0B0C0)));
    for (const auto& [rows, columns] : {std::pair{3, 12}, std::pair{5, 4}}) {
        showMapGrid(*grid, MapGrid(rows, columns));
        EXPECT_EQ(std::make_tuple(grid->rowCount(), grid->columnCount(), grid->columnSpan(1, 3)), std::make_tuple(rows, columns, 1));
    }
}

// The grids of a sheet: side by side, none over another, all on the paper at one scale, as large
// as the paper's width or height allows, whatever their size on the screen.
TEST(PrintedSheet, PlacesTheGridsSideBySideAsLargeAsThePaperAllows) {
    struct Case { int grids; QSizeF grid, paper; };
    const QSizeF a4(9921, 14031), letter(10200, 13200);  // printable areas at 1200 dpi
    for (const auto& [count, grid, paper] : {Case{1, {400, 300}, a4}, Case{2, {400, 300}, a4}, Case{1, {236, 530}, letter},
                                             Case{2, {236, 530}, a4}, Case{2, {400, 300}, {20000, 3000}}}) {
        const std::vector<QRectF> places = gridPlacement(std::vector<QSizeF>(count, grid), paper, 1200);
        ASSERT_EQ(places.size(), std::size_t(count));
        const double scale = places[0].width() / grid.width();
        double reach = 0;
        for (std::size_t i = 0; i < places.size(); ++i) {
            EXPECT_EQ(places[i].size(), grid * scale) << count << " grids, grid " << i;
            EXPECT_TRUE(QRectF(QPointF(), paper + QSizeF(0.01, 0.01)).contains(places[i])) << count << " grids, " << i;
            EXPECT_NEAR(places[i].top(), 1000 * 1200 / 1440.0, 1.0);  // 1000 twips from the top
            EXPECT_TRUE(i == 0 || places[i].left() > places[i - 1].right()) << count << " grids, " << i;
            reach = std::max({reach, places[i].right() / paper.width(), places[i].bottom() / paper.height()});
        }
        EXPECT_NEAR(places[0].left(), 500 * 1200 / 1440.0, 1.0);  // 500 twips from the left
        EXPECT_NEAR(reach, 1.0, 1e-9) << count << " grids on " << paper.width() << " x " << paper.height();
    }
}

}  // namespace
}  // namespace kestrin::test
