#include "ZAXMatMaterial.h"

#include "ZAXGeoGeometryNotFoundException.h"
#include "ZAXHostDuplicator.h"
#include "ZAXMatTestDocument.h"
#include "ZAXMatTestListeners.h"

#include <QSet>
#include <QSignalSpy>
#include <QTest>

#include <algorithm>
#include <functional>

using Write = std::function<void(ZAXMatMaterial&)>;
using Read = std::function<QVariant(const ZAXMatMaterial&)>;
Q_DECLARE_METATYPE(Write)
Q_DECLARE_METATYPE(Read)
Q_DECLARE_METATYPE(const QMetaObject*)

namespace {

/// The fields of a material in today's layout.
ZAXTestStored Today(ZAXFeatContainer& container, const QList<ZAXGeoGeometryRef>& extensions)
{
    ZAXGeoStream stream(&container);
    stream << Text("Steel") << true;
    stream << Text("S 1") << Text("S235") << 3.0 << Text("Structural") << 7.85 << Text("from the rack")
           << QByteArray("json") << QByteArray("{key}") << QColor(1, 2, 3);
    stream << static_cast<qint32>(extensions.size());
    for (const ZAXGeoGeometryRef& extension : extensions)
        stream << extension;
    stream << true;
    return ZAXTestStored::From(stream);
}

/// The fields of a material in the layout of version 1 to 3, as far as version 1 reads them.
ZAXTestStored Version1(ZAXFeatContainer& container, const ZAXGeoGeometryRef& active)
{
    ZAXGeoStream stream(&container);
    stream << Text("Steel") << true;
    stream << Text("S 1") << Text("S235") << 3.0 << Text("Structural") << 7.85 << Text("from the rack") << active;
    return ZAXTestStored::From(stream);
}

const QHash<QByteArray, int> version1{{"ZAXFeatObject", 1}, {"ZAXMatMaterial", 1}};

/// Whether each of \a packaging is active, in order.
QList<bool> ActivityOf(const QList<ZAXMatPackaging*>& packaging)
{
    QList<bool> active;
    for (const ZAXMatPackaging* each : packaging)
        active.append(each->IsActive());
    return active;
}

ZAXMatMaterial* CopyOf(ZAXMatMaterial* material)
{
    return qobject_cast<ZAXMatMaterial*>(ZAXHostDuplicator::Duplicate(material));
}

} // namespace

class tst_ZAXMatMaterial : public QObject
{
    Q_OBJECT

private slots:
    void init();

    void classDescribesItself();
    void propertiesStandInOrder();
    void propertyIsDescribed_data();
    void propertyIsDescribed();
    void listOfExtensionsCannotBeWritten();
    void signalsStandInOrder();
    void constructorsStandInOrder();
    void propertyNamesAreExported();

    void parentMustBeMaterialsRoot_data();
    void parentMustBeMaterialsRoot();
    void parentOfDerivedClassMustNotBeNull();
    void standsUnderItsRootOnceConstructed();
    void newMaterialHasDefaults();
    void newMaterialHasNoIdBeforeItIsInitialized();
    void newMaterialsDifferInColor();
    void newMaterialIsAnnouncedOnceWithItsId();
    void canBeConstructedWithoutContainer();
    void startsWithLastSavedValues();
    void doesNotStartWithOtherValuesLastSaved();
    void idIsDerivedAndNotTakenOver();
    void recreatedMaterialKeepsDefaultsWhateverWasLastSaved();

    void setterStoresAndNotifiesOnce_data();
    void setterStoresAndNotifiesOnce();
    void propertyIsWrittenBySetter_data();
    void propertyIsWrittenBySetter();
    void onlyMarkedPropertiesAreRemembered_data();
    void onlyMarkedPropertiesAreRemembered();
    void numberWithoutUnitIsWritten_data();
    void numberWithoutUnitIsWritten();
    void unusableValueIsNotWritten();

    void idFollowsLabelAndThickness();
    void typeAndThicknessRenewTheId_data();
    void typeAndThicknessRenewTheId();
    void unchangedTypeAndThicknessRenewTheIdToo();
    void otherSettersDoNotRenewTheId_data();
    void otherSettersDoNotRenewTheId();
    void customizedIdStays();
    void endOfCustomizationWaitsForTheNextRenewal();
    void initializeRenewsTheId();

    void idIsLocalized_data();
    void idIsLocalized();
    void genericTypeIsTranslatedWhenRead();
    void defaultCategoryIsTranslatedWhenMade();
    void miscCategoryIsTranslatedWhenRead();
    void propertiesAreReadLocalized();
    void storedTextsAreSaved();

    void packagingIsListedInChildOrder();
    void activePackagingIsListedInChildOrder();
    void defaultPackagingIsTheFirstActiveOne();
    void defaultPackagingIsMadeWhenNoneIsActive();

    void childIsAllowed_data();
    void childIsAllowed();
    void materialWithDependentsCannotBeDeletedByUser();
    void ownListsDoNotKeepUserFromDeleting();

    void validation_data();
    void validation();
    void otherValuesAreNeverInvalid();
    void oldMessagesAreCleared();

    void copiesAreNumbered();
    void copyOfCopyIsNamedAfterCopy();
    void copyIsNamedVerbatim_data();
    void copyIsNamedVerbatim();
    void namesInAnotherFolderAreFreeToTake();
    void caseMattersInNamesOfCopies();
    void copyIsNamedInTheUsersLanguage();
    void copyOfCustomizedMaterialStaysCustomized();
    void copiesDifferInColor();
    void copyLosesItsLinkToTheCatalogue();
    void copyIsChangedInThisOrder();
    void copyWithoutRemoteKeyKeepsItsProvider();
    void copyListsItsOwnExtensions();

    void loadKeepsTheStoredId();
    void loadNotifiesChangesOnly();
    void loadRemembersLikeSetters();
    void loadReplacesTheListOfExtensions();
    void loadMapsReferences();
    void loadKeepsEmptyItems();
    void loadRefusesExtensionThatIsNone_data();
    void loadRefusesExtensionThatIsNone();
    void loadTakesNoExtensionsForCountBelowOne();
    void loadAsksForTheVersionOfItsOwnClass();

    void oldActivePackagingIsActivated();
    void oldActivePackagingIsMapped();
    void firstPackagingIsActivatedInstead_data();
    void firstPackagingIsActivatedInstead();
    void noPackagingIsActivatedWhereThereIsNone();
    void oldActivePackagingIsActivatedOnce();
    void noPackagingIsActivatedForNewerDocuments();
    void missingExtensionsAreListedAgain();
    void completeListIsLeftAlone();
    void emptyItemsSurviveEndOfLoad();
    void rebuiltListTakesLeaveOfOldItemsFirst();

    void extensionIsNotCreatedUnasked();
    void extensionIsCreatedOnce();
    void extensionIsAddedAfterItIsAChild();
    void extensionsAreFoundByExactClassName_data();
    void extensionsAreFoundByExactClassName();
    void firstListedExtensionIsFound();
    void emptyItemsSurviveLookup();
    void otherTypesAreNoExtensions_data();
    void otherTypesAreNoExtensions();
    void featureOfAnotherKindStays();
    void removedExtensionLeavesTheList();
};

void tst_ZAXMatMaterial::init()
{
    ZAXFeatLastSavedStore::SetCurrent(nullptr);
}

void tst_ZAXMatMaterial::classDescribesItself()
{
    const QStringList expected{
        Text("defaultLabel=Material"),
        Text("inputProps=materialType thickness category density comment materialExtensions"),
        Text("outputProps="),
        Text("visProps="),
        Text("contextualActions="),
        Text("editAction="),
        Text("allowedParents=ZAXMatRoot"),
        Text("version=7"),
        Text("PropertyLabel_materialId=Material ID"),
        Text("PropertyLabel_isMaterialIdCustomized=Is Material ID Customized"),
        Text("PropertyLabel_materialType=Material Type"),
        Text("PropertyLabel_thickness=Thickness"),
        Text("PropertyLabel_category=Category"),
        Text("PropertyLabel_density=Density"),
        Text("PropertyLabel_comment=Comment"),
        Text("PropertyLabel_providerId=Provider"),
        Text("PropertyLabel_remoteKey=Remote Material Key"),
        Text("PropertyLabel_nestingColor=Nesting Color"),
        Text("PropertyLabel_materialExtensions=Material Extensions"),
    };
    QCOMPARE(ClassInformationOf(ZAXMatMaterial::staticMetaObject), expected);
    QCOMPARE(ZAXMatMaterial::staticMetaObject.superClass(), &ZAXFeatObject::staticMetaObject);
}

void tst_ZAXMatMaterial::propertiesStandInOrder()
{
    const QStringList expected{Text("materialId"),        Text("isMaterialIdCustomized"),
                               Text("materialType"),      Text("thickness"),
                               Text("category"),          Text("density"),
                               Text("comment"),           Text("providerId"),
                               Text("remoteKey"),         Text("nestingColor"),
                               Text("materialExtensions")};
    QCOMPARE(PropertiesOf(ZAXMatMaterial::staticMetaObject), expected);
}

