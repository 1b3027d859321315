#pragma once
#include <QObject>
#include <QtUiPlugin/QDesignerCustomWidgetInterface>

namespace kestrin {

// Offers the control in Qt Designer, where it shows its design-mode picture.
class IClassDesignerPlugin : public QObject, public QDesignerCustomWidgetInterface {
    Q_OBJECT
    Q_PLUGIN_METADATA(IID "org.qt-project.Qt.QDesignerCustomWidgetInterface")
    Q_INTERFACES(QDesignerCustomWidgetInterface)
public:
    explicit IClassDesignerPlugin(QObject* parent = nullptr) : QObject(parent) {}

    QString name() const override { return "kestrin::IClass"; }
    QString group() const override { return "Kestrin"; }
    QString toolTip() const override { return "iClass card layout designer"; }
    QString whatsThis() const override { return toolTip(); }
    QString includeFile() const override { return "control/IClass.h"; }
    QIcon icon() const override { return {}; }
    bool isContainer() const override { return false; }
    QWidget* createWidget(QWidget* parent) override;
    QString domXml() const override;
};

}  // namespace kestrin
