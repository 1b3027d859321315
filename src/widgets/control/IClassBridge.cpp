// The generic bridge: members a newer host reaches by name. This version serves no name;
// every name but the probe "1" tells the operator that the control is older than the host.
#include "AboutBox.h"
#include "IClass.h"
#include "base/ProductInfo.h"

namespace kestrin {

bool IClass::acceptsBridgeName(const QString& name) {
    if (name == QStringLiteral("1")) return true;
    const QString message =
        QStringLiteral("This program is using a server program that is out-of-date. Please contact your vendor and "
                       "supply the following information: \r\n") +
        QStringLiteral("App version: %1.%2;%3\r\n").arg(kVersionMajor).arg(kVersionMinor).arg(kVersionRevision) +
        QStringLiteral("Server program name: %1;\r\n").arg(QString::fromLatin1(kProgramName)) +
        QStringLiteral("Called function is: %1.").arg(name);
    // The title is the host's name, empty when the host never set it.
    tell(Icon::Exclamation, message, appName_.isNull() ? QStringLiteral("") : appName_);
    return false;
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