void tst_ZAXMatMaterial::propertyIsDescribed_data()
{
    QTest::addColumn<QMetaType>("type");
    QTest::addColumn<bool>("writable");
    QTest::addColumn<QByteArray>("notifySignal");
    const auto row = [](const char* property, QMetaType type, bool writable, const char* notifySignal) {
        QTest::newRow(property) << type << writable << QByteArray(notifySignal);
    };
    row("materialId", QMetaType::fromType<QString>(), true, "MaterialIdChanged(QString)");
    row("isMaterialIdCustomized", QMetaType::fromType<bool>(), true, "MaterialIdCustomizedChanged(bool)");
    row("materialType", QMetaType::fromType<QString>(), true, "MaterialTypeChanged(QString)");
    row("thickness", QMetaType::fromType<ZAXSysLengthValue>(), true, "ThicknessChanged(double)");
    row("category", QMetaType::fromType<QString>(), true, "CategoryChanged(QString)");
    row("density", QMetaType::fromType<ZAXSysDensityValue>(), true, "DensityChanged(double)");
    row("comment", QMetaType::fromType<QString>(), true, "CommentChanged(QString)");
    row("providerId", QMetaType::fromType<QByteArray>(), true, "ProviderIdChanged(QByteArray)");
    row("remoteKey", QMetaType::fromType<QByteArray>(), true, "RemoteKeyChanged(QByteArray)");
    row("nestingColor", QMetaType::fromType<QColor>(), true, "NestingColorChanged(QColor)");
    row("materialExtensions", QMetaType::fromType<QList<ZAXMatMaterialExtension*>>(), false, "");
}

void tst_ZAXMatMaterial::propertyIsDescribed()
{
    QFETCH(const QMetaType, type);
    QFETCH(const bool, writable);
    QFETCH(const QByteArray, notifySignal);
    const QMetaObject& meta = ZAXMatMaterial::staticMetaObject;
    const QMetaProperty property = meta.property(meta.indexOfProperty(QTest::currentDataTag()));
    QVERIFY(property.metaType() == type);
    QVERIFY(property.isReadable());
    QVERIFY(property.isDesignable());
    QVERIFY(property.isScriptable());
    QVERIFY(property.isStored());
    QCOMPARE(property.isWritable(), writable);
    QCOMPARE(property.notifySignal().methodSignature(), notifySignal);
}

void tst_ZAXMatMaterial::listOfExtensionsCannotBeWritten()
{
    ZAXTestDocument document;
    ZAXMatMaterial* const material = document.CreateMaterial();
    const QList<ZAXMatMaterialExtension*> extensions{material->GetExtension("ZAXTestPiercing", true)};
    QVERIFY(!document.CreateMaterial()->setProperty("materialExtensions", QVariant::fromValue(extensions)));
    QCOMPARE(material->property("materialExtensions").value<QList<ZAXMatMaterialExtension*>>(), extensions);
}

void tst_ZAXMatMaterial::signalsStandInOrder()
{
    const QStringList expected{
        Text("MaterialIdChanged(QString id)"),
        Text("MaterialIdCustomizedChanged(bool customized)"),
        Text("MaterialTypeChanged(QString type)"),
        Text("ThicknessChanged(double thickness)"),
        Text("CategoryChanged(QString category)"),
        Text("DensityChanged(double density)"),
        Text("CommentChanged(QString comment)"),
        Text("ProviderIdChanged(QByteArray id)"),
        Text("RemoteKeyChanged(QByteArray key)"),
        Text("NestingColorChanged(QColor color)"),
        Text("MaterialExtensionAdded(ZAXMatMaterialExtension* materialExtension)"),
        Text("MaterialExtensionRemoved(ZAXMatMaterialExtension* materialExtension)"),
    };
    QCOMPARE(SignalsOf(ZAXMatMaterial::staticMetaObject), expected);
}

void tst_ZAXMatMaterial::constructorsStandInOrder()
{
    const QStringList expected{Text("ZAXMatMaterial(ZAXGeoContainer*,ZAXGeoGeometryRef)"),
                               Text("ZAXMatMaterial(ZAXFeatObject*)")};
    QCOMPARE(ConstructorsOf(ZAXMatMaterial::staticMetaObject), expected);
}

void tst_ZAXMatMaterial::propertyNamesAreExported()
{
    const QStringList names{
        QLatin1String(ZAXMatMaterial::Property_materialId),
        QLatin1String(ZAXMatMaterial::Property_isMaterialIdCustomized),
        QLatin1String(ZAXMatMaterial::Property_materialType),
        QLatin1String(ZAXMatMaterial::Property_thickness),
        QLatin1String(ZAXMatMaterial::Property_category),
        QLatin1String(ZAXMatMaterial::Property_density),
        QLatin1String(ZAXMatMaterial::Property_comment),
        QLatin1String(ZAXMatMaterial::Property_providerId),
        QLatin1String(ZAXMatMaterial::Property_remoteKey),
        QLatin1String(ZAXMatMaterial::Property_nestingColor),
        QLatin1String(ZAXMatMaterial::Property_materialExtensions),
    };
    QCOMPARE(names, PropertiesOf(ZAXMatMaterial::staticMetaObject));
}

void tst_ZAXMatMaterial::parentMustBeMaterialsRoot_data()
{
    QTest::addColumn<QByteArray>("parentClass");
    QTest::newRow("material") << QByteArray("ZAXMatMaterial");
    QTest::newRow("folder under the root") << QByteArray("ZAXFeatFolder");
    QTest::newRow("none") << QByteArray();
}

void tst_ZAXMatMaterial::parentMustBeMaterialsRoot()
{
    QFETCH(const QByteArray, parentClass);
    ZAXTestDocument document;
    ZAXFeatObject* const parent =
        parentClass.isEmpty() ? nullptr : document.container.CreateInstance(parentClass, document.root);
    const auto before = document.container.GetGeometries();
    QCOMPARE(MessageThrownBy([parent] { delete new ZAXMatMaterial(parent); }),
             Text("A material needs a materials root as its parent."));
    QCOMPARE(document.container.GetGeometries(), before);
}

void tst_ZAXMatMaterial::parentOfDerivedClassMustNotBeNull()
{
    QCOMPARE(MessageThrownBy([] { delete new ZAXTestCoatedMaterial(static_cast<ZAXMatRoot*>(nullptr)); }),
             Text("A material needs a materials root as its parent."));
}

void tst_ZAXMatMaterial::standsUnderItsRootOnceConstructed()
{
    ZAXTestDocument document;
    auto* const first = new ZAXMatMaterial(static_cast<ZAXFeatObject*>(document.root));
    auto* const second = new ZAXTestCoatedMaterial(document.root);
    QCOMPARE(document.root->GetMaterials(), QList<ZAXMatMaterial*>({first, second}));
    QCOMPARE(first->GetParent(), document.root);
    QCOMPARE(first->GetContainer(), &document.container);
}

void tst_ZAXMatMaterial::newMaterialHasDefaults()
{
    const ZAXTestTranslator translator({Text("Generic"), Text("Metal")});
    ZAXTestDocument document;
    const ZAXMatMaterial* const material = document.CreateMaterial();
    QCOMPARE(material->GetMaterialId(), Text("Material - 0.5 mm"));
    QCOMPARE(material->isMaterialIdCustomized(), false);
    QCOMPARE(material->GetMaterialType(), Text("<ZAXMatMaterial:Generic>"));
    QCOMPARE(material->GetThickness(), 0.5);
    QCOMPARE(material->GetCategory(), Text("<ZAXMatMaterialPrivate:Metal>"));
    QCOMPARE(material->GetDensity(), 0.1);
    QCOMPARE(material->GetComment(), QString());
    QCOMPARE(material->GetProviderId(), QByteArray());
    QCOMPARE(material->GetRemoteKey(), QByteArray());
    QCOMPARE(material->GetNestingColor().alpha(), 255);
    QCOMPARE(material->GetNestingColor().spec(), QColor::Rgb);
    QVERIFY(material->GetExtensions().isEmpty());
    QVERIFY(material->GetPackaging().isEmpty());
    QVERIFY(material->GetActivePackaging().isEmpty());
}

void tst_ZAXMatMaterial::newMaterialHasNoIdBeforeItIsInitialized()
{
    ZAXTestDocument document;
    const auto* const material = new ZAXMatMaterial(static_cast<ZAXFeatObject*>(document.root));
    QCOMPARE(material->GetMaterialId(), QString());
}

void tst_ZAXMatMaterial::newMaterialsDifferInColor()
{
    ZAXTestDocument document;
    QSet<QRgb> colors;
    for (int i = 0; i < 20; ++i)
        colors.insert(document.CreateMaterial()->GetNestingColor().rgba());
    QVERIFY(colors.size() > 10);
}

void tst_ZAXMatMaterial::newMaterialIsAnnouncedOnceWithItsId()
{
    ZAXTestDocument document;
    QStringList ids;
    QObject::connect(document.root, &ZAXMatRoot::MaterialAdded,
                     [&](ZAXMatMaterial* material) { ids.append(material->GetMaterialId()); });
    document.CreateMaterial();
    QCOMPARE(ids, QStringList{Text("Material - 0.5 mm")});
}

void tst_ZAXMatMaterial::canBeConstructedWithoutContainer()
{
    const ZAXMatMaterial material(static_cast<ZAXGeoContainer*>(nullptr), ZAXGeoGeometryRef());
    QCOMPARE(material.GetThickness(), 0.5);
    QCOMPARE(material.GetContainer(), nullptr);
}

