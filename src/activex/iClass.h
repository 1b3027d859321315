#pragma once
// The control as a Windows host registers and embeds it (ProgID "Kestrin.iClass"): the Qt control
// with the face a COM caller sees. ActiveQt makes the dispatch interface and the event interface
// from this class's own meta-object, and dispatches a COM call to the public slot of its name, so
// every member of the host interface is declared again here, in the interface's order, as a slot
// that hands the call to the control.
#include <QAxBindable>
#include <QString>
#include <QVariant>

#include "control/IClass.h"

struct IDispatch;

class iClass : public kestrin::IClass, public QAxBindable {
    Q_OBJECT
    Q_CLASSINFO("ToSuperClass", "iClass")
    Q_CLASSINFO("Version", "1.0")

    Q_PROPERTY(QString ProjectFile READ ProjectFile WRITE setProjectFile)
    Q_PROPERTY(QString IifDirectory READ IifDirectory WRITE setIifDirectory)
    Q_PROPERTY(QString PellmarkINI READ PellmarkINI WRITE setPellmarkINI)
    Q_PROPERTY(bool CLessLayoutEntered READ CLessLayoutEntered WRITE setCLessLayoutEntered)
    Q_PROPERTY(bool UseBit READ UseBit WRITE setUseBit)
    Q_PROPERTY(bool UseHID READ UseHID WRITE setUseHID)
    Q_PROPERTY(QString LayoutFile READ LayoutFile)
    Q_PROPERTY(QString EncodePath READ EncodePath WRITE setEncodePath)
    Q_PROPERTY(bool Saved READ Saved)
    // Module handles from the host's LoadLibrary: as wide as a pointer of this build.
#if defined(_WIN64)
    Q_PROPERTY(qlonglong LanguageDLL READ LanguageDLL WRITE setLanguageDLL)
    Q_PROPERTY(qlonglong CustomLanguageDLL READ CustomLanguageDLL WRITE setCustomLanguageDLL)
#else
    Q_PROPERTY(int LanguageDLL READ LanguageDLL WRITE setLanguageDLL)
    Q_PROPERTY(int CustomLanguageDLL READ CustomLanguageDLL WRITE setCustomLanguageDLL)
#endif
    Q_PROPERTY(QString AppName READ AppName WRITE setAppName)
    Q_PROPERTY(QString SelectedGrid READ SelectedGrid)

public:
    enum IClassType {
        iSmallOnePage = kestrin::IClass::iSmallOnePage,
        iBigOnePage = kestrin::IClass::iBigOnePage,
        iBigEightPages = kestrin::IClass::iBigEightPages,
    };
    Q_ENUM(IClassType)

    explicit iClass(QWidget* parent = nullptr);

public slots:
    void SetChipType(IClassType sChipType) { IClass::SetChipType(kestrin::IClass::IClassType(sChipType)); }
    void SetAppBoundaries(QString sBoundaries) { IClass::SetAppBoundaries(sBoundaries); }
    void AddField() { IClass::AddField(); }
    void AddFunction() { IClass::AddFunction(); }
    void AddBitField() { IClass::AddBitField(); }
    void AddBitFunction() { IClass::AddBitFunction(); }
    void AddDBUpdateItem() { IClass::AddDBUpdateItem(); }
    void RemoveItem() { IClass::RemoveItem(); }
    void ShowPreview() { IClass::ShowPreview(); }
    void NewLayout(bool bShowPropsDlg) { IClass::NewLayout(bShowPropsDlg); }
    void SetProperties() { IClass::SetProperties(); }
    QVariant SaveLayout() { return IClass::SaveLayout(); }
    bool SaveiClassAs() { return IClass::SaveiClassAs(); }
    bool OpenLayout(QString sFileName) { return IClass::OpenLayout(sFileName); }
    bool CloseLayout() { return IClass::CloseLayout(); }
    bool FetchDBFields() { return IClass::FetchDBFields(); }
    void AddItemOverMultipleTracks() { IClass::AddItemOverMultipleTracks(); }
    void RemoveDBUpdateItem() { IClass::RemoveDBUpdateItem(); }
    void ShowAbout() { IClass::ShowAbout(); }
    void ShowSettings() { IClass::ShowSettings(); }
    void EditItem() { IClass::EditItem(); }
    void CallGenericFunction(QString FunctionName, QString ParamList = QString()) {
        IClass::CallGenericFunction(FunctionName, ParamList);
    }
    void SetPropertyValue(QString PropName, QString Value) { IClass::SetPropertyValue(PropName, Value); }
    QString GetPropertyValue(QString PropName) { return IClass::GetPropertyValue(PropName); }
    // The bridge serves no object property in this version: the object passed is not touched.
    void SetObjectProperty(QString PropName, IDispatch* Value);
    IDispatch* GetObjectProperty(QString PropName);

signals:
    // The event interface. The control's own signals of these names raise the events (ActiveQt
    // finds an event by its name), so these two are never emitted themselves.
    void Changed();
    void GenericEvent(QString sEventName, QString sParamList);

protected:
    void showEvent(QShowEvent* event) override;
};
