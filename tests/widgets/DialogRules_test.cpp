// What the item editor and the multi-track dialog show as they open and as a choice changes
// them: every caption fetched by its text number, the entry or option each list and frame
// starts with, the options each field type and function offers, the limits of the lists, size
// boxes and spin controls, and that a dialog opens with nothing to apply.
#include "DialogFixture.h"
#include "editor/frmEditiClass.h"
#include "items/frmDBUpdate.h"
#include "items/frmMultiTrack.h"
#include "rules/PlacementValidation.h"

namespace kestrin::test {
namespace {

struct Rules : DialogFixture {
    explicit Rules(IClassType chip = iSmallOnePage) : DialogFixture({}, chip) {
        doc.fields().setFields({{"Surname", "NAME", "Character", 20, 0, true}, {"Number", "NUMBER", "Number", 6, 1, true},
                                {"Amount", "AMOUNT", "Numeric", 6, 2, true},  {"Birthday", "BIRTH", "Date", 8, 3, true},
                                {"Photo", "PHOTO", "Binary", 64, 4, true}});
    }
    // A language library in which every text reads "T<number>".
    void numberedTexts() {
        std::string lines;
        for (int id = 3000; id < 5000; ++id) lines += std::to_string(id) + "=T" + std::to_string(id) + "\n";
        writeBytes(dir / "numbered.txt", lines);
        doc.translator().setLanguageDLL(registry.open(dir / "numbered.txt"));
    }
    QString caption(const QString& name) const {
        QWidget* w = child(name);
        if (auto* b = qobject_cast<QAbstractButton*>(w)) return b->text();
        if (auto* l = qobject_cast<QLabel*>(w)) return l->text();
        if (auto* g = qobject_cast<QGroupBox*>(w)) return g->title();
        return w ? w->windowTitle() : QString();
    }
    QStringList entries(const QString& combo) const {
        QStringList out;
        for (int i = 0; i < child<QComboBox>(combo)->count(); ++i) out << child<QComboBox>(combo)->itemText(i);
        return out;
    }
    // The options of a frame ("optEncode", "optProperty") as the operator sees them: the caption
    // of each one shown, "*" after the checked one and "-" after one that cannot be chosen.
    QStringList options(const QString& frame) const {
        QStringList out;
        for (int i = 0; i < 4; ++i) {
            auto* o = child<QRadioButton>(QStringLiteral("%1(%2)").arg(frame).arg(i));
            if (o->isVisible()) out << o->text() + (o->isChecked() ? "*" : "") + (o->isEnabled() ? "" : "-");
        }
        return out;
    }
    QStringList shown(const QStringList& names) const {
        QStringList out;
        for (const QString& n : names)
            if (child(n)->isVisible()) out << n;
        return out;
    }
};

QStringList range(int from, int to) {
    QStringList out;
    for (int i = from; i <= to; ++i) out << QString::number(i);
    return out;
}

// Captions by text number, in every mode of the editor; "" names a caption with no text number.
TEST(DialogCaptions, EveryCaptionIsTheLibrarysTextOfItsNumber) {
    using Captions = std::vector<std::pair<QString, QString>>;
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
        frmEditiClass& ed = d.open<frmEditiClass>(mode);
        EXPECT_EQ(ed.windowTitle(), title);
        EXPECT_EQ(d.caption("lblNrOfBytes"), sizeLabel);
        Captions all = everyMode;
        const Captions& own = mode == kModeField || mode == kModeBitField ? fieldModes : functionModes;
        all.insert(all.end(), own.begin(), own.end());
        if (mode == kModeBitField || mode == kModeBitFunction) all.push_back({"lblBeginBit", "T4607"});
        for (const auto& [name, text] : all) EXPECT_EQ(d.caption(name), text) << name.toStdString();
    }
    Rules d;
    d.numberedTexts();
    frmMultiTrack& m = d.open<frmMultiTrack>();
    EXPECT_EQ(m.windowTitle(), "T3192");
    for (const auto& [name, text] : Captions{{"lblFieldFunction", "T3111"}, {"fraAddTo", "T3138"}, {"lblPage", "T4606"},
                                            {"lblRow", "T3115"}, {"lblBeginByte", "T3116"}, {"lblBeginBit", "T4607"},
                                            {"lblNrOfBytes", "T4608"}, {"cmdApply", "T3153"}})
        EXPECT_EQ(d.caption(name), text) << name.toStdString();
    auto* fields = d.child<QTableWidget>("grdFields");
    EXPECT_EQ(fields->horizontalHeaderItem(0)->text() + "|" + fields->horizontalHeaderItem(1)->text(), "T3154|T3184");
    // The database-update dialog speaks with the item editor's words.
    Rules u;
    u.numberedTexts();
    EXPECT_EQ(u.open<frmDBUpdate>().windowTitle(), "T4700");
    for (const auto& [name, text] : Captions{{"fraFields", "T3137"}, {"lblSelectedField", "T3111"}, {"fraFunction", "T3112"},
                                            {"optFunction(0)", "T3142"}, {"optFunction(1)", "T3143"},
                                            {"optFunction(2)", "T3144"}, {"fraProperties", "T3120"},
                                            {"lblConstantValue", "T3106"}, {"lblCountNumber", "T3147"},
                                            {"lblCountStep", "T3107"}})
        EXPECT_EQ(u.caption(name), text) << name.toStdString();
}

// The encodings a field offers follow its type; option 0 is chosen whenever the options are
// built, and the format list starts at its first entry whenever it is filled.
TEST(DialogEncodings, EachFieldTypeOffersItsOptionsAndFormats) {
    const QStringList number = {"T3167*", "T3168", "T3169", "T3203"};
    const QStringList dateStrings = {"DD/MM/CCYY", "DDMMCCYY", "MMDDCCYY", "CCYYMMDD"};
    const QStringList dateNumbers = {"DD MM CC YY", "MM DD CC YY", "CC YY MM DD"};
    struct Case {
        int row;  // the field: Character, Number, Numeric, Date, Binary
        QStringList options;
        std::vector<QStringList> formats;  // the format list with each offered option chosen; empty: hidden
    };
    const Case cases[] = {
        {0, {"T3167*-"}, {{}}},
        {1, number, {{}, {}, {}, {"Prefix 0", "Postfix F"}}},
        {2, number, {{}, {}, {}, {"Prefix 0", "Postfix F"}}},
        {3, {"T3202*", "T3108", "T3203"}, {dateStrings, dateNumbers, dateNumbers}},
        {4, {"T3175*-"}, {{}}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE("field row " + std::to_string(c.row));
        Rules d;
        d.numberedTexts();
        d.open<frmEditiClass>(kModeField);
        d.clickField(4 - c.row);  // another type first, so the options are built again
        d.clickField(c.row);
        EXPECT_EQ(d.options("optEncode"), c.options);
        for (int option = static_cast<int>(c.formats.size()) - 1; option >= 0; --option) {
            d.click(QStringLiteral("optEncode(%1)").arg(option));
            EXPECT_EQ(d.entries("cboFormat"), c.formats[option]) << option;
            EXPECT_EQ(d.shown({"cboFormat", "lblFormat"}).size(), c.formats[option].isEmpty() ? 0 : 2) << option;
            if (c.formats[option].isEmpty()) continue;
            EXPECT_EQ(d.child<QComboBox>("cboFormat")->currentIndex(), 0) << option;
            d.child<QComboBox>("cboFormat")->setCurrentIndex(d.child<QComboBox>("cboFormat")->count() - 1);
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

// Each function captions and shows its own property options and the first one it offers is
// chosen; its boxes are shown with it.
TEST(DialogFunctions, EachFunctionOffersItsPropertiesAndStartsWithTheFirst) {
    const QStringList boxes = {"txtConstantValue", "fraCountFirstValue", "txtCountNumber", "txtCountStep",
                               "fraRange", "txtPolynom", "txtStartValue"};
    struct Case {
        int function;
        QStringList options, shownBoxes;
    };
    const Case cases[] = {
        {0, {"<Value>*", "<Field>"}, {"txtConstantValue"}},
        {1, {"<Write before increment>*", "<Increment before Write>"}, {"fraCountFirstValue", "txtCountNumber", "txtCountStep"}},
        {2, {"<String decimal>*", "<String hexadecimal>", "<Motorola dec.(HiByte-LoByte)>", "<Intel dec.(LoByte-HiByte)>"}, {}},
        {3, {"<ADD>*", "<Polynomial CRC>", "<Parity (0: Even, 1: Odd)>"}, {"fraRange", "txtStartValue"}},
    };
    for (int32_t mode : {kModeFunction, kModeBitFunction})
        for (const Case& c : cases) {
            SCOPED_TRACE("mode " + std::to_string(mode) + ", function " + std::to_string(c.function));
            Rules d;
            d.open<frmEditiClass>(mode);
            d.click(QStringLiteral("optFunction(%1)").arg(3 - c.function));  // another function first
            d.click(QStringLiteral("optProperty(%1)").arg(c.function == 3 ? 1 : 3));
            d.click(QStringLiteral("optFunction(%1)").arg(c.function));
            EXPECT_EQ(d.options("optProperty"), c.options);
            EXPECT_EQ(d.shown(boxes), c.shownBoxes);
            EXPECT_EQ(d.text("txtSelectedField"), QStringList({"Constant", "Count", "CardSnNr", "Checksum"})[c.function]);
        }
}

// A counter's first value comes from the number box or from a field of the list.
TEST(DialogFunctions, ACountersFirstValueComesFromTheNumberOrAField) {
    Rules d;
    d.open<frmEditiClass>(kModeFunction);
    d.click("optFunction(1)");
    const QStringList boxes = {"txtCountNumber", "cboFieldList"};
    QStringList seen;
    for (const char* option : {"optCountFirstValue(1)", "optCountFirstValue(0)"}) {
        d.click(option);
        seen << d.shown(boxes).join("+");
    }
    EXPECT_EQ(seen, QStringList({"cboFieldList", "txtCountNumber"}));
    EXPECT_TRUE(d.applyEnabled());
}

// The database-update dialog starts with "Constant" and its value box; each function shows its own
// boxes; an update being edited comes back with its field, function and values.
TEST(DialogFunctions, TheUpdateDialogShowsTheChosenFunctionsBoxes) {
    const QStringList boxes = {"txtConstantValue", "txtCountNumber", "txtCountStep", "optProperty(0)", "optProperty(1)"};
    Rules d;
    d.doc.setLayout(CIClass(), recordsOf({dbUpdate("NUMBER", "CardSnNr", "1"), dbUpdate("NAME", "Count", "7", "3")}));
    d.open<frmDBUpdate>();
    const std::pair<const char*, QStringList> shownFor[] = {{"", {"txtConstantValue"}},
                                                            {"optFunction(2)", {"optProperty(0)", "optProperty(1)"}},
                                                            {"optFunction(1)", {"txtCountNumber", "txtCountStep"}},
                                                            {"optFunction(0)", {"txtConstantValue"}}};
    for (const auto& [click, shown] : shownFor) {
        if (*click) d.click(click);
        EXPECT_EQ(d.shown(boxes), shown) << click;
    }
    EXPECT_TRUE(d.child<QRadioButton>("optFunction(0)")->isChecked() && d.child<QRadioButton>("optProperty(0)")->isChecked());
    const std::tuple<int, const char*, const char*, QStringList> edited[] = {
        {0, "NUMBER", "optFunction(2)", {"", "", "", "optProperty(1)"}},
        {1, "NAME", "optFunction(1)", {"", "7", "3", "optProperty(0)"}}};
    for (const auto& [index, field, function, values] : edited) {
        Rules e;
        e.doc.setLayout(CIClass(), recordsOf({dbUpdate("NUMBER", "CardSnNr", "1"), dbUpdate("NAME", "Count", "7", "3")}));
        e.open<frmDBUpdate>(index);
        const QString checked = e.child<QRadioButton>("optProperty(0)")->isChecked() ? "optProperty(0)" : "optProperty(1)";
        EXPECT_EQ(QStringList({e.text("txtConstantValue"), e.text("txtCountNumber"), e.text("txtCountStep"), checked}), values);
        EXPECT_TRUE(e.child<QRadioButton>(function)->isChecked()) << function;
        EXPECT_EQ(e.text("txtSelectedField"), field);
    }
}

// The lists of place: every page of the card, the blocks from the first free one (chosen first),
// bytes and bits 0 to 7 starting at 0.
TEST(DialogLimits, ThePlaceListsOfferThePagesFreeBlocksBytesAndBits) {
    for (const auto& [chip, pages, firstFree] : {std::tuple{iSmallOnePage, 1, 19}, std::tuple{iBigEightPages, 8, 19}}) {
        for (int which = 0; which < 3; ++which) {
            SCOPED_TRACE(std::to_string(pages) + " pages, dialog " + std::to_string(which));
            Rules d(chip);
            if (which < 2)
                d.open<frmEditiClass>(which == 0 ? kModeField : kModeBitFunction);
            else
                d.open<frmMultiTrack>();
            EXPECT_EQ(d.entries("cboPage"), range(0, pages - 1));
            EXPECT_EQ(d.entries("cboRow"), range(firstFree, 31));
            for (const char* list : {"cboPage", "cboRow", "cboBeginByte", "cboBeginBit"}) {
                if (which == 0 && std::string(list) == "cboBeginBit") continue;  // byte items have no begin bit
                EXPECT_EQ(d.child<QComboBox>(list)->currentIndex(), 0) << list;
            }
            EXPECT_EQ(d.entries("cboBeginByte"), range(0, 7));
            if (which > 0) {
                EXPECT_EQ(d.entries("cboBeginBit"), range(0, 7));
            }
        }
    }
}

// Typing cuts the size to the mode's limit; leaving the box checks the room left from the chosen
// place (bytes, or bits with the begin bit added); the arrows step by one and stay at one or above.
TEST(DialogLimits, TheSizeBoxCutsChecksTheRoomLeftAndSteps) {
    struct Typed {
        int32_t mode;
        const char* function;  // "" for fields, else the optFunction and optProperty to click
        const char* property;
        QString typed, kept;
    };
    for (const Typed& c : {Typed{kModeField, "", "", "300", "256"}, Typed{kModeFunction, "optFunction(1)", "", "257", "256"},
                           Typed{kModeBitField, "", "", "400", "384"},
                           Typed{kModeBitFunction, "optFunction(3)", "optProperty(2)", "9", "8"},
                           Typed{kModeBitFunction, "optFunction(0)", "", "500", "500"}}) {
        Rules d;
        d.open<frmEditiClass>(c.mode);
        if (*c.function) d.click(c.function);
        if (*c.property) d.click(c.property);
        d.type("txtNrBytes", c.typed);
        EXPECT_EQ(d.text("txtNrBytes"), c.kept) << "mode " << c.mode << " " << c.function << " " << c.property;
    }
    struct Room {
        int32_t mode;
        int block, byte, bit;
        int room;  // the largest size the box takes on leaving
    };
    for (const Room& c : {Room{kModeField, 30, 1, 0, 15}, Room{kModeBitField, 30, 1, 5, 125}, Room{kModeField, 19, 0, 0, 104}}) {
        for (int size : {c.room, c.room + 1}) {
            SCOPED_TRACE("mode " + std::to_string(c.mode) + ", size " + std::to_string(size));
            Rules d;
            d.open<frmEditiClass>(c.mode);
            d.place(c.block, c.byte, QString::number(size));
            if (c.mode == kModeBitField) d.choose("cboBeginBit", QString::number(c.bit));
            d.leave("txtNrBytes");
            EXPECT_EQ(d.messageTexts().size(), size > c.room ? 1u : 0u);
            if (size > c.room) {
                EXPECT_NE(d.messageTexts()[0].find(" 1 & " + std::to_string(c.room) + "!"), std::string::npos)
                    << d.messageTexts()[0];
            }
        }
    }
    Rules d;
    d.open<frmEditiClass>(kModeField);
    auto* arrows = d.child<QAbstractSpinBox>("spinBytes");
    QStringList stepped;
    for (int steps : {1, -1, -1, 1, 1}) arrows->stepBy(steps), stepped << d.text("txtNrBytes");
    EXPECT_EQ(stepped, QStringList({"2", "1", "1", "2", "3"}));  // an empty box counts as 1 first
}

// The multi-track dialog's arrows stop at the room left in the page from the chosen place.
TEST(DialogLimits, TheMultiTrackArrowsStopAtTheRoomLeft) {
    for (const auto& [block, byte, room] : {std::tuple{31, 6, 2}, std::tuple{30, 0, 16}, std::tuple{19, 0, 104}}) {
        Rules d;
        d.open<frmMultiTrack>();
        d.place(block, byte, "1");
        auto* spin = d.child<QSpinBox>("spinBytes");
        for (int i = 0; i < room + 3; ++i) spin->stepUp();
        EXPECT_EQ(d.text("txtNrBytes"), QString::number(room)) << block << "/" << byte;
        for (int i = 0; i < room + 3; ++i) spin->stepDown();
        EXPECT_EQ(d.text("txtNrBytes"), "1") << block << "/" << byte;
    }
}

// A dialog opens with nothing to apply, for a new item or one being edited, and OK then closes
// it at once without a message.
TEST(DialogState, ADialogOpensWithNothingToApply) {
    const std::vector<ItemRecord> items = {field("NAME", 0, 20, 0, 4), bitField("NUMBER", 0, 22, 0, 3, 5),
                                           function("Count", "1", "0", "0", 0, 24, 0, 2)};
    const std::tuple<int32_t, int32_t> editors[] = {{kModeField, -1},    {kModeFunction, -1}, {kModeBitField, -1},
                                                    {kModeBitFunction, -1}, {kModeField, 0}, {kModeBitField, 1},
                                                    {kModeFunction, 2}};
    for (const auto& [mode, edit] : editors) {
        SCOPED_TRACE("mode " + std::to_string(mode) + ", editing " + std::to_string(edit));
        Rules d;
        d.doc.setLayout(CIClass(), recordsOf(items));
        frmEditiClass& ed = d.open<frmEditiClass>(mode, edit);
        EXPECT_FALSE(d.applyEnabled());
        d.click("cmdOK");
        EXPECT_EQ(std::make_tuple(ed.isVisible(), ed.Cancelled, d.messageTexts().size(), d.records().size()),
                  std::make_tuple(false, false, 0u, 3));
    }
    Rules d;
    frmMultiTrack& m = d.open<frmMultiTrack>();
    EXPECT_FALSE(d.applyEnabled());
    d.click("cmdOK");
    EXPECT_FALSE(m.isVisible() || m.Cancelled);
}

}  // namespace
}  // namespace kestrin::test