void tst_ZAXMatMaterial::startsWithLastSavedValues()
{
    ZAXTestDocument document;
    ZAXMatMaterial* const first = document.CreateMaterial();
    first->SetMaterialType(Text("1.4301"));
    first->SetThickness(1.5);
    first->SetCategory(Text("Stainless"));
    first->SetDensity(7.9);
    first->SetComment(Text("first"));
    first->SetProviderId("json");
    first->SetRemoteKey("{1}");
    first->SetMaterialIdCustomized(true);
    first->SetMaterialId(Text("first"));
    const ZAXMatMaterial* const next = document.CreateMaterial();
    QCOMPARE(next->GetMaterialType(), Text("1.4301"));
    QCOMPARE(next->GetThickness(), 1.5);
    QCOMPARE(next->GetCategory(), Text("Stainless"));
    QCOMPARE(next->GetDensity(), 7.9);
    QCOMPARE(next->GetMaterialId(), Text("Material - 1.5 mm"));
    QCOMPARE(next->isMaterialIdCustomized(), false);
    QCOMPARE(next->GetComment(), QString());
    QCOMPARE(next->GetProviderId(), QByteArray());
    QCOMPARE(next->GetRemoteKey(), QByteArray());
}

void tst_ZAXMatMaterial::doesNotStartWithOtherValuesLastSaved()
{
    ZAXTestLastSavedStore store;
    store.SetValue("ZAXMatMaterial", "materialId", Text("old"));
    store.SetValue("ZAXMatMaterial", "isMaterialIdCustomized", true);
    store.SetValue("ZAXMatMaterial", "comment", Text("old"));
    store.SetValue("ZAXMatMaterial", "providerId", QByteArray("old"));
    store.SetValue("ZAXMatMaterial", "remoteKey", QByteArray("old"));
    store.SetValue("ZAXMatMaterial", "nestingColor", QColor(1, 2, 3, 4));
    ZAXTestDocument document;
    const ZAXMatMaterial* const material = document.CreateMaterial();
    QCOMPARE(material->GetMaterialId(), Text("Material - 0.5 mm"));
    QCOMPARE(material->isMaterialIdCustomized(), false);
    QCOMPARE(material->GetComment(), QString());
    QCOMPARE(material->GetProviderId(), QByteArray());
    QCOMPARE(material->GetRemoteKey(), QByteArray());
    QCOMPARE(material->GetNestingColor().alpha(), 255);
}

void tst_ZAXMatMaterial::idIsDerivedAndNotTakenOver()
{
    ZAXTestLastSavedStore store;
    store.SetValue("ZAXMatMaterial", "materialId", Text("Material - 0.5 mm"));
    ZAXTestDocument document;
    auto* const material = new ZAXMatMaterial(static_cast<ZAXFeatObject*>(document.root));
    QSignalSpy spy(material, &ZAXMatMaterial::MaterialIdChanged);
    material->Initialize();
    QCOMPARE(spy.count(), 1);
}

void tst_ZAXMatMaterial::recreatedMaterialKeepsDefaultsWhateverWasLastSaved()
{
    ZAXTestDocument document;
    document.CreateMaterial()->SetThickness(9.0);
    auto* const material = document.Recreate<ZAXMatMaterial>(100, document.root);
    material->EndStateLoad();
    QCOMPARE(material->GetThickness(), 0.5);
    QCOMPARE(material->GetMaterialId(), QString());
}

void tst_ZAXMatMaterial::setterStoresAndNotifiesOnce_data()
{
    QTest::addColumn<Write>("write");
    QTest::addColumn<Read>("read");
    QTest::addColumn<QVariant>("value");
    const auto row = [](const char* property, const Write& write, const Read& read, const QVariant& value) {
        QTest::newRow(property) << write << read << value;
    };
    using M = ZAXMatMaterial;
    row(
        "materialId", [](M& m) { m.SetMaterialId(Text("S 1")); }, [](const M& m) { return m.GetMaterialId(); },
        Text("S 1"));
    row(
        "isMaterialIdCustomized", [](M& m) { m.SetMaterialIdCustomized(true); },
        [](const M& m) { return m.isMaterialIdCustomized(); }, true);
    row(
        "materialType", [](M& m) { m.SetMaterialType(Text("S235")); }, [](const M& m) { return m.GetMaterialType(); },
        Text("S235"));
    row(
        "thickness", [](M& m) { m.SetThickness(-2.5); }, [](const M& m) { return m.GetThickness(); }, -2.5);
    row(
        "category", [](M& m) { m.SetCategory(Text("Wood")); }, [](const M& m) { return m.GetCategory(); },
        Text("Wood"));
    row(
        "density", [](M& m) { m.SetDensity(7.85); }, [](const M& m) { return m.GetDensity(); }, 7.85);
    row(
        "comment", [](M& m) { m.SetComment(Text("ø")); }, [](const M& m) { return m.GetComment(); }, Text("ø"));
    row(
        "providerId", [](M& m) { m.SetProviderId("json"); }, [](const M& m) { return m.GetProviderId(); },
        QByteArray("json"));
    row(
        "remoteKey", [](M& m) { m.SetRemoteKey("{1}"); }, [](const M& m) { return m.GetRemoteKey(); },
        QByteArray("{1}"));
    row(
        "nestingColor", [](M& m) { m.SetNestingColor(QColor(1, 2, 3, 4)); },
        [](const M& m) { return m.GetNestingColor(); }, QColor(1, 2, 3, 4));
}

void tst_ZAXMatMaterial::setterStoresAndNotifiesOnce()
{
    QFETCH(const Write, write);
    QFETCH(const Read, read);
    QFETCH(const QVariant, value);
    ZAXTestDocument document;
    ZAXMatMaterial* const material = document.CreateMaterial();
    const QMetaObject& meta = ZAXMatMaterial::staticMetaObject;
    QSignalSpy spy(material, meta.property(meta.indexOfProperty(QTest::currentDataTag())).notifySignal());
    write(*material);
    QCOMPARE(read(*material), value);
    QCOMPARE(spy.count(), 1);
    QCOMPARE(spy.constFirst().constFirst(), value);
    const ZAXTestSignalLog log(material);
    write(*material);
    QCOMPARE(log.names, QStringList());
}

void tst_ZAXMatMaterial::propertyIsWrittenBySetter_data()
{
    QTest::addColumn<QVariant>("value");
    QTest::addColumn<QStringList>("raised");
    QTest::newRow("materialId") << QVariant(Text("S 1")) << QStringList{Text("MaterialIdChanged")};
    QTest::newRow("isMaterialIdCustomized") << QVariant(true) << QStringList{Text("MaterialIdCustomizedChanged")};
    QTest::newRow("materialType") << QVariant(Text("S235"))
                                  << QStringList{Text("MaterialTypeChanged"), Text("MaterialIdChanged")};
    QTest::newRow("thickness") << QVariant::fromValue(ZAXSysLengthValue(2.5))
                               << QStringList{Text("ThicknessChanged"), Text("MaterialIdChanged")};
    QTest::newRow("category") << QVariant(Text("Wood")) << QStringList{Text("CategoryChanged")};
    QTest::newRow("density") << QVariant::fromValue(ZAXSysDensityValue(7.85)) << QStringList{Text("DensityChanged")};
    QTest::newRow("comment") << QVariant(Text("ø")) << QStringList{Text("CommentChanged")};
    QTest::newRow("providerId") << QVariant(QByteArray("json")) << QStringList{Text("ProviderIdChanged")};
    QTest::newRow("remoteKey") << QVariant(QByteArray("{1}")) << QStringList{Text("RemoteKeyChanged")};
    QTest::newRow("nestingColor") << QVariant(QColor(1, 2, 3, 4)) << QStringList{Text("NestingColorChanged")};
}

void tst_ZAXMatMaterial::propertyIsWrittenBySetter()
{
    QFETCH(const QVariant, value);
    QFETCH(const QStringList, raised);
    ZAXTestDocument document;
    ZAXMatMaterial* const material = document.CreateMaterial();
    // The ID then has something to renew itself for.
    material->SetMaterialId(Text("some other"));
    const ZAXTestSignalLog log(material);
    QVERIFY(material->setProperty(QTest::currentDataTag(), value));
    QCOMPARE(material->property(QTest::currentDataTag()), value);
    QCOMPARE(log.names, raised);
}

void tst_ZAXMatMaterial::onlyMarkedPropertiesAreRemembered_data()
{
    QTest::addColumn<QVariant>("value");
    QTest::addColumn<QStringList>("remembered");
    QTest::newRow("materialId") << QVariant(Text("S 1")) << QStringList();
    QTest::newRow("isMaterialIdCustomized") << QVariant(true) << QStringList();
    QTest::newRow("materialType") << QVariant(Text("S235")) << QStringList{Text("ZAXMatMaterial.materialType = S235")};
    QTest::newRow("thickness") << QVariant::fromValue(ZAXSysLengthValue(2.5))
                               << QStringList{Text("ZAXMatMaterial.thickness = 2.5")};
    QTest::newRow("category") << QVariant(Text("Wood")) << QStringList{Text("ZAXMatMaterial.category = Wood")};
    QTest::newRow("density") << QVariant::fromValue(ZAXSysDensityValue(7.5))
                             << QStringList{Text("ZAXMatMaterial.density = 7.5")};
    QTest::newRow("comment") << QVariant(Text("ø")) << QStringList();
    QTest::newRow("providerId") << QVariant(QByteArray("json")) << QStringList();
    QTest::newRow("remoteKey") << QVariant(QByteArray("{1}")) << QStringList();
    QTest::newRow("nestingColor") << QVariant(QColor(1, 2, 3, 4)) << QStringList();
}

