#include <gtest/gtest.h>

#include <QApplication>
#include <QPrinter>
#include <QPushButton>
#include <QRadioButton>
#include <QTest>
#include <QTimer>
#include <cstdio>

#include "card/CIClass.h"
#include "items/RecordArray.h"
#include "preview/PreviewPrinting.h"
#include "preview/frmPreview.h"
#include "preview/frmPrintPreview.h"
#include "support/Records.h"
#include "support/TestSupport.h"
#include "text/Translator.h"

using namespace kestrin;
using namespace kestrin::test;

namespace {

std::string run(const std::string& command) {
    std::string out;
    char buf[4096];
    FILE* pipe = popen(command.c_str(), "r");
    for (size_t n; pipe && (n = fread(buf, 1, sizeof buf, pipe)) > 0;) out.append(buf, n);
    if (pipe) pclose(pipe);
    return out;
}

int pdfPages(const std::filesystem::path& pdf) {
    const std::string info = run("pdfinfo '" + pdf.string() + "' 2>/dev/null");
    const auto at = info.find("Pages:");
    return at == std::string::npos ? -1 : std::stoi(info.substr(at + 6));
}

std::string pdfText(const std::filesystem::path& pdf) {
    return run("pdftotext -layout '" + pdf.string() + "' - 2>/dev/null");
}

class GivenFile : public FileChooser {
public:
    QString saveFileName(QWidget*, const QString&, const QString&, const QString&) override {
        ++asked;
        return file;
    }
    QString file;
    int asked = 0;
};

// Stands in for the system print dialog: prints to a PDF with the chosen copies.
class PdfPrinterSetup : public PrintSetup {
public:
    bool setUp(QPrinter& printer, QWidget*) override {
        if (cancel) return false;
        printer.setOutputFormat(QPrinter::PdfFormat);
        printer.setOutputFileName(file);
        printer.setCopyCount(copies);
        return true;
    }
    QString file;
    int copies = 1;
    bool cancel = false;
};

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

class Printing : public ::testing::TestWithParam<IClassType> {
protected:
    void SetUp() override {
        card.setChipSize(GetParam());
        records.add(field("Name", 0, 19, 0, 16));
        chooser.file = QString::fromStdString((dir / "map.pdf").string());
        setup.file = QString::fromStdString((dir / "printed.pdf").string());
    }
    std::unique_ptr<frmPreview> preview() {
        auto p = std::make_unique<frmPreview>(card, records, tr, "C:/layouts/Staff.IIF",
                                              PrintServices{&setup, &chooser});
        p->adjustSize();
        return p;
    }
    int views() const { return GetParam() == iSmallOnePage ? 1 : 4; }

    TempDir dir;
    CIClass card;
    RecordArray records;
    const Translator tr;
    GivenFile chooser;
    PdfPrinterSetup setup;
};

TEST_P(Printing, AllPagesToFileGiveOneSheetPerViewAndRestoreTheView) {
    auto p = preview();
    if (views() > 1) p->showNext();
    ASSERT_TRUE(printPreview(*p, true, true));
    EXPECT_EQ(chooser.asked, 1);
    EXPECT_EQ(pdfPages(dir / "map.pdf"), views());
    EXPECT_EQ(p->viewIndex(), views() > 1 ? 1 : 0);
    const std::string text = pdfText(dir / "map.pdf");
    EXPECT_NE(text.find("<Filename>: C:/layouts/Staff.IIF; <Date>: "), std::string::npos) << text;
    EXPECT_NE(text.find("; <Time>: "), std::string::npos);
    EXPECT_EQ(text.find("<PAGES> 6 <and> 7") != std::string::npos, GetParam() == iBigEightPages) << text;
}

TEST_P(Printing, CancelledChoicesAndUnwritableFilesPrintNothing) {
    auto p = preview();
    setup.cancel = true;
    EXPECT_FALSE(printPreview(*p, true, false));
    chooser.file.clear();
    EXPECT_FALSE(printPreview(*p, true, true));
    chooser.file = QString::fromStdString((dir / "missing" / "map.pdf").string());
    EXPECT_FALSE(printPreview(*p, true, true));
    answerPrintOptions(false, false, true);
    p->findChild<QPushButton*>("cmdPrint")->click();
    EXPECT_EQ(p->viewIndex(), 0);
    EXPECT_FALSE(std::filesystem::exists(dir / "printed.pdf"));
}

TEST_P(Printing, OptionsDialogDrivesThePrintingAndEnterOnTheFocusedPrintRunsIt) {
    auto p = preview();
    answerPrintOptions(true, true, false);
    p->findChild<QPushButton*>("cmdPrint")->click();
    EXPECT_EQ(pdfPages(dir / "map.pdf"), views());
    p->show();
    ASSERT_TRUE(QTest::qWaitForWindowActive(p.get()));
    p->findChild<QPushButton*>("cmdPrint")->setFocus();
    answerPrintOptions(false, false, false);
    setup.copies = 2;  // the current view, once a copy
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Enter);
    EXPECT_EQ(pdfPages(dir / "printed.pdf"), 2);
    EXPECT_EQ(chooser.asked, 1);
    EXPECT_TRUE(p->isVisible());
}

INSTANTIATE_TEST_SUITE_P(Chips, Printing, ::testing::Values(iSmallOnePage, iBigOnePage, iBigEightPages));

}  // namespace
