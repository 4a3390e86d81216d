#include "ZAXMatRoot.h"

#include "ZAXMatTestDocument.h"
#include "ZAXMatTestListeners.h"

#include <QSignalSpy>
#include <QTest>

Q_DECLARE_METATYPE(const QMetaObject*)

namespace {

ZAXMatMaterial* CreateMaterial(ZAXTestDocument& document, const char* providerId, const char* remoteKey,
                               double thickness)
{
    ZAXMatMaterial* const material = document.CreateMaterial();
    material->SetProviderId(providerId);
    material->SetRemoteKey(remoteKey);
    material->SetThickness(thickness);
    return material;
}

ZAXMatMaterial* CreateMaterial(ZAXTestDocument& document, const QString& type, double thickness)
{
    ZAXMatMaterial* const material = document.CreateMaterial();
    material->SetMaterialType(type);
    material->SetThickness(thickness);
    return material;
}

} // namespace

class tst_ZAXMatRoot : public QObject
{
    Q_OBJECT

private slots:
    void init();

    void classDescribesItself();
    void propertyIsDescribed();
    void signalsStandInOrder();
    void constructorsStandInOrder();
    void canBeConstructedWithoutContainer();
    void isCreatedByClassName();
    void isLabelledMaterialsRoot();

    void emptyRootFindsNothing();
    void materialsAreListedInChildOrder();
    void derivedMaterialsAreListed();
    void materialsAreReadAsProperty();
    void otherChildrenAreNotListed();
    void materialsInFoldersAreFoundAndNotListed();
    void aLookUpSeesWhatChangedSinceTheLastOne();

    void materialIsFoundByOrigin_data();
    void materialIsFoundByOrigin();
    void firstOfSimilarThicknessIsFound();
    void foundInHostsOrder();
    void nullAndEmptyOriginAreTheSame();
    void materialIsFoundByType_data();
    void materialIsFoundByType();
    void typeIsComparedAsTheUserSeesIt();
    void lookupCreatesNothing();

    void childIsAllowed_data();
    void childIsAllowed();

    void additionIsAnnounced();
    void removalIsAnnouncedWhileMaterialIsWhole();
    void recreatedRootAnnouncesToo();
    void derivedMaterialsAreAnnounced();
    void otherChildrenAreNotAnnounced();
    void whatHappensBelowIsNotAnnounced();
    void moveIntoFolderIsAnnouncedAsRemoval();
    void announcementsFollowOwnSignals();

    void storesNothingOfItsOwn();
    void userCannotDeleteIt();
};

void tst_ZAXMatRoot::init()
{
    ZAXFeatLastSavedStore::SetCurrent(nullptr);
}

void tst_ZAXMatRoot::classDescribesItself()
{
    const QStringList expected{
        Text("PropertyLabel_materials=Materials"),
        Text("defaultLabel=Materials Root"),
        Text("inputProps=materials"),
        Text("outputProps="),
        Text("visProps="),
        Text("contextualActions="),
        Text("editAction="),
        Text("allowedParents="),
        Text("compatibleRoots=ZAXNestRoot"),
        Text("version=1"),
    };
    QCOMPARE(ClassInformationOf(ZAXMatRoot::staticMetaObject), expected);
    QCOMPARE(ZAXMatRoot::staticMetaObject.superClass(), &ZAXFeatRoot::staticMetaObject);
}

void tst_ZAXMatRoot::propertyIsDescribed()
{
    const QMetaObject& meta = ZAXMatRoot::staticMetaObject;
    QCOMPARE(PropertiesOf(meta), QStringList{Text("materials")});
    QCOMPARE(QByteArray(ZAXMatRoot::Property_materials), QByteArray("materials"));
    const QMetaProperty property = meta.property(meta.propertyOffset());
    QVERIFY(property.metaType() == QMetaType::fromType<QList<ZAXMatMaterial*>>());
    QVERIFY(property.isReadable());
    QVERIFY(property.isDesignable());
    QVERIFY(property.isScriptable());
    QVERIFY(property.isStored());
    QVERIFY(!property.isWritable());
    QVERIFY(!property.hasNotifySignal());
}

void tst_ZAXMatRoot::signalsStandInOrder()
{
    const QStringList expected{Text("MaterialAdded(ZAXMatMaterial* material)"),
                               Text("MaterialRemoved(ZAXMatMaterial* material)")};
    QCOMPARE(SignalsOf(ZAXMatRoot::staticMetaObject), expected);
}

