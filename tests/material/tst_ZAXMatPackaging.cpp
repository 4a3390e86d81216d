#include "ZAXMatPackaging.h"

#include "ZAXGeoGeometryNotFoundException.h"
#include "ZAXHostDuplicator.h"
#include "ZAXMatTestDocument.h"
#include "ZAXMatTestListeners.h"

#include <QMetaEnum>
#include <QSet>
#include <QSignalSpy>
#include <QTest>

#include <algorithm>
#include <functional>

using Write = std::function<void(ZAXMatPackaging&)>;
using Read = std::function<QVariant(const ZAXMatPackaging&)>;
Q_DECLARE_METATYPE(Write)
Q_DECLARE_METATYPE(Read)
Q_DECLARE_METATYPE(const QMetaObject*)

static_assert(std::is_same_v<std::underlying_type_t<ZAXMatPackaging::Form>, int>);

namespace {

/// The fields of a packaging in today's layout.
ZAXTestStored Today(ZAXFeatContainer& container, const QList<ZAXGeoGeometryRef>& extensions)
{
    ZAXGeoStream stream(&container);
    stream << Text("Coil") << true;
    stream << 30000.0 << 1250.0 << qint32(1) << 480.5 << Text("from the mill") << QByteArray("{key}") << true;
    stream << static_cast<qint32>(extensions.size());
    for (const ZAXGeoGeometryRef& extension : extensions)
        stream << extension;
    return ZAXTestStored::From(stream);
}

/// Ends the load of \a packaging as the host does, which knows it as a feature.
void EndStateLoad(ZAXFeatObject& packaging)
{
    packaging.EndStateLoad();
}

ZAXMatPackaging* CopyOf(ZAXMatPackaging* packaging)
{
    return qobject_cast<ZAXMatPackaging*>(ZAXHostDuplicator::Duplicate(packaging));
}

} // namespace

class tst_ZAXMatPackaging : public QObject
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
    void formsAreNumbered();
    void formsAreListedInOrder();
    void formIsLabelledInTheUsersLanguage_data();
    void formIsLabelledInTheUsersLanguage();

    void parentMustBeMaterial_data();
    void parentMustBeMaterial();
    void standsUnderItsMaterialOnceConstructed();
    void newPackagingHasDefaults();
    void newPackagingHasEmptyRemoteKeyThatIsNotNull();
    void canBeConstructedWithoutContainer();
    void startsWithLastSavedValues();
    void doesNotStartWithOtherValuesLastSaved();
    void recreatedPackagingKeepsDefaultsWhateverWasLastSaved();

    void setterStoresAndNotifiesOnce_data();
    void setterStoresAndNotifiesOnce();
    void propertyIsWrittenBySetter_data();
    void propertyIsWrittenBySetter();
    void onlyMarkedPropertiesAreRemembered_data();
    void onlyMarkedPropertiesAreRemembered();
    void numberWithoutUnitIsWritten();
    void activationLeavesSiblingsAlone();

    void childIsAllowed_data();
    void childIsAllowed();
    void packagingWithDependentsCannotBeDeletedByUser();
    void ownListDoesNotKeepUserFromDeleting();

    void validation_data();
    void validation();
    void widthOfRollIsValidated();
    void messagesAreErrors();
    void oldMessagesAreCleared();

    void copyLosesItsLinkToTheCatalogue();
    void copyKeepsEverythingElse();
    void copyWithoutRemoteKeyIsNotTouched();
    void copyListsItsOwnExtensions();

    void loadNotifiesChangesOnly();
    void loadRemembersLikeSetters();
    void loadReplacesTheListOfExtensions();
    void loadKeepsEmptyItems();
    void loadRefusesExtensionThatIsNone_data();
    void loadRefusesExtensionThatIsNone();
    void loadTakesNoExtensionsForCountBelowOne();
    void loadKeepsYoungerFields();

    void missingExtensionsAreListedAgain();
    void completeListIsLeftAlone();
    void rebuiltListTakesLeaveOfOldItemsFirst();

    void extensionIsNotCreatedUnasked();
    void extensionIsCreatedOnce();
    void extensionIsAddedAfterItIsAChild();
    void extensionsAreFoundByExactClassName_data();
    void extensionsAreFoundByExactClassName();
    void emptyItemsSurviveLookup();
    void otherTypesAreNoExtensions_data();
    void otherTypesAreNoExtensions();
    void featureOfAnotherKindStays();
    void removedExtensionLeavesTheList();
};

void tst_ZAXMatPackaging::init()
{
    ZAXFeatLastSavedStore::SetCurrent(nullptr);
    // What the module's start-up does in an application.
    qRegisterMetaType<ZAXMatPackaging::Form>();
}

void tst_ZAXMatPackaging::classDescribesItself()
{
    const QStringList expected{
        Text("defaultLabel=Packaging"),
        Text("inputProps=length width form cost comment packagingExtensions"),
        Text("outputProps=isActive"),
        Text("visProps="),
        Text("contextualActions="),
        Text("editAction="),
        Text("allowedParents=ZAXMatMaterial"),
        Text("PropertyLabel_length=Length"),
        Text("PropertyLabel_width=Width"),
        Text("PropertyLabel_form=Form"),
        Text("PropertyLabel_cost=Cost"),
        Text("PropertyLabel_comment=Comment"),
        Text("PropertyLabel_isActive=Is Active"),
        Text("PropertyLabel_remoteKey=Remote Key"),
        Text("PropertyLabel_packagingExtensions=Packaging Extensions"),
        Text("version=4"),
    };
    QCOMPARE(ClassInformationOf(ZAXMatPackaging::staticMetaObject), expected);
    QCOMPARE(ZAXMatPackaging::staticMetaObject.superClass(), &ZAXFeatObject::staticMetaObject);
}

