#include "ZAXFeatContainer.h"

#include "ZAXFeatFolder.h"
#include "ZAXFeatLastSavedStore.h"
#include "ZAXFeatObjectPrivate.h"
#include "ZAXProbeFeatures.h"
#include "ZAXProbeJournal.h"

#include <QTest>

class tst_ZAXFeatContainer : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void isEmptyAtFirst();
    void createsTheClassAsTheLastChild();
    void createsAtTheTop();
    void initializesBeforeAnnouncing();
    void announcesTheConcreteClassInItsPlace();
    void announcesOnce();
    void creationIsOneStep();
    void creationAtTheTopIsOneStep();
    void initializesFromLastSavedValues();
    void looksThroughFoldersForTheParentOfConstruction();
    void refuses_data();
    void refuses();
    void refusesAParentOfAnotherDocument();
    void refusesAClassThatCannotStandAtTheTopWithoutParent();
    void refusesAClassOfTheTopUnderAParent();
    void exceptionOfTheConstructorLeavesNothing();
    void exceptionOfInitializeLeavesNothing();
    void exceptionOfInitializeLeavesNoItemInAList();
    void exceptionOfASlotLeavesTheFeatureInItsPlace();
    void featureThatASlotRemovesIsNotReturned();
    void rootsAreListedInOrder();
    void destroysItsFeaturesWithoutAnnouncingIt();
    void destroysRemovedFeaturesThatAreStillHeld();
    void castsFromAGeometryContainer();

private:
    std::unique_ptr<ZAXProbeJournal> m_journal;
    std::unique_ptr<ZAXProbeRegistration> m_registration;
    std::unique_ptr<ZAXFeatContainer> m_container;
};

void tst_ZAXFeatContainer::init()
{
    ZAXFeatLastSavedStore::SetCurrent(nullptr);
    m_journal = std::make_unique<ZAXProbeJournal>();
    m_registration = std::make_unique<ZAXProbeRegistration>();
    m_container = std::make_unique<ZAXFeatContainer>();
}

void tst_ZAXFeatContainer::cleanup()
{
    m_container.reset();
    m_registration.reset();
    m_journal.reset();
}

void tst_ZAXFeatContainer::isEmptyAtFirst()
{
    QCOMPARE(m_container->GetRoots(), QList<ZAXFeatObject*>());
    QCOMPARE(m_container->GetGeometries(), QList<ZAXGeoGeometry*>());
}

void tst_ZAXFeatContainer::createsTheClassAsTheLastChild()
{
    ZAXProbePart* const parent = AddPart(*m_container, "parent");
    ZAXProbePart* const first = AddPart(parent, "first");
    ZAXFeatObject* const created = m_container->CreateInstance("ZAXProbeSpecialPart", parent);
    QVERIFY(created);
    QCOMPARE(created->metaObject(), &ZAXProbeSpecialPart::staticMetaObject);
    QCOMPARE(created->GetParent(), parent);
    QCOMPARE(created->GetContainer(), m_container.get());
    QCOMPARE(parent->GetChildren(), QList<ZAXFeatObject*>({first, created}));
    QCOMPARE(m_container->GetRoots(), QList<ZAXFeatObject*>{parent});
}

void tst_ZAXFeatContainer::createsAtTheTop()
{
    ZAXFeatObject* const part = m_container->CreateInstance("ZAXProbePart", nullptr);
    ZAXFeatObject* const root = m_container->CreateInstance("ZAXProbeRoot", nullptr);
    QVERIFY(qobject_cast<ZAXProbePart*>(part));
    QVERIFY(qobject_cast<ZAXProbeRoot*>(root));
    QVERIFY(!part->GetParent());
    QCOMPARE(m_container->GetRoots(), QList<ZAXFeatObject*>({part, root}));
}

void tst_ZAXFeatContainer::initializesBeforeAnnouncing()
{
    ZAXProbePart* const parent = AddPart(*m_container, "parent");
    connect(parent, &ZAXFeatObject::ChildAdded, this, [] { ZAXProbeJournal::Note(QStringLiteral("ChildAdded")); });
    m_journal->Take();
    m_container->CreateInstance("ZAXProbePart", parent);
    QCOMPARE(m_journal->Take(), Entries("InitializeNonStreamed \n Initialize \n ChildAdded"));
}

