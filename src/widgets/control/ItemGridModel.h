#pragma once
#include "control/TextGridModel.h"

namespace kestrin {

class RecordArray;
class Translator;

// The item grid: the fields and functions of a layout, one row per item record that is not
// a database update, in record order.
class ItemGridModel : public TextGridModel {
    Q_OBJECT
public:
    static constexpr int ColumnCount = 9;
    enum Column { ColFixed = 0, ColName, ColKind, ColPage, ColBlock, ColBeginByte, ColBytes, ColBeginBit, ColBits };

    explicit ItemGridModel(QObject* parent = nullptr);
    void rebuild(const RecordArray& records, const Translator& translator);
};

}  // namespace kestrin