void tst_ZAXMatPackaging::propertiesStandInOrder()
{
    const QStringList expected{Text("length"),  Text("width"),     Text("form"),     Text("cost"),
                               Text("comment"), Text("remoteKey"), Text("isActive"), Text("packagingExtensions")};
    QCOMPARE(PropertiesOf(ZAXMatPackaging::staticMetaObject), expected);
}

void tst_ZAXMatPackaging::propertyIsDescribed_data()
{
    QTest::addColumn<QMetaType>("type");
    QTest::addColumn<bool>("writable");
    QTest::addColumn<QByteArray>("notifySignal");
    const auto row = [](const char* property, QMetaType type, bool writable, const char* notifySignal) {
        QTest::newRow(property) << type << writable << QByteArray(notifySignal);
    };
    row("length", QMetaType::fromType<ZAXSysLengthValue>(), true, "LengthChanged(double)");
    row("width", QMetaType::fromType<ZAXSysLengthValue>(), true, "WidthChanged(double)");
    row("form", QMetaType::fromType<ZAXMatPackaging::Form>(), true, "FormChanged(Form)");
    row("cost", QMetaType::fromType<double>(), true, "CostChanged(double)");
    row("comment", QMetaType::fromType<QString>(), true, "CommentChanged(QString)");
    row("remoteKey", QMetaType::fromType<QByteArray>(), true, "RemoteKeyChanged(QByteArray)");
    row("isActive", QMetaType::fromType<bool>(), true, "ActiveChanged(bool)");
    row("packagingExtensions", QMetaType::fromType<QList<ZAXMatPackagingExtension*>>(), false, "");
}

void tst_ZAXMatPackaging::propertyIsDescribed()
{
    QFETCH(const QMetaType, type);
    QFETCH(const bool, writable);
    QFETCH(const QByteArray, notifySignal);
    const QMetaObject& meta = ZAXMatPackaging::staticMetaObject;
    const QMetaProperty property = meta.property(meta.indexOfProperty(QTest::currentDataTag()));
    QVERIFY(property.metaType() == type);
    QVERIFY(property.isReadable());
    QVERIFY(property.isDesignable());
    QVERIFY(property.isScriptable());
    QVERIFY(property.isStored());
    QCOMPARE(property.isWritable(), writable);
    QCOMPARE(property.notifySignal().methodSignature(), notifySignal);
}

void tst_ZAXMatPackaging::listOfExtensionsCannotBeWritten()
{
    ZAXTestDocument document;
    ZAXMatPackaging* const packaging = document.CreatePackaging();
    const QList<ZAXMatPackagingExtension*> extensions{packaging->GetExtension("ZAXTestGrain", true)};
    QVERIFY(!document.CreatePackaging()->setProperty("packagingExtensions", QVariant::fromValue(extensions)));
    QCOMPARE(packaging->property("packagingExtensions").value<QList<ZAXMatPackagingExtension*>>(), extensions);
}

void tst_ZAXMatPackaging::signalsStandInOrder()
{
    const QStringList expected{
        Text("LengthChanged(double length)"),
        Text("WidthChanged(double width)"),
        Text("FormChanged(Form form)"),
        Text("CostChanged(double cost)"),
        Text("CommentChanged(QString comment)"),
        Text("ActiveChanged(bool state)"),
        Text("RemoteKeyChanged(QByteArray key)"),
        Text("PackagingExtensionAdded(ZAXMatPackagingExtension* packagingExtension)"),
        Text("PackagingExtensionRemoved(ZAXMatPackagingExtension* packagingExtension)"),
    };
    QCOMPARE(SignalsOf(ZAXMatPackaging::staticMetaObject), expected);
}

void tst_ZAXMatPackaging::constructorsStandInOrder()
{
    const QStringList expected{Text("ZAXMatPackaging(ZAXGeoContainer*,ZAXGeoGeometryRef)"),
                               Text("ZAXMatPackaging(ZAXFeatObject*)")};
    QCOMPARE(ConstructorsOf(ZAXMatPackaging::staticMetaObject), expected);
}

void tst_ZAXMatPackaging::propertyNamesAreExported()
{
    const QStringList names{
        QLatin1String(ZAXMatPackaging::Property_length),   QLatin1String(ZAXMatPackaging::Property_width),
        QLatin1String(ZAXMatPackaging::Property_form),     QLatin1String(ZAXMatPackaging::Property_cost),
        QLatin1String(ZAXMatPackaging::Property_comment),  QLatin1String(ZAXMatPackaging::Property_remoteKey),
        QLatin1String(ZAXMatPackaging::Property_isActive), QLatin1String(ZAXMatPackaging::Property_packagingExtensions),
    };
    QCOMPARE(names, PropertiesOf(ZAXMatPackaging::staticMetaObject));
}

void tst_ZAXMatPackaging::formsAreNumbered()
{
    const auto form = QMetaEnum::fromType<ZAXMatPackaging::Form>();
    QCOMPARE(form.keyCount(), 2);
    QCOMPARE(form.key(0), "Rectangular");
    QCOMPARE(form.value(0), 0);
    QCOMPARE(form.key(1), "Roll");
    QCOMPARE(form.value(1), 1);
}

void tst_ZAXMatPackaging::formsAreListedInOrder()
{
    QCOMPARE(ZAXMatPackaging::GetAllForms(), QList({ZAXMatPackaging::Rectangular, ZAXMatPackaging::Roll}));
    QVERIFY(ZAXMatPackaging::GetAllForms().isSharedWith(ZAXMatPackaging::GetAllForms()));
}

