#pragma once
#include "control/TextGridModel.h"

namespace kestrin {

class RecordArray;
class Translator;

// The database-update grid: one row per database-update record, in record order, with the
// updated field, the function word and a readable summary of the function's parameters.
class DbUpdateGridModel : public TextGridModel {
    Q_OBJECT
public:
    static constexpr int ColumnCount = 4;
    enum Column { ColFixed = 0, ColField, ColFunction, ColSummary };

    explicit DbUpdateGridModel(QObject* parent = nullptr);
    void rebuild(const RecordArray& records, const Translator& translator);
};

}  // namespace kestrin