void tst_ZAXFeatContainer::announcesTheConcreteClassInItsPlace()
{
    ZAXProbePart* const parent = AddPart(*m_container, "parent");
    ZAXProbePart* const first = AddPart(parent, "first");
    const ZAXFeatObject* announced = nullptr;
    const QMetaObject* type = nullptr;
    QList<ZAXFeatObject*> children;
    connect(parent, &ZAXFeatObject::ChildAdded, this, [&](ZAXFeatObject* child) {
        announced = qobject_cast<ZAXProbeSpecialPart*>(child);
        type = child->metaObject();
        children = parent->GetChildren();
    });
    ZAXFeatObject* const created = m_container->CreateInstance("ZAXProbeSpecialPart", parent);
    QCOMPARE(announced, created);
    QCOMPARE(type, &ZAXProbeSpecialPart::staticMetaObject);
    QCOMPARE(children, QList<ZAXFeatObject*>({first, created}));
}

void tst_ZAXFeatContainer::announcesOnce()
{
    ZAXProbePart* const parent = AddPart(*m_container, "parent");
    int announcements = 0;
    connect(parent, &ZAXFeatObject::ChildAdded, this, [&] { ++announcements; });
    ZAXFeatObject* const created = m_container->CreateInstance("ZAXProbePart", parent);
    created->Initialize();
    QCOMPARE(announcements, 1);
}

void tst_ZAXFeatContainer::creationIsOneStep()
{
    ZAXProbePart* const parent = AddPart(*m_container, "parent");
    const ZAXProbeObserver observer(*m_container);
    m_journal->Take();
    m_container->CreateInstance("ZAXFeatFolder", parent);
    QCOMPARE(m_journal->Take(), Entries("ZAXFeatFolder came"));
}

void tst_ZAXFeatContainer::creationAtTheTopIsOneStep()
{
    const ZAXProbeObserver observer(*m_container);
    m_container->CreateInstance("ZAXFeatFolder", nullptr);
    QCOMPARE(m_journal->Take(), Entries("ZAXFeatFolder came"));
}

void tst_ZAXFeatContainer::initializesFromLastSavedValues()
{
    ZAXFeatLastSavedStore::GetCurrent().SetValue("ZAXProbePart", "length", 4.5);
    const auto* const part = qobject_cast<ZAXProbePart*>(m_container->CreateInstance("ZAXProbePart", nullptr));
    QCOMPARE(part->length.GetValue(), 4.5);
}

void tst_ZAXFeatContainer::looksThroughFoldersForTheParentOfConstruction()
{
    ZAXProbePart* const part = AddPart(*m_container, "part");
    ZAXFeatObject* const outer = m_container->CreateInstance("ZAXFeatFolder", part);
    ZAXFeatObject* const inner = m_container->CreateInstance("ZAXFeatFolder", outer);
    QStringList announced;
    for (ZAXFeatObject* feature : {static_cast<ZAXFeatObject*>(part), outer, inner})
        connect(feature, &ZAXFeatObject::ChildAdded, this, [&, feature](ZAXFeatObject* child) {
            announced.append(NameOf(feature) + u" gets "_qs + NameOf(child));
        });
    const auto* const leaf = qobject_cast<ZAXProbeLeaf*>(m_container->CreateInstance("ZAXProbeLeaf", inner));
    QVERIFY(leaf);
    QCOMPARE(leaf->parentOfConstruction, QByteArray("ZAXProbePart"));
    QCOMPARE(leaf->GetParent(), inner);
    QCOMPARE(part->GetChildren(), QList<ZAXFeatObject*>{outer});
    QCOMPARE(announced, QStringList(QStringLiteral("ZAXFeatFolder gets ZAXProbeLeaf")));
}

void tst_ZAXFeatContainer::refuses_data()
{
    QTest::addColumn<QByteArray>("className");
    QTest::addColumn<QString>("message");
    QTest::newRow("unknown class") << QByteArray("ZAXProbeUnknown")
                                   << "\"ZAXProbeUnknown\" is not a registered feature class.";
    QTest::newRow("no name") << QByteArray() << "\"\" is not a registered feature class.";
    QTest::newRow("class that nobody registered")
        << QByteArray("ZAXFeatObject") << "\"ZAXFeatObject\" is not a registered feature class.";
    QTest::newRow("class that is no feature")
        << QByteArray("QObject") << "\"QObject\" is not a registered feature class.";
    QTest::newRow("class without a constructor")
        << QByteArray("ZAXProbeUncreatable") << "The class ZAXProbeUncreatable has no constructor to create it by.";
}