void tst_ZAXMatPackaging::formIsLabelledInTheUsersLanguage_data()
{
    QTest::addColumn<int>("form");
    QTest::addColumn<QString>("label");
    QTest::addColumn<QString>("translated");
    QTest::newRow("rectangular") << 0 << Text("Rectangular") << Text("<ZAXMatPackaging:Rectangular>");
    QTest::newRow("roll") << 1 << Text("Roll") << Text("<ZAXMatPackaging:Roll>");
    QTest::newRow("one too many") << 2 << QString() << QString();
    QTest::newRow("none") << -1 << QString() << QString();
}

void tst_ZAXMatPackaging::formIsLabelledInTheUsersLanguage()
{
    QFETCH(const int, form);
    QFETCH(const QString, label);
    QFETCH(const QString, translated);
    QCOMPARE(ZAXMatPackaging::GetFormLabel(static_cast<ZAXMatPackaging::Form>(form)), label);
    const ZAXTestTranslator translator({Text("Rectangular"), Text("Roll")});
    QCOMPARE(ZAXMatPackaging::GetFormLabel(static_cast<ZAXMatPackaging::Form>(form)), translated);
}

void tst_ZAXMatPackaging::parentMustBeMaterial_data()
{
    QTest::addColumn<QByteArray>("parentClass");
    QTest::newRow("materials root") << QByteArray("ZAXMatRoot");
    QTest::newRow("folder") << QByteArray("ZAXFeatFolder");
    QTest::newRow("none") << QByteArray();
}

void tst_ZAXMatPackaging::parentMustBeMaterial()
{
    QFETCH(const QByteArray, parentClass);
    ZAXTestDocument document;
    ZAXFeatObject* const parent =
        parentClass.isEmpty() ? nullptr : document.container.CreateInstance(parentClass, nullptr);
    const auto before = document.container.GetGeometries();
    QCOMPARE(MessageThrownBy([parent] { delete new ZAXMatPackaging(parent); }),
             Text("A packaging needs a material as its parent."));
    QCOMPARE(document.container.GetGeometries(), before);
}

void tst_ZAXMatPackaging::standsUnderItsMaterialOnceConstructed()
{
    ZAXTestDocument document;
    ZAXMatMaterial* const material = document.CreateMaterial();
    const ZAXTestSignalLog log(material);
    auto* const packaging = new ZAXMatPackaging(static_cast<ZAXFeatObject*>(material));
    QCOMPARE(material->GetPackaging(), QList{packaging});
    QCOMPARE(packaging->GetContainer(), &document.container);
    QCOMPARE(log.names, QStringList());
}

void tst_ZAXMatPackaging::newPackagingHasDefaults()
{
    ZAXTestDocument document;
    ZAXMatPackaging* const packaging = document.CreatePackaging();
    QCOMPARE(packaging->GetLength(), 1000.0);
    QCOMPARE(packaging->GetWidth(), 500.0);
    QCOMPARE(packaging->GetForm(), ZAXMatPackaging::Rectangular);
    QCOMPARE(packaging->GetCost(), 1.0);
    QCOMPARE(packaging->GetComment(), QString());
    QCOMPARE(packaging->GetRemoteKey(), QByteArray());
    QCOMPARE(packaging->IsActive(), false);
    QVERIFY(packaging->GetExtensions().isEmpty());
    QVERIFY(packaging->UpdateResult());
    QVERIFY(packaging->GetPropertyMessages().isEmpty());
}

void tst_ZAXMatPackaging::newPackagingHasEmptyRemoteKeyThatIsNotNull()
{
    ZAXTestDocument document;
    QVERIFY(!document.CreatePackaging()->GetRemoteKey().isNull());
}

void tst_ZAXMatPackaging::canBeConstructedWithoutContainer()
{
    const ZAXMatPackaging packaging(static_cast<ZAXGeoContainer*>(nullptr), ZAXGeoGeometryRef());
    QCOMPARE(packaging.GetLength(), 1000.0);
    QCOMPARE(packaging.GetContainer(), nullptr);
}

void tst_ZAXMatPackaging::startsWithLastSavedValues()
{
    ZAXTestDocument document;
    ZAXMatPackaging* const first = document.CreatePackaging();
    first->SetLength(3000.0);
    first->SetWidth(1500.0);
    first->SetForm(ZAXMatPackaging::Roll);
    first->SetCost(80.0);
    first->SetComment(Text("rack 3"));
    first->SetRemoteKey("{1}");
    first->SetActive(true);
    const ZAXMatPackaging* const next = document.CreatePackaging();
    QCOMPARE(next->GetLength(), 3000.0);
    QCOMPARE(next->GetWidth(), 1500.0);
    QCOMPARE(next->GetForm(), ZAXMatPackaging::Roll);
    QCOMPARE(next->GetCost(), 80.0);
    QCOMPARE(next->GetComment(), Text("rack 3"));
    QCOMPARE(next->GetRemoteKey(), QByteArray());
    QCOMPARE(next->IsActive(), false);
}

void tst_ZAXMatPackaging::doesNotStartWithOtherValuesLastSaved()
{
    ZAXTestLastSavedStore store;
    store.SetValue("ZAXMatPackaging", "remoteKey", QByteArray("old"));
    store.SetValue("ZAXMatPackaging", "isActive", true);
    ZAXTestDocument document;
    const ZAXMatPackaging* const packaging = document.CreatePackaging();
    QCOMPARE(packaging->GetRemoteKey(), QByteArray());
    QCOMPARE(packaging->IsActive(), false);
}

void tst_ZAXMatPackaging::recreatedPackagingKeepsDefaultsWhateverWasLastSaved()
{
    ZAXTestDocument document;
    document.CreatePackaging()->SetLength(9.0);
    auto* const packaging = document.Recreate<ZAXMatPackaging>(100, document.CreateMaterial());
    EndStateLoad(*packaging);
    QCOMPARE(packaging->GetLength(), 1000.0);
}