void tst_ZAXMatMaterial::onlyMarkedPropertiesAreRemembered()
{
    QFETCH(const QVariant, value);
    QFETCH(const QStringList, remembered);
    ZAXTestLastSavedStore store;
    ZAXTestDocument document;
    ZAXMatMaterial* const material = document.CreateMaterial();
    QCOMPARE(store.noted, QStringList());
    material->setProperty(QTest::currentDataTag(), value);
    material->setProperty(QTest::currentDataTag(), value);
    QCOMPARE(store.noted, remembered);
}

void tst_ZAXMatMaterial::numberWithoutUnitIsWritten_data()
{
    QTest::addColumn<QVariant>("value");
    QTest::addColumn<double>("thickness");
    QTest::newRow("whole number, as JSON gives it") << QVariant(2LL) << 2.0;
    QTest::newRow("number") << QVariant(0.75) << 0.75;
    QTest::newRow("text with a unit") << QVariant(Text("0.5 in")) << 12.7;
}

void tst_ZAXMatMaterial::numberWithoutUnitIsWritten()
{
    QFETCH(const QVariant, value);
    QFETCH(const double, thickness);
    ZAXTestDocument document;
    ZAXMatMaterial* const material = document.CreateMaterial();
    QSignalSpy spy(material, &ZAXMatMaterial::ThicknessChanged);
    QVERIFY(material->setProperty("thickness", value));
    QCOMPARE(material->GetThickness(), thickness);
    QCOMPARE(spy.constFirst().constFirst().toDouble(), thickness);
}

void tst_ZAXMatMaterial::unusableValueIsNotWritten()
{
    ZAXTestDocument document;
    ZAXMatMaterial* const material = document.CreateMaterial();
    const ZAXTestSignalLog log(material);
    QVERIFY(!material->setProperty("thickness", Text("7.85 g/cm³")));
    QVERIFY(!material->setProperty("density", Text("heavy")));
    QCOMPARE(material->GetThickness(), 0.5);
    QCOMPARE(material->GetDensity(), 0.1);
    QCOMPARE(log.names, QStringList());
}

void tst_ZAXMatMaterial::idFollowsLabelAndThickness()
{
    ZAXTestDocument document;
    ZAXMatMaterial* const material = document.CreateMaterial();
    material->SetLabel(Text("Steel"));
    QCOMPARE(material->GetMaterialId(), Text("Material - 0.5 mm"));
    material->UpdateMaterialId();
    QCOMPARE(material->GetMaterialId(), Text("Steel - 0.5 mm"));
    material->SetThickness(2.0);
    QCOMPARE(material->GetMaterialId(), Text("Steel - 2 mm"));
}

void tst_ZAXMatMaterial::typeAndThicknessRenewTheId_data()
{
    QTest::addColumn<Write>("write");
    QTest::addColumn<QString>("id");
    QTest::newRow("type") << Write([](ZAXMatMaterial& m) { m.SetMaterialType(Text("S235")); })
                          << Text("Material - 0.5 mm");
    QTest::newRow("thickness") << Write([](ZAXMatMaterial& m) { m.SetThickness(2.0); }) << Text("Material - 2 mm");
}

void tst_ZAXMatMaterial::typeAndThicknessRenewTheId()
{
    QFETCH(const Write, write);
    QFETCH(const QString, id);
    ZAXTestDocument document;
    ZAXMatMaterial* const material = document.CreateMaterial();
    material->SetMaterialId(Text("some other"));
    QSignalSpy spy(material, &ZAXMatMaterial::MaterialIdChanged);
    write(*material);
    QCOMPARE(material->GetMaterialId(), id);
    QCOMPARE(spy.count(), 1);
    QCOMPARE(spy.constFirst().constFirst().toString(), id);
}

void tst_ZAXMatMaterial::unchangedTypeAndThicknessRenewTheIdToo()
{
    ZAXTestDocument document;
    ZAXMatMaterial* const material = document.CreateMaterial();
    material->SetLabel(Text("Steel"));
    material->SetThickness(0.5);
    QCOMPARE(material->GetMaterialId(), Text("Steel - 0.5 mm"));
    material->SetLabel(Text("Tin"));
    material->SetMaterialType(Text("Generic"));
    QCOMPARE(material->GetMaterialId(), Text("Tin - 0.5 mm"));
}

void tst_ZAXMatMaterial::otherSettersDoNotRenewTheId_data()
{
    QTest::addColumn<QVariant>("value");
    QTest::newRow("isMaterialIdCustomized") << QVariant(true);
    QTest::newRow("category") << QVariant(Text("Wood"));
    QTest::newRow("density") << QVariant(7.85);
    QTest::newRow("comment") << QVariant(Text("ø"));
    QTest::newRow("providerId") << QVariant(QByteArray("json"));
    QTest::newRow("remoteKey") << QVariant(QByteArray("{1}"));
    QTest::newRow("nestingColor") << QVariant(QColor(1, 2, 3, 4));
}

void tst_ZAXMatMaterial::otherSettersDoNotRenewTheId()
{
    QFETCH(const QVariant, value);
    ZAXTestDocument document;
    ZAXMatMaterial* const material = document.CreateMaterial();
    material->SetMaterialId(Text("some other"));
    QVERIFY(material->setProperty(QTest::currentDataTag(), value));
    QCOMPARE(material->GetMaterialId(), Text("some other"));
}

void tst_ZAXMatMaterial::customizedIdStays()
{
    ZAXTestDocument document;
    ZAXMatMaterial* const material = document.CreateMaterial();
    material->SetMaterialIdCustomized(true);
    material->SetMaterialId(Text("mine"));
    material->SetThickness(2.0);
    material->SetMaterialType(Text("S235"));
    material->UpdateMaterialId();
    material->Initialize();
    QCOMPARE(material->GetMaterialId(), Text("mine"));
}

void tst_ZAXMatMaterial::endOfCustomizationWaitsForTheNextRenewal()
{
    ZAXTestDocument document;
    ZAXMatMaterial* const material = document.CreateMaterial();
    material->SetMaterialIdCustomized(true);
    material->SetMaterialId(Text("mine"));
    material->SetMaterialIdCustomized(false);
    QCOMPARE(material->GetMaterialId(), Text("mine"));
    material->SetThickness(0.5);
    QCOMPARE(material->GetMaterialId(), Text("Material - 0.5 mm"));
}

void tst_ZAXMatMaterial::initializeRenewsTheId()
{
    ZAXTestDocument document;
    ZAXMatMaterial* const material = document.CreateMaterial();
    material->SetMaterialId(Text("some other"));
    material->Initialize();
    QCOMPARE(material->GetMaterialId(), Text("Material - 0.5 mm"));
}

void tst_ZAXMatMaterial::idIsLocalized_data()
{
    QTest::addColumn<QString>("stored");
    QTest::addColumn<QString>("given");
    const QString stem = Text("<ZAXMatMaterial:Material ID>");
    QTest::newRow("numbered") << Text("Material ID.7") << stem + Text(".7");
    QTest::newRow("nothing behind the dot") << Text("Material ID.") << stem + Text(".");
    QTest::newRow("twice") << Text("Material ID.Material ID") << stem + Text(".") + stem;
    QTest::newRow("no dot") << Text("Material ID") << Text("Material ID");
    QTest::newRow("two dots") << Text("Material ID.7.1") << Text("Material ID.7.1");
    QTest::newRow("other case") << Text("material id.7") << Text("material id.7");
    QTest::newRow("more before") << Text("My Material ID.7") << Text("My Material ID.7");
    QTest::newRow("more between") << Text("Material ID 2.7") << Text("Material ID 2.7");
    QTest::newRow("dot only") << Text(".") << Text(".");
    QTest::newRow("empty") << QString() << QString();
}

void tst_ZAXMatMaterial::idIsLocalized()
{
    QFETCH(const QString, stored);
    QFETCH(const QString, given);
    const ZAXTestTranslator translator({Text("Material ID")});
    ZAXTestDocument document;
    ZAXMatMaterial* const material = document.CreateMaterial();
    material->SetMaterialId(stored);
    QCOMPARE(material->GetMaterialId(), given);
}

void tst_ZAXMatMaterial::genericTypeIsTranslatedWhenRead()
{
    ZAXTestDocument document;
    ZAXMatMaterial* const material = document.CreateMaterial();
    QCOMPARE(material->GetMaterialType(), Text("Generic"));
    const ZAXTestTranslator translator({Text("Generic")});
    QCOMPARE(material->GetMaterialType(), Text("<ZAXMatMaterial:Generic>"));
    material->SetMaterialType(Text("generic"));
    QCOMPARE(material->GetMaterialType(), Text("generic"));
}

void tst_ZAXMatMaterial::defaultCategoryIsTranslatedWhenMade()
{
    ZAXTestDocument document;
    const ZAXMatMaterial* const before = document.CreateMaterial();
    const ZAXTestTranslator translator({Text("Metal")});
    const ZAXMatMaterial* const after = document.CreateMaterial();
    QCOMPARE(before->GetCategory(), Text("Metal"));
    QCOMPARE(after->GetCategory(), Text("<ZAXMatMaterialPrivate:Metal>"));
}