void tst_ZAXMatRoot::constructorsStandInOrder()
{
    const QStringList expected{Text("ZAXMatRoot(ZAXFeatContainer*)"),
                               Text("ZAXMatRoot(ZAXGeoContainer*,ZAXGeoGeometryRef)")};
    QCOMPARE(ConstructorsOf(ZAXMatRoot::staticMetaObject), expected);
}

void tst_ZAXMatRoot::canBeConstructedWithoutContainer()
{
    const ZAXMatRoot root(static_cast<ZAXGeoContainer*>(nullptr), ZAXGeoGeometryRef());
    QVERIFY(root.GetMaterials().isEmpty());
}

void tst_ZAXMatRoot::isCreatedByClassName()
{
    ZAXTestDocument document;
    QVERIFY(document.root);
    QCOMPARE(document.container.GetRoots(), QList<ZAXFeatObject*>{document.root});
    QVERIFY(!document.root->GetParent());
    QVERIFY(!document.container.CreateInstance("ZAXMatRoot", document.root));
}

void tst_ZAXMatRoot::isLabelledMaterialsRoot()
{
    ZAXTestDocument document;
    QCOMPARE(document.root->GetLabel(), Text("Materials Root"));
    const ZAXTestTranslator translator({Text("Materials Root")});
    QCOMPARE(document.root->GetLabel(), Text("<ZAXMatRoot:Materials Root>"));
}

void tst_ZAXMatRoot::emptyRootFindsNothing()
{
    ZAXTestDocument document;
    QVERIFY(document.root->GetMaterials().isEmpty());
    QVERIFY(!document.root->GetMaterial(QByteArray(), QByteArray(), 0.5));
    QVERIFY(!document.root->GetMaterial(Text("Generic"), 0.5));
}

void tst_ZAXMatRoot::materialsAreListedInChildOrder()
{
    ZAXTestDocument document;
    ZAXMatMaterial* const first = document.CreateMaterial();
    ZAXMatMaterial* const second = document.CreateMaterial();
    QCOMPARE(document.root->GetMaterials(), QList({first, second}));
    QVERIFY(second->MoveTo(document.root, 0));
    QCOMPARE(document.root->GetMaterials(), QList({second, first}));
}

void tst_ZAXMatRoot::derivedMaterialsAreListed()
{
    ZAXTestDocument document;
    auto* const coated = new ZAXTestCoatedMaterial(document.root);
    QCOMPARE(document.root->GetMaterials(), QList<ZAXMatMaterial*>{coated});
}

void tst_ZAXMatRoot::materialsAreReadAsProperty()
{
    ZAXTestDocument document;
    ZAXMatMaterial* const material = document.CreateMaterial();
    QCOMPARE(document.root->property("materials").value<QList<ZAXMatMaterial*>>(), QList{material});
    QVERIFY(!document.root->setProperty("materials", QVariant::fromValue(QList<ZAXMatMaterial*>())));
    QCOMPARE(document.root->GetMaterials(), QList{material});
}

void tst_ZAXMatRoot::otherChildrenAreNotListed()
{
    ZAXTestDocument document;
    document.Create<ZAXFeatFolder>(document.root);
    ZAXMatMaterial* const material = document.CreateMaterial();
    document.Create<ZAXFeatFolder>(document.root);
    QCOMPARE(document.root->GetMaterials(), QList{material});
}

void tst_ZAXMatRoot::aLookUpSeesWhatChangedSinceTheLastOne()
{
    ZAXTestDocument document;
    const auto find = [&] { return document.root->GetMaterial(Text("Generic"), 0.5); };
    auto* const folder = document.Create<ZAXFeatFolder>(document.root);
    QVERIFY(!find());
    auto* const inFolder = document.Create<ZAXMatMaterial>(folder);
    QCOMPARE(find(), inFolder);
    auto* const first = document.CreateMaterial();
    QVERIFY(first->MoveTo(document.root, 0));
    QCOMPARE(find(), first);
    first->SetThickness(2);
    QCOMPARE(find(), inFolder);
    first->SetThickness(0.5);
    QCOMPARE(find(), first);
    QVERIFY(first->MoveTo(folder, -1));
    QCOMPARE(find(), inFolder);
    inFolder->Remove();
    QCOMPARE(find(), first);
    delete first;
    QVERIFY(!find());
}