void tst_ZAXMatPackaging::setterStoresAndNotifiesOnce_data()
{
    QTest::addColumn<Write>("write");
    QTest::addColumn<Read>("read");
    QTest::addColumn<QVariant>("value");
    const auto row = [](const char* property, const Write& write, const Read& read, const QVariant& value) {
        QTest::newRow(property) << write << read << value;
    };
    using P = ZAXMatPackaging;
    row(
        "length", [](P& p) { p.SetLength(-2.5); }, [](const P& p) { return p.GetLength(); }, -2.5);
    row(
        "width", [](P& p) { p.SetWidth(0.0); }, [](const P& p) { return p.GetWidth(); }, 0.0);
    row(
        "form", [](P& p) { p.SetForm(P::Roll); }, [](const P& p) { return QVariant::fromValue(p.GetForm()); },
        QVariant::fromValue(P::Roll));
    row(
        "cost", [](P& p) { p.SetCost(80.0); }, [](const P& p) { return p.GetCost(); }, 80.0);
    row(
        "comment", [](P& p) { p.SetComment(Text("ø")); }, [](const P& p) { return p.GetComment(); }, Text("ø"));
    row(
        "remoteKey", [](P& p) { p.SetRemoteKey("{1}"); }, [](const P& p) { return p.GetRemoteKey(); },
        QByteArray("{1}"));
    row(
        "isActive", [](P& p) { p.SetActive(true); }, [](const P& p) { return p.IsActive(); }, true);
}

void tst_ZAXMatPackaging::setterStoresAndNotifiesOnce()
{
    QFETCH(const Write, write);
    QFETCH(const Read, read);
    QFETCH(const QVariant, value);
    ZAXTestDocument document;
    ZAXMatPackaging* const packaging = document.CreatePackaging();
    const QMetaObject& meta = ZAXMatPackaging::staticMetaObject;
    QSignalSpy spy(packaging, meta.property(meta.indexOfProperty(QTest::currentDataTag())).notifySignal());
    write(*packaging);
    QCOMPARE(read(*packaging), value);
    QCOMPARE(spy.count(), 1);
    QCOMPARE(spy.constFirst().constFirst(), value);
    const ZAXTestSignalLog log(packaging);
    write(*packaging);
    QCOMPARE(log.names, QStringList());
}

void tst_ZAXMatPackaging::propertyIsWrittenBySetter_data()
{
    QTest::addColumn<QVariant>("value");
    QTest::addColumn<QString>("raised");
    QTest::newRow("length") << QVariant::fromValue(ZAXSysLengthValue(3000.0)) << Text("LengthChanged");
    QTest::newRow("width") << QVariant::fromValue(ZAXSysLengthValue(1500.0)) << Text("WidthChanged");
    QTest::newRow("form") << QVariant::fromValue(ZAXMatPackaging::Roll) << Text("FormChanged");
    QTest::newRow("cost") << QVariant(80.0) << Text("CostChanged");
    QTest::newRow("comment") << QVariant(Text("ø")) << Text("CommentChanged");
    QTest::newRow("remoteKey") << QVariant(QByteArray("{1}")) << Text("RemoteKeyChanged");
    QTest::newRow("isActive") << QVariant(true) << Text("ActiveChanged");
}

void tst_ZAXMatPackaging::propertyIsWrittenBySetter()
{
    QFETCH(const QVariant, value);
    QFETCH(const QString, raised);
    ZAXTestDocument document;
    ZAXMatPackaging* const packaging = document.CreatePackaging();
    const ZAXTestSignalLog log(packaging);
    QVERIFY(packaging->setProperty(QTest::currentDataTag(), value));
    QCOMPARE(packaging->property(QTest::currentDataTag()), value);
    QCOMPARE(log.names, QStringList{raised});
}

void tst_ZAXMatPackaging::onlyMarkedPropertiesAreRemembered_data()
{
    QTest::addColumn<QVariant>("value");
    QTest::addColumn<QStringList>("remembered");
    QTest::newRow("length") << QVariant(3000.0) << QStringList{Text("ZAXMatPackaging.length = 3000")};
    QTest::newRow("width") << QVariant(1500.0) << QStringList{Text("ZAXMatPackaging.width = 1500")};
    QTest::newRow("form") << QVariant::fromValue(ZAXMatPackaging::Roll)
                          << QStringList{Text("ZAXMatPackaging.form = Roll")};
    QTest::newRow("cost") << QVariant(80.0) << QStringList{Text("ZAXMatPackaging.cost = 80")};
    QTest::newRow("comment") << QVariant(Text("ø")) << QStringList{Text("ZAXMatPackaging.comment = ø")};
    QTest::newRow("remoteKey") << QVariant(QByteArray("{1}")) << QStringList();
    QTest::newRow("isActive") << QVariant(true) << QStringList();
}

void tst_ZAXMatPackaging::onlyMarkedPropertiesAreRemembered()
{
    QFETCH(const QVariant, value);
    QFETCH(const QStringList, remembered);
    ZAXTestLastSavedStore store;
    ZAXTestDocument document;
    ZAXMatPackaging* const packaging = document.CreatePackaging();
    QCOMPARE(store.noted, QStringList());
    packaging->setProperty(QTest::currentDataTag(), value);
    packaging->setProperty(QTest::currentDataTag(), value);
    QCOMPARE(store.noted, remembered);
}

