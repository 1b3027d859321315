#include "ScriptRunner.h"

#include <QAbstractButton>
#include <QAbstractItemView>
#include <QComboBox>
#include <QDialog>
#include <QLineEdit>
#include <QMetaMethod>
#include <utility>
#include <QMetaProperty>

#include "control/IClass.h"
#include "items/ItemColor.h"

namespace kestrin {

namespace {

bool isDialogAction(const QString& word) {
    return word == "set" || word == "check" || word == "pick" || word == "click";
}

QVariant argumentOf(const QString& text, QMetaType type) {
    if (type.id() == QMetaType::Bool)
        return QVariant(text.compare("true", Qt::CaseInsensitive) == 0 || text == "1" || text == "-1");
    if (type.id() == QMetaType::Int) return QVariant(text.toInt());
    if (type.flags() & QMetaType::IsEnumeration) {
        // A number or the name of the value, as a host writes either.
        bool isNumber = false;
        const int number = text.toInt(&isNumber);
        QVariant value = isNumber ? QVariant(number) : QVariant(text);
        value.convert(type);
        return value;
    }
    return QVariant(text);
}

QString shown(const QVariant& value) {
    // A member declared to return a variant (SaveLayout) shows what the variant holds.
    if (value.typeId() == QMetaType::QVariant) return shown(*static_cast<const QVariant*>(value.constData()));
    if (value.typeId() == QMetaType::Bool) return value.toBool() ? "True" : "False";
    if (value.canConvert<QObject*>() && value.typeId() == QMetaType::QObjectStar)
        return value.value<QObject*>() ? "object" : "Nothing";
    return value.toString();
}

}  // namespace

ScriptRunner::ScriptRunner(IClass& control, std::function<void(const QString&)> print)
    : control_(control), print_(print), prompter_(print) {
    control_.setPrompter(&prompter_);
    control_.setFileChooser(&chooser_);
    control_.setDialogRunner([this](QDialog& dialog) { return runDialog(dialog); });
    // A script saves the same files on every run and every system: new items take the same colours.
    seedItemColors(1);
    QObject::connect(&control_, &IClass::Changed, [print] { print("event Changed"); });
    QObject::connect(&control_, &IClass::GenericEvent, [print](const QString& name, const QString& params) {
        print("event GenericEvent " + name + " " + params);
    });
    // A raised error is the member's answer, as a host sees it.
    QObject::connect(&control_, &IClass::exception,
                     [this](int, const QString& source, const QString& description, const QString&) {
                         raised_ = true;
                         print_("error " + source + ": " + description);
                     });
}

QStringList ScriptRunner::splitArguments(const QString& line) {
    QStringList out;
    QString current;
    bool quoted = false, any = false;
    for (const QChar c : line) {
        if (c == '"') {
            quoted = !quoted;
            any = true;
        } else if (c.isSpace() && !quoted) {
            if (any) out << current;
            current.clear();
            any = false;
        } else {
            current += c;
            any = true;
        }
    }
    if (any) out << current;
    return out;
}

bool ScriptRunner::run(const QStringList& lines) {
    std::vector<Step> steps;
    for (int i = 0; i < lines.size(); ++i) {
        const QString line = lines[i].trimmed();
        if (line.isEmpty() || line.startsWith('#')) continue;
        const QStringList words = splitArguments(line);
        if (isDialogAction(words.front()) && !steps.empty())
            steps.back().dialogActions.push_back(words);
        else
            steps.push_back({words, {}, i + 1});
    }
    for (const Step& step : steps)
        if (!runStep(step)) return false;
    return true;
}

bool ScriptRunner::runStep(const Step& step) {
    const QString name = step.call.front();
    const QStringList args = step.call.mid(1);
    auto fail = [&](const QString& why) {
        print_(QString("error line %1: %2").arg(step.line).arg(why));
        return false;
    };
    if (name == "answer") {
        static const std::pair<const char*, Answer> answers[] = {
            {"Yes", Answer::Yes}, {"No", Answer::No}, {"OK", Answer::Ok}, {"Cancel", Answer::Cancel}};
        for (const auto& [word, answer] : answers)
            if (args.value(0).compare(word, Qt::CaseInsensitive) == 0) {
                prompter_.queue(answer);
                return true;
            }
        return fail("answer takes Yes, No, OK or Cancel");
    }
    if (name == "choose") {
        chooser_.queue(args.value(0));
        return true;
    }
    if (isDialogAction(name)) return fail(name + " needs a call that opens a dialog before it");

    const QMetaObject* meta = control_.metaObject();
    pendingActions_ = step.dialogActions;
    raised_ = false;
    {
        const int propertyIndex = meta->indexOfProperty(name.toLatin1().constData());
        if (propertyIndex >= 0) {
            const QMetaProperty property = meta->property(propertyIndex);
            if (args.isEmpty()) {
                print_("result " + name + " " + shown(property.read(&control_)));
                return true;
            }
            if (!property.write(&control_, argumentOf(args.front(), property.metaType())))
                return fail(name + " cannot be set");
            return true;
        }
        for (int i = meta->methodOffset(); i < meta->methodCount(); ++i) {
            const QMetaMethod method = meta->method(i);
            if (method.name() != name.toLatin1() || method.methodType() != QMetaMethod::Method) continue;
            if (method.parameterCount() < args.size()) continue;
            std::vector<QVariant> values;
            for (int p = 0; p < method.parameterCount(); ++p)
                values.push_back(argumentOf(args.value(p), method.parameterMetaType(p)));
            std::vector<QGenericArgument> generic;
            for (auto& v : values) generic.emplace_back(v.typeName(), v.data());
            while (generic.size() < 10) generic.emplace_back();
            QVariant result(method.returnMetaType(), nullptr);
            QGenericReturnArgument ret(method.returnMetaType().name(), result.data());
            const bool invoked = method.returnMetaType().id() == QMetaType::Void
                                     ? method.invoke(&control_, Qt::DirectConnection, generic[0], generic[1], generic[2],
                                                     generic[3], generic[4], generic[5], generic[6], generic[7],
                                                     generic[8], generic[9])
                                     : method.invoke(&control_, Qt::DirectConnection, ret, generic[0], generic[1],
                                                     generic[2], generic[3], generic[4], generic[5], generic[6],
                                                     generic[7], generic[8], generic[9]);
            if (!invoked) return fail("cannot call " + name);
            // A member that raised an error answers with the error alone, as to a COM caller.
            if (method.returnMetaType().id() != QMetaType::Void && !std::exchange(raised_, false))
                print_("result " + name + " " + shown(result));
            raised_ = false;
            return true;
        }
    }
    return fail("no member " + name);
}

int ScriptRunner::runDialog(QDialog& dialog) {
    dialog.show();
    const std::vector<QStringList> actions = std::exchange(pendingActions_, {});
    for (const QStringList& action : actions) {
        if (!dialog.isVisible()) break;
        if (!actOn(dialog, action)) print_("error no control " + action.value(1) + " in " + dialog.objectName());
    }
    if (dialog.isVisible()) dialog.reject();
    return dialog.result();
}

bool ScriptRunner::actOn(QDialog& dialog, const QStringList& action) {
    const QString verb = action.value(0);
    QWidget* widget = dialog.findChild<QWidget*>(action.value(1));
    if (!widget) return false;
    const QString value = action.value(2);
    if (verb == "set") {
        if (auto* edit = qobject_cast<QLineEdit*>(widget)) edit->setText(value);
        else if (auto* combo = qobject_cast<QComboBox*>(widget)) combo->setCurrentText(value);
        else return false;
    } else if (verb == "check" || verb == "click") {
        auto* button = qobject_cast<QAbstractButton*>(widget);
        if (!button) return false;
        button->click();
    } else if (verb == "pick") {
        if (auto* combo = qobject_cast<QComboBox*>(widget)) combo->setCurrentIndex(value.toInt());
        else if (auto* view = qobject_cast<QAbstractItemView*>(widget)) {
            // Select the row as a click would, without the view's own toggling of a multi-selection.
            const QModelIndex index = view->model()->index(value.toInt(), 0);
            view->selectionModel()->select(index, QItemSelectionModel::ClearAndSelect | QItemSelectionModel::Rows);
            view->selectionModel()->setCurrentIndex(index, QItemSelectionModel::NoUpdate);
        } else {
            return false;
        }
    }
    return true;
}

}  // namespace kestrin