void tst_ZAXMatRoot::materialsInFoldersAreFoundAndNotListed()
{
    ZAXTestDocument document;
    auto* const folder = document.Create<ZAXFeatFolder>(document.Create<ZAXFeatFolder>(document.root));
    auto* const material = document.Create<ZAXMatMaterial>(folder);
    QCOMPARE(material->GetParent(), folder);
    QVERIFY(document.root->GetMaterials().isEmpty());
    QCOMPARE(document.root->GetMaterial(QByteArray(), QByteArray(), 0.5), material);
    QCOMPARE(document.root->GetMaterial(Text("Generic"), 0.5), material);
}

void tst_ZAXMatRoot::materialIsFoundByOrigin_data()
{
    QTest::addColumn<QByteArray>("providerId");
    QTest::addColumn<QByteArray>("remoteKey");
    QTest::addColumn<double>("thickness");
    QTest::addColumn<bool>("found");
    QTest::newRow("exactly") << QByteArray("json") << QByteArray("{1}") << 2.0 << true;
    QTest::newRow("a little thinner") << QByteArray("json") << QByteArray("{1}") << 1.9991 << true;
    QTest::newRow("a little thicker") << QByteArray("json") << QByteArray("{1}") << 2.0009 << true;
    QTest::newRow("too thin") << QByteArray("json") << QByteArray("{1}") << 1.9989 << false;
    QTest::newRow("too thick") << QByteArray("json") << QByteArray("{1}") << 2.0011 << false;
    QTest::newRow("no number") << QByteArray("json") << QByteArray("{1}") << qQNaN() << false;
    QTest::newRow("another provider") << QByteArray("erp") << QByteArray("{1}") << 2.0 << false;
    QTest::newRow("provider in other case") << QByteArray("JSON") << QByteArray("{1}") << 2.0 << false;
    QTest::newRow("provider with a blank") << QByteArray("json ") << QByteArray("{1}") << 2.0 << false;
    QTest::newRow("provider with a zero byte") << QByteArray("json\0", 5) << QByteArray("{1}") << 2.0 << false;
    QTest::newRow("another key") << QByteArray("json") << QByteArray("{2}") << 2.0 << false;
    QTest::newRow("shorter key") << QByteArray("json") << QByteArray("{1") << 2.0 << false;
    QTest::newRow("no key") << QByteArray("json") << QByteArray() << 2.0 << false;
}

void tst_ZAXMatRoot::materialIsFoundByOrigin()
{
    QFETCH(const QByteArray, providerId);
    QFETCH(const QByteArray, remoteKey);
    QFETCH(const double, thickness);
    QFETCH(const bool, found);
    ZAXTestDocument document;
    CreateMaterial(document, "other", "{1}", 2.0);
    const ZAXMatMaterial* const material = CreateMaterial(document, "json", "{1}", 2.0);
    const QList<const ZAXMatMaterial*> answers{nullptr, material};
    QCOMPARE(document.root->GetMaterial(providerId, remoteKey, thickness), answers.at(found));
}

void tst_ZAXMatRoot::firstOfSimilarThicknessIsFound()
{
    ZAXTestDocument document;
    const ZAXMatMaterial* const first = CreateMaterial(document, "json", "{1}", 2.0);
    const ZAXMatMaterial* const second = CreateMaterial(document, "json", "{1}", 2.0005);
    QCOMPARE(document.root->GetMaterial("json", "{1}", 2.0003), first);
    QCOMPARE(document.root->GetMaterial("json", "{1}", 2.0012), second);
    QCOMPARE(document.root->GetMaterial(Text("Generic"), 2.0003), first);
    QCOMPARE(document.root->GetMaterial(Text("Generic"), 2.0012), second);
}

void tst_ZAXMatRoot::foundInHostsOrder()
{
    ZAXTestDocument document;
    auto* const folder = document.Create<ZAXFeatFolder>(document.root);
    document.CreateMaterial();
    auto* const inFolder = document.Create<ZAXMatMaterial>(folder);
    QCOMPARE(document.root->GetMaterial(QByteArray(), QByteArray(), 0.5), inFolder);
    QCOMPARE(document.root->GetMaterial(Text("Generic"), 0.5), inFolder);
}