void tst_ZAXMatPackaging::numberWithoutUnitIsWritten()
{
    ZAXTestDocument document;
    ZAXMatPackaging* const packaging = document.CreatePackaging();
    QVERIFY(packaging->setProperty("length", QVariant(2LL)));
    QVERIFY(packaging->setProperty("width", Text("4 in")));
    QVERIFY(packaging->setProperty("cost", QVariant(3LL)));
    QVERIFY(packaging->setProperty("form", 1));
    QCOMPARE(packaging->GetLength(), 2.0);
    QCOMPARE(packaging->GetWidth(), 101.6);
    QCOMPARE(packaging->GetCost(), 3.0);
    QCOMPARE(packaging->GetForm(), ZAXMatPackaging::Roll);
}

void tst_ZAXMatPackaging::activationLeavesSiblingsAlone()
{
    ZAXTestDocument document;
    ZAXMatMaterial* const material = document.CreateMaterial();
    auto* const first = document.Create<ZAXMatPackaging>(material);
    auto* const second = document.Create<ZAXMatPackaging>(material);
    first->SetActive(true);
    const ZAXTestSignalLog log(first);
    second->SetActive(true);
    second->SetActive(false);
    QVERIFY(first->IsActive());
    QCOMPARE(log.names, QStringList());
}

void tst_ZAXMatPackaging::childIsAllowed_data()
{
    QTest::addColumn<const QMetaObject*>("type");
    QTest::addColumn<bool>("allowed");
    const auto row = [](const QMetaObject& type, bool allowed) { QTest::newRow(type.className()) << &type << allowed; };
    row(ZAXMatPackagingExtension::staticMetaObject, true);
    row(ZAXTestTrim::staticMetaObject, true);
    row(ZAXMatMaterialExtension::staticMetaObject, false);
    row(ZAXTestAssistGas::staticMetaObject, false);
    row(ZAXTestPiercing::staticMetaObject, false);
    row(ZAXMatPackaging::staticMetaObject, false);
    row(ZAXMatMaterial::staticMetaObject, false);
    row(ZAXFeatObject::staticMetaObject, false);
}

void tst_ZAXMatPackaging::childIsAllowed()
{
    QFETCH(const QMetaObject* const, type);
    QFETCH(const bool, allowed);
    ZAXTestDocument document;
    QCOMPARE(document.CreatePackaging()->IsChildAllowed(type), allowed);
}

void tst_ZAXMatPackaging::packagingWithDependentsCannotBeDeletedByUser()
{
    ZAXTestDocument document;
    ZAXMatPackaging* const packaging = document.CreatePackaging();
    QVERIFY(packaging->IsUserDeletable());
    auto* const dependent = new ZAXTestDependent(&document.container);
    dependent->PointAt(packaging);
    QVERIFY(!packaging->IsUserDeletable());
    dependent->PointAt(nullptr);
    QVERIFY(packaging->IsUserDeletable());
}

void tst_ZAXMatPackaging::ownListDoesNotKeepUserFromDeleting()
{
    ZAXTestDocument document;
    ZAXMatPackaging* const packaging = document.CreatePackaging();
    packaging->GetExtension("ZAXTestGrain", true);
    QVERIFY(packaging->IsUserDeletable());
}

void tst_ZAXMatPackaging::validation_data()
{
    QTest::addColumn<double>("length");
    QTest::addColumn<double>("width");
    QTest::addColumn<double>("cost");
    QTest::addColumn<QStringList>("messages");
    const QString lengthMessage = Text("length: Length must be a positive, non-zero value.");
    const QString widthMessage = Text("width: Width must be a positive, non-zero value.");
    const QString costMessage = Text("cost: Cost must be a positive, non-zero value.");
    QTest::newRow("defaults") << 1000.0 << 500.0 << 1.0 << QStringList();
    QTest::newRow("smallest of all") << 0.001 << 0.001 << 0.001 << QStringList();
    QTest::newRow("just too short") << 0.000999 << 500.0 << 1.0 << QStringList{lengthMessage};
    QTest::newRow("just too narrow") << 1000.0 << 0.000999 << 1.0 << QStringList{widthMessage};
    QTest::newRow("just too cheap") << 1000.0 << 500.0 << 0.0009 << QStringList{costMessage};
    QTest::newRow("negative length") << -1000.0 << 500.0 << 1.0 << QStringList{lengthMessage};
    QTest::newRow("all three at once") << 0.0 << 0.0 << 0.0 << QStringList{lengthMessage, widthMessage, costMessage};
}

void tst_ZAXMatPackaging::validation()
{
    QFETCH(const double, length);
    QFETCH(const double, width);
    QFETCH(const double, cost);
    QFETCH(const QStringList, messages);
    ZAXTestDocument document;
    ZAXMatPackaging* const packaging = document.CreatePackaging();
    packaging->SetLength(length);
    packaging->SetWidth(width);
    packaging->SetCost(cost);
    QCOMPARE(packaging->UpdateResult(), messages.isEmpty());
    QCOMPARE(TextsOf(packaging->GetPropertyMessages()), messages);
}

void tst_ZAXMatPackaging::widthOfRollIsValidated()
{
    ZAXTestDocument document;
    ZAXMatPackaging* const packaging = document.CreatePackaging();
    packaging->SetForm(ZAXMatPackaging::Roll);
    packaging->SetWidth(0.0);
    QVERIFY(!packaging->UpdateResult());
    QCOMPARE(TextsOf(packaging->GetPropertyMessages()),
             QStringList{Text("width: Width must be a positive, non-zero value.")});
}

void tst_ZAXMatPackaging::messagesAreErrors()
{
    const ZAXTestTranslator translator({Text("Cost must be a positive, non-zero value.")});
    ZAXTestDocument document;
    ZAXMatPackaging* const packaging = document.CreatePackaging();
    packaging->SetLength(0.0);
    packaging->SetWidth(0.0);
    packaging->SetCost(0.0);
    packaging->UpdateResult();
    const auto messages = packaging->GetPropertyMessages();
    QVERIFY(std::ranges::all_of(messages, [](const auto& message) { return static_cast<int>(message.status) == 3; }));
    QCOMPARE(messages.constLast().text, Text("<ZAXMatPackaging:Cost must be a positive, non-zero value.>"));
}

