#include "IClassDesignerPlugin.h"

#include "control/IClass.h"

namespace kestrin {

QWidget* IClassDesignerPlugin::createWidget(QWidget* parent) {
    auto* control = new IClass(parent);
    control->setDesignMode(true);  // a form being designed shows the picture, not the grids
    return control;
}

QString IClassDesignerPlugin::domXml() const {
    return R"(<ui language="c++"><widget class="kestrin::IClass" name="iClass">
<property name="geometry"><rect><x>0</x><y>0</y><width>400</width><height>300</height></rect></property>
</widget></ui>)";
}

}  // namespace kestrin