void tst_ZAXMatMaterial::miscCategoryIsTranslatedWhenRead()
{
    ZAXTestDocument document;
    ZAXMatMaterial* const material = document.CreateMaterial();
    material->SetCategory(Text("Misc"));
    QCOMPARE(material->GetCategory(), Text("Misc"));
    const ZAXTestTranslator translator({Text("Misc"), Text("Metal")});
    QCOMPARE(material->GetCategory(), Text("<ZAXMatMaterial:Misc>"));
    material->SetCategory(Text("Metal"));
    QCOMPARE(material->GetCategory(), Text("Metal"));
}

void tst_ZAXMatMaterial::propertiesAreReadLocalized()
{
    const ZAXTestTranslator translator({Text("Generic"), Text("Misc"), Text("Material ID")});
    ZAXTestDocument document;
    ZAXMatMaterial* const material = document.CreateMaterial();
    material->SetCategory(Text("Misc"));
    QSignalSpy spy(material, &ZAXMatMaterial::MaterialIdChanged);
    material->SetMaterialId(Text("Material ID.1"));
    QCOMPARE(material->property("materialId").toString(), Text("<ZAXMatMaterial:Material ID>.1"));
    QCOMPARE(material->property("materialType").toString(), Text("<ZAXMatMaterial:Generic>"));
    QCOMPARE(material->property("category").toString(), Text("<ZAXMatMaterial:Misc>"));
    QCOMPARE(spy.constFirst().constFirst().toString(), Text("<ZAXMatMaterial:Material ID>.1"));
}

void tst_ZAXMatMaterial::storedTextsAreSaved()
{
    ZAXTestDocument document;
    ZAXMatMaterial* const material = document.CreateMaterial();
    material->SetMaterialId(Text("Material ID.1"));
    material->SetCategory(Text("Misc"));
    const ZAXTestStored untranslated = ZAXTestStored::From(*material);
    const ZAXTestTranslator translator({Text("Generic"), Text("Misc"), Text("Material ID")});
    QCOMPARE(ZAXTestStored::From(*material), untranslated);
}

void tst_ZAXMatMaterial::packagingIsListedInChildOrder()
{
    ZAXTestDocument document;
    ZAXMatMaterial* const material = document.CreateMaterial();
    auto* const first = document.Create<ZAXMatPackaging>(material);
    document.Create<ZAXTestPiercing>(material);
    auto* const second = document.Create<ZAXMatPackaging>(material);
    QCOMPARE(material->GetPackaging(), QList({first, second}));
    QVERIFY(second->MoveTo(material, 0));
    QCOMPARE(material->GetPackaging(), QList({second, first}));
}

void tst_ZAXMatMaterial::activePackagingIsListedInChildOrder()
{
    ZAXTestDocument document;
    ZAXMatMaterial* const material = document.CreateMaterial();
    auto* const first = document.Create<ZAXMatPackaging>(material);
    document.Create<ZAXMatPackaging>(material);
    auto* const third = document.Create<ZAXMatPackaging>(material);
    third->SetActive(true);
    first->SetActive(true);
    QCOMPARE(material->GetActivePackaging(), QList({first, third}));
}

void tst_ZAXMatMaterial::defaultPackagingIsTheFirstActiveOne()
{
    ZAXTestDocument document;
    ZAXMatMaterial* const material = document.CreateMaterial();
    document.Create<ZAXMatPackaging>(material);
    auto* const second = document.Create<ZAXMatPackaging>(material);
    document.Create<ZAXMatPackaging>(material)->SetActive(true);
    second->SetActive(true);
    const ZAXTestSignalLog log(material);
    QCOMPARE(material->CreateDefaultPackaging(), second);
    QCOMPARE(material->GetPackaging().size(), 3);
    QCOMPARE(log.names, QStringList());
}

void tst_ZAXMatMaterial::defaultPackagingIsMadeWhenNoneIsActive()
{
    ZAXTestDocument document;
    ZAXMatMaterial* const material = document.CreateMaterial();
    auto* const inactive = document.Create<ZAXMatPackaging>(material);
    inactive->SetLength(3000.0);
    const ZAXTestSignalLog log(material);
    QList<bool> activityWhenAdded;
    QObject::connect(material, &ZAXFeatObject::ChildAdded, [&](ZAXFeatObject* child) {
        activityWhenAdded.append(qobject_cast<ZAXMatPackaging*>(child)->IsActive());
    });
    ZAXMatPackaging* const packaging = material->CreateDefaultPackaging();
    QCOMPARE(material->GetPackaging(), QList({inactive, packaging}));
    QVERIFY(packaging->IsActive());
    QVERIFY(!inactive->IsActive());
    QCOMPARE(packaging->GetLength(), 3000.0);
    QCOMPARE(log.names, QStringList{Text("ChildAdded")});
    QCOMPARE(activityWhenAdded, QList{false});
    QCOMPARE(material->CreateDefaultPackaging(), packaging);
}

void tst_ZAXMatMaterial::childIsAllowed_data()
{
    QTest::addColumn<const QMetaObject*>("type");
    QTest::addColumn<bool>("allowed");
    const auto row = [](const QMetaObject& type, bool allowed) { QTest::newRow(type.className()) << &type << allowed; };
    row(ZAXMatPackaging::staticMetaObject, true);
    row(ZAXMatMaterialExtension::staticMetaObject, true);
    row(ZAXTestAssistGas::staticMetaObject, true);
    row(ZAXMatMaterial::staticMetaObject, false);
    row(ZAXMatRoot::staticMetaObject, false);
    row(ZAXMatPackagingExtension::staticMetaObject, false);
    row(ZAXTestTrim::staticMetaObject, false);
    row(ZAXTestGrain::staticMetaObject, false);
    row(ZAXFeatObject::staticMetaObject, false);
    row(ZAXTestDependent::staticMetaObject, false);
}

void tst_ZAXMatMaterial::childIsAllowed()
{
    QFETCH(const QMetaObject* const, type);
    QFETCH(const bool, allowed);
    ZAXTestDocument document;
    QCOMPARE(document.CreateMaterial()->IsChildAllowed(type), allowed);
    auto* const derived = document.Recreate<ZAXTestCoatedMaterial>(100, document.root);
    QCOMPARE(derived->IsChildAllowed(type), allowed);
}

void tst_ZAXMatMaterial::materialWithDependentsCannotBeDeletedByUser()
{
    ZAXTestDocument document;
    ZAXMatMaterial* const material = document.CreateMaterial();
    QVERIFY(material->IsUserDeletable());
    auto* const dependent = new ZAXTestDependent(&document.container);
    dependent->PointAt(material);
    QVERIFY(!material->IsUserDeletable());
    dependent->PointAt(nullptr);
    QVERIFY(material->IsUserDeletable());
}

void tst_ZAXMatMaterial::ownListsDoNotKeepUserFromDeleting()
{
    ZAXTestDocument document;
    ZAXMatMaterial* const material = document.CreateMaterial();
    const ZAXMatMaterialExtension* const extension = material->GetExtension("ZAXTestPiercing", true);
    material->CreateDefaultPackaging();
    QVERIFY(material->IsUserDeletable());
    QVERIFY(extension->IsUserDeletable());
}

void tst_ZAXMatMaterial::validation_data()
{
    QTest::addColumn<QString>("id");
    QTest::addColumn<QString>("type");
    QTest::addColumn<double>("thickness");
    QTest::addColumn<QStringList>("messages");
    const QString idMessage = Text("materialId: The material ID cannot be empty.");
    const QString typeMessage = Text("materialType: The material type cannot be empty.");
    const QString thicknessMessage = Text("thickness: The thickness is not a positive non-zero length.");
    QTest::newRow("valid") << Text("S") << Text("S235") << 2.0 << QStringList();
    QTest::newRow("smallest thickness") << Text("S") << Text("S235") << 0.001 << QStringList();
    QTest::newRow("just too thin") << Text("S") << Text("S235") << 0.000999 << QStringList{thicknessMessage};
    QTest::newRow("nothing") << Text("S") << Text("S235") << 0.0 << QStringList{thicknessMessage};
    QTest::newRow("negative") << Text("S") << Text("S235") << -2.0 << QStringList{thicknessMessage};
    QTest::newRow("no ID") << QString() << Text("S235") << 2.0 << QStringList{idMessage};
    QTest::newRow("no type") << Text("S") << QString() << 2.0 << QStringList{typeMessage};
    QTest::newRow("blank texts") << Text(" ") << Text(" ") << 2.0 << QStringList();
    QTest::newRow("all three at once") << QString() << QString() << 0.000999
                                       << QStringList{idMessage, typeMessage, thicknessMessage};
}

void tst_ZAXMatMaterial::validation()
{
    QFETCH(const QString, id);
    QFETCH(const QString, type);
    QFETCH(const double, thickness);
    QFETCH(const QStringList, messages);
    ZAXTestDocument document;
    ZAXMatMaterial* const material = document.CreateMaterial();
    material->SetMaterialType(type);
    material->SetThickness(thickness);
    material->SetMaterialId(id);
    QCOMPARE(material->UpdateResult(), messages.isEmpty());
    QCOMPARE(TextsOf(material->GetPropertyMessages()), messages);
    const auto found = material->GetPropertyMessages();
    QVERIFY(std::ranges::all_of(found, [](const auto& message) { return static_cast<int>(message.status) == 3; }));
}

void tst_ZAXMatMaterial::otherValuesAreNeverInvalid()
{
    ZAXTestDocument document;
    ZAXMatMaterial* const material = document.CreateMaterial();
    material->SetDensity(-1.0);
    material->SetCategory(QString());
    material->SetNestingColor(QColor());
    QVERIFY(material->UpdateResult());
    QVERIFY(material->GetPropertyMessages().isEmpty());
}

