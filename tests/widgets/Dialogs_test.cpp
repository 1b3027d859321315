// The item editor, the properties, database-update and multi-track dialogs driven by their
// control names: what each shows as it opens and as a choice changes it (every caption by its text
// number, the entry or option each list and frame starts with, the options each field type and
// function offers, the limits of the lists, size boxes and spin controls), what each writes on Apply
// or OK, what it refuses and why, what it loads for editing and leaves on Cancel, and the keys a
// focused button answers.
#include <numeric>
#include "DialogFixture.h"
#include "dialogs/frmProperties.h"
#include "editor/BitMapView.h"
#include "editor/frmEditiClass.h"
#include "items/frmDBUpdate.h"
#include "items/frmMultiTrack.h"
#include "rules/Encodings.h"
#include "rules/FunctionProperties.h"
#include "rules/PlacementValidation.h"

namespace kestrin::test {
namespace {

using Boxes = std::vector<std::pair<const char*, const char*>>;

// The fixture with a language library in which every text reads "T<number>".
struct Dialog : DialogFixture {
    explicit Dialog(std::vector<ItemRecord> items = {}, IClassType chip = iSmallOnePage) : DialogFixture(std::move(items), chip) {
        std::vector<int> ids(2000);
        std::iota(ids.begin(), ids.end(), 3000);
        doc.translator().setLanguageDLL(numberedLibrary(registry, dir / "numbered.txt", ids));
    }
    explicit Dialog(IClassType chip) : Dialog({}, chip) {}
    QString caption(const QString& name) const {  // a button's or label's text, a frame's title
        const QWidget* w = child(name);
        return w ? w->property(qobject_cast<const QGroupBox*>(w) ? "title" : "text").toString() : QString();
    }
    // The properties dialog on a card of the given chip, HID area and bitwise encoding.
    frmProperties& properties(IClassType chip, bool hid = false, bool bitwise = false, const std::string& bounds = {}) {
        auto card = std::make_unique<CIClass>();
        card->setChipSize(chip);
        card->setUseHIDSection(hid);
        card->setEnableBitwise(bitwise);
        if (!bounds.empty()) card->SetBoundaries(bounds);
        frmProperties& p = open<frmProperties>();
        p.setCard(std::move(card));
        activate();
        return p;
    }
    QRadioButton* chip(int i) const { return child<QRadioButton>(QStringLiteral("optChipType(%1)").arg(i)); }
    QLineEdit* bound(int page) const { return child<QLineEdit>(QStringLiteral("txtBoundary(%1)").arg(page)); }
    bool boundaryTab() const { return child<QTabWidget>("tabIClass")->isTabEnabled(1); }
    bool memoryList() const { return child<QComboBox>("cboMemoryType")->isEnabled(); }
};

QStringList range(int from, int to) {
    QStringList out;
    for (int i = from; i <= to; ++i) out << QString::number(i);
    return out;
}

using Captions = std::vector<std::pair<QString, QString>>;

// Items get a light colour: every channel from 127 to 227.
bool lightColour(int32_t bgr) {
    const auto light = [&](int shift) { return ((bgr >> shift) & 0xFF) >= 127 && ((bgr >> shift) & 0xFF) <= 227; };
    return light(0) && light(8) && light(16) && (bgr >> 24) == 0;
}

// A refused place tells why, keeps Apply on and keeps OK from closing; before Apply the page map marks
// the chosen place, and OK applies what is pending, shows the item on the map and closes.
TEST(EditiClassFields, APlaceBeyondThePageIsRefusedAndOneOnItIsAppliedByOk) {
    Dialog ed;
    frmEditiClass& form = ed.open<frmEditiClass>(kModeField);
    // The field grid shows each field's name, type, size and description; rows added to the choice in one
    // selection change join their names in the grid's order.
    QTableWidget& grid = *ed.child<QTableWidget>("grdFields");
    QStringList cells;
    for (int row : {0, 4})
        for (int column = 0; column < 4; ++column) cells << (grid.item(row, column) ? grid.item(row, column)->text() : "-");
    EXPECT_EQ(cells.join("|"), QString("NAME|Character|20|Surname|PHOTO|Binary|64|Photo"));
    QItemSelection picked(grid.model()->index(3, 0), grid.model()->index(3, 0));
    picked.select(grid.model()->index(1, 0), grid.model()->index(1, 0));
    grid.selectionModel()->select(picked, QItemSelectionModel::Select | QItemSelectionModel::Rows);
    EXPECT_EQ(ed.text("txtSelectedField"), QString("NUMBER [+] BIRTH"));
    ed.clickField(0);  // choosing a field is a change to apply
    EXPECT_EQ(std::make_pair(ed.text("txtSelectedField"), ed.applyEnabled()), std::make_pair(QString("NAME"), true));
    ed.place(31, 1, "8");
    ed.click("cmdApply");
    EXPECT_EQ(std::make_pair(ed.messageTexts(), ed.applyEnabled()), std::make_pair(std::vector<std::string>{"T4600"}, true));
    ed.click("cmdOK");
    EXPECT_EQ(std::make_tuple(ed.records().size(), form.isVisible()), std::make_tuple(0, true));
    ed.prompter.messages.clear();
    ed.place(20, 1, "4");
    ed.choose("cboBeginByte", "2");  // the mark follows the place chosen
    const QColor mark = memoryMapColor(kMapMarkColor);
    EXPECT_EQ(std::make_tuple(ed.mapColour(21, 2) == mark, ed.mapColour(21, 3), ed.mapColour(21, 6), ed.mapColour(21, 7) == mark),
              std::make_tuple(false, mark, mark, false));
    ed.click("cmdOK");
    EXPECT_EQ(std::make_tuple(form.isVisible(), form.Cancelled, form.result(), form.appliedCount(), ed.applyEnabled(),
                              ed.prompter.messages.size()),
              std::make_tuple(false, false, int(QDialog::Accepted), 1, false, 0u));
    ASSERT_EQ(ed.records().size(), 1);
    const ItemRecord& r = ed.records()[0];
    EXPECT_EQ(std::make_tuple(r.name, std::string(kindWord(r)), r.page, r.block, r.beginByte, r.numBytes, r.encodingCode,
                              r.fieldType, lightColour(r.color), ed.child<QTableWidget>("grdPreview")->item(21, 3)->text(),
                              ed.mapColour(21, 3)),
              std::make_tuple(std::string("NAME"), std::string(kKindField), 0, 20, 2, 4, 0, int{kFieldTypeCharacter}, true,
                              QString("NAME"), memoryMapColor(r.color))) << std::hex << r.color;
}

TEST(EditiClassFields, EditingPresetsTheControlsAndReplacesTheItemOrPutsItBackWhenRefused) {
    ItemRecord old = field("NUMBER", 2, 20, 1, 6, 4, 0x00A0B0C0);
    old.fieldType = kFieldTypeNumber;
    Dialog ed({field("OTHER", 0, 25, 0, 2), old}, iBigEightPages);
    ed.open<frmEditiClass>(kModeField, 1);
    EXPECT_EQ(QStringList({ed.text("txtSelectedField"), ed.current("cboPage"), ed.current("cboRow"), ed.text("txtNrBytes"),
                           ed.current("cboBeginByte"), ed.current("cboFormat")}),
              QStringList({"NUMBER", "2", "20", "6", "1", "Postfix F"}));
    EXPECT_EQ(std::make_pair(ed.checked("optEncode(3)"), ed.applyEnabled()), std::make_pair(true, false));
    ed.place(31, 6, "6");
    ed.click("cmdApply");
    EXPECT_EQ(ed.messageTexts(), std::vector<std::string>{"T4600"});
    EXPECT_EQ(ed.records().records(), (std::vector<ItemRecord>{field("OTHER", 0, 25, 0, 2), old}));

    ed.place(21, 1, "6");
    ed.click("cmdApply");
    EXPECT_EQ(ed.prompter.messages.size(), 1u);
    ItemRecord moved = old;  // colour and encoding kept
    moved.block = 21;
    EXPECT_EQ(ed.records().records(), (std::vector<ItemRecord>{field("OTHER", 0, 25, 0, 2), moved}));
}

// A new bit checksum: the function, its representation, the typed values and the chosen place
// become one record with a light colour.
TEST(EditiClassFunctions, ANewFunctionIsWrittenWithWhatWasTypedAndChosen) {
    Dialog ed;
    ed.open<frmEditiClass>(kModeBitFunction);
    // The bit view's top row numbers each byte's bits; none of its cells can be picked or typed into.
    const QTableWidget& bits = *ed.child<QTableWidget>("grdPreview");
    EXPECT_EQ(std::make_tuple(bits.item(0, bitGridColumn(0, 0))->toolTip(), bits.item(0, bitGridColumn(7, 7))->toolTip(),
                              bits.item(0, bitGridColumn(3, 5))->flags()),
              std::make_tuple(QString("0.0"), QString("7.7"), Qt::ItemFlags(Qt::ItemIsEnabled)));
    ed.click("optFunction(3)");
    ed.click("optProperty(2)");
    const Boxes typed = {{"txtNrBytes", "4"}, {"txtPolynom", "19"}, {"txtStartValue", "3"}, {"txtRangeBytesCount", "2"}};
    for (const auto& [box, text] : typed) ed.type(box, text);
    for (const auto& [list, entry] : Boxes{{"cboRow", "23"}, {"cboBeginByte", "2"}, {"cboBeginBit", "4"}}) ed.choose(list, entry);
    ed.click("cmdApply");
    ASSERT_EQ(std::make_pair(ed.messageTexts(), ed.records().size()), std::make_pair(std::vector<std::string>{}, 1));
    const ItemRecord& r = ed.records()[0];
    const FunctionInput in = functionInputOf(r);
    EXPECT_EQ(std::tuple(std::string(kindWord(r)), r.block, r.beginByte, r.beginBit, r.numBits, in.option, in.polynomText,
                         in.startValueText, in.rangeBeginByte, in.rangeCountText, lightColour(r.color)),
              std::tuple(std::string(kKindBitFunction), 23, 2, 4, 4, 2, "19", "3", 0, "2", true));
}

// A value box is checked against its own limits when it is left and again by Apply; the box keeps
// the focus and the limits are part of the message. The range count is judged with the place, on Apply.
// The size box, when left, takes no more than the room left from the chosen place (bytes, or bits with
// the begin bit added).
TEST(EditiClassFunctions, AValueOrSizeOutOfRangeIsRefusedAndItsBoxKeepsTheFocus) {
    // The mode, the function, what is chosen and typed, the box left (or, with apply, refused by Apply) and
    // its limits ("": taken).
    const std::tuple<int32_t, const char*, Boxes, const char*, const char*, bool> cases[] = {
        {kModeFunction, "optFunction(1)", {{"txtCountStep", "256"}}, "txtCountStep", " 0 & 255!", false},
        {kModeFunction, "optFunction(3)", {{"txtPolynom", "1000"}}, "txtPolynom", " 257 & 511!", false},
        {kModeBitFunction, "optFunction(3)", {{"txtNrBytes", "3"}, {"txtPolynom", "20"}, {"txtStartValue", "0"}},
         "txtPolynom", " 9 & 15!", true},
        {kModeFunction, "optFunction(3)", {{"txtStartValue", "256"}}, "txtStartValue", " 0 & 255!", false},
        {kModeFunction, "optFunction(3)", {{"txtRangeBytesCount", "300"}}, "txtRangeBytesCount", "", false},
        {kModeField, "", {{"cboRow", "30"}, {"cboBeginByte", "1"}, {"txtNrBytes", "16"}}, "txtNrBytes", " 1 & 15!", false},
        {kModeField, "", {{"cboRow", "30"}, {"cboBeginByte", "1"}, {"txtNrBytes", "15"}}, "txtNrBytes", "", false},
        {kModeBitField, "", {{"cboRow", "30"}, {"cboBeginBit", "5"}, {"txtNrBytes", "134"}}, "txtNrBytes", " 1 & 133!", false},
        {kModeBitField, "", {{"cboRow", "30"}, {"cboBeginBit", "5"}, {"txtNrBytes", "133"}}, "txtNrBytes", "", false},
    };
    for (const auto& [mode, function, boxes, box, limits, apply] : cases) {
        SCOPED_TRACE(box + std::string(apply ? " on Apply" : " on leaving"));
        Dialog ed;
        frmEditiClass& form = ed.open<frmEditiClass>(mode);
        if (*function) ed.click(function);
        if (std::string(function) == "optFunction(3)") ed.click("optProperty(2)");
        for (const auto& [name, typed] : boxes) QString(name).startsWith("cbo") ? ed.choose(name, typed) : ed.type(name, typed);
        apply ? ed.click("cmdApply") : ed.leave(box);
        ASSERT_EQ(ed.prompter.messages.size(), std::size_t(*limits != 0));
        if (!*limits) continue;
        EXPECT_EQ(std::make_tuple(ed.prompter.messages[0].text.find(limits) != std::string::npos,
                                  form.focusWidget() == ed.child<QLineEdit>(box), ed.records().size()),
                  std::make_tuple(true, true, 0)) << ed.prompter.messages[0].text;
    }
}

// Editing a function presets its controls, the first-value choice of a counter and the field a
// value comes from among them; the entries read back say so. Apply replaces it keeping its colour.
TEST(EditiClassFunctions, EditingAFunctionPresetsItsValuesAndWhereTheyComeFrom) {
    FunctionInput checksum{.kind = FunctionKind::Checksum, .option = kChecksumCrc, .polynomText = "263", .startValueText = "5",
                           .rangeRow = 20, .rangeBeginByte = 3, .rangeCountText = "4"};
    ItemRecord crc = function("Checksum", "", "", "", 0, 25, 0, 1, 0x00909090);
    applyFunctionValues(checksum, kModeFunction, crc);
    // The item, the options checked, what the boxes and the field list show, and the field its value comes from.
    const std::tuple<ItemRecord, QStringList, Boxes, std::string> cases[] = {
        {crc, {"optFunction(3)", "optProperty(2)"}, {{"txtPolynom", "263"}, {"txtStartValue", "5"}}, ""},
        {function("Count", "3", "7", "0", 0, 25, 0, 2), {"optFunction(1)", "optProperty(0)", "optCountFirstValue(0)"},
         {{"txtCountNumber", "7"}, {"txtCountStep", "3"}}, ""},
        {function("Count", "3", "NAME", "1", 0, 25, 0, 2), {"optFunction(1)", "optProperty(1)", "optCountFirstValue(1)"},
         {{"cboFieldList", "NAME"}, {"txtCountStep", "3"}}, "NAME"},
        {function("Constant", "AMOUNT", "", "", 0, 25, 0, 2), {"optFunction(0)", "optProperty(1)"}, {{"cboFieldList", "AMOUNT"}},
         "AMOUNT"}};
    for (const auto& [old, options, boxes, field] : cases) {
        SCOPED_TRACE(old.name);
        Dialog ed({old});
        const FunctionInput read = ed.open<frmEditiClass>(kModeFunction, 0).entries().function;
        EXPECT_EQ(std::make_pair(read.valueFromField, read.fieldName), std::make_pair(!field.empty(), field));
        for (const QString& option : options) EXPECT_TRUE(ed.checked(option)) << option.toStdString();
        for (const auto& [box, shown] : boxes)
            EXPECT_EQ(QString(box).startsWith("cbo") ? ed.current(box) : ed.text(box), shown) << box;
        if (old.name != "Checksum") continue;
        EXPECT_EQ(ed.current("cboRangeBeginRow") + ed.current("cboRangeBeginByte"), "203");
        ed.choose("cboRangeBeginByte", "5");
        ed.type("txtStartValue", "9");
        ed.click("cmdApply");
        EXPECT_EQ(ed.messageTexts(), std::vector<std::string>{});
        checksum.startValueText = "9", checksum.rangeBeginByte = 5;
        EXPECT_EQ(std::make_pair(functionInputOf(ed.records()[0]), ed.records()[0].color), std::make_pair(checksum, 0x00909090));
    }
}

// Every choice made on an item being edited is a change to apply: its format, the field its value
// comes from, the checksum range, a value typed, a property or first-value option clicked.
TEST(EditiClassFunctions, EveryChoiceOnAnEditedItemIsAChangeToApply) {
    ItemRecord bcd = field("NUMBER", 0, 20, 0, 6, 4);  // a BCD number, postfix F
    bcd.fieldType = kFieldTypeNumber;
    const std::vector<ItemRecord> items = {bcd, function("Count", "3", "NAME", "1", 0, 22, 0, 2),
                                           function("Checksum", "0", "", "", 0, 24, 0, 1)};
    // The mode, the item edited, the control and the entry chosen or text typed.
    const std::tuple<int32_t, int, QString, const char*> changes[] = {
        {kModeField, 0, "cboFormat", "Prefix 0"},     {kModeFunction, 1, "cboFieldList", "AMOUNT"},
        {kModeFunction, 1, "txtCountStep", "4"},       {kModeFunction, 1, "optProperty(0)", ""},
        {kModeFunction, 1, "optCountFirstValue(0)", ""}, {kModeFunction, 2, "cboRangeBeginRow", "21"},
        {kModeFunction, 2, "cboRangeBeginByte", "5"}};
    for (const auto& [mode, index, control, entry] : changes) {
        Dialog ed(items);
        ed.open<frmEditiClass>(mode, index);
        const bool before = ed.applyEnabled();
        control.startsWith("cbo") ? ed.choose(control, entry)
                                  : (control.startsWith("txt") ? ed.type(control, entry) : ed.click(control));
        EXPECT_EQ(std::make_pair(before, ed.applyEnabled()), std::make_pair(false, true)) << control.toStdString();
    }
}

// The card fills the controls; items (not database updates) lock the chip type; Cancel, or Escape, drops what
// was changed.
TEST(Properties, TheCardFillsTheControlsAndCancelOrEscapeChangesNothing) {
    // The card (chip, HID area, bitwise), its items, and whether the memory list and the boundary tab are
    // enabled and the chip type locked.
    const std::tuple<IClassType, bool, bool, std::vector<ItemRecord>, bool, bool, bool> cases[] = {
        {iSmallOnePage, true, false, {}, false, false, false},
        {iBigOnePage, false, true, {}, true, false, false},
        {iBigEightPages, true, true, {dbUpdate("Field", "Count", "1")}, true, true, false},
        {iBigEightPages, false, false, {field("Name", 0, 20, 0, 4)}, false, true, true},
    };
    for (const auto& [chip, hid, bitwise, items, memoryEnabled, tabEnabled, chipLocked] : cases) {
        SCOPED_TRACE(chip);
        Dialog d(items);
        frmProperties& p = d.properties(chip, hid, bitwise, chip == iBigEightPages ? "5|6|7|8|9|10|11|12" : "");
        EXPECT_EQ(std::make_tuple(d.chip(0)->isChecked(), d.chip(1)->isChecked(), d.chip(0)->isEnabled(), d.memoryList(),
                                  d.boundaryTab(), d.checked("chkICHID"), d.checked("chkICBitwise"), d.bound(7)->text()),
                  std::make_tuple(chip == iSmallOnePage, chip != iSmallOnePage, !chipLocked, memoryEnabled, tabEnabled, hid,
                                  bitwise, QString(chip == iBigEightPages ? "12" : "18")));
        d.click("chkICBitwise");
        chip == iBigOnePage ? QTest::keyClick(&p, Qt::Key_Escape) : d.click("cmdCancel");  // changes nothing
        EXPECT_EQ(std::make_tuple(p.result(), p.Cancelled, p.Unchanged, p.isVisible()),
                  std::make_tuple(int(QDialog::Rejected), true, true, false));
    }
}

TEST(Properties, OkWritesTheControlsBackAfterTheChipTypeDrivesMemoryListAndBoundaryTab) {
    Dialog d;
    frmProperties& p = d.properties(iSmallOnePage, true, false);
    d.chip(1)->click();
    EXPECT_EQ(std::make_pair(d.memoryList(), d.boundaryTab()), std::make_pair(true, false));
    d.child<QComboBox>("cboMemoryType")->setCurrentIndex(1);
    EXPECT_TRUE(d.boundaryTab());
    d.click("chkICHID");
    d.click("chkICBitwise");
    for (const auto& [page, value] : {std::pair{0, "5"}, {3, "20"}, {7, "31"}}) d.bound(page)->setText(value);
    d.click("cmdOK");
    EXPECT_EQ(std::make_tuple(d.prompter.messages.size(), p.result(), p.Cancelled, p.Unchanged, p.Card->ChipSize(),
                              p.Card->UseHIDSection(), p.Card->EnableBitwise()),
              std::make_tuple(0u, int(QDialog::Accepted), false, false, iBigEightPages, false, true));
    std::vector<int> bounds;
    for (int page = 0; page < 8; ++page) bounds.push_back(p.Card->GetBoundary(page));
    EXPECT_EQ(bounds, (std::vector<int>{5, 18, 18, 20, 18, 18, 18, 31}));
    QStringList pages;  // each boundary box's label names its page
    for (int page = 0; page < 8; ++page) pages << d.caption(QStringLiteral("lblPage(%1)").arg(page));
    EXPECT_EQ(pages.join(","), QString("Page 0,Page 1,Page 2,Page 3,Page 4,Page 5,Page 6,Page 7"));
    d.chip(0)->click();
    EXPECT_EQ(std::make_pair(d.memoryList(), d.boundaryTab()), std::make_pair(false, false));
}

// A boundary that cuts an item refuses OK with both warnings in turn and writes nothing back;
// the window's close button writes back without the checks.
TEST(Properties, OkIsRefusedWhileABoundaryCutsAnItemAndClosingSkipsTheChecks) {
    Dialog d({field("Low", 0, 10, 0, 8), field("Cut", 1, 10, 0, 24)});
    frmProperties& p = d.properties(iBigEightPages, true);
    d.bound(0)->setText("11");
    d.click("cmdOK");
    EXPECT_EQ(d.messageTexts(), (std::vector<std::string>{"T4610\r\nT4611", "T4643\r\nT4644"}));
    EXPECT_EQ(std::make_tuple(d.prompter.messages.front().icon, p.isVisible(), p.Unchanged, p.Card->GetBoundary(0)),
              std::make_tuple(Icon::Exclamation, true, true, 18));
    // The cut box shows in red on the tool-tip colour; the others stay black on white.
    const QPalette cut = d.bound(0)->palette(), kept = d.bound(1)->palette(), tip = QApplication::palette();
    EXPECT_EQ(std::make_tuple(cut.base().color(), cut.text().color(), kept.base().color(), kept.text().color()),
              std::make_tuple(tip.toolTipBase().color(), QColor(Qt::red), QColor(Qt::white), QColor(Qt::black)));
    d.click("chkICBitwise");
    p.close();
    EXPECT_EQ(std::make_tuple(d.prompter.messages.size(), p.Cancelled, p.Card->EnableBitwise(), p.Card->GetBoundary(0)),
              std::make_tuple(2u, false, true, 11));
}

// A new binary field is stored by its database name and shown on the map; an edited one may
// overlap its own old place, while an overlap with another item is refused with that item's name.
TEST(MultiTrack, ApplyStoresABinaryFieldAndRefusesAnOverlapWithAnotherItem) {
    const ItemRecord other = field("Other", 0, 25, 0, 2);
    Dialog d({other});
    frmMultiTrack& m = d.open<frmMultiTrack>(-1);
    for (const QTableView* grid : m.findChildren<QTableView*>())  // the operator does not type into a grid
        EXPECT_EQ(grid->editTriggers(), QAbstractItemView::NoEditTriggers) << grid->objectName().toStdString();
    d.clickField(1);
    d.place(20, 2, "1x2");
    d.choose("cboBeginBit", "3");
    d.click("cmdApply");
    ASSERT_EQ(std::make_pair(d.prompter.messages.size(), d.records().size()), std::make_pair(0lu, 2));
    ItemRecord r = d.records()[1];
    EXPECT_EQ(std::make_tuple(std::string(kindWord(r)), r.name, r.block, r.beginByte, r.beginBit, r.numBytes),
              std::make_tuple(std::string(kKindBinaryField), std::string("NUMBER"), 20, 2, 3, 12));
    EXPECT_EQ(std::make_tuple(d.text("txtSelectedField"), d.child<QTableWidget>("grdPreview")->item(21, 3)->text(),
                              d.mapColour(21, 3), d.applyEnabled()),
              std::make_tuple(QString("NUMBER"), QString("NUMBER"), memoryMapColor(r.color), false));

    Dialog edit({r, other});
    frmMultiTrack& e = edit.open<frmMultiTrack>(0);
    const QTableWidgetItem* shown = edit.child<QTableWidget>("grdPreview")->item(21, 3);  // the map shows the item at once
    EXPECT_EQ(std::make_tuple(edit.current("cboRow"), edit.text("txtNrBytes"), shown ? shown->text() : QString()),
              std::make_tuple(QString("20"), QString("12"), QString("NUMBER")));
    edit.choose("cboBeginByte", "0");
    edit.click("cmdApply");  // no message: the later list holds only the refusal
    r.beginByte = 0;
    EXPECT_EQ(edit.records().records(), (std::vector<ItemRecord>{r, other}));
    edit.choose("cboRow", "25");
    edit.click("cmdOK");
    EXPECT_EQ(std::make_pair(edit.messageTexts(), edit.applyEnabled()),
              std::make_pair(std::vector<std::string>{"T3166: Other."}, true));
    edit.click("cmdCancel");
    EXPECT_EQ(std::make_pair(e.Cancelled, edit.records().records()), std::make_pair(true, std::vector<ItemRecord>{r, other}));

    // An item before the free blocks (a layout made with the HID area off) is shown where it lies,
    // and Apply of a change then refuses the place.
    ItemRecord low = r;
    low.block = 18;  // the last block before the free ones
    Dialog held({low});
    held.open<frmMultiTrack>(0);
    EXPECT_EQ(std::make_pair(held.entries("cboRow").mid(0, 2), held.current("cboRow")),
              std::make_pair(QStringList({"18", "19"}), QString("18")));
    held.choose("cboBeginByte", "1");
    held.click("cmdApply");
    EXPECT_EQ(std::make_pair(held.messageTexts(), held.records()[0]), std::make_pair(std::vector<std::string>{"T4609"}, low));
}

// New clears the begin bit, the size and, for fields, the chosen field and its type (the field
// grid's selection, the encodings and the format list are as when the dialog opened), keeping the
// function of a function item; Cancel afterwards keeps what Apply wrote.
TEST(EditiClassFields, NewClearsTheEntriesForTheNextItemAndCancelKeepsWhatWasApplied) {
    for (const int32_t mode : {kModeField, kModeBitField, kModeBitFunction}) {
        SCOPED_TRACE("mode " + std::to_string(mode));
        Dialog ed;
        frmEditiClass& form = ed.open<frmEditiClass>(mode);
        const bool fields = mode != kModeBitFunction;
        const auto fieldState = [&] {  // the encodings, the format list and the field grid's selection
            if (!fields) return std::make_tuple(QStringList(), QStringList(), qsizetype(0));
            return std::make_tuple(ed.options("optEncode"), ed.shown({"cboFormat", "lblFormat"}),
                                   ed.child<QTableWidget>("grdFields")->selectedItems().size());
        };
        const auto opened = fieldState();
        if (fields) ed.clickField(1), ed.click("optEncode(3)");  // a number in BCD, with its format list
        else ed.click("optFunction(1)"), ed.type("txtCountNumber", "1"), ed.type("txtCountStep", "1");
        ed.place(20, 0, "4");
        ed.choose("cboBeginBit", "3");
        ed.click("cmdApply");
        EXPECT_TRUE(!fields || fieldState() != opened);
        ed.click("cmdNew");
        EXPECT_EQ(std::make_tuple(ed.text("txtSelectedField"), ed.text("txtNrBytes"), ed.current("cboBeginBit"), fieldState()),
                  std::make_tuple(QString(fields ? "" : "Count"), QString(), QString("0"), opened));
        if (fields) ed.clickField(0);
        ed.place(22, 0, "2");
        ed.click("cmdApply");
        ed.click("cmdCancel");
        EXPECT_EQ(std::make_tuple(ed.records().size(), form.appliedCount(), form.Cancelled, ed.messageTexts().size(),
                                  ed.records()[1].block, ed.records()[1].beginBit),  // placed at begin bit 0
                  std::make_tuple(2, 2, true, 0u, 22, 0));
    }
}

// OK is refused while no field is chosen or a box the function needs is empty; the box to mend
// gets the focus. Cancel writes nothing. A box out of range is refused when left and again by OK,
// which then keeps the dialog open; OK writes the chosen field and function as one record, which a
// later Cancel leaves. An update of a field the project no longer lists keeps it.
TEST(DBUpdate, OkNamesWhatIsMissingOrOutOfRangeAndWritesTheChosenFieldAndFunctionAsOneRecord) {
    Dialog d({field("Card", 0, 20, 0, 4)});
    frmDBUpdate& u = d.open<frmDBUpdate>(-1);
    d.activate();
    const std::pair<std::function<void()>, const char*> steps[] = {
        {[] {}, "grdFields"}, {[&] { d.clickField(1); }, "txtConstantValue"},
        {[&] { d.click("optFunction(1)"), d.type("txtCountNumber", "4"); }, "txtCountStep"}};
    for (const auto& [step, focus] : steps) {
        step();
        d.prompter.messages.clear();
        d.click("cmdOK");
        EXPECT_EQ(std::make_tuple(d.messageTexts().size(), u.isVisible(), QApplication::focusWidget() == d.child(focus)),
                  std::make_tuple(1u, true, true)) << focus;
    }
    d.click("cmdCancel");
    EXPECT_EQ(std::make_tuple(u.Cancelled, u.isVisible(), d.records().size(), d.text("txtSelectedField")),
              std::make_tuple(true, false, 1, QString("NUMBER")));

    u.show();  // shown again
    d.prompter.messages.clear();
    d.click("optFunction(0)");
    d.type("txtConstantValue", "256");
    d.leave("txtConstantValue");
    EXPECT_EQ(d.messageTexts(), std::vector<std::string>{"T3189 0 & 255!"});
    d.click("cmdOK");
    EXPECT_EQ(std::make_tuple(d.records().size(), u.Cancelled, u.isVisible()), std::make_tuple(1, true, true));
    d.type("txtConstantValue", "255");  // the last value allowed
    d.click("optFunction(1)");
    d.type("txtCountNumber", "1a0");
    d.type("txtCountStep", "255");
    d.click("cmdOK");
    EXPECT_EQ(std::make_tuple(d.messageTexts().size(), u.Cancelled, u.isVisible()), std::make_tuple(1u, false, false));
    u.show(), d.click("cmdCancel");  // shown again and cancelled: Cancelled tells so, what OK wrote stays
    EXPECT_TRUE(u.Cancelled);
    ItemRecord update = dbUpdate("NUMBER", "Count", "10", "255");
    update.dbColumn = 1;
    EXPECT_EQ(d.records().records(), (std::vector<ItemRecord>{field("Card", 0, 20, 0, 4), update}));

    Dialog kept({dbUpdate("GONE", "Constant", "9")});
    kept.open<frmDBUpdate>(0);
    kept.click("cmdOK");
    EXPECT_EQ(std::make_pair(kept.text("txtSelectedField"), kept.records().records()),
              std::make_pair(QString("GONE"), std::vector<ItemRecord>{dbUpdate("GONE", "Constant", "9")}));
}

// A boundary box takes digits only, drops the blanks around a number in the box itself when it is
// left (blanks come only from outside the keyboard, as from an accessibility tool setting the text),
// and refuses anything but 5 to 31 with the focus kept.
TEST(Properties, BoundaryBoxesTakeFiveToThirtyOne) {
    // What is typed (or, without keys, set as the box's text), what the box keeps, whether it is taken.
    const std::tuple<QString, bool, QString, bool> cases[] = {
        {"05", true, "05", true}, {" 7 ", true, "7", true}, {" 9 ", false, "9", true}, {"5", true, "5", true},
        {"31", true, "31", true}, {"4", true, "4", false}, {"32", true, "32", false}, {"a1b", true, "1", false},
        {"", true, "", false}, {" 40", false, "40", false}};
    for (const auto& [typed, keys, kept, accepted] : cases) {
        Dialog d;
        frmProperties& p = d.properties(iBigEightPages);
        d.bound(2)->setText("40");  // the box left for is not checked when a refusal takes the focus back
        d.bound(1)->setFocus();
        d.bound(1)->clear();
        keys ? QTest::keyClicks(d.bound(1), typed) : d.bound(1)->setText(typed);
        d.bound(2)->setFocus(Qt::TabFocusReason);
        QApplication::processEvents();
        EXPECT_EQ(std::make_tuple(d.bound(1)->text(), d.messageTexts(), p.focusWidget() == d.bound(1)),
                  std::make_tuple(kept, std::vector<std::string>(!accepted, "T3189 5 & 31!"), !accepted)) << typed.toStdString();
    }
}

// Captions by text number, in every mode of the editor and in the multi-track and update dialogs.
TEST(DialogCaptions, EveryCaptionIsTheLibrarysTextOfItsNumber) {
    const auto check = [](const Dialog& d, const QString& title, const Captions& captions) {
        EXPECT_EQ(d.root->windowTitle(), title);
        for (const auto& [name, text] : captions) EXPECT_EQ(d.caption(name), text) << name.toStdString();
    };
    const Captions everyMode = {{"fraAddTo", "T3138"}, {"lblPage", "T4606"}, {"lblRow", "T3115"}, {"lblBeginByte", "T3116"},
                                {"lblBeginBit", "T4607"}, {"cmdNew", "T3152"}, {"cmdApply", "T3153"}, {"cmdRemove", "T3092"},
                                {"cmdCancel", "<Cancel>"}};
    const Captions fieldModes = {{"fraFields", "T3137"}, {"fraEncode", "T3139"}};
    const Captions functionModes = {
        {"fraFunction", "T3112"}, {"optFunction(0)", "T3142"}, {"optFunction(1)", "T3143"}, {"optFunction(2)", "T3144"},
        {"optFunction(3)", "T3145"}, {"fraProperties", "T3120"}, {"fraCountFirstValue", "T3146"},
        {"optCountFirstValue(0)", "T3147"}, {"optCountFirstValue(1)", "T3111"}, {"lblCountStep", "T3107"},
        {"fraRange", "T3148"}, {"lblRangeBeginRow", "T4513"}, {"lblRangeBeginByte", "T3116"}};
    const std::tuple<int32_t, QString, QString> modes[] = {
        {kModeField, "T3140", "T3117"}, {kModeFunction, "T3141", "T3117"}, {kModeBitField, "T4604", "T4642"},
        {kModeBitFunction, "T4605", "T4642"}};
    for (const auto& [mode, title, sizeLabel] : modes) {
        SCOPED_TRACE("mode " + std::to_string(mode));
        Dialog d;
        d.open<frmEditiClass>(mode);
        check(d, title, everyMode);
        check(d, title, mode == kModeField || mode == kModeBitField ? fieldModes : functionModes);
        EXPECT_EQ(d.caption("lblNrOfBytes"), sizeLabel);
    }
    Dialog d;
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
    // The mode, the field (Character, Number, Numeric, Date, Binary), its options and the format list
    // with each offered option chosen (empty: hidden). A bit field is always a binary number written
    // high byte first, whatever the field.
    const std::tuple<int32_t, int, QStringList, std::vector<QStringList>> cases[] = {
        {kModeField, 0, {"T3167*-"}, {{}}}, {kModeField, 4, {"T3175*-"}, {{}}},
        {kModeField, 1, number, {{}, {}, {}, {"Prefix 0", "Postfix F"}}},
        {kModeField, 2, number, {{}, {}, {}, {"Prefix 0", "Postfix F"}}},
        {kModeField, 3, {"T3202*", "T3108", "T3203"}, {dateStrings, dateNumbers, dateNumbers}},
        {kModeBitField, 0, {"T3168*-"}, {{}}}, {kModeBitField, 3, {"T3168*-"}, {{}}}};
    for (const auto& [mode, row, options, formats] : cases) {
        SCOPED_TRACE("mode " + std::to_string(mode) + ", field row " + std::to_string(row));
        Dialog d;
        d.open<frmEditiClass>(mode);
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
}

// Each function captions and shows its own property options (by text number where they have one,
// even when the library has a text 0) and the first one it offers is chosen; its boxes are shown
// with it. A counter starts counting from the number box.
TEST(DialogFunctions, EachFunctionOffersItsPropertiesAndStartsWithTheFirst) {
    const QStringList boxes = {"txtConstantValue", "fraCountFirstValue", "txtCountNumber", "txtCountStep",
                               "fraRange", "txtPolynom", "txtStartValue"};
    // The function, the word shown for it, its options and its boxes.
    const std::tuple<int, QString, QStringList, QStringList> cases[] = {
        {0, "Constant", {"T3106*", "T3111"}, {"txtConstantValue"}},
        {1, "Count", {"<Write before increment>*", "<Increment before Write>"},
         {"fraCountFirstValue", "txtCountNumber", "txtCountStep"}},
        {2, "CardSnNr",
         {"<String decimal>*", "<String hexadecimal>", "<Motorola dec.(HiByte-LoByte)>", "<Intel dec.(LoByte-HiByte)>"}, {}},
        {3, "Checksum", {"<ADD>*", "<Polynomial CRC>", "<Parity (0: Even, 1: Odd)>"}, {"fraRange", "txtStartValue"}}};
    for (int32_t mode : {kModeFunction, kModeBitFunction})
        for (const auto& [function, word, options, shownBoxes] : cases) {
            Dialog d;
            d.doc.translator().setLanguageDLL(numberedLibrary(d.registry, d.dir / "texts.txt", {0, 3106, 3111}));
            d.open<frmEditiClass>(mode);
            d.click(QStringLiteral("optFunction(%1)").arg(3 - function));  // another function first
            d.click(QStringLiteral("optProperty(%1)").arg(function == 3 ? 1 : 3));
            d.click(QStringLiteral("optFunction(%1)").arg(function));
            EXPECT_EQ(std::make_tuple(d.options("optProperty"), d.shown(boxes), d.text("txtSelectedField"),
                                      d.checked("optCountFirstValue(0)")),
                      std::make_tuple(options, shownBoxes, word, true)) << "mode " << mode << ", function " << function;
        }
    // A counter's first value comes from the number box or from a field of the list.
    Dialog d;
    d.open<frmEditiClass>(kModeFunction);
    d.click("optFunction(1)");
    QStringList seen;
    for (const char* option : {"optCountFirstValue(1)", "optCountFirstValue(0)"})
        d.click(option), seen << d.shown({"txtCountNumber", "cboFieldList"}).join("+");
    EXPECT_EQ(std::make_pair(seen, d.applyEnabled()), std::make_pair(QStringList({"cboFieldList", "txtCountNumber"}), true));
}

// The database-update dialog starts with "Constant" and its value box; each function shows its own
// boxes, with their labels; an update being edited comes back with its field, function and values.
TEST(DialogFunctions, TheUpdateDialogShowsTheChosenFunctionsBoxes) {
    const QStringList boxes = {"txtConstantValue", "lblConstantValue", "txtCountNumber", "txtCountStep", "lblCountStep",
                               "optProperty(0)", "optProperty(1)"};
    const std::vector<ItemRecord> updates = {dbUpdate("NUMBER", "CardSnNr", "1"), dbUpdate("NAME", "Count", "7", "3")};
    Dialog d(updates);
    d.open<frmDBUpdate>();
    const std::pair<const char*, QStringList> shownFor[] = {
        {"", {"txtConstantValue", "lblConstantValue"}}, {"optFunction(2)", {"optProperty(0)", "optProperty(1)"}},
        {"optFunction(1)", {"txtCountNumber", "txtCountStep", "lblCountStep"}},
        {"optFunction(0)", {"txtConstantValue", "lblConstantValue"}}};
    for (const auto& [click, shown] : shownFor) {
        if (*click) d.click(click);
        EXPECT_EQ(d.shown(boxes), shown) << click;
    }
    EXPECT_TRUE(d.checked("optFunction(0)") && d.checked("optProperty(0)"));
    // The update edited, its function, and the field, the boxes and the property option shown.
    const std::tuple<int, const char*, QStringList> edited[] = {{0, "optFunction(2)", {"NUMBER", "", "", "", "optProperty(1)"}},
                                                                {1, "optFunction(1)", {"NAME", "", "7", "3", "optProperty(0)"}}};
    for (const auto& [index, function, values] : edited) {
        Dialog e(updates);
        e.open<frmDBUpdate>(index);
        const QString checked = e.checked("optProperty(0)") ? "optProperty(0)" : "optProperty(1)";
        EXPECT_TRUE(e.checked(function));
        EXPECT_EQ(QStringList({e.text("txtSelectedField"), e.text("txtConstantValue"), e.text("txtCountNumber"),
                               e.text("txtCountStep"), checked}), values);
    }
}

// A dialog for a new item opens with nothing to apply (one for an item being edited: see
// EveryChoiceOnAnEditedItemIsAChangeToApply), and OK then closes it at once without a message or an
// item. Cancelled tells how it ended: false after OK, true after Cancel, also when the host shows the
// same dialog again. Its lists of place: every page of the card, the blocks from the first free one
// (chosen first), bytes and bits 0 to 7 starting at 0.
TEST(DialogState, ANewItemsDialogOpensWithNothingToApplyTellsHowItEndedAndOffersThePlaceLists) {
    const auto okThenCancel = [](const Dialog& d, auto& form) {
        EXPECT_FALSE(d.applyEnabled());
        d.click("cmdOK");
        EXPECT_EQ(std::make_tuple(form.isVisible(), form.Cancelled, d.messageTexts().size(), d.records().size()),
                  std::make_tuple(false, false, 0u, 0));
        form.show();
        d.click("cmdCancel");
        EXPECT_EQ(std::make_pair(form.isVisible(), form.Cancelled), std::make_pair(false, true));
    };
    for (const auto& [chip, pages] : {std::pair{iSmallOnePage, 1}, std::pair{iBigEightPages, 8}}) {
        for (const int32_t mode : {kModeField, kModeFunction, kModeBitField, kModeBitFunction, -1}) {  // -1: multi-track
            SCOPED_TRACE(std::to_string(pages) + " pages, mode " + std::to_string(mode));
            Dialog d(chip);
            mode < 0 ? okThenCancel(d, d.open<frmMultiTrack>()) : okThenCancel(d, d.open<frmEditiClass>(mode));
            const bool bits = mode != kModeField && mode != kModeFunction;  // byte items have no begin bit
            EXPECT_EQ(std::make_tuple(d.entries("cboPage"), d.entries("cboRow"), d.entries("cboBeginByte"),
                                      bits ? d.entries("cboBeginBit") : range(0, 7), d.current("cboPage"), d.current("cboRow"),
                                      d.current("cboBeginByte"), bits ? d.current("cboBeginBit") : QString("0")),
                      std::make_tuple(range(0, pages - 1), range(19, 31), range(0, 7), range(0, 7), "0", "19", "0", "0"));
            if (pages == 8) {  // another page offers its own rows
                d.choose("cboPage", "3");
                EXPECT_EQ(d.entries("cboRow"), range(6, 31));
            }
        }
    }
}

// Typing cuts the size to the mode's limit (the room left is checked on leaving the box: see
// AValueOrSizeOutOfRangeIsRefusedAndItsBoxKeepsTheFocus); the arrows step by one and stay at one or above.
// The multi-track dialog's arrows step from the size typed and stop at the room left in the page from
// the chosen place.
TEST(DialogLimits, TheSizeBoxCutsToTheModesLimitAndTheArrowsStepWithinTheRoomLeft) {
    // The mode, the optFunction and optProperty to click ("" for none), what is typed and kept.
    const std::tuple<int32_t, const char*, const char*, QString, QString> typed[] = {
        {kModeField, "", "", "300", "256"}, {kModeFunction, "optFunction(1)", "", "257", "256"},
        {kModeBitField, "", "", "400", "384"}, {kModeBitFunction, "optFunction(3)", "optProperty(2)", "9", "8"},
        {kModeBitFunction, "optFunction(0)", "", "500", "500"}};
    for (const auto& [mode, function, property, text, kept] : typed) {
        Dialog d;
        d.open<frmEditiClass>(mode);
        for (const char* option : {function, property})
            if (*option) d.click(option);
        d.type("txtNrBytes", text);
        EXPECT_EQ(d.text("txtNrBytes"), kept) << "mode " << mode << " " << function << " " << property;
    }
    Dialog d;
    d.open<frmEditiClass>(kModeField);
    QStringList stepped;
    for (int steps : {1, -1, -1, 1, 1}) {
        d.child<QAbstractSpinBox>("spinBytes")->stepBy(steps);
        stepped << d.text("txtNrBytes");
    }
    EXPECT_EQ(stepped, QStringList({"2", "1", "1", "2", "3"}));  // an empty box counts as 1 first
    QLineEdit& size = *d.child<QLineEdit>("txtNrBytes");  // text pasted in keeps its digits, the cursor after them
    size.setText("15");
    size.setCursorPosition(1);
    size.insert("2a");
    EXPECT_EQ(std::make_pair(size.text(), size.cursorPosition()), std::make_pair(QString("125"), 2));
    for (const auto& [block, byte, room] : {std::tuple{31, 6, 2}, std::tuple{30, 0, 16}, std::tuple{19, 0, 104}}) {
        Dialog mt;
        mt.open<frmMultiTrack>();
        mt.place(block, byte, QString::number(room - 1));
        QStringList ends;
        for (const auto& [step, times] : {std::pair{1, 1}, {1, room}, {-1, room + 3}}) {
            for (int i = 0; i < times; ++i) mt.child<QSpinBox>("spinBytes")->stepBy(step);
            ends << mt.text("txtNrBytes");
        }
        EXPECT_EQ(ends, QStringList({QString::number(room), QString::number(room), "1"})) << block << "/" << byte;
    }
    // A page taller than the dialog scrolls, with every column of its map in view.
    Dialog big(iBigOnePage);
    const QTableWidget& map = *big.open<frmMultiTrack>().findChild<QTableWidget*>("grdPreview");
    EXPECT_EQ(std::tuple(map.verticalScrollBar()->maximum() > 0, map.verticalScrollBar()->isVisibleTo(&map),
                         map.horizontalHeader()->length() <= map.viewport()->width()),
              std::tuple(true, true, true)) << map.horizontalHeader()->length() << " " << map.viewport()->width();
}

}  // namespace
}  // namespace kestrin::test