void tst_ZAXMatPackaging::oldMessagesAreCleared()
{
    ZAXTestDocument document;
    ZAXMatPackaging* const packaging = document.CreatePackaging();
    packaging->SetCost(0.0);
    QVERIFY(!packaging->UpdateResult());
    packaging->SetCost(1.0);
    QVERIFY(packaging->UpdateResult());
    QVERIFY(packaging->GetPropertyMessages().isEmpty());
}

void tst_ZAXMatPackaging::copyLosesItsLinkToTheCatalogue()
{
    ZAXTestDocument document;
    ZAXMatPackaging* const packaging = document.CreatePackaging();
    packaging->SetRemoteKey("abc");
    const ZAXMatPackaging* const copy = CopyOf(packaging);
    QCOMPARE(copy->GetRemoteKey(), QByteArray());
    QCOMPARE(packaging->GetRemoteKey(), QByteArray("abc"));
}

void tst_ZAXMatPackaging::copyKeepsEverythingElse()
{
    ZAXTestDocument document;
    ZAXMatPackaging* const packaging = document.CreatePackaging();
    packaging->SetLabel(Text("Coil"));
    packaging->SetLength(30000.0);
    packaging->SetWidth(1250.0);
    packaging->SetForm(ZAXMatPackaging::Roll);
    packaging->SetCost(480.5);
    packaging->SetComment(Text("from the mill"));
    packaging->SetActive(true);
    const ZAXTestStored unlinked = ZAXTestStored::From(*packaging);
    packaging->SetRemoteKey("abc");
    QCOMPARE(ZAXTestStored::From(*CopyOf(packaging)), unlinked);
}

void tst_ZAXMatPackaging::copyWithoutRemoteKeyIsNotTouched()
{
    ZAXTestDocument document;
    auto* const packaging = document.CreatePackaging();
    const ZAXTestSignalLog log(packaging);
    packaging->PostDuplicate(packaging, packaging);
    QCOMPARE(log.names, QStringList());
    packaging->SetRemoteKey("abc");
    packaging->PostDuplicate(packaging, packaging);
    QCOMPARE(log.names, QStringList(2, Text("RemoteKeyChanged")));
}

void tst_ZAXMatPackaging::copyListsItsOwnExtensions()
{
    ZAXTestDocument document;
    ZAXMatPackaging* const packaging = document.CreatePackaging();
    packaging->GetExtension("ZAXTestGrain", true);
    const ZAXMatPackaging* const copy = CopyOf(packaging);
    QCOMPARE(copy->GetExtensions().size(), 1);
    QCOMPARE(copy->GetExtensions().constFirst()->GetParent(), copy);
}

void tst_ZAXMatPackaging::loadNotifiesChangesOnly()
{
    ZAXTestDocument document;
    ZAXMatPackaging* const packaging = document.CreatePackaging();
    const ZAXTestStored stored = Today(document.container, {});
    ZAXTestSignalLog log(packaging);
    stored.LoadInto(*packaging);
    const QStringList expected{Text("LabelChanged"),     Text("LengthChanged"), Text("WidthChanged"),
                               Text("FormChanged"),      Text("CostChanged"),   Text("CommentChanged"),
                               Text("RemoteKeyChanged"), Text("ActiveChanged")};
    QCOMPARE(log.names, expected);
    log.names.clear();
    stored.LoadInto(*packaging);
    QCOMPARE(log.names, QStringList());
}

void tst_ZAXMatPackaging::loadRemembersLikeSetters()
{
    ZAXTestLastSavedStore store;
    ZAXTestDocument document;
    Today(document.container, {}).LoadInto(*document.CreatePackaging());
    const QStringList expected{Text("ZAXMatPackaging.length = 30000"), Text("ZAXMatPackaging.width = 1250"),
                               Text("ZAXMatPackaging.form = Roll"), Text("ZAXMatPackaging.cost = 480.5"),
                               Text("ZAXMatPackaging.comment = from the mill")};
    QCOMPARE(store.noted, expected);
}

void tst_ZAXMatPackaging::loadReplacesTheListOfExtensions()
{
    ZAXTestDocument document;
    ZAXMatPackaging* const packaging = document.CreatePackaging();
    ZAXMatPackagingExtension* const first = packaging->GetExtension("ZAXTestGrain", true);
    ZAXMatPackagingExtension* const second = packaging->GetExtension("ZAXTestTrim", true);
    const ZAXTestSignalLog log(packaging);
    QSignalSpy removed(packaging, &ZAXMatPackaging::PackagingExtensionRemoved);
    QSignalSpy added(packaging, &ZAXMatPackaging::PackagingExtensionAdded);
    Today(document.container, {ZAXGeoGeometryRef(second), ZAXGeoGeometryRef(first)}).LoadInto(*packaging);
    QCOMPARE(packaging->GetExtensions(), QList({second, first}));
    QCOMPARE(log.names.sliced(log.names.size() - 4),
             QStringList(2, Text("PackagingExtensionRemoved")) + QStringList(2, Text("PackagingExtensionAdded")));
    QCOMPARE(removed.constFirst().constFirst().value<ZAXMatPackagingExtension*>(), first);
    QCOMPARE(added.constFirst().constFirst().value<ZAXMatPackagingExtension*>(), second);
}

