// The in-process ActiveX server Kestrin.dll: its class factory and registration (ActiveQt's, with
// the identifiers below and the control's own), errors raised to the COM caller, and design mode
// from the container's ambient user mode.
#include <QAxFactory>
#include <QMetaType>
#include <QShowEvent>
#include <ocidl.h>
#include <olectl.h>

#include "iClass.h"

// The type library and the application identifiers; the class, interface and event identifiers are
// the control's own (kestrin::IClass).
QAXFACTORY_BEGIN("{633200BB-52C3-4831-A98A-3B3D64BA2A37}", "{455D5728-AD80-4B30-B76F-3EEDAA8FD775}")
QAXCLASS(iClass)
QAXFACTORY_END()

namespace {

// The container's ambient user mode: false while the host's form is being designed. A caller
// without a client site (a script creating the control by name) runs it.
bool containerInUserMode(IUnknown* clientSite) {
    if (!clientSite) return true;
    IDispatch* ambient = nullptr;
    if (FAILED(clientSite->QueryInterface(IID_IDispatch, reinterpret_cast<void**>(&ambient))) || !ambient) return true;
    VARIANT value;
    VariantInit(&value);
    DISPPARAMS none = {nullptr, nullptr, 0, 0};
    const HRESULT asked = ambient->Invoke(DISPID_AMBIENT_USERMODE, IID_NULL, LOCALE_USER_DEFAULT, DISPATCH_PROPERTYGET,
                                          &none, &value, nullptr, nullptr);
    ambient->Release();
    const bool userMode = FAILED(asked) || value.vt != VT_BOOL || value.boolVal != VARIANT_FALSE;
    VariantClear(&value);
    return userMode;
}

}  // namespace

iClass::iClass(QWidget* parent) : kestrin::IClass(parent) {
    // GetObjectProperty's result reaches the caller as a VARIANT only as a type Qt knows by name.
    qRegisterMetaType<IDispatch*>("IDispatch*");
    // A raised error ends the COM call as an automation error with its number, source and text.
    connect(this, &kestrin::IClass::exception, this,
            [this](int code, const QString& source, const QString& description, const QString& help) {
                reportError(code, source, description, help);
            });
}

void iClass::SetObjectProperty(QString PropName, IDispatch*) {
    IClass::SetObjectProperty(PropName, nullptr);
}

IDispatch* iClass::GetObjectProperty(QString PropName) {
    IClass::GetObjectProperty(PropName);
    return nullptr;
}

void iClass::showEvent(QShowEvent* event) {
    setDesignMode(!containerInUserMode(clientSite()));
    IClass::showEvent(event);
}