void tst_ZAXFeatContainer::refuses()
{
    QFETCH(QByteArray, className);
    QFETCH(QString, message);
    ZAXGeoContainer::RegisterType(&QObject::staticMetaObject);
    ZAXProbePart* const parent = AddPart(*m_container, "parent");
    m_journal->Take();
    const ZAXProbeObserver observer(*m_container);
    QTest::ignoreMessage(QtWarningMsg, qPrintable(message));
    QVERIFY(!m_container->CreateInstance(className, parent));
    QTest::ignoreMessage(QtWarningMsg, qPrintable(message));
    QVERIFY(!m_container->CreateInstance(className, nullptr));
    QCOMPARE(parent->GetChildren(), QList<ZAXFeatObject*>());
    QCOMPARE(m_container->GetGeometries(), QList<ZAXGeoGeometry*>{parent});
    QCOMPARE(m_journal->Take(), QStringList());
    ZAXGeoContainer::UnregisterType(&QObject::staticMetaObject);
}

void tst_ZAXFeatContainer::refusesAParentOfAnotherDocument()
{
    ZAXFeatContainer other;
    ZAXProbePart* const parent = AddPart(other, "parent");
    QTest::ignoreMessage(QtWarningMsg, "A ZAXProbePart cannot be created under a parent of another document.");
    QVERIFY(!m_container->CreateInstance("ZAXProbePart", parent));
    QVERIFY(parent->GetChildren().isEmpty());
}

void tst_ZAXFeatContainer::refusesAClassThatCannotStandAtTheTopWithoutParent()
{
    QTest::ignoreMessage(QtWarningMsg, "A document does not allow a ZAXProbeLeaf as a child.");
    QVERIFY(!m_container->CreateInstance("ZAXProbeLeaf", nullptr));
    // It has only a constructor that takes a parent, which is how it learns of its document.
    QTest::ignoreMessage(QtWarningMsg, "The class ZAXProbeSpecialPart has no constructor to create it by.");
    QVERIFY(!m_container->CreateInstance("ZAXProbeSpecialPart", nullptr));
    QCOMPARE(m_container->GetRoots(), QList<ZAXFeatObject*>());
}

void tst_ZAXFeatContainer::refusesAClassOfTheTopUnderAParent()
{
    ZAXProbePart* const part = AddPart(*m_container, "part");
    ZAXFeatObject* const leaf = m_container->CreateInstance("ZAXProbeLeaf", part);
    QTest::ignoreMessage(QtWarningMsg, "A ZAXProbePart does not allow a ZAXProbeRoot as a child.");
    QVERIFY(!m_container->CreateInstance("ZAXProbeRoot", part));
    QTest::ignoreMessage(QtWarningMsg, "A ZAXProbeLeaf does not allow a ZAXProbePart as a child.");
    QVERIFY(!m_container->CreateInstance("ZAXProbePart", leaf));
    QCOMPARE(part->GetAllChildren(), QList<ZAXFeatObject*>{leaf});
}

void tst_ZAXFeatContainer::exceptionOfTheConstructorLeavesNothing()
{
    ZAXProbePart* const parent = AddPart(*m_container, "parent");
    int announcements = 0;
    connect(parent, &ZAXFeatObject::ChildAdded, this, [&] { ++announcements; });
    QCOMPARE(MessageOf([&] { m_container->CreateInstance("ZAXProbeStillborn", parent); }), QStringLiteral("stillborn"));
    QCOMPARE(parent->GetChildren(), QList<ZAXFeatObject*>());
    QCOMPARE(m_container->GetGeometries(), QList<ZAXGeoGeometry*>{parent});
    QCOMPARE(announcements, 0);
}

void tst_ZAXFeatContainer::exceptionOfInitializeLeavesNothing()
{
    ZAXProbePart* const parent = AddPart(*m_container, "parent");
    int announcements = 0;
    connect(parent, &ZAXFeatObject::ChildAdded, this, [&] { ++announcements; });
    m_journal->Take();
    m_journal->FailAt("Initialize");
    QCOMPARE(MessageOf([&] { m_container->CreateInstance("ZAXProbePart", parent); }),
             QStringLiteral("The probe fails: Initialize."));
    QCOMPARE(m_journal->Take().last(), QStringLiteral("destroyed"));
    QCOMPARE(parent->GetChildren(), QList<ZAXFeatObject*>());
    QCOMPARE(m_container->GetGeometries(), QList<ZAXGeoGeometry*>{parent});
    QCOMPARE(announcements, 0);
    QCOMPARE(ZAXFeatObjectPrivate::Get(*parent).openChanges, 0);
}

/// Puts itself into the list of its parent before it fails.
class FailingCompanion : public ZAXProbePart
{
    Q_OBJECT

public:
    Q_INVOKABLE explicit FailingCompanion(ZAXFeatObject* parent) : ZAXProbePart(parent) {}
    void Initialize() override
    {
        auto* const parent = qobject_cast<ZAXProbePart*>(GetParent());
        parent->companions.Add(this, false);
        parent->partner.SetPointedObject(this, false);
        throw ZAXSysException(QStringLiteral("no companion"));
    }
};

