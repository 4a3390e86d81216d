#include "ZAXFeatLastSavedStore.h"
#include "ZAXGeoContainer.h"
#include "ZAXSysAbstractEnumLocalization.h"
#include "ZAXSysStartup.h"

#include <QFile>
#include <QLoggingCategory>
#include <QTest>

#include <algorithm>
#include <array>
#include <utility>

#include <dlfcn.h>

// The library comes and goes in one process, as modules of an application do: nothing of it may stay behind.

namespace {

constexpr int cycles = 200;
constexpr auto useEverything = "UseEverything";

/// A type that is somebody else's, one for each cycle.
template <int N>
struct Other
{
};

template <int... N>
constexpr std::array<int (*)(), sizeof...(N)> OtherRegistrations(std::integer_sequence<int, N...>)
{
    return {+[] { return qRegisterMetaType<Other<N>>(); }...};
}

const auto registerOther = OtherRegistrations(std::make_integer_sequence<int, cycles>());

/// How often the library comes and goes: less often where ZAX_UNLOAD_CYCLES says so, as for programs that slow it down.
int CycleCount()
{
    bool isGiven = false;
    const int given = qEnvironmentVariableIntValue("ZAX_UNLOAD_CYCLES", &isGiven);
    return isGiven ? std::clamp(given, 1, cycles) : cycles;
}

bool IsMapped(const QByteArray& file)
{
    QFile maps(QLatin1String("/proc/self/maps"));
    return maps.open(QIODevice::ReadOnly) && maps.readAll().contains(file);
}

QList<QByteArray> RegisteredClasses()
{
    QList<QByteArray> names;
    for (const QMetaObject* type : ZAXGeoContainer::GetRegisteredTypes())
        names.append(type->className());
    return names;
}

QStringList messages;

void KeepMessage(QtMsgType, const QMessageLogContext&, const QString& text)
{
    messages.append(text);
}

} // namespace

class tst_unload : public QObject
{
    Q_OBJECT

private:
    void* Load()
    {
        void* const probe = dlopen(PROBE_PATH, RTLD_NOW | RTLD_LOCAL);
        if (!probe)
            qWarning("%s", dlerror());
        return probe;
    }

    /// What the probe says went wrong; empty if nothing did.
    QByteArray Use(void* probe)
    {
        const auto use = reinterpret_cast<const char* (*)()>(dlsym(probe, useEverything));
        return use ? QByteArray(use()) : QByteArray("The probe has no function.");
    }

private slots:
    void classesAreUnregisteredInReverseOrder();
    void libraryLeavesNothingBehind();
};

void tst_unload::classesAreUnregisteredInReverseOrder()
{
    ZAXSysStartup::Start();
    messages.clear();
    QLoggingCategory::setFilterRules(QLatin1String("zax.geometry.types=true\nzax.material.module=true"));
    const auto handler = qInstallMessageHandler(KeepMessage);
    void* const probe = Load();
    QVERIFY(probe);
    const auto loaded = std::exchange(messages, {});
    const QByteArray failure = Use(probe);
    messages.clear();
    dlclose(probe);
    const auto unloaded = std::exchange(messages, {});
    qInstallMessageHandler(handler);
    QLoggingCategory::setFilterRules(QString());

    QCOMPARE(failure, QByteArray());
    const auto ofTheProbe = [](const QString& text) { return text.contains(QLatin1String("Probe")); };
    auto ownLoaded = loaded;
    ownLoaded.removeIf(ofTheProbe);
    auto ownUnloaded = unloaded;
    ownUnloaded.removeIf(ofTheProbe);
    QCOMPARE(ownLoaded,
             QStringList({QLatin1String("registered ZAXMatMaterial"), QLatin1String("registered ZAXMatPackaging"),
                          QLatin1String("registered ZAXMatRoot")}));
    QCOMPARE(
        ownUnloaded,
        QStringList({QLatin1String("unregistered ZAXMatRoot"), QLatin1String("released the table of provider caches"),
                     QLatin1String("unregistered ZAXMatPackaging"), QLatin1String("unregistered ZAXMatMaterial")}));
}

void tst_unload::libraryLeavesNothingBehind()
{
    ZAXSysStartup::Start();
    const auto classes = RegisteredClasses();
    QVERIFY(!IsMapped("libZAXMaterial.so"));
    for (int cycle = 0, count = CycleCount(); cycle < count; ++cycle) {
        void* const probe = Load();
        QVERIFY(probe);
        QVERIFY(IsMapped("libZAXMaterial.so"));
        QCOMPARE(RegisteredClasses().mid(classes.size(), 3),
                 QList<QByteArray>({"ZAXMatMaterial", "ZAXMatPackaging", "ZAXMatRoot"}));
        QCOMPARE(Use(probe), QByteArray());
        const int form = QMetaType::fromName("ZAXMatPackaging::Form").id();
        QCOMPARE(ZAXSysAbstractEnumLocalization::GetValues(form), QList<int>({0, 1}));

        QCOMPARE(dlclose(probe), 0);

        QVERIFY(!IsMapped("libZAXMaterial.so"));
        QVERIFY(!IsMapped(PROBE_PATH));
        QCOMPARE(RegisteredClasses(), classes);
        for (const char* name :
             {"ZAXMatMaterial*", "const ZAXMatMaterial*", "ZAXMatPackaging*", "const ZAXMatPackaging*", "ZAXMatRoot*",
              "const ZAXMatRoot*", "ZAXMatMaterialExtension*", "ZAXMatPackagingExtension*", "QList<ZAXMatMaterial*>",
              "QList<ZAXMatMaterialExtension*>", "QList<ZAXMatPackagingExtension*>", "ZAXMatPackaging::Form"})
            QVERIFY2(!QMetaType::fromName(name).isValid(), name);
        QCOMPARE(ZAXSysAbstractEnumLocalization::GetValues(form), QList<int>());
        // The user's last choice survives, as a value that needs no library.
        QCOMPARE(ZAXFeatLastSavedStore::GetCurrent().GetValue("ZAXMatPackaging", "form"), QVariant(1));
        QVERIFY(registerOther.at(static_cast<size_t>(cycle))() > QMetaType::User);
        QVERIFY(QVariant::fromValue(Other<0>()).isValid());
        QVERIFY(QMetaType::fromName("ZAXSysLengthValue").isValid());
    }
}

QTEST_GUILESS_MAIN(tst_unload)
#include "tst_unload.moc"
