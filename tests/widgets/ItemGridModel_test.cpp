// The item grid and database-update grid models, read through the model interface as a
// view reads them, with Qt's model checker attached before the first rebuild.
#include <gtest/gtest.h>

#include <QAbstractItemModelTester>
#include <QFile>
#include <QSignalSpy>
#include <QStringList>
#include <QTemporaryDir>
#include <array>
#include <memory>
#include <string>
#include <vector>

#include "control/DbUpdateGridModel.h"
#include "control/ItemGridModel.h"
#include "items/RecordArray.h"
#include "support/Records.h"
#include "text/CatalogRegistry.h"
#include "text/Translator.h"

namespace kestrin {
namespace {

using test::bitField;
using test::dbUpdate;
using test::field;

// Collects what the model checker complains about; it reports through Qt's warning channel.
QStringList g_checkerMessages;

void collectCheckerMessages(QtMsgType type, const QMessageLogContext& context, const QString& message) {
    if (type != QtDebugMsg && context.category && QByteArray(context.category).startsWith("qt.modeltest"))
        g_checkerMessages << message;
}

// Both models, each watched by a model checker from the start, and a translator without libraries.
class GridModels : public ::testing::Test {
protected:
    void SetUp() override {
        g_checkerMessages.clear();
        m_previousHandler = qInstallMessageHandler(collectCheckerMessages);
        m_itemChecker = std::make_unique<QAbstractItemModelTester>(
            &items, QAbstractItemModelTester::FailureReportingMode::Warning);
        m_dbChecker = std::make_unique<QAbstractItemModelTester>(
            &updates, QAbstractItemModelTester::FailureReportingMode::Warning);
    }
    void TearDown() override {
        m_itemChecker.reset();
        m_dbChecker.reset();
        qInstallMessageHandler(m_previousHandler);
        EXPECT_TRUE(g_checkerMessages.isEmpty()) << g_checkerMessages.join('\n').toStdString();
    }

    void rebuild(const RecordArray& records) {
        items.rebuild(records, translator);
        updates.rebuild(records, translator);
    }

    static QString cell(const QAbstractItemModel& model, int row, int column) {
        return model.data(model.index(row, column)).toString();
    }
    static QStringList rowTexts(const QAbstractItemModel& model, int row) {
        QStringList texts;
        for (int c = 0; c < model.columnCount(); ++c) texts << cell(model, row, c);
        return texts;
    }
    static QString header(const QAbstractItemModel& model, int column) {
        return model.headerData(column, Qt::Horizontal).toString();
    }