void tst_ZAXMatRoot::nullAndEmptyOriginAreTheSame()
{
    ZAXTestDocument document;
    const ZAXMatMaterial* const material = CreateMaterial(document, "", "", 2.0);
    QCOMPARE(document.root->GetMaterial(QByteArray(), QByteArray(), 2.0), material);
    QCOMPARE(document.root->GetMaterial(QByteArray(""), QByteArray(""), 2.0), material);
}

void tst_ZAXMatRoot::materialIsFoundByType_data()
{
    QTest::addColumn<QString>("type");
    QTest::addColumn<double>("thickness");
    QTest::addColumn<bool>("found");
    QTest::newRow("exactly") << Text("S235") << 2.0 << true;
    QTest::newRow("a little thinner") << Text("S235") << 1.9991 << true;
    QTest::newRow("a little thicker") << Text("S235") << 2.0009 << true;
    QTest::newRow("too thin") << Text("S235") << 1.9989 << false;
    QTest::newRow("too thick") << Text("S235") << 2.0011 << false;
    QTest::newRow("other case") << Text("s235") << 2.0 << false;
    QTest::newRow("longer") << Text("S235 ") << 2.0 << false;
    QTest::newRow("none") << QString() << 2.0 << false;
}

void tst_ZAXMatRoot::materialIsFoundByType()
{
    QFETCH(const QString, type);
    QFETCH(const double, thickness);
    QFETCH(const bool, found);
    ZAXTestDocument document;
    CreateMaterial(document, Text("S355"), 2.0);
    ZAXMatMaterial* const material = CreateMaterial(document, Text("S235"), 2.0);
    // The rest of what it is plays no part.
    material->SetMaterialId(Text("S355"));
    material->SetCategory(Text("S355"));
    material->SetProviderId("json");
    material->SetRemoteKey("{1}");
    const QList<const ZAXMatMaterial*> answers{nullptr, material};
    QCOMPARE(document.root->GetMaterial(type, thickness), answers.at(found));
}

void tst_ZAXMatRoot::typeIsComparedAsTheUserSeesIt()
{
    const ZAXTestTranslator translator({Text("Generic")});
    ZAXTestDocument document;
    const ZAXMatMaterial* const material = document.CreateMaterial();
    QCOMPARE(document.root->GetMaterial(Text("<ZAXMatMaterial:Generic>"), 0.5), material);
    QVERIFY(!document.root->GetMaterial(Text("Generic"), 0.5));
}

void tst_ZAXMatRoot::lookupCreatesNothing()
{
    ZAXTestDocument document;
    const ZAXTestSignalLog log(document.root);
    QVERIFY(!document.root->GetMaterial("json", "{1}", 2.0));
    QVERIFY(!document.root->GetMaterial(Text("S235"), 2.0));
    QVERIFY(document.root->GetChildren().isEmpty());
    QCOMPARE(log.names, QStringList());
}

void tst_ZAXMatRoot::childIsAllowed_data()
{
    QTest::addColumn<const QMetaObject*>("type");
    QTest::addColumn<bool>("allowed");
    const auto row = [](const QMetaObject& type, bool allowed) { QTest::newRow(type.className()) << &type << allowed; };
    row(ZAXMatMaterial::staticMetaObject, true);
    row(ZAXTestCoatedMaterial::staticMetaObject, true);
    row(ZAXMatPackaging::staticMetaObject, false);
    row(ZAXMatRoot::staticMetaObject, false);
    row(ZAXTestPiercing::staticMetaObject, false);
    row(ZAXTestGrain::staticMetaObject, false);
    row(ZAXFeatObject::staticMetaObject, false);
    row(ZAXTestDependent::staticMetaObject, false);
}

void tst_ZAXMatRoot::childIsAllowed()
{
    QFETCH(const QMetaObject* const, type);
    QFETCH(const bool, allowed);
    ZAXTestDocument document;
    QCOMPARE(document.root->IsChildAllowed(type), allowed);
}

void tst_ZAXMatRoot::additionIsAnnounced()
{
    ZAXTestDocument document;
    QSignalSpy added(document.root, &ZAXMatRoot::MaterialAdded);
    QSignalSpy removed(document.root, &ZAXMatRoot::MaterialRemoved);
    ZAXMatMaterial* const material = document.CreateMaterial();
    QCOMPARE(added.count(), 1);
    QCOMPARE(added.constFirst().constFirst().value<ZAXMatMaterial*>(), material);
    QCOMPARE(removed.count(), 0);
}

