#include "VirtualSlot.h"
#include "ZAXMatExtensionPlugin.h"

#include <QTest>

#include <memory>
#include <type_traits>

static_assert(std::has_virtual_destructor_v<ZAXMatExtensionPlugin>);
static_assert(!std::is_base_of_v<QObject, ZAXMatExtensionPlugin>);
static_assert(sizeof(ZAXMatExtensionPlugin) == sizeof(void*), "a virtual table and no data");

using Plugins = QList<ZAXMatExtensionPlugin*>;

namespace {

class Plugin : public ZAXMatExtensionPlugin
{
public:
    const QMetaObject* GetMaterialExtensionMetaObject() const override { return &QObject::staticMetaObject; }
    const QMetaObject* GetPackagingExtensionMetaObject() const override { return &QObject::staticMetaObject; }
};

} // namespace

class tst_ZAXMatExtensionPlugin : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void theVirtualOperationsKeepTheirSlots();
    void pluginsAreListedInTheOrderOfTheirRegistration();
    void aDestroyedPluginIsNotListed();
    void aCopyIsNotRegistered();
    void destroyingACopyLeavesTheRegistry();
    void assignmentLeavesTheRegistry();
    void aListIsUnaffectedByLaterRegistrations();
};

void tst_ZAXMatExtensionPlugin::init()
{
    QCOMPARE(ZAXMatExtensionPlugin::GetPlugins(), Plugins());
}

void tst_ZAXMatExtensionPlugin::theVirtualOperationsKeepTheirSlots()
{
    QCOMPARE(VirtualSlot(&ZAXMatExtensionPlugin::GetMaterialExtensionMetaObject), 1);
    QCOMPARE(VirtualSlot(&ZAXMatExtensionPlugin::GetPackagingExtensionMetaObject), 2);
}

void tst_ZAXMatExtensionPlugin::pluginsAreListedInTheOrderOfTheirRegistration()
{
    const auto storage = std::make_unique<std::array<std::unique_ptr<Plugin>, 8>>();
    Plugins expected;
    for (auto& plugin : *storage) {
        plugin = std::make_unique<Plugin>();
        expected.append(plugin.get());
    }
    QCOMPARE(ZAXMatExtensionPlugin::GetPlugins(), expected);
}

void tst_ZAXMatExtensionPlugin::aDestroyedPluginIsNotListed()
{
    auto a = std::make_unique<Plugin>();
    Plugin b;
    QCOMPARE(ZAXMatExtensionPlugin::GetPlugins(), (Plugins{a.get(), &b}));
    a.reset();
    QCOMPARE(ZAXMatExtensionPlugin::GetPlugins(), Plugins{&b});
    Plugin c;
    QCOMPARE(ZAXMatExtensionPlugin::GetPlugins(), (Plugins{&b, &c}));
}

void tst_ZAXMatExtensionPlugin::aCopyIsNotRegistered()
{
    Plugin original;
    const Plugin copy(original);
    QCOMPARE(ZAXMatExtensionPlugin::GetPlugins(), Plugins{&original});
    QCOMPARE(copy.GetMaterialExtensionMetaObject(), &QObject::staticMetaObject);
}

void tst_ZAXMatExtensionPlugin::destroyingACopyLeavesTheRegistry()
{
    Plugin original;
    std::make_unique<Plugin>(original).reset();
    QCOMPARE(ZAXMatExtensionPlugin::GetPlugins(), Plugins{&original});
}

void tst_ZAXMatExtensionPlugin::assignmentLeavesTheRegistry()
{
    Plugin registered;
    Plugin copy(registered);
    QCOMPARE(&(copy = registered), &copy);
    QCOMPARE(ZAXMatExtensionPlugin::GetPlugins(), Plugins{&registered});
    QCOMPARE(&(registered = copy), &registered);
    QCOMPARE(ZAXMatExtensionPlugin::GetPlugins(), Plugins{&registered});
}

void tst_ZAXMatExtensionPlugin::aListIsUnaffectedByLaterRegistrations()
{
    Plugin a;
    const Plugins before = ZAXMatExtensionPlugin::GetPlugins();
    Plugin b;
    QCOMPARE(before, Plugins{&a});
    QCOMPARE(ZAXMatExtensionPlugin::GetPlugins(), (Plugins{&a, &b}));
}

QTEST_GUILESS_MAIN(tst_ZAXMatExtensionPlugin)
#include "tst_ZAXMatExtensionPlugin.moc"