void tst_ZAXMatPackaging::loadKeepsEmptyItems()
{
    ZAXTestDocument document;
    ZAXMatPackaging* const packaging = document.CreatePackaging();
    auto* const extension = document.Create<ZAXTestGrain>(packaging);
    const ZAXTestStored stored = Today(document.container, {ZAXGeoGeometryRef(), ZAXGeoGeometryRef(extension)});
    stored.LoadInto(*packaging);
    EndStateLoad(*packaging);
    QCOMPARE(packaging->GetExtensions(), QList<ZAXMatPackagingExtension*>({nullptr, extension}));
    QCOMPARE(ZAXTestStored::From(*packaging), stored);
}

void tst_ZAXMatPackaging::loadRefusesExtensionThatIsNone_data()
{
    QTest::addColumn<quint64>("id");
    QTest::newRow("nothing") << quint64(7777);
    QTest::newRow("packaging itself") << quint64(200);
    QTest::newRow("material extension") << quint64(201);
}

void tst_ZAXMatPackaging::loadRefusesExtensionThatIsNone()
{
    QFETCH(const quint64, id);
    ZAXTestDocument document;
    ZAXMatMaterial* const material = document.CreateMaterial();
    auto* const packaging = document.Recreate<ZAXMatPackaging>(200, material);
    document.Recreate<ZAXTestPiercing>(201, material);
    const ZAXTestStored stored = Today(document.container, {ZAXGeoGeometryRef::FromId(id)});
    QVERIFY_THROWS_EXCEPTION(ZAXGeoGeometryNotFoundException, stored.LoadInto(*packaging));
    QVERIFY(packaging->GetExtensions().isEmpty());
}

void tst_ZAXMatPackaging::loadTakesNoExtensionsForCountBelowOne()
{
    ZAXTestDocument document;
    ZAXMatPackaging* const packaging = document.CreatePackaging();
    packaging->GetExtension("ZAXTestGrain", true);
    ZAXTestStored stored = Today(document.container, {});
    stored.payload.replace(stored.payload.size() - 4, 4, QByteArray::fromHex("ffffffff"));
    stored.LoadInto(*packaging);
    QVERIFY(packaging->GetExtensions().isEmpty());
}

void tst_ZAXMatPackaging::loadKeepsYoungerFields()
{
    ZAXTestDocument document;
    ZAXMatPackaging* const packaging = document.CreatePackaging();
    packaging->SetRemoteKey("abc");
    packaging->SetActive(true);
    packaging->GetExtension("ZAXTestGrain", true);
    Today(document.container, {}).LoadInto(*packaging, {{"ZAXMatPackaging", 1}});
    QCOMPARE(packaging->GetLength(), 30000.0);
    QCOMPARE(packaging->GetRemoteKey(), QByteArray("abc"));
    QVERIFY(packaging->IsActive());
    QCOMPARE(packaging->GetExtensions().size(), 1);
}

void tst_ZAXMatPackaging::missingExtensionsAreListedAgain()
{
    ZAXTestDocument document;
    ZAXMatPackaging* const packaging = document.CreatePackaging();
    auto* const grain = document.Create<ZAXTestGrain>(packaging);
    auto* const trim = document.Create<ZAXTestTrim>(packaging);
    const ZAXTestSignalLog log(packaging);
    EndStateLoad(*packaging);
    const QList<ZAXMatPackagingExtension*> listed = packaging->GetExtensions();
    QCOMPARE(listed.size(), 2);
    QVERIFY(listed.contains(grain));
    QVERIFY(listed.contains(trim));
    QCOMPARE(log.names, QStringList(2, Text("PackagingExtensionAdded")));
}

void tst_ZAXMatPackaging::completeListIsLeftAlone()
{
    ZAXTestDocument document;
    ZAXMatPackaging* const packaging = document.CreatePackaging();
    auto* const grain = document.Create<ZAXTestGrain>(packaging);
    auto* const foreign = document.Create<ZAXTestTrim>(document.CreatePackaging());
    Today(document.container, {ZAXGeoGeometryRef(foreign), ZAXGeoGeometryRef(grain)}).LoadInto(*packaging);
    const ZAXTestSignalLog log(packaging);
    EndStateLoad(*packaging);
    QCOMPARE(packaging->GetExtensions(), QList<ZAXMatPackagingExtension*>({foreign, grain}));
    QCOMPARE(log.names, QStringList());
}

void tst_ZAXMatPackaging::rebuiltListTakesLeaveOfOldItemsFirst()
{
    ZAXTestDocument document;
    ZAXMatPackaging* const packaging = document.CreatePackaging();
    auto* const grain = document.Create<ZAXTestGrain>(packaging);
    auto* const missing = document.Create<ZAXTestTrim>(packaging);
    Today(document.container, {ZAXGeoGeometryRef(grain), ZAXGeoGeometryRef()}).LoadInto(*packaging);
    QList<ZAXMatPackagingExtension*> removed;
    QObject::connect(packaging, &ZAXMatPackaging::PackagingExtensionRemoved,
                     [&](ZAXMatPackagingExtension* extension) { removed.append(extension); });
    const ZAXTestSignalLog log(packaging);
    EndStateLoad(*packaging);
    QCOMPARE(removed, QList<ZAXMatPackagingExtension*>({grain, nullptr}));
    QCOMPARE(log.names,
             QStringList(2, Text("PackagingExtensionRemoved")) + QStringList(2, Text("PackagingExtensionAdded")));
    const QList<ZAXMatPackagingExtension*> listed = packaging->GetExtensions();
    QCOMPARE(QSet(listed.begin(), listed.end()), (QSet<ZAXMatPackagingExtension*>{grain, missing}));
}

