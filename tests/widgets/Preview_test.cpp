// The preview's views and page grids, printing to PDF through the print seams, and the two grid
// models read through the model interface as a view reads them.
#include <QPrinter>
#include "DialogFixture.h"
#include "control/DbUpdateGridModel.h"
#include "control/ItemGridModel.h"
#include "items/PageMap.h"
#include "preview/PreviewPrinting.h"
#include "preview/frmPreview.h"

namespace kestrin::test {
namespace {

struct StepCase {
    IClassType chip;
    int view;  // after Previous, Next four times and Previous
    const char *title0, *grid;
    int row, column;  // a cell of that grid and its text
    const char* text;
};

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
        auto button = [&](const char* name) { return form.findChild<QPushButton*>(name); };
        button("cmdPrevious")->click();
        for (int i = 0; i < 4; ++i) button("cmdNext")->click();
        EXPECT_FALSE(button("cmdNext")->isEnabled());
        button("cmdPrevious")->click();
        EXPECT_EQ(std::make_tuple(form.viewIndex(), form.findChild<QLabel*>("lblPreview0")->text(), button("cmdPrevious")->isEnabled()),
                  std::make_tuple(c.view, QString(c.title0), c.view > 0));
        for (const char* name : {"grdPreview1", "lblPreview1", "lblPageOf"})
            EXPECT_EQ(form.findChild<QWidget*>(name)->isHidden(), c.chip == iSmallOnePage) << name;
        EXPECT_EQ(form.findChild<QTableWidget*>(c.grid)->item(c.row, c.column)->text(), c.text);
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

// Answers the modal print options with the given choices once they are shown.
void answerPrintOptions(bool toFile, bool allPages, bool cancel) {
    QTimer::singleShot(0, [=] {
        QWidget* box = QApplication::activeModalWidget();
        ASSERT_NE(box, nullptr);
        ASSERT_EQ(box->objectName(), "frmPrintPreview");
        box->findChild<QRadioButton*>(toFile ? "optPrint(1)" : "optPrint(0)")->click();
        box->findChild<QRadioButton*>(allPages ? "optRange(1)" : "optRange(0)")->click();
        box->findChild<QPushButton*>(cancel ? "cmdCancel" : "cmdOK")->click();
    });
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
    QString saveFileName(QWidget*, const QString&, const QString&, const QString&) override { return ++asked, file; }
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
    int asked = 0, copies = 1;
    bool cancel = false;  // the print dialog's answer
};

TEST_P(Printing, AllPagesToFileGiveOneSheetPerViewAndRestoreTheView) {
    if (views() > 1) preview->showNext();
    ASSERT_TRUE(printPreview(*preview, true, true));
    EXPECT_EQ(asked, 1);
    EXPECT_EQ(pdfPages(dir / "map.pdf"), views());
    EXPECT_EQ(preview->viewIndex(), views() > 1 ? 1 : 0);
    const std::string text = run("pdftotext", {"-layout", file, "-"});
    EXPECT_NE(text.find("<Filename>: C:/layouts/Staff.IIF; <Date>: "), std::string::npos) << text;
    EXPECT_NE(text.find("; <Time>: "), std::string::npos);
    EXPECT_EQ(text.find("<PAGES> 6 <and> 7") != std::string::npos, GetParam() == iBigEightPages) << text;
}

// Cancelled choices and unwritable files print nothing.
TEST_P(Printing, OptionsDialogDrivesThePrintingAndEnterOnTheFocusedPrintRunsIt) {
    cancel = true;
    EXPECT_FALSE(printPreview(*preview, true, false));
    cancel = false;
    for (const QString& unwritable : {QString(), QString::fromStdString((dir / "missing" / "map.pdf").string())}) {
        file = unwritable;
        EXPECT_FALSE(printPreview(*preview, true, true)) << unwritable.toStdString();
    }
    answerPrintOptions(false, false, true);
    preview->findChild<QPushButton*>("cmdPrint")->click();
    EXPECT_FALSE(std::filesystem::exists(dir / "printed.pdf"));
    file = QString::fromStdString((dir / "map.pdf").string());
    answerPrintOptions(true, true, false);
    preview->findChild<QPushButton*>("cmdPrint")->click();
    EXPECT_EQ(pdfPages(dir / "map.pdf"), views());
    preview->show();
    ASSERT_TRUE(QTest::qWaitForWindowActive(preview.get()));
    preview->findChild<QPushButton*>("cmdPrint")->setFocus();
    answerPrintOptions(false, false, false);
    copies = 2;  // the current view, twice
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Enter);
    EXPECT_EQ(pdfPages(dir / "printed.pdf"), 2);
    EXPECT_EQ(asked, 3);
    EXPECT_TRUE(preview->isVisible());
}

INSTANTIATE_TEST_SUITE_P(Chips, Printing, ::testing::Values(iSmallOnePage, iBigOnePage, iBigEightPages));

TEST(PagePainter, GridShowsThePageMapCellByCellAndReusesItsCells) {
    CIClass card;
    card.setChipSize(iBigEightPages);
    RecordArray records;
    records.add(field("Badge", 1, 10, 2, 3, 0, 0x00C080FF));
    std::unique_ptr<QTableWidget> g(createPageGrid(nullptr, "grdTest"));
    for (int page : {2, 1}) {  // the second paint reuses the cells of the first
        paintPage(*g, *card.page(page), records);
        const MapGrid map = pageMap(*card.page(page), records);
        ASSERT_EQ(g->rowCount(), map.rows());
        for (int row = 0; row < map.rows(); ++row)
            for (int column = 0; column < map.columns(); ++column) {
                const QTableWidgetItem* cell = g->item(row, column);
                EXPECT_EQ(std::make_tuple(cell->text().toStdString(), cell->background().color(), cell->foreground().color(), g->columnSpan(row, column)),
                          std::make_tuple(map.textAt(row, column), memoryMapColor(map.at(row, column).background),
                                          memoryMapColor(map.at(row, column).foreground), map.columnSpan(row, column)))
                    << page << ": " << row << "," << column;
            }
    }
    EXPECT_EQ(g->item(11, 4)->background().color(), QColor(255, 128, 192));
}

// Both grids read through the model interface, with Qt's model checker (which aborts on a
// broken model) attached from the start.
TEST(GridModels, TheItemGridSkipsDatabaseUpdatesAndTheUpdateGridListsThemWithTheirSettings) {
    const Translator translator;
    ItemGridModel items;
    DbUpdateGridModel updates;
    const auto fatal = QAbstractItemModelTester::FailureReportingMode::Fatal;
    QAbstractItemModelTester itemChecker(&items, fatal), updateChecker(&updates, fatal);
    const auto rows = [](const QAbstractItemModel& model) {
        QStringList texts;
        for (int r = 0; r < model.rowCount(); ++r)
            for (int c = 0; c < model.columnCount(); ++c) texts << QString::number(r) + ":" + model.index(r, c).data().toString();
        return texts.join('|');
    };
    const auto rebuild = [&](const RecordArray& records) {
        items.rebuild(records, translator);
        updates.rebuild(records, translator);
    };
    RecordArray records;
    for (const ItemRecord& r : {dbUpdate("Printed", "Constant", "yes"), field("A", 0, 20, 0, 2), dbUpdate("Serial", "CardSnNr", "0"),
                                dbUpdate("SerialHex", "CardSnNr", "1"), dbUpdate("Counter", "Count", "5", "100"),
                                dbUpdate("SerialEmpty", "CardSnNr", "")})
        records.add(r);
    rebuild(records);
    EXPECT_EQ(std::make_tuple(items.rowCount(), items.itemCount(), updates.itemCount(), items.index(0, 1).data().toString()),
              std::make_tuple(1, 1, 5, QString("A")));
    EXPECT_EQ(rows(updates), "0:|0:Printed|0:Constant|0:<Value>: yes.|1:|1:Serial|1:CardSnNr|1:<Decimal>|"
                             "2:|2:SerialHex|2:CardSnNr|2:<Hexadecimal>|3:|3:Counter|3:Count|3:<Step>: 5. <Start value>: 100.|"
                             "4:|4:SerialEmpty|4:CardSnNr|4:<Decimal>");
    // Without database updates, or without anything, a grid shows one empty row that is no item.
    RecordArray onlyItems;
    onlyItems.add(field("A", 0, 20, 0, 2));
    rebuild(onlyItems);
    EXPECT_EQ(rows(updates), "0:|0:|0:|0:");
    rebuild(RecordArray());
    EXPECT_EQ(rows(items), QStringList(items.columnCount(), "0:").join('|'));
    EXPECT_EQ(std::make_pair(items.itemCount(), updates.itemCount()), std::make_pair(0, 0));
}

}  // namespace
}  // namespace kestrin::test