void tst_ZAXMatMaterial::oldMessagesAreCleared()
{
    const ZAXTestTranslator translator({Text("The material ID cannot be empty.")});
    ZAXTestDocument document;
    ZAXMatMaterial* const material = document.CreateMaterial();
    material->SetMaterialId(QString());
    QVERIFY(!material->UpdateResult());
    QCOMPARE(TextsOf(material->GetPropertyMessages()),
             QStringList{Text("materialId: <ZAXMatMaterial:The material ID cannot be empty.>")});
    material->SetMaterialId(Text("S"));
    QVERIFY(material->UpdateResult());
    QVERIFY(material->GetPropertyMessages().isEmpty());
}

void tst_ZAXMatMaterial::copiesAreNumbered()
{
    ZAXTestDocument document;
    ZAXMatMaterial* const material = document.CreateMaterial();
    material->SetMaterialId(Text("A"));
    QCOMPARE(CopyOf(material)->GetMaterialId(), Text("A (Copy)"));
    QCOMPARE(CopyOf(material)->GetMaterialId(), Text("A (Copy 2)"));
    QCOMPARE(CopyOf(material)->GetMaterialId(), Text("A (Copy 3)"));
    QCOMPARE(material->GetMaterialId(), Text("A"));
}

void tst_ZAXMatMaterial::copyOfCopyIsNamedAfterCopy()
{
    ZAXTestDocument document;
    ZAXMatMaterial* const material = document.CreateMaterial();
    material->SetMaterialId(Text("A"));
    QCOMPARE(CopyOf(CopyOf(material))->GetMaterialId(), Text("A (Copy) (Copy)"));
}

void tst_ZAXMatMaterial::copyIsNamedVerbatim_data()
{
    QTest::addColumn<QString>("id");
    QTest::addColumn<QString>("first");
    QTest::addColumn<QString>("second");
    QTest::newRow("place markers") << Text("%2 %1 %3") << Text("%2 %1 %3 (Copy)") << Text("%2 %1 %3 (Copy 2)");
    QTest::newRow("empty") << QString() << Text(" (Copy)") << Text(" (Copy 2)");
    QTest::newRow("derived from label") << Text("Steel - 2 mm") << Text("Steel - 2 mm (Copy)")
                                        << Text("Steel - 2 mm (Copy 2)");
}

void tst_ZAXMatMaterial::copyIsNamedVerbatim()
{
    QFETCH(const QString, id);
    QFETCH(const QString, first);
    QFETCH(const QString, second);
    ZAXTestDocument document;
    ZAXMatMaterial* const material = document.CreateMaterial();
    material->SetMaterialId(id);
    QCOMPARE(CopyOf(material)->GetMaterialId(), first);
    QCOMPARE(CopyOf(material)->GetMaterialId(), second);
}

void tst_ZAXMatMaterial::namesInAnotherFolderAreFreeToTake()
{
    ZAXTestDocument document;
    ZAXMatMaterial* const material = document.CreateMaterial();
    material->SetMaterialId(Text("A"));
    ZAXMatMaterial* const copy = CopyOf(material);
    QVERIFY(copy->MoveTo(document.Create<ZAXFeatFolder>(document.root), -1));
    QCOMPARE(CopyOf(material)->GetMaterialId(), Text("A (Copy)"));
}

void tst_ZAXMatMaterial::caseMattersInNamesOfCopies()
{
    ZAXTestDocument document;
    ZAXMatMaterial* const material = document.CreateMaterial();
    document.CreateMaterial()->SetMaterialId(Text("a (copy)"));
    material->SetMaterialId(Text("A"));
    QCOMPARE(CopyOf(material)->GetMaterialId(), Text("A (Copy)"));
}

void tst_ZAXMatMaterial::copyIsNamedInTheUsersLanguage()
{
    const ZAXTestTranslator translator({Text("Copy"), Text("Material ID")});
    ZAXTestDocument document;
    ZAXMatMaterial* const material = document.CreateMaterial();
    material->SetMaterialId(Text("Material ID.1"));
    // Stored untranslated, this one shows, and so takes, the translated name.
    document.CreateMaterial()->SetMaterialId(Text("Material ID.1 (<ZAXMatMaterial:Copy>)"));
    QCOMPARE(CopyOf(material)->GetMaterialId(), Text("<ZAXMatMaterial:Material ID>.1 (<ZAXMatMaterial:Copy> 2)"));
}

void tst_ZAXMatMaterial::copyOfCustomizedMaterialStaysCustomized()
{
    ZAXTestDocument document;
    ZAXMatMaterial* const material = document.CreateMaterial();
    QVERIFY(!CopyOf(material)->isMaterialIdCustomized());
    material->SetMaterialIdCustomized(true);
    QVERIFY(CopyOf(material)->isMaterialIdCustomized());
}

void tst_ZAXMatMaterial::copiesDifferInColor()
{
    ZAXTestDocument document;
    ZAXMatMaterial* const material = document.CreateMaterial();
    const QColor color(1, 2, 3, 4);
    material->SetNestingColor(color);
    QSet<QRgb> colors;
    for (int i = 0; i < 20; ++i) {
        const QColor copied = CopyOf(material)->GetNestingColor();
        QCOMPARE(copied.alpha(), 255);
        colors.insert(copied.rgba());
    }
    QVERIFY(colors.size() > 10);
    QCOMPARE(material->GetNestingColor(), color);
}

void tst_ZAXMatMaterial::copyIsChangedInThisOrder()
{
    ZAXTestDocument document;
    ZAXMatMaterial* const material = document.CreateMaterial();
    material->SetProviderId("json");
    material->SetRemoteKey("{1}");
    const ZAXTestSignalLog log(material);
    // Called on the copy, when all its fields are the original's.
    material->PostDuplicate(material, material);
    QCOMPARE(log.names, QStringList({Text("MaterialIdChanged"), Text("NestingColorChanged"), Text("ProviderIdChanged"),
                                     Text("RemoteKeyChanged")}));
}

void tst_ZAXMatMaterial::copyLosesItsLinkToTheCatalogue()
{
    ZAXTestDocument document;
    ZAXMatMaterial* const material = document.CreateMaterial();
    material->SetProviderId("json");
    material->SetRemoteKey("{1}");
    const ZAXMatMaterial* const copy = CopyOf(material);
    QCOMPARE(copy->GetProviderId(), QByteArray());
    QCOMPARE(copy->GetRemoteKey(), QByteArray());
    QCOMPARE(material->GetProviderId(), QByteArray("json"));
    QCOMPARE(material->GetRemoteKey(), QByteArray("{1}"));
}

void tst_ZAXMatMaterial::copyWithoutRemoteKeyKeepsItsProvider()
{
    ZAXTestDocument document;
    ZAXMatMaterial* const material = document.CreateMaterial();
    material->SetProviderId("json");
    QCOMPARE(CopyOf(material)->GetProviderId(), QByteArray("json"));
}

void tst_ZAXMatMaterial::copyListsItsOwnExtensions()
{
    ZAXTestDocument document;
    ZAXMatMaterial* const material = document.CreateMaterial();
    material->GetExtension("ZAXTestPiercing", true);
    const ZAXMatMaterial* const copy = CopyOf(material);
    QCOMPARE(copy->GetExtensions().size(), 1);
    QCOMPARE(copy->GetExtensions().constFirst()->GetParent(), copy);
    QCOMPARE(material->GetExtensions().constFirst()->GetParent(), material);
}

void tst_ZAXMatMaterial::loadKeepsTheStoredId()
{
    ZAXTestDocument document;
    auto* const material = document.Recreate<ZAXMatMaterial>(100, document.root);
    QSignalSpy spy(material, &ZAXMatMaterial::MaterialIdChanged);
    Version1(document.container, {}).LoadInto(*material, version1);
    material->EndStateLoad();
    QCOMPARE(material->GetMaterialId(), Text("S 1"));
    QCOMPARE(spy.count(), 1);
    QVERIFY(!material->isMaterialIdCustomized());
}

void tst_ZAXMatMaterial::loadNotifiesChangesOnly()
{
    ZAXTestDocument document;
    auto* const material = document.Recreate<ZAXMatMaterial>(100, document.root);
    const ZAXTestStored stored = Today(document.container, {});
    ZAXTestSignalLog log(material);
    stored.LoadInto(*material);
    const QStringList expected{Text("LabelChanged"),
                               Text("MaterialIdChanged"),
                               Text("MaterialTypeChanged"),
                               Text("ThicknessChanged"),
                               Text("CategoryChanged"),
                               Text("DensityChanged"),
                               Text("CommentChanged"),
                               Text("ProviderIdChanged"),
                               Text("RemoteKeyChanged"),
                               Text("NestingColorChanged"),
                               Text("MaterialIdCustomizedChanged")};
    QCOMPARE(log.names, expected);
    log.names.clear();
    stored.LoadInto(*material);
    QCOMPARE(log.names, QStringList());
}

void tst_ZAXMatMaterial::loadRemembersLikeSetters()
{
    ZAXTestLastSavedStore store;
    ZAXTestDocument document;
    auto* const material = document.Recreate<ZAXMatMaterial>(100, document.root);
    Today(document.container, {}).LoadInto(*material);
    const QStringList expected{Text("ZAXMatMaterial.materialType = S235"), Text("ZAXMatMaterial.thickness = 3"),
                               Text("ZAXMatMaterial.category = Structural"), Text("ZAXMatMaterial.density = 7.85")};
    QCOMPARE(store.noted, expected);
}

