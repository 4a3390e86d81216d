#include "ZAXGeoContainer.h"

#include "ZAXFreshProcess.h"
#include "ZAXProbeGeometry.h"
#include "ZAXSysException.h"
#include "ZAXSysModules.h"

#include <QTest>

#include <memory>

namespace {

ZAXGeoGeometryRef Ref(quint64 id)
{
    return ZAXGeoGeometryRef::FromId(id);
}

QString MessageOf(const std::function<void()>& call)
{
    try {
        call();
    } catch (const ZAXSysException& exception) {
        return exception.GetMessage();
    }
    return {};
}

const QMetaObject* const probe = &ZAXProbeGeometry::staticMetaObject;
const QMetaObject* const derived = &ZAXProbeDerivedGeometry::staticMetaObject;

/// Registers a class as long as it lives.
class Registration
{
public:
    explicit Registration(const QMetaObject* type) : m_type(type) { ZAXGeoContainer::RegisterType(type); }
    ~Registration() { ZAXGeoContainer::UnregisterType(m_type); }
    Q_DISABLE_COPY_MOVE(Registration)

private:
    const QMetaObject* m_type;
};

} // namespace

class tst_ZAXGeoContainer : public QObject
{
    Q_OBJECT

private slots:
    void idsCountFromOne();
    void idOfAGoneGeometryIsNeverGivenAgain();
    void recreatedGeometryHasTheIdOfItsReference();
    void newIdsFollowTheHighestRecreatedOne();
    void invalidReferenceGetsANewId();
    void takenIdIsRefused();
    void containersCountOnTheirOwn();
    void findsWhatLives();
    void listsGeometriesInTheOrderOfTheirIds();
    void geometriesOutliveTheContainerWithoutIdentity();
    void typesAreListedInTheOrderOfRegistration();
    void nullAndSecondRegistrationsAreIgnored();
    void unregisteringAnUnknownClassIsIgnored();
    void findsTypesByName();
    void latestOfSeveralClassesWithOneNameIsFound();
    void lastClassOfAModuleTakesTheModuleAlong();
};

void tst_ZAXGeoContainer::idsCountFromOne()
{
    ZAXGeoContainer container;
    const ZAXProbeGeometry first(&container);
    const ZAXProbeGeometry second(&container);
    QCOMPARE(first.GetId(), quint64(1));
    QCOMPARE(second.GetId(), quint64(2));
}

void tst_ZAXGeoContainer::idOfAGoneGeometryIsNeverGivenAgain()
{
    ZAXGeoContainer container;
    std::make_unique<ZAXProbeGeometry>(&container).reset();
    std::make_unique<ZAXProbeGeometry>(&container).reset();
    const ZAXProbeGeometry third(&container);
    QCOMPARE(third.GetId(), quint64(3));
    QVERIFY(!container.GetGeometryByRef(Ref(1)));
    QVERIFY(!container.GetGeometryByRef(Ref(2)));
}

void tst_ZAXGeoContainer::recreatedGeometryHasTheIdOfItsReference()
{
    ZAXGeoContainer container;
    const ZAXProbeGeometry geometry(&container, Ref(40));
    QCOMPARE(geometry.GetId(), quint64(40));
    QCOMPARE(container.GetGeometryByRef(Ref(40)), &geometry);
}

void tst_ZAXGeoContainer::newIdsFollowTheHighestRecreatedOne()
{
    ZAXGeoContainer container;
    const ZAXProbeGeometry high(&container, Ref(40));
    const ZAXProbeGeometry low(&container, Ref(7));
    const ZAXProbeGeometry next(&container);
    QCOMPARE(next.GetId(), quint64(41));
}

void tst_ZAXGeoContainer::invalidReferenceGetsANewId()
{
    ZAXGeoContainer container;
    const ZAXProbeGeometry first(&container);
    const ZAXProbeGeometry second(&container, ZAXGeoGeometryRef());
    QCOMPARE(second.GetId(), quint64(2));
}

void tst_ZAXGeoContainer::takenIdIsRefused()
{
    ZAXGeoContainer container;
    const ZAXProbeGeometry geometry(&container, Ref(5));
    QCOMPARE(MessageOf([&] { const ZAXProbeGeometry again(&container, Ref(5)); }),
             QStringLiteral("An object with the id 5 already exists."));
    QCOMPARE(container.GetGeometryByRef(Ref(5)), &geometry);
    QCOMPARE(container.GetGeometries(), QList<ZAXGeoGeometry*>{const_cast<ZAXProbeGeometry*>(&geometry)});
}

void tst_ZAXGeoContainer::containersCountOnTheirOwn()
{
    ZAXGeoContainer container;
    ZAXGeoContainer other;
    const ZAXProbeGeometry geometry(&container);
    const ZAXProbeGeometry second(&container);
    const ZAXProbeGeometry stranger(&other);
    QCOMPARE(stranger.GetId(), quint64(1));
    QCOMPARE(other.GetGeometryByRef(ZAXGeoGeometryRef(&stranger)), &stranger);
    QVERIFY(!other.GetGeometryByRef(ZAXGeoGeometryRef(&second)));
}