void tst_ZAXFeatContainer::exceptionOfInitializeLeavesNoItemInAList()
{
    ZAXGeoContainer::RegisterType(&FailingCompanion::staticMetaObject);
    ZAXProbePart* const parent = AddPart(*m_container, "parent");
    QCOMPARE(MessageOf([&] { m_container->CreateInstance("FailingCompanion", parent); }),
             QStringLiteral("no companion"));
    QCOMPARE(parent->GetCompanions(), QList<ZAXProbePart*>());
    QVERIFY(!parent->GetPartner());
    QCOMPARE(parent->GetChildren(), QList<ZAXFeatObject*>());
    ZAXGeoContainer::UnregisterType(&FailingCompanion::staticMetaObject);
}

void tst_ZAXFeatContainer::exceptionOfASlotLeavesTheFeatureInItsPlace()
{
    ZAXProbePart* const parent = AddPart(*m_container, "parent");
    connect(parent, &ZAXFeatObject::ChildAdded, this, [] { throw ZAXSysException(QStringLiteral("from a slot")); });
    QCOMPARE(MessageOf([&] { m_container->CreateInstance("ZAXProbePart", parent); }), QStringLiteral("from a slot"));
    QCOMPARE(parent->GetChildren().size(), 1);
    QCOMPARE(ZAXFeatObjectPrivate::Get(*parent).openChanges, 0);
}

void tst_ZAXFeatContainer::featureThatASlotRemovesIsNotReturned()
{
    ZAXProbePart* const parent = AddPart(*m_container, "parent");
    connect(parent, &ZAXFeatObject::ChildAdded, this, [](ZAXFeatObject* child) { child->Remove(); });
    QVERIFY(!m_container->CreateInstance("ZAXProbePart", parent));
    QCOMPARE(parent->GetChildren(), QList<ZAXFeatObject*>());
}

void tst_ZAXFeatContainer::rootsAreListedInOrder()
{
    ZAXProbePart* const first = AddPart(*m_container, "first");
    ZAXProbePart* const second = AddPart(*m_container, "second");
    AddPart(first, "child");
    ZAXProbePart* const third = AddPart(*m_container, "third");
    QCOMPARE(m_container->GetRoots(), QList<ZAXFeatObject*>({first, second, third}));
    second->Remove();
    QCOMPARE(m_container->GetRoots(), QList<ZAXFeatObject*>({first, third}));
    delete first;
    QCOMPARE(m_container->GetRoots(), QList<ZAXFeatObject*>{third});
}

void tst_ZAXFeatContainer::destroysItsFeaturesWithoutAnnouncingIt()
{
    ZAXProbePart* const part = AddPart(*m_container, "part");
    ZAXProbePart* const child = AddPart(part, "child");
    ZAXProbePart* const other = AddPart(*m_container, "other");
    part->companions.Add(child, true);
    other->companions.Add(child, true);
    child->partner.SetPointedObject(other, true);
    for (ZAXProbePart* feature : {part, other, child}) {
        connect(feature, &ZAXFeatObject::ChildRemoved, this,
                [] { ZAXProbeJournal::Note(QStringLiteral("announced")); });
        connect(feature, &ZAXProbePart::CompanionRemoved, this,
                [] { ZAXProbeJournal::Note(QStringLiteral("companion removed")); });
    }
    const ZAXProbeObserver observer(*m_container);
    m_journal->Take();
    m_container.reset();
    QCOMPARE(m_journal->Take(), Entries("destroyed other \n destroyed part \n destroyed child"));
}

void tst_ZAXFeatContainer::destroysRemovedFeaturesThatAreStillHeld()
{
    ZAXProbePart* const part = AddPart(*m_container, "part");
    part->AddReference();
    part->Remove();
    m_journal->Take();
    m_container.reset();
    QCOMPARE(m_journal->Take(), Entries("destroyed part"));
}

void tst_ZAXFeatContainer::castsFromAGeometryContainer()
{
    ZAXGeoContainer* const container = m_container.get();
    ZAXGeoContainer plain;
    QCOMPARE(qobject_cast<ZAXFeatContainer*>(container), m_container.get());
    QVERIFY(!qobject_cast<ZAXFeatContainer*>(&plain));
}

QTEST_GUILESS_MAIN(tst_ZAXFeatContainer)
#include "tst_ZAXFeatContainer.moc"