void tst_ZAXMatMaterial::loadReplacesTheListOfExtensions()
{
    ZAXTestDocument document;
    ZAXMatMaterial* const material = document.CreateMaterial();
    ZAXMatMaterialExtension* const first = material->GetExtension("ZAXTestPiercing", true);
    ZAXMatMaterialExtension* const second = material->GetExtension("ZAXTestAssistGas", true);
    QSignalSpy removed(material, &ZAXMatMaterial::MaterialExtensionRemoved);
    QSignalSpy added(material, &ZAXMatMaterial::MaterialExtensionAdded);
    Today(document.container, {ZAXGeoGeometryRef(second), ZAXGeoGeometryRef(first)}).LoadInto(*material);
    QCOMPARE(material->GetExtensions(), QList({second, first}));
    QCOMPARE(removed.count(), 2);
    QCOMPARE(removed.constFirst().constFirst().value<ZAXMatMaterialExtension*>(), first);
    QCOMPARE(added.count(), 2);
    QCOMPARE(added.constFirst().constFirst().value<ZAXMatMaterialExtension*>(), second);
}

void tst_ZAXMatMaterial::loadMapsReferences()
{
    ZAXTestDocument document;
    ZAXMatMaterial* const material = document.CreateMaterial();
    auto* const extension = document.Create<ZAXTestPiercing>(material);
    const ZAXTestStored stored = Today(document.container, {ZAXGeoGeometryRef::FromId(7777)});
    ZAXGeoStream stream(&document.container, stored.payload, stored.references);
    stream.SetReferenceMap([&](const ZAXGeoGeometryRef&) { return ZAXGeoGeometryRef(extension); });
    material->Load(stream);
    QCOMPARE(material->GetExtensions(), QList<ZAXMatMaterialExtension*>{extension});
}

void tst_ZAXMatMaterial::loadKeepsEmptyItems()
{
    ZAXTestDocument document;
    ZAXMatMaterial* const material = document.CreateMaterial();
    auto* const extension = document.Create<ZAXTestPiercing>(material);
    QSignalSpy added(material, &ZAXMatMaterial::MaterialExtensionAdded);
    const ZAXTestStored stored = Today(document.container, {ZAXGeoGeometryRef(), ZAXGeoGeometryRef(extension)});
    stored.LoadInto(*material);
    QCOMPARE(material->GetExtensions(), QList<ZAXMatMaterialExtension*>({nullptr, extension}));
    QCOMPARE(added.count(), 2);
    QCOMPARE(added.constFirst().constFirst().value<ZAXMatMaterialExtension*>(), nullptr);
    QCOMPARE(ZAXTestStored::From(*material), stored);
}

void tst_ZAXMatMaterial::loadRefusesExtensionThatIsNone_data()
{
    QTest::addColumn<quint64>("id");
    QTest::newRow("nothing") << quint64(7777);
    QTest::newRow("packaging") << quint64(200);
    QTest::newRow("packaging extension") << quint64(201);
}

void tst_ZAXMatMaterial::loadRefusesExtensionThatIsNone()
{
    QFETCH(const quint64, id);
    ZAXTestDocument document;
    ZAXMatMaterial* const material = document.CreateMaterial();
    auto* const packaging = document.Recreate<ZAXMatPackaging>(200, material);
    document.Recreate<ZAXTestTrim>(201, packaging);
    const ZAXTestStored stored = Today(document.container, {ZAXGeoGeometryRef::FromId(id)});
    QVERIFY_THROWS_EXCEPTION(ZAXGeoGeometryNotFoundException, stored.LoadInto(*material));
    QVERIFY(material->GetExtensions().isEmpty());
}

void tst_ZAXMatMaterial::loadTakesNoExtensionsForCountBelowOne()
{
    ZAXTestDocument document;
    ZAXMatMaterial* const material = document.CreateMaterial();
    ZAXTestStored stored = Today(document.container, {});
    // The count stands before the last byte.
    stored.payload.replace(stored.payload.size() - 5, 4, QByteArray::fromHex("ffffffff"));
    stored.LoadInto(*material);
    QVERIFY(material->GetExtensions().isEmpty());
    QVERIFY(material->isMaterialIdCustomized());
}

void tst_ZAXMatMaterial::loadAsksForTheVersionOfItsOwnClass()
{
    ZAXTestDocument document;
    auto* const material = document.Recreate<ZAXTestCoatedMaterial>(100, document.root);
    Today(document.container, {}).LoadInto(*material, {{"ZAXMatMaterial", 7}, {"ZAXTestCoatedMaterial", 1}});
    QCOMPARE(material->GetRemoteKey(), QByteArray("{key}"));
    QVERIFY(material->isMaterialIdCustomized());
}

void tst_ZAXMatMaterial::oldActivePackagingIsActivated()
{
    ZAXTestDocument document;
    auto* const material = document.Recreate<ZAXMatMaterial>(100, document.root);
    document.Recreate<ZAXMatPackaging>(101, material);
    auto* const second = document.Recreate<ZAXMatPackaging>(102, material);
    Version1(document.container, ZAXGeoGeometryRef(second)).LoadInto(*material, version1);
    QCOMPARE(ActivityOf(material->GetPackaging()), QList({false, false}));
    material->EndStateLoad();
    QCOMPARE(ActivityOf(material->GetPackaging()), QList({false, true}));
}

void tst_ZAXMatMaterial::oldActivePackagingIsMapped()
{
    ZAXTestDocument document;
    auto* const material = document.Recreate<ZAXMatMaterial>(100, document.root);
    document.Recreate<ZAXMatPackaging>(101, material);
    auto* const second = document.Recreate<ZAXMatPackaging>(102, material);
    const ZAXTestStored stored = Version1(document.container, ZAXGeoGeometryRef::FromId(101));
    ZAXGeoStream stream(&document.container, stored.payload, stored.references);
    stream.SetVersions(version1);
    stream.SetReferenceMap([&](const ZAXGeoGeometryRef&) { return ZAXGeoGeometryRef(second); });
    material->Load(stream);
    material->EndStateLoad();
    QCOMPARE(ActivityOf(material->GetPackaging()), QList({false, true}));
}

void tst_ZAXMatMaterial::firstPackagingIsActivatedInstead_data()
{
    QTest::addColumn<quint64>("id");
    QTest::newRow("no reference") << quint64(0);
    QTest::newRow("to nothing") << quint64(7777);
    QTest::newRow("to the material itself") << quint64(100);
}

void tst_ZAXMatMaterial::firstPackagingIsActivatedInstead()
{
    QFETCH(const quint64, id);
    ZAXTestDocument document;
    auto* const material = document.Recreate<ZAXMatMaterial>(100, document.root);
    document.Recreate<ZAXMatPackaging>(101, material);
    document.Recreate<ZAXMatPackaging>(102, material);
    Version1(document.container, ZAXGeoGeometryRef::FromId(id)).LoadInto(*material, version1);
    material->EndStateLoad();
    QCOMPARE(ActivityOf(material->GetPackaging()), QList({true, false}));
}

void tst_ZAXMatMaterial::noPackagingIsActivatedWhereThereIsNone()
{
    ZAXTestDocument document;
    auto* const material = document.Recreate<ZAXMatMaterial>(100, document.root);
    Version1(document.container, {}).LoadInto(*material, version1);
    material->EndStateLoad();
    QVERIFY(material->GetPackaging().isEmpty());
    auto* const packaging = document.Create<ZAXMatPackaging>(material);
    material->EndStateLoad();
    QVERIFY(!packaging->IsActive());
}

void tst_ZAXMatMaterial::oldActivePackagingIsActivatedOnce()
{
    ZAXTestDocument document;
    auto* const material = document.Recreate<ZAXMatMaterial>(100, document.root);
    auto* const packaging = document.Recreate<ZAXMatPackaging>(101, material);
    Version1(document.container, ZAXGeoGeometryRef(packaging)).LoadInto(*material, version1);
    material->EndStateLoad();
    packaging->SetActive(false);
    material->EndStateLoad();
    QVERIFY(!packaging->IsActive());
}

void tst_ZAXMatMaterial::noPackagingIsActivatedForNewerDocuments()
{
    ZAXTestDocument document;
    auto* const material = document.Recreate<ZAXMatMaterial>(100, document.root);
    auto* const packaging = document.Recreate<ZAXMatPackaging>(101, material);
    Today(document.container, {}).LoadInto(*material);
    material->EndStateLoad();
    QVERIFY(!packaging->IsActive());
}

void tst_ZAXMatMaterial::missingExtensionsAreListedAgain()
{
    ZAXTestDocument document;
    auto* const material = document.Recreate<ZAXMatMaterial>(100, document.root);
    auto* const piercing = document.Recreate<ZAXTestPiercing>(101, material);
    auto* const gas = document.Recreate<ZAXTestAssistGas>(102, material);
    document.Recreate<ZAXMatPackaging>(103, material);
    Version1(document.container, {}).LoadInto(*material, version1);
    QVERIFY(material->GetExtensions().isEmpty());
    const ZAXTestSignalLog log(material);
    material->EndStateLoad();
    const QList<ZAXMatMaterialExtension*> listed = material->GetExtensions();
    QCOMPARE(listed.size(), 2);
    QVERIFY(listed.contains(piercing));
    QVERIFY(listed.contains(gas));
    QCOMPARE(log.names, QStringList({Text("MaterialExtensionAdded"), Text("MaterialExtensionAdded")}));
}

