#include <gtest/gtest.h>

#ifdef KESTRIN_DESIGNER_PLUGIN
#include <QPluginLoader>
#include <QWidget>
#include <QtUiPlugin/QDesignerCustomWidgetInterface>
#include <memory>

// Designer loads the plugin and places the control, which shows its design-mode picture.
TEST(DesignerPlugin, CreatesTheControlInDesignMode) {
    QPluginLoader loader(KESTRIN_DESIGNER_PLUGIN);
    auto* plugin = qobject_cast<QDesignerCustomWidgetInterface*>(loader.instance());
    ASSERT_NE(plugin, nullptr) << loader.errorString().toStdString();
    EXPECT_EQ(plugin->name(), "kestrin::IClass");
    EXPECT_TRUE(plugin->domXml().contains("kestrin::IClass"));
    std::unique_ptr<QWidget> control(plugin->createWidget(nullptr));
    ASSERT_NE(control, nullptr);
    control->show();
    EXPECT_TRUE(control->findChild<QWidget*>("imgIClass")->isVisible());
    EXPECT_FALSE(control->findChild<QWidget*>("grdItems")->isVisible());
}
#endif