    Translator translator;
    ItemGridModel items;
    DbUpdateGridModel updates;

private:
    QtMessageHandler m_previousHandler = nullptr;
    std::unique_ptr<QAbstractItemModelTester> m_itemChecker;
    std::unique_ptr<QAbstractItemModelTester> m_dbChecker;
};

TEST_F(GridModels, HeadersWithoutLanguageLibraryShowTheDefaults) {
    rebuild(RecordArray());
    const QStringList itemHeaders = {"",     "<Field(s) or Function>", "<Field Type>", "Page",         "Block",
                                     "<Begin Byte>", "<No. of Bytes>", "<Begin Bit>",  "<No. of Bits>"};
    ASSERT_EQ(items.columnCount(), itemHeaders.size());
    for (int c = 0; c < items.columnCount(); ++c) EXPECT_EQ(header(items, c), itemHeaders[c]) << "column " << c;

    const QStringList dbHeaders = {"", "<Field Name>", "<Function>", "<Function Properties>"};
    ASSERT_EQ(updates.columnCount(), dbHeaders.size());
    for (int c = 0; c < updates.columnCount(); ++c) EXPECT_EQ(header(updates, c), dbHeaders[c]) << "column " << c;
}

TEST_F(GridModels, HeadersFollowTheLanguageLibraryButPageStaysEnglish) {
    QTemporaryDir folder;
    ASSERT_TRUE(folder.isValid());
    const QString path = folder.filePath("german.txt");
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write("3113=Feld(er) oder Funktion\n4606=Seite\n3115=Block (de)\n3119=Feldname\n3120=Eigenschaften\n");
    file.close();
    CatalogRegistry registry;
    std::string error;
    const int32_t handle = registry.open(path.toStdString(), &error);
    ASSERT_NE(handle, 0) << error;
    translator = Translator(&registry);
    translator.setLanguageDLL(handle);

    rebuild(RecordArray());
    EXPECT_EQ(header(items, 1), "Feld(er) oder Funktion");
    EXPECT_EQ(header(items, 2), "<Field Type>");  // not in the library: the default
    EXPECT_EQ(header(items, 3), "Page");
    EXPECT_EQ(header(items, 4), "Block (de)");
    EXPECT_EQ(header(updates, 1), "Feldname");
    EXPECT_EQ(header(updates, 3), "Eigenschaften");
    // Rebuilding without the library goes back to the defaults.
    translator = Translator();
    rebuild(RecordArray());
    EXPECT_EQ(header(items, 1), "<Field(s) or Function>");
    EXPECT_EQ(header(updates, 1), "<Field Name>");
}

TEST_F(GridModels, AnEmptyLayoutShowsOneEmptyRowThatIsNoItem) {
    RecordArray records;
    records.add(field("F1", 0, 19, 0, 4));
    rebuild(records);  // first something, so the empty rebuild has to clear it
    ASSERT_EQ(items.rowCount(), 1);
    ASSERT_EQ(cell(items, 0, 1), "F1");

    rebuild(RecordArray());
    for (const QAbstractItemModel* model : {static_cast<QAbstractItemModel*>(&items),
                                            static_cast<QAbstractItemModel*>(&updates)}) {
        ASSERT_EQ(model->rowCount(), 1);
        for (const QString& text : rowTexts(*model, 0)) EXPECT_TRUE(text.isEmpty()) << text.toStdString();
    }
    EXPECT_EQ(items.itemCount(), 0);
    EXPECT_EQ(updates.itemCount(), 0);
}

TEST_F(GridModels, RemovingTheFirstOfThreeMovesTheThirdIntoRowOne) {
    RecordArray records;
    records.add(field("First", 0, 19, 0, 1));
    records.add(field("Second", 0, 19, 1, 1));
    records.add(field("Third", 0, 19, 2, 1));
    rebuild(records);
    ASSERT_EQ(items.rowCount(), 3);

    ASSERT_TRUE(records.removeByPosition({0, 19, 0, 1, 0, 0}, "First", "Field"));
    rebuild(records);
    ASSERT_EQ(items.rowCount(), 2);
    EXPECT_EQ(cell(items, 0, 1), "Third");
    EXPECT_EQ(cell(items, 0, 5), "2");
    EXPECT_EQ(cell(items, 1, 1), "Second");
    EXPECT_EQ(cell(items, 1, 5), "1");
    // Grid row r + 1 shows the record the array finds for that row.
    for (int row = 0; row < items.rowCount(); ++row)
        EXPECT_EQ(cell(items, row, 1).toStdString(), records[records.indexOfItemRow(row + 1)].name);
}

TEST_F(GridModels, DatabaseUpdatesAreSkippedInTheItemGridAndNumberedWithoutGaps) {
    RecordArray records;
    records.add(dbUpdate("Printed", "Constant", "yes"));
    records.add(field("A", 0, 20, 0, 2));
    records.add(dbUpdate("Serial", "CardSnNr", "0"));
    records.add(field("B", 0, 21, 0, 2));
    records.add(dbUpdate("SerialHex", "CardSnNr", "1"));
    records.add(dbUpdate("Counter", "Count", "5", "100"));
    records.add(dbUpdate("SerialEmpty", "CardSnNr", ""));
    rebuild(records);

    ASSERT_EQ(items.rowCount(), 2);
    EXPECT_EQ(cell(items, 0, 1), "A");
    EXPECT_EQ(cell(items, 1, 1), "B");

    const std::vector<QStringList> expected = {
        {"", "Printed", "Constant", "<Value>: yes."},
        {"", "Serial", "CardSnNr", "<Decimal>"},
        {"", "SerialHex", "CardSnNr", "<Hexadecimal>"},
        {"", "Counter", "Count", "<Step>: 5. <Start value>: 100."},
        {"", "SerialEmpty", "CardSnNr", "<Decimal>"},
    };
    ASSERT_EQ(updates.rowCount(), static_cast<int>(expected.size()));
    EXPECT_EQ(updates.itemCount(), static_cast<int>(expected.size()));
    for (int row = 0; row < updates.rowCount(); ++row)
        EXPECT_EQ(rowTexts(updates, row), expected[static_cast<size_t>(row)]) << "row " << row;
}

TEST_F(GridModels, OnlyItemsMakeTheUpdateGridShowItsEmptyRow) {
    RecordArray records;
    records.add(field("A", 0, 20, 0, 2));
    rebuild(records);
    ASSERT_EQ(updates.rowCount(), 1);
    EXPECT_EQ(updates.itemCount(), 0);
    EXPECT_EQ(rowTexts(updates, 0), QStringList({"", "", "", ""}));
}

TEST_F(GridModels, EachKindFillsItsOwnCells) {
    RecordArray records;
    records.add(field("Name [+] First", 1, 19, 3, 12));
    records.add(bitField("Flag", 0, 40, 5, 6, 2));
    rebuild(records);
    EXPECT_EQ(rowTexts(items, 0), QStringList({"", "Name [+] First", "Field", "1", "19", "3", "12", "", ""}));
    EXPECT_EQ(rowTexts(items, 1), QStringList({"", "Flag", "Bit Field", "0", "40", "5", "", "6", "2"}));
    EXPECT_FALSE(items.data(items.index(0, 1), Qt::EditRole).isValid());
}

TEST_F(GridModels, ColumnWidthsAreTwipsAtTheLogicalDpiRoundedDown) {
    // 1440 twips an inch; the fractions are cut, so 400 twips at 96 DPI (26.67 px) give 26.
    const struct {
        int column;
        int dpi;
        int itemPixels;
        int dbPixels;
    } cases[] = {
        {0, 96, 26, 26},   {1, 96, 233, 200}, {2, 96, 66, 200},  {3, 96, 66, 333},
        {8, 96, 66, 0},    {0, 144, 40, 40},  {1, 144, 350, 300}, {3, 144, 100, 500},
        {9, 96, 0, 0},     {-1, 96, 0, 0},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(items.columnWidthPixels(c.column, c.dpi), c.itemPixels) << "column " << c.column << " at " << c.dpi;
        EXPECT_EQ(updates.columnWidthPixels(c.column, c.dpi), c.dbPixels) << "column " << c.column << " at " << c.dpi;
    }
}

TEST_F(GridModels, EveryRebuildIsOneResetEvenWhenNothingChanged) {
    QSignalSpy aboutToReset(&items, &QAbstractItemModel::modelAboutToBeReset);
    QSignalSpy reset(&items, &QAbstractItemModel::modelReset);
    QSignalSpy inserted(&items, &QAbstractItemModel::rowsInserted);
    RecordArray records;
    for (int i = 0; i < 50; ++i) records.add(field("F" + std::to_string(i), 0, 19 + i / 8, i % 8, 1));
    rebuild(records);
    rebuild(records);
    rebuild(RecordArray());
    EXPECT_EQ(aboutToReset.count(), 3);
    EXPECT_EQ(reset.count(), 3);
    EXPECT_EQ(inserted.count(), 0);
    EXPECT_EQ(items.rowCount(), 1);
}

}  // namespace
}  // namespace kestrin