void tst_ZAXMatMaterial::completeListIsLeftAlone()
{
    ZAXTestDocument document;
    ZAXMatMaterial* const material = document.CreateMaterial();
    auto* const piercing = document.Create<ZAXTestPiercing>(material);
    auto* const foreign = document.Create<ZAXTestAssistGas>(document.CreateMaterial());
    const QList<ZAXMatMaterialExtension*> stored{foreign, piercing, piercing};
    Today(document.container, {ZAXGeoGeometryRef(foreign), ZAXGeoGeometryRef(piercing), ZAXGeoGeometryRef(piercing)})
        .LoadInto(*material);
    const ZAXTestSignalLog log(material);
    material->EndStateLoad();
    QCOMPARE(material->GetExtensions(), stored);
    QCOMPARE(log.names, QStringList());
}

void tst_ZAXMatMaterial::emptyItemsSurviveEndOfLoad()
{
    ZAXTestDocument document;
    ZAXMatMaterial* const material = document.CreateMaterial();
    auto* const piercing = document.Create<ZAXTestPiercing>(material);
    Today(document.container, {ZAXGeoGeometryRef(), ZAXGeoGeometryRef(piercing)}).LoadInto(*material);
    material->EndStateLoad();
    QCOMPARE(material->GetExtensions(), QList<ZAXMatMaterialExtension*>({nullptr, piercing}));
}

void tst_ZAXMatMaterial::rebuiltListTakesLeaveOfOldItemsFirst()
{
    ZAXTestDocument document;
    ZAXMatMaterial* const material = document.CreateMaterial();
    auto* const piercing = document.Create<ZAXTestPiercing>(material);
    auto* const gas = document.Create<ZAXTestAssistGas>(material);
    auto* const missing = document.Create<ZAXTestPiercing>(material);
    Today(document.container, {ZAXGeoGeometryRef(gas), ZAXGeoGeometryRef(), ZAXGeoGeometryRef(piercing)})
        .LoadInto(*material);
    QList<ZAXMatMaterialExtension*> removed;
    QObject::connect(material, &ZAXMatMaterial::MaterialExtensionRemoved,
                     [&](ZAXMatMaterialExtension* extension) { removed.append(extension); });
    const ZAXTestSignalLog log(material);
    material->EndStateLoad();
    QCOMPARE(removed, QList<ZAXMatMaterialExtension*>({gas, nullptr, piercing}));
    QCOMPARE(log.names,
             QStringList(3, Text("MaterialExtensionRemoved")) + QStringList(3, Text("MaterialExtensionAdded")));
    const QList<ZAXMatMaterialExtension*> listed = material->GetExtensions();
    QCOMPARE(QSet(listed.begin(), listed.end()), (QSet<ZAXMatMaterialExtension*>{piercing, gas, missing}));
}

void tst_ZAXMatMaterial::extensionIsNotCreatedUnasked()
{
    ZAXTestDocument document;
    const ZAXMatMaterial* const material = document.CreateMaterial();
    QCOMPARE(material->GetExtension("ZAXTestPiercing", false), nullptr);
    QCOMPARE(material->GetExtension("X", false), nullptr);
    QCOMPARE(material->GetExtension({}, false), nullptr);
    QVERIFY(material->GetChildren().isEmpty());
    QVERIFY(material->GetExtensions().isEmpty());
}

void tst_ZAXMatMaterial::extensionIsCreatedOnce()
{
    ZAXTestDocument document;
    const ZAXMatMaterial* const material = document.CreateMaterial();
    ZAXMatMaterialExtension* const piercing = material->GetExtension("ZAXTestPiercing", true);
    ZAXMatMaterialExtension* const gas = material->GetExtension("ZAXTestAssistGas", true);
    QVERIFY(qobject_cast<ZAXTestPiercing*>(piercing));
    QVERIFY(qobject_cast<ZAXTestAssistGas*>(gas));
    QCOMPARE(material->GetChildren(), QList<ZAXFeatObject*>({piercing, gas}));
    QCOMPARE(material->GetExtensions(), QList({piercing, gas}));
    QCOMPARE(material->GetExtension("ZAXTestPiercing", true), piercing);
    QCOMPARE(material->GetExtension("ZAXTestAssistGas", false), gas);
    QCOMPARE(material->GetExtensions().size(), 2);
}

void tst_ZAXMatMaterial::extensionIsAddedAfterItIsAChild()
{
    ZAXTestDocument document;
    ZAXMatMaterial* const material = document.CreateMaterial();
    const ZAXTestSignalLog log(material);
    QSignalSpy added(material, &ZAXMatMaterial::MaterialExtensionAdded);
    ZAXMatMaterialExtension* const piercing = material->GetExtension("ZAXTestPiercing", true);
    QCOMPARE(log.names, QStringList({Text("ChildAdded"), Text("MaterialExtensionAdded")}));
    QCOMPARE(added.constFirst().constFirst().value<ZAXMatMaterialExtension*>(), piercing);
}

void tst_ZAXMatMaterial::extensionsAreFoundByExactClassName_data()
{
    QTest::addColumn<QByteArray>("key");
    QTest::newRow("other case") << QByteArray("zaxtestpiercing");
    QTest::newRow("shorter") << QByteArray("ZAXTestPiercin");
    QTest::newRow("longer") << QByteArray("ZAXTestPiercing ");
    QTest::newRow("longer by a zero byte") << QByteArray("ZAXTestPiercing\0", 16);
    QTest::newRow("base class") << QByteArray("ZAXMatMaterialExtension");
    QTest::newRow("empty") << QByteArray("");
}

void tst_ZAXMatMaterial::extensionsAreFoundByExactClassName()
{
    QFETCH(const QByteArray, key);
    ZAXTestDocument document;
    const ZAXMatMaterial* const material = document.CreateMaterial();
    material->GetExtension("ZAXTestPiercing", true);
    QCOMPARE(material->GetExtension(key, false), nullptr);
}

void tst_ZAXMatMaterial::firstListedExtensionIsFound()
{
    ZAXTestDocument document;
    ZAXMatMaterial* const material = document.CreateMaterial();
    auto* const first = document.Create<ZAXTestPiercing>(material);
    auto* const second = document.Create<ZAXTestPiercing>(material);
    Today(document.container, {ZAXGeoGeometryRef(second), ZAXGeoGeometryRef(first)}).LoadInto(*material);
    QCOMPARE(material->GetExtension("ZAXTestPiercing", true), second);
}

void tst_ZAXMatMaterial::emptyItemsSurviveLookup()
{
    ZAXTestDocument document;
    ZAXMatMaterial* const material = document.CreateMaterial();
    auto* const piercing = document.Create<ZAXTestPiercing>(material);
    Today(document.container, {ZAXGeoGeometryRef(), ZAXGeoGeometryRef(piercing)}).LoadInto(*material);
    QCOMPARE(material->GetExtension("ZAXTestPiercing", false), piercing);
    QCOMPARE(material->GetExtension("ZAXTestAssistGas", false), nullptr);
}

void tst_ZAXMatMaterial::otherTypesAreNoExtensions_data()
{
    QTest::addColumn<QByteArray>("key");
    QTest::newRow("unknown class") << QByteArray("X");
    QTest::newRow("abstract base class") << QByteArray("ZAXMatMaterialExtension");
    QTest::newRow("packaging extension") << QByteArray("ZAXTestTrim");
    QTest::newRow("material") << QByteArray("ZAXMatMaterial");
    QTest::newRow("empty") << QByteArray();
}

void tst_ZAXMatMaterial::otherTypesAreNoExtensions()
{
    QFETCH(const QByteArray, key);
    ZAXTestDocument document;
    ZAXMatMaterial* const material = document.CreateMaterial();
    const ZAXTestSignalLog log(material);
    QCOMPARE(MessageThrownBy([&] { material->GetExtension(key, true); }), Text("type is not a material extension"));
    QVERIFY(material->GetExtensions().isEmpty());
    QVERIFY(material->GetChildren().isEmpty());
    QCOMPARE(log.names, QStringList());
}

void tst_ZAXMatMaterial::featureOfAnotherKindStays()
{
    ZAXTestDocument document;
    ZAXMatMaterial* const material = document.CreateMaterial();
    QCOMPARE(MessageThrownBy([&] { material->GetExtension("ZAXMatPackaging", true); }),
             Text("type is not a material extension"));
    QCOMPARE(material->GetPackaging().size(), 1);
    QVERIFY(material->GetExtensions().isEmpty());
}

void tst_ZAXMatMaterial::removedExtensionLeavesTheList()
{
    ZAXTestDocument document;
    ZAXMatMaterial* const material = document.CreateMaterial();
    ZAXMatMaterialExtension* const piercing = material->GetExtension("ZAXTestPiercing", true);
    QList<ZAXMatMaterialExtension*> removed;
    QObject::connect(material, &ZAXMatMaterial::MaterialExtensionRemoved,
                     [&](ZAXMatMaterialExtension* extension) { removed.append(extension); });
    piercing->Remove();
    QCOMPARE(removed, QList{piercing});
    QVERIFY(material->GetExtensions().isEmpty());
    QVERIFY(material->GetExtension("ZAXTestPiercing", true));
}

QTEST_GUILESS_MAIN(tst_ZAXMatMaterial)
#include "tst_ZAXMatMaterial.moc"
