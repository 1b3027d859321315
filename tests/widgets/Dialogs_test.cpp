// The item editor, the properties, database-update and multi-track dialogs driven by their
// control names: what each writes on Apply or OK, what it refuses and why, what it loads for
// editing and leaves on Cancel, and the keys a focused button answers.
#include "DialogFixture.h"
#include "dialogs/frmProperties.h"
#include "editor/BitMapView.h"
#include "editor/frmEditiClass.h"
#include "items/frmDBUpdate.h"
#include "items/frmMultiTrack.h"
#include "rules/Encodings.h"
#include "rules/FunctionProperties.h"

namespace kestrin::test {
namespace {

using Boxes = std::vector<std::pair<const char*, const char*>>;

struct Dialog : DialogFixture {
    using DialogFixture::DialogFixture;
    frmEditiClass& editor(int32_t mode, int32_t editIndex = -1) { return open<frmEditiClass>(mode, editIndex); }
    // The properties dialog on a card of the given chip, HID area and bitwise encoding.
    frmProperties& properties(IClassType chip, bool hid = false, bool bitwise = false, const std::string& bounds = {}) {
        auto card = std::make_unique<CIClass>();
        card->setChipSize(chip);
        card->setUseHIDSection(hid);
        card->setEnableBitwise(bitwise);
        if (!bounds.empty()) card->SetBoundaries(bounds);
        frmProperties& p = open<frmProperties>();
        p.setCard(std::move(card));
        return activate(), p;
    }
    QRadioButton* chip(int i) const { return child<QRadioButton>(QStringLiteral("optChipType(%1)").arg(i)); }
    QLineEdit* bound(int page) const { return child<QLineEdit>(QStringLiteral("txtBoundary(%1)").arg(page)); }
    bool boundaryTab() const { return child<QTabWidget>("tabIClass")->isTabEnabled(1); }
    bool memoryList() const { return child<QComboBox>("cboMemoryType")->isEnabled(); }
};

// Items get a light colour: every channel from 127 to 227.
bool lightColour(int32_t bgr) {
    const auto light = [&](int shift) { return ((bgr >> shift) & 0xFF) >= 127 && ((bgr >> shift) & 0xFF) <= 227; };
    return light(0) && light(8) && light(16) && (bgr >> 24) == 0;
}

// A refused place tells why, keeps Apply on and keeps OK from closing; before Apply the page map marks
// the chosen place, and OK applies what is pending, shows the item on the map and closes.
TEST(EditiClassFields, APlaceBeyondThePageIsRefusedAndOneOnItIsAppliedByOk) {
    Dialog ed;
    frmEditiClass& form = ed.editor(kModeField);
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
    ed.editor(kModeField, 1);
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
    ed.editor(kModeBitFunction);
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
TEST(EditiClassFunctions, AValueOutOfRangeIsRefusedAndItsBoxKeepsTheFocus) {
    // The mode, the function, what is typed, the box left (or, with apply, refused by Apply) and its limits.
    const std::tuple<int32_t, const char*, Boxes, const char*, const char*, bool> cases[] = {
        {kModeFunction, "optFunction(1)", {{"txtCountStep", "256"}}, "txtCountStep", " 0 & 255!", false},
        {kModeFunction, "optFunction(3)", {{"txtPolynom", "1000"}}, "txtPolynom", " 257 & 511!", false},
        {kModeBitFunction, "optFunction(3)", {{"txtNrBytes", "3"}, {"txtPolynom", "20"}, {"txtStartValue", "0"}},
         "txtPolynom", " 9 & 15!", true},
        {kModeFunction, "optFunction(3)", {{"txtStartValue", "256"}}, "txtStartValue", " 0 & 255!", false},
        {kModeFunction, "optFunction(3)", {{"txtRangeBytesCount", "300"}}, "txtRangeBytesCount", "", false},
    };
    for (const auto& [mode, function, boxes, box, limits, apply] : cases) {
        SCOPED_TRACE(box + std::string(apply ? " on Apply" : " on leaving"));
        Dialog ed;
        frmEditiClass& form = ed.editor(mode);
        ed.click(function);
        if (std::string(function) == "optFunction(3)") ed.click("optProperty(2)");
        for (const auto& [name, typed] : boxes) ed.type(name, typed);
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
    const FunctionInput count{.kind = FunctionKind::Count, .countNumberText = "7", .countStepText = "3"};
    const FunctionInput countFromField{.kind = FunctionKind::Count, .option = kCountIncrementBeforeWrite,
                                       .valueFromField = true, .fieldName = "NAME", .countStepText = "3"};
    const FunctionInput constantFromField{.kind = FunctionKind::Constant, .option = kConstantField, .valueFromField = true,
                                          .fieldName = "AMOUNT"};
    // The function, its size, the options checked and what the boxes and the field list show.
    const std::tuple<FunctionInput, int, QStringList, Boxes> cases[] = {
        {checksum, 1, {"optProperty(2)"}, {{"txtPolynom", "263"}, {"txtStartValue", "5"}}},
        {count, 2, {"optProperty(0)", "optCountFirstValue(0)"}, {{"txtCountNumber", "7"}, {"txtCountStep", "3"}}},
        {countFromField, 2, {"optProperty(1)", "optCountFirstValue(1)"}, {{"cboFieldList", "NAME"}, {"txtCountStep", "3"}}},
        {constantFromField, 2, {"optProperty(1)"}, {{"cboFieldList", "AMOUNT"}}}};
    for (const auto& [in, bytes, options, boxes] : cases) {
        SCOPED_TRACE(functionWord(in.kind));
        ItemRecord old = function(std::string(functionWord(in.kind)), "", "", "", 0, 25, 0, bytes, 0x00909090);
        applyFunctionValues(in, kModeFunction, old);
        Dialog ed({old});
        const FunctionInput read = ed.editor(kModeFunction, 0).entries().function;
        EXPECT_EQ(std::make_pair(read.valueFromField, read.fieldName), std::make_pair(in.valueFromField, in.fieldName));
        EXPECT_TRUE(ed.checked(QStringLiteral("optFunction(%1)").arg(int(in.kind))));
        for (const QString& option : options) EXPECT_TRUE(ed.checked(option)) << option.toStdString();
        for (const auto& [box, shown] : boxes)
            EXPECT_EQ(QString(box).startsWith("cbo") ? ed.current(box) : ed.text(box), shown) << box;
        if (in.kind != FunctionKind::Checksum) continue;
        EXPECT_EQ(ed.current("cboRangeBeginRow") + ed.current("cboRangeBeginByte"), "203");
        ed.choose("cboRangeBeginByte", "5");
        EXPECT_TRUE(ed.applyEnabled());
        ed.type("txtStartValue", "9");
        ed.click("cmdApply");
        EXPECT_EQ(ed.messageTexts(), std::vector<std::string>{});
        checksum.startValueText = "9", checksum.rangeBeginByte = 5;
        EXPECT_EQ(std::make_pair(functionInputOf(ed.records()[0]), ed.records()[0].color), std::make_pair(checksum, 0x00909090));
    }
}

// The card fills the controls; items (not database updates) lock the chip type; Cancel drops what was changed.
TEST(Properties, TheCardFillsTheControls) {
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
        d.click("cmdCancel");  // changes nothing
        EXPECT_EQ(std::make_tuple(p.result(), p.Cancelled, p.Unchanged), std::make_tuple(int(QDialog::Rejected), true, true));
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

// A box out of range is refused when left and again by OK, which then keeps the dialog open.
TEST(DBUpdate, ABoxOutOfRangeIsRefusedAndOkWritesTheChosenFieldAndFunctionAsOneRecord) {
    Dialog d({field("Card", 0, 20, 0, 4)});
    frmDBUpdate& u = d.open<frmDBUpdate>(-1);
    d.clickField(1);
    EXPECT_EQ(d.text("txtSelectedField"), "NUMBER");
    d.type("txtConstantValue", "256");
    d.leave("txtConstantValue");
    EXPECT_EQ(d.messageTexts(), std::vector<std::string>{"T3189 0 & 255!"});
    d.click("cmdOK");
    EXPECT_EQ(std::make_tuple(d.records().size(), u.Cancelled, u.isVisible()), std::make_tuple(1, true, true));
    d.type("txtConstantValue", "255");  // the last value allowed
    d.click("optFunction(1)");
    // Only the boxes of the chosen function show, with their labels.
    EXPECT_EQ(d.shown({"txtConstantValue", "lblConstantValue", "txtCountStep", "lblCountStep"}),
              QStringList({"txtCountStep", "lblCountStep"}));
    d.type("txtCountNumber", "1a0");
    d.type("txtCountStep", "255");
    d.click("cmdOK");
    EXPECT_EQ(std::make_tuple(d.messageTexts().size(), u.Cancelled, u.isVisible()), std::make_tuple(1u, false, false));
    u.show(), d.click("cmdCancel");  // shown again and cancelled: Cancelled tells so, what OK wrote stays
    EXPECT_TRUE(u.Cancelled);
    ItemRecord update = dbUpdate("NUMBER", "Count", "10", "255");
    update.dbColumn = 1;
    EXPECT_EQ(d.records().records(), (std::vector<ItemRecord>{field("Card", 0, 20, 0, 4), update}));
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
    EXPECT_EQ(d.text("txtSelectedField"), "NUMBER");
    d.place(20, 2, "1x2");
    d.choose("cboBeginBit", "3");
    EXPECT_EQ(d.child<QSpinBox>("spinBytes")->value(), 12);
    d.click("cmdApply");
    ASSERT_EQ(std::make_pair(d.prompter.messages.size(), d.records().size()), std::make_pair(0lu, 2));
    ItemRecord r = d.records()[1];
    EXPECT_EQ(std::make_tuple(std::string(kindWord(r)), r.name, r.block, r.beginByte, r.beginBit, r.numBytes),
              std::make_tuple(std::string(kKindBinaryField), std::string("NUMBER"), 20, 2, 3, 12));
    EXPECT_EQ(std::make_tuple(d.child<QTableWidget>("grdPreview")->item(21, 3)->text(), d.mapColour(21, 3), d.applyEnabled()),
              std::make_tuple(QString("NUMBER"), memoryMapColor(r.color), false));

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
    EXPECT_EQ(std::make_pair(edit.messageTexts(), edit.applyEnabled()), std::make_pair(std::vector<std::string>{"T3166: Other."}, true));
    edit.click("cmdCancel");
    EXPECT_EQ(std::make_pair(e.Cancelled, edit.records().records()), std::make_pair(true, std::vector<ItemRecord>{r, other}));

    // An item before the free blocks (a layout made with the HID area off) is shown where it lies,
    // and Apply of a change then refuses the place.
    for (const int block : {0, 10}) {
        ItemRecord low = r;
        low.block = static_cast<int16_t>(block);
        Dialog held({low});
        held.open<frmMultiTrack>(0);
        EXPECT_EQ(std::make_pair(held.entries("cboRow").mid(0, 2), held.current("cboRow")),
                  std::make_pair(QStringList({QString::number(block), "19"}), QString::number(block)));
        held.choose("cboBeginByte", "1");
        held.click("cmdApply");
        EXPECT_EQ(std::make_pair(held.messageTexts(), held.records()[0]), std::make_pair(std::vector<std::string>{"T4609"}, low));
    }
}

// New clears the begin bit, the size and, for fields, the chosen field and its type (the field
// grid's selection, the encodings and the format list are as when the dialog opened), keeping the
// function of a function item; Cancel afterwards keeps what Apply wrote.
TEST(EditiClassFields, NewClearsTheEntriesForTheNextItemAndCancelKeepsWhatWasApplied) {
    for (const int32_t mode : {kModeField, kModeBitField, kModeBitFunction}) {
        SCOPED_TRACE("mode " + std::to_string(mode));
        Dialog ed;
        frmEditiClass& form = ed.editor(mode);
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
        EXPECT_EQ(std::make_tuple(ed.records().size(), form.appliedCount(), form.Cancelled, ed.messageTexts().size()),
                  std::make_tuple(2, 2, true, 0u));
    }
}

// OK is refused while no field is chosen or a box the function needs is empty; the box to mend
// gets the focus. Cancel writes nothing; an update of a field the project no longer lists keeps it.
TEST(DBUpdate, OkNamesWhatIsMissingAndCancelWritesNothing) {
    Dialog d;
    frmDBUpdate& u = d.open<frmDBUpdate>(-1);
    d.activate();
    const std::pair<std::function<void()>, const char*> steps[] = {
        {[] {}, "grdFields"}, {[&] { d.clickField(0); }, "txtConstantValue"},
        {[&] { d.click("optFunction(1)"), d.type("txtCountNumber", "4"); }, "txtCountStep"}};
    for (const auto& [step, focus] : steps) {
        step();
        d.prompter.messages.clear();
        d.click("cmdOK");
        EXPECT_EQ(std::make_tuple(d.messageTexts().size(), u.isVisible(), QApplication::focusWidget() == d.child(focus)),
                  std::make_tuple(1u, true, true)) << focus;
    }
    d.click("cmdCancel");
    EXPECT_EQ(std::make_tuple(u.Cancelled, u.isVisible(), d.records().size()), std::make_tuple(true, false, 0));

    Dialog kept({dbUpdate("GONE", "Constant", "9")});
    kept.open<frmDBUpdate>(0);
    EXPECT_EQ(kept.text("txtSelectedField"), "GONE");
    kept.click("cmdOK");
    EXPECT_EQ(kept.records().records(), std::vector<ItemRecord>{dbUpdate("GONE", "Constant", "9")});
}

// A boundary box takes digits only, drops the blanks around a number in the box itself when it is
// left (blanks come only from outside the keyboard, as from an accessibility tool setting the text),
// and refuses anything but 5 to 31 with the focus kept; Escape cancels the dialog.
TEST(Properties, BoundaryBoxesTakeFiveToThirtyOneAndEscapeCancels) {
    // What is typed (or, without keys, set as the box's text), what the box keeps, whether it is taken.
    const std::tuple<QString, bool, QString, bool> cases[] = {
        {"05", true, "05", true}, {" 7 ", true, "7", true}, {" 9 ", false, "9", true}, {"5", true, "5", true},
        {"31", true, "31", true}, {"4", true, "4", false}, {"32", true, "32", false}, {"a1b", true, "1", false},
        {"", true, "", false}, {" 40", false, "40", false}};
    for (const auto& [typed, keys, kept, accepted] : cases) {
        Dialog d;
        frmProperties& p = d.properties(iBigEightPages);
        d.bound(1)->setFocus();
        d.bound(1)->clear();
        keys ? QTest::keyClicks(d.bound(1), typed) : d.bound(1)->setText(typed);
        d.bound(2)->setFocus(Qt::TabFocusReason);
        QApplication::processEvents();
        EXPECT_EQ(std::make_tuple(d.bound(1)->text(), d.messageTexts(), p.focusWidget() == d.bound(1)),
                  std::make_tuple(kept, accepted ? std::vector<std::string>{} : std::vector<std::string>{"T3189 5 & 31!"},
                                  !accepted))
            << typed.toStdString();
    }
    Dialog d;
    frmProperties& p = d.properties(iSmallOnePage);
    QTest::keyClick(&p, Qt::Key_Escape);
    EXPECT_TRUE(p.Cancelled && !p.isVisible());
}

}  // namespace
}  // namespace kestrin::test