void tst_ZAXMatPackaging::extensionIsNotCreatedUnasked()
{
    ZAXTestDocument document;
    const ZAXMatPackaging* const packaging = document.CreatePackaging();
    QCOMPARE(packaging->GetExtension("ZAXTestGrain", false), nullptr);
    QCOMPARE(packaging->GetExtension("X", false), nullptr);
    QVERIFY(packaging->GetChildren().isEmpty());
}

void tst_ZAXMatPackaging::extensionIsCreatedOnce()
{
    ZAXTestDocument document;
    const ZAXMatPackaging* const packaging = document.CreatePackaging();
    ZAXMatPackagingExtension* const grain = packaging->GetExtension("ZAXTestGrain", true);
    ZAXMatPackagingExtension* const trim = packaging->GetExtension("ZAXTestTrim", true);
    QVERIFY(qobject_cast<ZAXTestGrain*>(grain));
    QVERIFY(qobject_cast<ZAXTestTrim*>(trim));
    QCOMPARE(packaging->GetChildren(), QList<ZAXFeatObject*>({grain, trim}));
    QCOMPARE(packaging->GetExtensions(), QList({grain, trim}));
    QCOMPARE(packaging->GetExtension("ZAXTestGrain", true), grain);
    QCOMPARE(packaging->GetExtension("ZAXTestTrim", false), trim);
    QCOMPARE(packaging->GetExtensions().size(), 2);
}

void tst_ZAXMatPackaging::extensionIsAddedAfterItIsAChild()
{
    ZAXTestDocument document;
    ZAXMatPackaging* const packaging = document.CreatePackaging();
    const ZAXTestSignalLog log(packaging);
    QSignalSpy added(packaging, &ZAXMatPackaging::PackagingExtensionAdded);
    ZAXMatPackagingExtension* const grain = packaging->GetExtension("ZAXTestGrain", true);
    QCOMPARE(log.names, QStringList({Text("ChildAdded"), Text("PackagingExtensionAdded")}));
    QCOMPARE(added.constFirst().constFirst().value<ZAXMatPackagingExtension*>(), grain);
}

void tst_ZAXMatPackaging::extensionsAreFoundByExactClassName_data()
{
    QTest::addColumn<QByteArray>("key");
    QTest::newRow("other case") << QByteArray("zaxtestgrain");
    QTest::newRow("shorter") << QByteArray("ZAXTestGrai");
    QTest::newRow("longer by a zero byte") << QByteArray("ZAXTestGrain\0", 13);
    QTest::newRow("base class") << QByteArray("ZAXMatPackagingExtension");
    QTest::newRow("empty") << QByteArray();
}

void tst_ZAXMatPackaging::extensionsAreFoundByExactClassName()
{
    QFETCH(const QByteArray, key);
    ZAXTestDocument document;
    const ZAXMatPackaging* const packaging = document.CreatePackaging();
    packaging->GetExtension("ZAXTestGrain", true);
    QCOMPARE(packaging->GetExtension(key, false), nullptr);
}

void tst_ZAXMatPackaging::emptyItemsSurviveLookup()
{
    ZAXTestDocument document;
    ZAXMatPackaging* const packaging = document.CreatePackaging();
    auto* const grain = document.Create<ZAXTestGrain>(packaging);
    Today(document.container, {ZAXGeoGeometryRef(), ZAXGeoGeometryRef(grain)}).LoadInto(*packaging);
    QCOMPARE(packaging->GetExtension("ZAXTestGrain", false), grain);
    QCOMPARE(packaging->GetExtension("ZAXTestTrim", false), nullptr);
}

void tst_ZAXMatPackaging::otherTypesAreNoExtensions_data()
{
    QTest::addColumn<QByteArray>("key");
    QTest::newRow("unknown class") << QByteArray("X");
    QTest::newRow("abstract base class") << QByteArray("ZAXMatPackagingExtension");
    QTest::newRow("material extension") << QByteArray("ZAXTestPiercing");
    QTest::newRow("packaging") << QByteArray("ZAXMatPackaging");
    QTest::newRow("empty") << QByteArray();
}

void tst_ZAXMatPackaging::otherTypesAreNoExtensions()
{
    QFETCH(const QByteArray, key);
    ZAXTestDocument document;
    ZAXMatPackaging* const packaging = document.CreatePackaging();
    const ZAXTestSignalLog log(packaging);
    QCOMPARE(MessageThrownBy([&] { packaging->GetExtension(key, true); }), Text("type is not a packaging extension"));
    QVERIFY(packaging->GetExtensions().isEmpty());
    QVERIFY(packaging->GetChildren().isEmpty());
    QCOMPARE(log.names, QStringList());
}

void tst_ZAXMatPackaging::featureOfAnotherKindStays()
{
    ZAXTestDocument document;
    ZAXMatPackaging* const packaging = document.CreatePackaging();
    QCOMPARE(MessageThrownBy([&] { packaging->GetExtension("ZAXFeatFolder", true); }),
             Text("type is not a packaging extension"));
    QCOMPARE(packaging->GetChildren().size(), 1);
    QVERIFY(packaging->GetExtensions().isEmpty());
}

void tst_ZAXMatPackaging::removedExtensionLeavesTheList()
{
    ZAXTestDocument document;
    ZAXMatPackaging* const packaging = document.CreatePackaging();
    ZAXMatPackagingExtension* const grain = packaging->GetExtension("ZAXTestGrain", true);
    QList<ZAXMatPackagingExtension*> removed;
    QObject::connect(packaging, &ZAXMatPackaging::PackagingExtensionRemoved,
                     [&](ZAXMatPackagingExtension* extension) { removed.append(extension); });
    grain->Remove();
    QCOMPARE(removed, QList{grain});
    QVERIFY(packaging->GetExtensions().isEmpty());
}

QTEST_GUILESS_MAIN(tst_ZAXMatPackaging)
#include "tst_ZAXMatPackaging.moc"
