#include "DatabaseUpdateRules.h"

#include "NumberChecks.h"
#include "PlacementValidation.h"
#include "base/NumberText.h"
#include "text/Translator.h"

namespace kestrin {

namespace {

std::string plainNumber(const std::string& text) {
    return std::to_string(wholeNumberOf(text));
}

}  // namespace

std::optional<DbUpdateViolation> dbUpdateViolation(const DbUpdateEntries& e, const Translator& translator) {
    if (e.dbField.empty())
        return DbUpdateViolation{kTextIncomplete, translator.text(kTextIncomplete, "<Please choose a field.>"),
                                 DbUpdateBox::Fields};
    auto box = [&](const std::string& text, DbUpdateBox focus) -> std::optional<DbUpdateViolation> {
        const NumberCheck check = checkNumberInRange(0, kDbUpdateValueMax, text, translator);
        if (check.ok) return std::nullopt;
        return DbUpdateViolation{check.textId, check.message, focus};
    };
    if (e.function == kFunctionConstant) return box(e.constantText, DbUpdateBox::ConstantValue);
    if (e.function == kFunctionCount) {
        if (auto v = box(e.countNumberText, DbUpdateBox::CountNumber)) return v;
        return box(e.countStepText, DbUpdateBox::CountStep);
    }
    return std::nullopt;
}

ItemRecord dbUpdateRecordOf(const DbUpdateEntries& e) {
    ItemRecord r;
    r.isDbUpdate = true;
    r.name = e.function;
    r.dbFieldName = e.dbField;
    r.dbColumn = e.column;
    if (e.function == kFunctionConstant) {
        r.param1 = plainNumber(e.constantText);
    } else if (e.function == kFunctionCount) {
        r.param1 = plainNumber(e.countNumberText);
        r.param2 = plainNumber(e.countStepText);
    } else {
        r.param1 = e.hexadecimal ? "1" : "0";
    }
    return r;
}

DbUpdateEntries dbUpdateEntriesOf(const ItemRecord& r) {
    DbUpdateEntries e;
    e.dbField = r.dbFieldName;
    e.column = r.dbColumn;
    if (r.name == kFunctionCount) {
        e.function = std::string(kFunctionCount);
        e.countNumberText = r.param1;
        e.countStepText = r.param2;
    } else if (r.name == kFunctionCardSnNr) {
        e.function = std::string(kFunctionCardSnNr);
        e.hexadecimal = !r.param1.empty() && r.param1 != "0";
    } else {
        e.constantText = r.param1;
    }
    return e;
}

}  // namespace kestrin
