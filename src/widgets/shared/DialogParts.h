#pragma once
#include <QString>
#include <QWidget>
#include <string>
#include <string_view>

#include "text/TextIds.h"

class QLineEdit;
class QTableWidget;

namespace kestrin {

class HostFieldList;
class Translator;

// Gives a widget the control name by which hosts, scripts and tests find it.
template <class W>
W* named(W* widget, const QString& name) {
    widget->setObjectName(name);
    return widget;
}

// A text of the language libraries, with its default, for a caption.
QString translated(const Translator& translator, int32_t id, std::string_view defaultText = {});
QString translated(const Translator& translator, const TextRef& text);

// Lets only digits and backspace into a number box, whether typed or pasted; navigation
// and control keys pass untouched. Shared by the item dialogs.
void filterToDigits(QLineEdit& box);

// Fills a grid of the host project's database fields, one row each, selected by whole rows:
// column 0 the database field name ("<Field Name>"), column 1 the type ("<Field Type>").
void fillFieldGrid(QTableWidget& grid, const HostFieldList& fields, const Translator& translator);

}  // namespace kestrin
