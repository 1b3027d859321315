// The generic bridge: members a newer host reaches by name, and the about box.
#include "AboutBox.h"
#include "IClass.h"
#include "document/HostBridge.h"

namespace kestrin {

bool IClass::acceptsBridgeName(const QString& name) {
    return kestrin::acceptsBridgeName(name.toStdString(), appName_.toStdString(), doc_.prompter());
}

void IClass::CallGenericFunction(QString FunctionName, QString ParamList) {
    Q_UNUSED(ParamList);
    acceptsBridgeName(FunctionName);
}

void IClass::SetPropertyValue(QString PropName, QString Value) {
    Q_UNUSED(Value);
    acceptsBridgeName(PropName);
}

QString IClass::GetPropertyValue(QString PropName) {
    acceptsBridgeName(PropName);
    return QString();
}

void IClass::SetObjectProperty(QString PropName, QObject* Value) {
    Q_UNUSED(Value);
    acceptsBridgeName(PropName);
}

QObject* IClass::GetObjectProperty(QString PropName) {
    acceptsBridgeName(PropName);
    return nullptr;
}

void IClass::ShowAbout() {
    AboutBox box(this);
    runDialog(box);
}

}  // namespace kestrin
