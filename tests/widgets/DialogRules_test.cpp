// What the item editor and the multi-track dialog show as they open and as a choice changes
// them: every caption fetched by its text number, the entry or option each list and frame
// starts with, the options each field type and function offers, the limits of the lists, size
// boxes and spin controls, and that a dialog opens with nothing to apply.
#include <numeric>
#include "DialogFixture.h"
#include "editor/frmEditiClass.h"
#include "items/frmDBUpdate.h"
#include "items/frmMultiTrack.h"
#include "rules/PlacementValidation.h"

namespace kestrin::test {
namespace {

struct Rules : DialogFixture {
    using DialogFixture::DialogFixture;
    explicit Rules(IClassType chip) : DialogFixture({}, chip) {}
    // A language library in which every text reads "T<number>".
    void numberedTexts() {
        std::vector<int> ids(2000);
        std::iota(ids.begin(), ids.end(), 3000);
        doc.translator().setLanguageDLL(numberedLibrary(registry, dir / "numbered.txt", ids));
    }
    QString caption(const QString& name) const {  // a button's or label's text, a frame's title
        const QWidget* w = child(name);
        return w ? w->property(qobject_cast<const QGroupBox*>(w) ? "title" : "text").toString() : QString();
    }
};

QStringList range(int from, int to) {
    QStringList out;
    for (int i = from; i <= to; ++i) out << QString::number(i);
    return out;
}

using Captions = std::vector<std::pair<QString, QString>>;

// Captions by text number, in every mode of the editor and in the multi-track and update dialogs.
TEST(DialogCaptions, EveryCaptionIsTheLibrarysTextOfItsNumber) {
    const auto check = [](const Rules& d, const QString& title, const Captions& captions) {
        EXPECT_EQ(d.root->windowTitle(), title);
        for (const auto& [name, text] : captions) EXPECT_EQ(d.caption(name), text) << name.toStdString();
    };
    const Captions everyMode = {{"fraAddTo", "T3138"}, {"lblPage", "T4606"}, {"lblRow", "T3115"},
                                {"lblBeginByte", "T3116"}, {"cmdNew", "T3152"}, {"cmdApply", "T3153"},
                                {"cmdRemove", "T3092"}, {"cmdCancel", "<Cancel>"}};
    const Captions fieldModes = {{"fraFields", "T3137"}, {"fraEncode", "T3139"}};
    const Captions functionModes = {
        {"fraFunction", "T3112"},         {"optFunction(0)", "T3142"},       {"optFunction(1)", "T3143"},
        {"optFunction(2)", "T3144"},      {"optFunction(3)", "T3145"},       {"fraProperties", "T3120"},
        {"fraCountFirstValue", "T3146"},  {"optCountFirstValue(0)", "T3147"}, {"optCountFirstValue(1)", "T3111"},
        {"lblCountStep", "T3107"},        {"fraRange", "T3148"},             {"lblRangeBeginRow", "T4513"},
        {"lblRangeBeginByte", "T3116"}};
    const std::tuple<int32_t, QString, QString> modes[] = {{kModeField, "T3140", "T3117"},
                                                           {kModeFunction, "T3141", "T3117"},
                                                           {kModeBitField, "T4604", "T4642"},
                                                           {kModeBitFunction, "T4605", "T4642"}};
    for (const auto& [mode, title, sizeLabel] : modes) {
        SCOPED_TRACE("mode " + std::to_string(mode));
        Rules d;
        d.numberedTexts();
        d.open<frmEditiClass>(mode);
        Captions all = everyMode;
        const Captions& own = mode == kModeField || mode == kModeBitField ? fieldModes : functionModes;
        all.insert(all.end(), own.begin(), own.end());
        all.push_back({"lblNrOfBytes", sizeLabel});
        if (mode == kModeBitField || mode == kModeBitFunction) all.push_back({"lblBeginBit", "T4607"});
        check(d, title, all);
    }
    Rules d;
    d.numberedTexts();
    d.open<frmMultiTrack>();
    check(d, "T3192", {{"lblFieldFunction", "T3111"}, {"fraAddTo", "T3138"}, {"lblPage", "T4606"}, {"lblRow", "T3115"},
                       {"lblBeginByte", "T3116"}, {"lblBeginBit", "T4607"}, {"lblNrOfBytes", "T4608"}, {"cmdApply", "T3153"}});
    auto* fields = d.child<QTableWidget>("grdFields");
    EXPECT_EQ(fields->horizontalHeaderItem(0)->text() + "|" + fields->horizontalHeaderItem(1)->text(), "T3154|T3184");
    // The database-update dialog speaks with the item editor's words.
    d.open<frmDBUpdate>();
    check(d, "T4700", {{"fraFields", "T3137"}, {"lblSelectedField", "T3111"}, {"fraFunction", "T3112"},
                       {"optFunction(0)", "T3142"}, {"optFunction(1)", "T3143"}, {"optFunction(2)", "T3144"},
                       {"fraProperties", "T3120"}, {"lblConstantValue", "T3106"}, {"lblCountNumber", "T3147"},
                       {"lblCountStep", "T3107"}});
}

// The encodings a field offers follow its type; option 0 is chosen whenever the options are
// built, and the format list starts at its first entry whenever it is filled.
TEST(DialogEncodings, EachFieldTypeOffersItsOptionsAndFormats) {
    const QStringList number = {"T3167*", "T3168", "T3169", "T3203"};
    const QStringList dateStrings = {"DD/MM/CCYY", "DDMMCCYY", "MMDDCCYY", "CCYYMMDD"};
    const QStringList dateNumbers = {"DD MM CC YY", "MM DD CC YY", "CC YY MM DD"};
    // The field (Character, Number, Numeric, Date, Binary), its options and the format list with
    // each offered option chosen (empty: hidden).
    const std::tuple<int, QStringList, std::vector<QStringList>> cases[] = {
        {0, {"T3167*-"}, {{}}},
        {1, number, {{}, {}, {}, {"Prefix 0", "Postfix F"}}},
        {2, number, {{}, {}, {}, {"Prefix 0", "Postfix F"}}},
        {3, {"T3202*", "T3108", "T3203"}, {dateStrings, dateNumbers, dateNumbers}},
        {4, {"T3175*-"}, {{}}},
    };
    for (const auto& [row, options, formats] : cases) {
        SCOPED_TRACE("field row " + std::to_string(row));
        Rules d;
        d.numberedTexts();
        d.open<frmEditiClass>(kModeField);
        d.clickField(4 - row);  // another type first, so the options are built again
        d.clickField(row);
        EXPECT_EQ(d.options("optEncode"), options);
        for (int option = static_cast<int>(formats.size()) - 1; option >= 0; --option) {
            d.click(QStringLiteral("optEncode(%1)").arg(option));
            auto* list = d.child<QComboBox>("cboFormat");
            EXPECT_EQ(std::make_tuple(d.entries("cboFormat"), d.shown({"cboFormat", "lblFormat"}).size(), list->currentIndex()),
                      std::make_tuple(formats[option], formats[option].isEmpty() ? 0 : 2, formats[option].isEmpty() ? -1 : 0))
                << option;
            list->setCurrentIndex(list->count() - 1);
        }
    }
    // A bit field is always a binary number written high byte first, whatever the field.
    for (int row : {0, 3}) {
        Rules d;
        d.numberedTexts();
        d.open<frmEditiClass>(kModeBitField);
        d.clickField(row);
        EXPECT_EQ(d.options("optEncode"), QStringList{"T3168*-"}) << row;
    }
}

// Each function captions and shows its own property options (by text number where they have one,
// even when the library has a text 0) and the first one it offers is chosen; its boxes are shown
// with it. A counter starts counting from the number box.
TEST(DialogFunctions, EachFunctionOffersItsPropertiesAndStartsWithTheFirst) {
    const QStringList boxes = {"txtConstantValue", "fraCountFirstValue", "txtCountNumber", "txtCountStep",
                               "fraRange", "txtPolynom", "txtStartValue"};
    const std::tuple<int, QStringList, QStringList> cases[] = {
        {0, {"T3106*", "T3111"}, {"txtConstantValue"}},
        {1, {"<Write before increment>*", "<Increment before Write>"}, {"fraCountFirstValue", "txtCountNumber", "txtCountStep"}},
        {2, {"<String decimal>*", "<String hexadecimal>", "<Motorola dec.(HiByte-LoByte)>", "<Intel dec.(LoByte-HiByte)>"}, {}},
        {3, {"<ADD>*", "<Polynomial CRC>", "<Parity (0: Even, 1: Odd)>"}, {"fraRange", "txtStartValue"}},
    };
    for (int32_t mode : {kModeFunction, kModeBitFunction})
        for (const auto& [function, options, shownBoxes] : cases) {
            SCOPED_TRACE("mode " + std::to_string(mode) + ", function " + std::to_string(function));
            Rules d;
            d.doc.translator().setLanguageDLL(numberedLibrary(d.registry, d.dir / "texts.txt", {0, 3106, 3111}));
            d.open<frmEditiClass>(mode);
            d.click(QStringLiteral("optFunction(%1)").arg(3 - function));  // another function first
            d.click(QStringLiteral("optProperty(%1)").arg(function == 3 ? 1 : 3));
            d.click(QStringLiteral("optFunction(%1)").arg(function));
            const QString word = QStringList({"Constant", "Count", "CardSnNr", "Checksum"})[function];
            const bool fromNumber = d.checked("optCountFirstValue(0)");
            EXPECT_EQ(std::make_tuple(d.options("optProperty"), d.shown(boxes), d.text("txtSelectedField"), fromNumber),
                      std::make_tuple(options, shownBoxes, word, true));
        }
    // A counter's first value comes from the number box or from a field of the list.
    Rules d;
    d.open<frmEditiClass>(kModeFunction);
    d.click("optFunction(1)");
    QStringList seen;
    for (const char* option : {"optCountFirstValue(1)", "optCountFirstValue(0)"})
        d.click(option), seen << d.shown({"txtCountNumber", "cboFieldList"}).join("+");
    EXPECT_EQ(std::make_pair(seen, d.applyEnabled()), std::make_pair(QStringList({"cboFieldList", "txtCountNumber"}), true));
}

// The database-update dialog starts with "Constant" and its value box; each function shows its own
// boxes; an update being edited comes back with its field, function and values.
TEST(DialogFunctions, TheUpdateDialogShowsTheChosenFunctionsBoxes) {
    const QStringList boxes = {"txtConstantValue", "txtCountNumber", "txtCountStep", "optProperty(0)", "optProperty(1)"};
    const std::vector<ItemRecord> updates = {dbUpdate("NUMBER", "CardSnNr", "1"), dbUpdate("NAME", "Count", "7", "3")};
    Rules d(updates);
    d.open<frmDBUpdate>();
    const std::pair<const char*, QStringList> shownFor[] = {{"", {"txtConstantValue"}},
                                                            {"optFunction(2)", {"optProperty(0)", "optProperty(1)"}},
                                                            {"optFunction(1)", {"txtCountNumber", "txtCountStep"}},
                                                            {"optFunction(0)", {"txtConstantValue"}}};
    for (const auto& [click, shown] : shownFor) {
        if (*click) d.click(click);
        EXPECT_EQ(d.shown(boxes), shown) << click;
    }
    EXPECT_TRUE(d.checked("optFunction(0)") && d.checked("optProperty(0)"));
    const std::tuple<int, const char*, const char*, QStringList> edited[] = {
        {0, "NUMBER", "optFunction(2)", {"", "", "", "optProperty(1)"}},
        {1, "NAME", "optFunction(1)", {"", "7", "3", "optProperty(0)"}}};
    for (const auto& [index, field, function, values] : edited) {
        Rules e(updates);
        e.open<frmDBUpdate>(index);
        const QString checked = e.checked("optProperty(0)") ? "optProperty(0)" : "optProperty(1)";
        EXPECT_EQ(QStringList({e.text("txtConstantValue"), e.text("txtCountNumber"), e.text("txtCountStep"), checked}), values);
        EXPECT_EQ(std::make_pair(e.checked(function), e.text("txtSelectedField")), std::make_pair(true, QString(field)));
    }
}

// The lists of place: every page of the card, the blocks from the first free one (chosen first),
// bytes and bits 0 to 7 starting at 0.
TEST(DialogLimits, ThePlaceListsOfferThePagesFreeBlocksBytesAndBits) {
    for (const auto& [chip, pages] : {std::pair{iSmallOnePage, 1}, std::pair{iBigEightPages, 8}}) {
        for (int which = 0; which < 3; ++which) {
            SCOPED_TRACE(std::to_string(pages) + " pages, dialog " + std::to_string(which));
            Rules d(chip);
            if (which < 2) d.open<frmEditiClass>(which == 0 ? kModeField : kModeBitFunction);
            else d.open<frmMultiTrack>();
            EXPECT_EQ(std::make_tuple(d.entries("cboPage"), d.entries("cboRow"), d.entries("cboBeginByte"),
                                      which > 0 ? d.entries("cboBeginBit") : range(0, 7)),  // byte items have no begin bit
                      std::make_tuple(range(0, pages - 1), range(19, 31), range(0, 7), range(0, 7)));
            QStringList lists = {"cboPage", "cboRow", "cboBeginByte"};
            if (which > 0) lists << "cboBeginBit";
            for (const QString& list : lists) EXPECT_EQ(d.child<QComboBox>(list)->currentIndex(), 0) << list.toStdString();
            if (pages == 8) {  // another page offers its own rows
                d.choose("cboPage", "3");
                EXPECT_EQ(d.entries("cboRow"), range(6, 31));
            }
        }
    }
}

// Typing cuts the size to the mode's limit; leaving the box checks the room left from the chosen
// place (bytes, or bits with the begin bit added); the arrows step by one and stay at one or above.
TEST(DialogLimits, TheSizeBoxCutsChecksTheRoomLeftAndSteps) {
    // The mode, the optFunction and optProperty to click ("" for none), what is typed and kept.
    const std::tuple<int32_t, const char*, const char*, QString, QString> typed[] = {
        {kModeField, "", "", "300", "256"}, {kModeFunction, "optFunction(1)", "", "257", "256"},
        {kModeBitField, "", "", "400", "384"}, {kModeBitFunction, "optFunction(3)", "optProperty(2)", "9", "8"},
        {kModeBitFunction, "optFunction(0)", "", "500", "500"}};
    for (const auto& [mode, function, property, text, kept] : typed) {
        Rules d;
        d.open<frmEditiClass>(mode);
        if (*function) d.click(function);
        if (*property) d.click(property);
        d.type("txtNrBytes", text);
        EXPECT_EQ(d.text("txtNrBytes"), kept) << "mode " << mode << " " << function << " " << property;
    }
    // The mode, the place (block, byte, bit) and the largest size the box takes on leaving.
    for (const auto& [mode, block, byte, bit, room] : {std::tuple{kModeField, 30, 1, 0, 15}, std::tuple{kModeBitField, 30, 1, 5, 125},
                                                      std::tuple{kModeField, 19, 0, 0, 104}}) {
        for (int size : {room, room + 1}) {
            SCOPED_TRACE("mode " + std::to_string(mode) + ", size " + std::to_string(size));
            Rules d;
            d.open<frmEditiClass>(mode);
            d.place(block, byte, QString::number(size));
            if (mode == kModeBitField) d.choose("cboBeginBit", QString::number(bit));
            d.leave("txtNrBytes");
            const std::string told = d.messageTexts().empty() ? "" : d.messageTexts()[0];
            EXPECT_EQ(std::make_pair(d.messageTexts().size(), told.find(" 1 & " + std::to_string(room) + "!") != std::string::npos),
                      std::make_pair(std::size_t(size > room), size > room)) << told;
        }
    }
    Rules d;
    d.open<frmEditiClass>(kModeField);
    QStringList stepped;
    for (int steps : {1, -1, -1, 1, 1}) d.child<QAbstractSpinBox>("spinBytes")->stepBy(steps), stepped << d.text("txtNrBytes");
    EXPECT_EQ(stepped, QStringList({"2", "1", "1", "2", "3"}));  // an empty box counts as 1 first
}

// The multi-track dialog's arrows step from the size typed and stop at the room left in the page
// from the chosen place.
TEST(DialogLimits, TheMultiTrackArrowsStepFromTheTypedSizeAndStopAtTheRoomLeft) {
    for (const auto& [block, byte, room] : {std::tuple{31, 6, 2}, std::tuple{30, 0, 16}, std::tuple{19, 0, 104}}) {
        Rules d;
        d.open<frmMultiTrack>();
        d.place(block, byte, QString::number(room - 1));
        QStringList ends;
        for (const auto& [step, times] : {std::pair{1, 1}, {1, room}, {-1, room + 3}}) {
            for (int i = 0; i < times; ++i) d.child<QSpinBox>("spinBytes")->stepBy(step);
            ends << d.text("txtNrBytes");
        }
        EXPECT_EQ(ends, QStringList({QString::number(room), QString::number(room), "1"})) << block << "/" << byte;
    }
    // A page taller than the dialog scrolls, with every column of its map in view.
    Rules big(iBigOnePage);
    const QTableWidget& map = *big.open<frmMultiTrack>().findChild<QTableWidget*>("grdPreview");
    EXPECT_EQ(std::make_pair(map.verticalScrollBar()->maximum() > 0, map.horizontalHeader()->length() <= map.viewport()->width()),
              std::make_pair(true, true)) << map.horizontalHeader()->length() << " " << map.viewport()->width();
}

// A dialog opens with nothing to apply, for a new item or one being edited, and OK then closes
// it at once without a message. Cancelled tells how it ended: false after OK, true after Cancel,
// also when the host shows the same dialog again.
template <class D>
void okThenCancel(const Rules& d, D& form) {
    EXPECT_FALSE(d.applyEnabled());
    d.click("cmdOK");
    EXPECT_EQ(std::make_tuple(form.isVisible(), form.Cancelled, d.messageTexts().size(), d.records().size()),
              std::make_tuple(false, false, 0u, 3));
    form.show();
    d.click("cmdCancel");
    EXPECT_EQ(std::make_pair(form.isVisible(), form.Cancelled), std::make_pair(false, true));
}

TEST(DialogState, ADialogOpensWithNothingToApplyAndTellsHowItEnded) {
    const std::vector<ItemRecord> items = {field("NAME", 0, 20, 0, 4), bitField("NUMBER", 0, 22, 0, 3, 5),
                                           function("Count", "1", "0", "0", 0, 24, 0, 2)};
    const std::tuple<int32_t, int32_t> editors[] = {{kModeField, -1},    {kModeFunction, -1}, {kModeBitField, -1},
                                                    {kModeBitFunction, -1}, {kModeField, 0}, {kModeBitField, 1},
                                                    {kModeFunction, 2}};
    for (const auto& [mode, edit] : editors) {
        SCOPED_TRACE("mode " + std::to_string(mode) + ", editing " + std::to_string(edit));
        Rules d(items);
        okThenCancel(d, d.open<frmEditiClass>(mode, edit));
    }
    Rules d(items);
    okThenCancel(d, d.open<frmMultiTrack>());
}

}  // namespace
}  // namespace kestrin::test