void tst_ZAXGeoContainer::findsWhatLives()
{
    ZAXGeoContainer container;
    auto geometry = std::make_unique<ZAXProbeGeometry>(&container);
    const ZAXGeoGeometryRef reference(geometry.get());
    QCOMPARE(container.GetGeometryByRef(reference), geometry.get());
    QVERIFY(!container.GetGeometryByRef(ZAXGeoGeometryRef()));
    QVERIFY(!container.GetGeometryByRef(Ref(1000)));
    geometry.reset();
    QVERIFY(!container.GetGeometryByRef(reference));
}

void tst_ZAXGeoContainer::listsGeometriesInTheOrderOfTheirIds()
{
    ZAXGeoContainer container;
    QCOMPARE(container.GetGeometries(), QList<ZAXGeoGeometry*>());
    QList<quint64> ids;
    std::vector<std::unique_ptr<ZAXProbeGeometry>> geometries;
    for (const quint64 id : {900U, 3U, 70U, 1U, 12U, 500U, 2U})
        geometries.push_back(std::make_unique<ZAXProbeGeometry>(&container, Ref(id)));
    const auto listed = container.GetGeometries();
    for (const ZAXGeoGeometry* geometry : listed)
        ids.append(geometry->GetId());
    QCOMPARE(ids, QList<quint64>({1, 2, 3, 12, 70, 500, 900}));
}

void tst_ZAXGeoContainer::geometriesOutliveTheContainerWithoutIdentity()
{
    auto container = std::make_unique<ZAXGeoContainer>();
    const ZAXProbeGeometry geometry(container.get());
    container.reset();
    QVERIFY(!geometry.GetContainer());
    QCOMPARE(geometry.GetId(), quint64(1));
}

void tst_ZAXGeoContainer::typesAreListedInTheOrderOfRegistration()
{
    const auto before = ZAXGeoContainer::GetRegisteredTypes();
    {
        const Registration first(derived);
        const Registration second(probe);
        QCOMPARE(ZAXGeoContainer::GetRegisteredTypes(), before + QList<const QMetaObject*>({derived, probe}));
        ZAXGeoContainer::UnregisterType(derived);
        QCOMPARE(ZAXGeoContainer::GetRegisteredTypes(), before + QList<const QMetaObject*>({probe}));
    }
    QCOMPARE(ZAXGeoContainer::GetRegisteredTypes(), before);
}

void tst_ZAXGeoContainer::nullAndSecondRegistrationsAreIgnored()
{
    const auto before = ZAXGeoContainer::GetRegisteredTypes();
    const Registration first(probe);
    const Registration second(derived);
    ZAXGeoContainer::RegisterType(probe);
    ZAXGeoContainer::RegisterType(nullptr);
    QCOMPARE(ZAXGeoContainer::GetRegisteredTypes(), before + QList<const QMetaObject*>({probe, derived}));
}

void tst_ZAXGeoContainer::unregisteringAnUnknownClassIsIgnored()
{
    const auto before = ZAXGeoContainer::GetRegisteredTypes();
    const Registration registration(probe);
    ZAXGeoContainer::UnregisterType(derived);
    ZAXGeoContainer::UnregisterType(nullptr);
    QCOMPARE(ZAXGeoContainer::GetRegisteredTypes(), before + QList<const QMetaObject*>({probe}));
}

void tst_ZAXGeoContainer::findsTypesByName()
{
    const Registration registration(probe);
    QCOMPARE(ZAXGeoContainer::FindType("ZAXProbeGeometry"), probe);
    QVERIFY(!ZAXGeoContainer::FindType("ZAXProbeDerivedGeometry"));
    QVERIFY(!ZAXGeoContainer::FindType("zaxprobegeometry"));
    QVERIFY(!ZAXGeoContainer::FindType("ZAXProbe"));
    QVERIFY(!ZAXGeoContainer::FindType(QByteArray()));
    QVERIFY(!ZAXGeoContainer::FindType("QObject"));
}

void tst_ZAXGeoContainer::latestOfSeveralClassesWithOneNameIsFound()
{
    const QMetaObject twin = *probe;
    const Registration first(probe);
    {
        const Registration second(&twin);
        QCOMPARE(ZAXGeoContainer::FindType("ZAXProbeGeometry"), &twin);
    }
    QCOMPARE(ZAXGeoContainer::FindType("ZAXProbeGeometry"), probe);
}

void tst_ZAXGeoContainer::lastClassOfAModuleTakesTheModuleAlong()
{
    const QStringList entries = InAFreshProcess([] {
        QStringList seen;
        const void* const thisModule = ZAXSysModules::ModuleOf(probe);
        ZAXSysModules::OnLeave([&](const void* module) {
            seen.append(QLatin1String(module == thisModule ? "this module leaves" : "another module leaves"));
        });
        ZAXGeoContainer::RegisterType(probe);
        ZAXGeoContainer::RegisterType(derived);
        ZAXGeoContainer::UnregisterType(derived);
        seen.append(QStringLiteral("one class left"));
        ZAXGeoContainer::UnregisterType(probe);
        seen.append(QStringLiteral("no class left"));
        ZAXGeoContainer::UnregisterType(probe);
        return seen;
    });
    QCOMPARE(entries, QStringList({QStringLiteral("one class left"), QStringLiteral("this module leaves"),
                                   QStringLiteral("no class left")}));
}

QTEST_GUILESS_MAIN(tst_ZAXGeoContainer)
#include "tst_ZAXGeoContainer.moc"