void tst_ZAXMatRoot::removalIsAnnouncedWhileMaterialIsWhole()
{
    ZAXTestDocument document;
    ZAXMatMaterial* const material = document.CreateMaterial();
    material->SetMaterialId(Text("S 1"));
    QStringList removed;
    QObject::connect(document.root, &ZAXMatRoot::MaterialRemoved,
                     [&](ZAXMatMaterial* leaving) { removed.append(leaving->GetMaterialId()); });
    QSignalSpy added(document.root, &ZAXMatRoot::MaterialAdded);
    material->Remove();
    QCOMPARE(removed, QStringList{Text("S 1")});
    QCOMPARE(added.count(), 0);
    QVERIFY(document.root->GetMaterials().isEmpty());
}

void tst_ZAXMatRoot::recreatedRootAnnouncesToo()
{
    ZAXTestDocument document;
    auto* const root = new ZAXMatRoot(&document.container, ZAXGeoGeometryRef::FromId(100));
    const ZAXTestSignalLog log(root);
    document.Create<ZAXMatMaterial>(root)->Remove();
    QCOMPARE(log.names.filter(Text("Material")), QStringList({Text("MaterialAdded"), Text("MaterialRemoved")}));
}

void tst_ZAXMatRoot::derivedMaterialsAreAnnounced()
{
    ZAXTestDocument document;
    QSignalSpy added(document.root, &ZAXMatRoot::MaterialAdded);
    auto* const coated = new ZAXTestCoatedMaterial(document.root);
    QCOMPARE(added.count(), 0);
    coated->Initialize();
    QCOMPARE(added.count(), 1);
}

void tst_ZAXMatRoot::otherChildrenAreNotAnnounced()
{
    ZAXTestDocument document;
    const ZAXTestSignalLog log(document.root);
    document.Create<ZAXFeatFolder>(document.root)->Remove();
    QCOMPARE(log.names, QStringList({Text("ChildAdded"), Text("ChildRemoved")}));
}

void tst_ZAXMatRoot::whatHappensBelowIsNotAnnounced()
{
    ZAXTestDocument document;
    ZAXMatMaterial* const material = document.CreateMaterial();
    auto* const folder = document.Create<ZAXFeatFolder>(document.root);
    const ZAXTestSignalLog log(document.root);
    material->CreateDefaultPackaging()->Remove();
    material->GetExtension("ZAXTestPiercing", true)->Remove();
    document.Create<ZAXMatMaterial>(folder)->Remove();
    QCOMPARE(log.names, QStringList());
}

void tst_ZAXMatRoot::moveIntoFolderIsAnnouncedAsRemoval()
{
    ZAXTestDocument document;
    ZAXMatMaterial* const material = document.CreateMaterial();
    auto* const folder = document.Create<ZAXFeatFolder>(document.root);
    QSignalSpy added(document.root, &ZAXMatRoot::MaterialAdded);
    QSignalSpy removed(document.root, &ZAXMatRoot::MaterialRemoved);
    QVERIFY(material->MoveTo(folder, -1));
    QCOMPARE(removed.count(), 1);
    QCOMPARE(added.count(), 0);
    QVERIFY(material->MoveTo(document.root, -1));
    QCOMPARE(added.count(), 1);
}

void tst_ZAXMatRoot::announcementsFollowOwnSignals()
{
    ZAXTestDocument document;
    QStringList order;
    QObject::connect(document.root, &ZAXMatRoot::MaterialAdded, [&] { order.append(Text("MaterialAdded")); });
    QObject::connect(document.root, &ZAXFeatObject::ChildAdded, [&] { order.append(Text("ChildAdded")); });
    document.CreateMaterial();
    // The root connected first, when it was made.
    QCOMPARE(order, QStringList({Text("MaterialAdded"), Text("ChildAdded")}));
}

void tst_ZAXMatRoot::storesNothingOfItsOwn()
{
    ZAXTestDocument document;
    document.CreateMaterial();
    ZAXGeoStream base(&document.container);
    document.root->ZAXFeatRoot::Save(base);
    QCOMPARE(ZAXTestStored::From(*document.root), ZAXTestStored::From(base));
}

void tst_ZAXMatRoot::userCannotDeleteIt()
{
    ZAXTestDocument document;
    QVERIFY(!document.root->IsUserDeletable());
}

QTEST_GUILESS_MAIN(tst_ZAXMatRoot)
#include "tst_ZAXMatRoot.moc"
