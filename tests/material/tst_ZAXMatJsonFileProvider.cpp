#include "CatalogueFolder.h"
#include "ZAXMatExtensionPlugin.h"
#include "ZAXMatJsonFileProvider.h"
#include "ZAXMatProviderCache.h"
#include "ZAXMatTestDocument.h"
#include "ZAXMatTestListeners.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QLoggingCategory>
#include <QRegularExpression>
#include <QTest>

#include <cerrno>
#include <memory>
#include <type_traits>

static_assert(std::is_base_of_v<ZAXMatProvider, ZAXMatJsonFileProvider>);

using Keys = QList<QByteArray>;
using Operation = void (*)(ZAXMatJsonFileProvider&);
Q_DECLARE_METATYPE(Operation)

/// A material extension two classes down, with properties that catalogues leave out and others that they keep.
class ZAXTestHardening : public ZAXTestAssistGas
{
    Q_OBJECT
    Q_PROPERTY(QByteArray providerId MEMBER m_bytes)
    Q_PROPERTY(int hardness MEMBER m_hardness)
    Q_PROPERTY(QByteArray remoteKey MEMBER m_bytes)
    Q_PROPERTY(QByteArray nestingColor MEMBER m_bytes)
    Q_PROPERTY(int depth MEMBER m_hardness)

public:
    using ZAXTestAssistGas::ZAXTestAssistGas;

private:
    QByteArray m_bytes;
    int m_hardness = 0;
};

/// The same for packagings.
class ZAXTestCoil : public ZAXTestTrim
{
    Q_OBJECT
    Q_PROPERTY(QByteArray providerId MEMBER m_bytes)
    Q_PROPERTY(QByteArray remoteKey MEMBER m_bytes)
    Q_PROPERTY(QByteArray nestingColor MEMBER m_bytes)

public:
    using ZAXTestTrim::ZAXTestTrim;

private:
    QByteArray m_bytes;
};

namespace {

template <typename MaterialExtension, typename PackagingExtension>
class Plugin : public ZAXMatExtensionPlugin
{
public:
    const QMetaObject* GetMaterialExtensionMetaObject() const override { return &MaterialExtension::staticMetaObject; }
    const QMetaObject* GetPackagingExtensionMetaObject() const override
    {
        return &PackagingExtension::staticMetaObject;
    }
};

using GasAndTrim = Plugin<ZAXTestAssistGas, ZAXTestTrim>;
using PiercingAndGrain = Plugin<ZAXTestPiercing, ZAXTestGrain>;
using HardeningAndCoil = Plugin<ZAXTestHardening, ZAXTestCoil>;

/// Has a schema of its own, refuses to remove some packagings, and notes calls.
class DerivedProvider : public ZAXMatJsonFileProvider
{
public:
    using ZAXMatJsonFileProvider::ZAXMatJsonFileProvider;

    Keys GetSupportedMaterialExtensions() const override { return Note("material extensions"), Keys{"B", "A"}; }
    Keys GetSupportedPackagingExtensions() const override { return Note("packaging extensions"), Keys{"D", "C"}; }
    Keys GetSupportedMaterialProperties(const QByteArray& extension) const override
    {
        return Note("material " + extension), Keys{"m" + extension};
    }
    Keys GetSupportedPackagingProperties(const QByteArray& extension) const override
    {
        return Note("packaging " + extension), Keys{"p" + extension};
    }
    bool RemovePackaging(const QByteArray& key) override
    {
        Note("remove " + key);
        return key != refused && ZAXMatJsonFileProvider::RemovePackaging(key);
    }

    QByteArray refused;
    mutable Keys calls;

private:
    void Note(const QByteArray& call) const { calls.append(call); }
};

/// JSON with single quotes in the place of double ones.
QByteArray Json(QByteArray text)
{
    return text.replace('\'', '"');
}

/// A record as a member of a catalogue, in the quotes of Json().
QByteArray MaterialText(const QByteArray& key, const QByteArray& properties = "{}")
{
    return "'" + key + "':{'key':'" + key + "','materialKey':'','name':'Material " + key +
           "','type':0,'properties':" + properties + '}';
}

QByteArray PackagingText(const QByteArray& key, const QByteArray& materialKey)
{
    return "'" + key + "':{'key':'" + key + "','materialKey':'" + materialKey + "','name':'Packaging " + key +
           "','type':1,'properties':{}}";
}

QByteArray Catalogue(const QList<QByteArray>& members)
{
    return Json('{' + members.join(',') + '}');
}

Keys Sorted(Keys keys)
{
    std::sort(keys.begin(), keys.end());
    return keys;
}

Keys MembersOf(const QByteArray& catalogue)
{
    Keys names;
    const QStringList members = QJsonDocument::fromJson(catalogue).object().keys();
    for (const QString& member : members)
        names.append(member.toUtf8());
    return names;
}

/// What the system says about an error, in the language of the locale, as a pattern.
QString SystemError(int number)
{
    return QRegularExpression::escape(qt_error_string(number));
}

/// The test fails unless a warning comes that matches \a pattern.
void ExpectWarning(const QString& pattern)
{
    QTest::ignoreMessage(QtWarningMsg, QRegularExpression(pattern));
}

} // namespace

class tst_ZAXMatJsonFileProvider : public QObject
{
    Q_OBJECT

private slots:
    void init();

    void theDefaultProviderHasAFixedIdLabelAndDirectory();
    void aDirectoryMayBeGiven();
    void thereIsOneDefaultProviderAtATime();
    void providersWithIdsOfTheirOwnLiveSideBySide();
    void theDefaultLabelIsTranslated();
    void aProviderCanBeWrittenToAndHasPackagings();

    void theBasePropertiesAreThoseOfTheFeatures();
    void extensionsAreThoseOfThePluginsInOrder();
    void propertiesOfExtensionsAreThoseOfThePlugins();
    void propertiesOfExtensionsLeaveOutWhatTiesAFeature();
    void everyPluginOfAClassContributesItsProperties();
    void unknownExtensionsHaveNoProperties_data();
    void unknownExtensionsHaveNoProperties();

    void withoutFileTheCatalogueIsEmpty();
    void aFileThatAppearsIsLoaded();
    void aFileIsLoadedOnConstruction();
    void recordsOfBothKindsAreLoaded();
    void whatIsNoRecordIsDropped_data();
    void whatIsNoRecordIsDropped();
    void aRecordIsKnownByItsKeyAndNotByItsMember();
    void theLastOfSeveralRecordsWithOneKeyStays();
    void loadedRecordsReportAChangeUnlessEmpty();
    void theLastLinkedPackagingComesFirst();
    void aPackagingThatIsThereTwiceIsLinkedTwice();
    void linksKeepTheirOrderWhenAPackagingGoes();
    void unknownKeysGiveInvalidRecords();
    void aChangedFileIsReadByEveryOperationOnRecords_data();
    void aChangedFileIsReadByEveryOperationOnRecords();
    void noOtherOperationReadsTheFile_data();
    void noOtherOperationReadsTheFile();
    void aFileOfTheSameTimeIsNotReadAgain();
    void aFileOfAnEarlierTimeIsReadAgain();
    void aFileOfTheTimeThatQtTakesForNoneIsReadOnce();
    void aFileBelowASearchPathIsRead();
    void aChangedFileReplacesAllThatWasNotCommitted();
    void aFileThatVanishesLeavesTheCatalogue();
    void aFileThatCannotBeReadLeavesTheCatalogueAndIsReportedOnce();
    void aDirectoryThatCannotBeEnteredIsReported();
    void aMalformedFileIsReportedAndEmpty_data();
    void aMalformedFileIsReportedAndEmpty();
    void aMalformedFileIsReplacedByTheNextCommit();
    void reportsCanBeSwitchedOff();

    void aCreatedMaterialIsNewAndNamed();
    void aCreatedMaterialHasEverySupportedPair();
    void createdMaterialsHaveTheSchemaOfTheDerivedClass();
    void createdRecordsAreNotWritten();
    void aCreatedPackagingIsNewNamedAndLinked();
    void aCreatedPackagingHasEverySupportedPair();
    void createdPackagingsHaveTheSchemaOfTheDerivedClass();
    void aPackagingOfAnUnknownMaterialIsCreated();

    void aMaterialIsRemovedWithItsPackagings();
    void anUnknownMaterialIsNotRemovedButItsPackagingsAre();
    void removalStopsAtAPackagingThatStays();
    void aPackagingIsRemovedAlone();
    void anUnknownPackagingIsNotRemoved();

    void anUpdateReplacesNameAndValues_data();
    void anUpdateReplacesNameAndValues();
    void anUpdateKeepsIdentityAndSavedCopies();
    void whatTheProviderDoesNotHoldIsNotUpdated_data();
    void whatTheProviderDoesNotHoldIsNotUpdated();

    void commitWritesOneMemberPerRecord();
    void commitWritesIndentedText();
    void aPackagingReplacesAMaterialOfItsKeyInTheFile();
    void anEmptyCatalogueIsAnEmptyObject();
    void committedRecordsAreReadAgain();
    void committedRecordsAreReadAgainEvenWithinOneTickOfTheClock();
    void commitNeverCreatesTheDirectory();
    void commitReplacesTheFileAsAWhole();
    void commitKeepsThePermissions_data();
    void commitKeepsThePermissions();
    void commitLeavesASymbolicLink_data();
    void commitLeavesASymbolicLink();
    void aFileThatRefusesToBeWrittenStays();
    void aDirectoryInThePlaceOfTheFileStays();
    void aDirectoryThatTakesNoNewFileIsWrittenInPlace();
    void aDirectoryThatTakesNoFileAtAllStays();
    void onAFullDiskTheFileStays_data();
    void onAFullDiskTheFileStays();
    void onAFullDiskAFileWrittenInPlaceStays_data() { onAFullDiskTheFileStays_data(); }
    void onAFullDiskAFileWrittenInPlaceStays();
    void aShorterCatalogueLeavesNothingOfALongerOneInPlace();
    void whatCouldNotBeWrittenIsStillThere();

    void editsThroughACacheReachTheFile();
};

void tst_ZAXMatJsonFileProvider::init()
{
    QTest::failOnWarning(QRegularExpression(QLatin1String(".*")));
}

void tst_ZAXMatJsonFileProvider::theDefaultProviderHasAFixedIdLabelAndDirectory()
{
    const CatalogueFolder folder;
    const WorkingDirectory here(folder.Path());
    QVERIFY(QDir().mkpath(Text("C:/JSONDOC")));
    CatalogueFolder::WriteTo(Text("C:/JSONDOC/materials.json"), Catalogue({MaterialText("a")}));
    ZAXMatJsonFileProvider provider;
    QCOMPARE(provider.GetProviderId(), QByteArray("ZAXMatJsonFileProvider"));
    QCOMPARE(provider.GetProviderLabel(), Text("JSON File Provider"));
    QCOMPARE(ZAXMatProvider::GetProvider("ZAXMatJsonFileProvider"), &provider);
    QCOMPARE(provider.GetMaterialKeys(), Keys{"a"});
    provider.CreateMaterial(Text("Steel"));
    provider.Commit();
    QCOMPARE(MembersOf(CatalogueFolder::ReadFrom(Text("C:/JSONDOC/materials.json"))).size(), 2);
    QCOMPARE(folder.Entries(), QStringList{Text("C:")});
}

void tst_ZAXMatJsonFileProvider::aDirectoryMayBeGiven()
{
    CatalogueFolder folder;
    folder.Write(Catalogue({MaterialText("a")}));
    ZAXMatJsonFileProvider provider(folder.Path());
    QCOMPARE(provider.GetProviderId(), QByteArray("ZAXMatJsonFileProvider"));
    QCOMPARE(provider.GetProviderLabel(), Text("JSON File Provider"));
    QCOMPARE(ZAXMatProvider::GetProvider("ZAXMatJsonFileProvider"), &provider);
    QCOMPARE(provider.GetMaterialKeys(), Keys{"a"});
}

void tst_ZAXMatJsonFileProvider::thereIsOneDefaultProviderAtATime()
{
    const CatalogueFolder folder;
    {
        const ZAXMatJsonFileProvider provider(folder.Path());
        QCOMPARE(MessageThrownBy([] { ZAXMatJsonFileProvider second; }),
                 Text("A provider with the given ID already exists."));
        QCOMPARE(ZAXMatProvider::GetProvider("ZAXMatJsonFileProvider"), &provider);
    }
    QCOMPARE(ZAXMatProvider::GetProvider("ZAXMatJsonFileProvider"), nullptr);
    const ZAXMatJsonFileProvider next(folder.Path());
    QCOMPARE(ZAXMatProvider::GetProvider("ZAXMatJsonFileProvider"), &next);
}

void tst_ZAXMatJsonFileProvider::providersWithIdsOfTheirOwnLiveSideBySide()
{
    CatalogueFolder shared;
    CatalogueFolder personal;
    shared.Write(Catalogue({MaterialText("a")}));
    personal.Write(Catalogue({MaterialText("b")}));
    ZAXMatJsonFileProvider company("company", Text("Firma Ørsted"), shared.Path());
    ZAXMatJsonFileProvider own("own", QString(), personal.Path());
    QCOMPARE(company.GetProviderId(), QByteArray("company"));
    QCOMPARE(company.GetProviderLabel(), Text("Firma Ørsted"));
    QCOMPARE(own.GetProviderLabel(), QString());
    QCOMPARE(ZAXMatProvider::GetProvider("company"), &company);
    QCOMPARE(ZAXMatProvider::GetProvider("own"), &own);
    QCOMPARE(company.GetMaterialKeys(), Keys{"a"});
    QCOMPARE(own.GetMaterialKeys(), Keys{"b"});
    QCOMPARE(MessageThrownBy([&] { ZAXMatJsonFileProvider("own", Text("Other"), shared.Path()); }),
             Text("A provider with the given ID already exists."));
}

void tst_ZAXMatJsonFileProvider::theDefaultLabelIsTranslated()
{
    const CatalogueFolder folder;
    const ZAXMatJsonFileProvider provider(folder.Path());
    const ZAXMatJsonFileProvider named("named", Text("JSON File Provider"), folder.Path());
    const ZAXTestTranslator translator({Text("JSON File Provider")});
    QCOMPARE(provider.GetProviderLabel(), Text("<ZAXMatJsonFileProvider:JSON File Provider>"));
    QCOMPARE(named.GetProviderLabel(), Text("JSON File Provider"));
}

void tst_ZAXMatJsonFileProvider::aProviderCanBeWrittenToAndHasPackagings()
{
    const CatalogueFolder folder;
    const ZAXMatJsonFileProvider provider(folder.Path());
    QVERIFY(!provider.IsReadOnly());
    QVERIFY(provider.HasPackaging());
    QCOMPARE(provider.GetState(), ZAXMatProviderBase::InitialState);
}

void tst_ZAXMatJsonFileProvider::theBasePropertiesAreThoseOfTheFeatures()
{
    const CatalogueFolder folder;
    const ZAXMatJsonFileProvider provider(folder.Path());
    QCOMPARE(provider.GetSupportedMaterialProperties(""),
             (Keys{"materialId", "isMaterialIdCustomized", "materialType", "thickness", "category", "density",
                   "comment", "materialExtensions"}));
    QCOMPARE(provider.GetSupportedPackagingProperties(""),
             (Keys{"length", "width", "form", "cost", "comment", "isActive", "packagingExtensions"}));
}

void tst_ZAXMatJsonFileProvider::extensionsAreThoseOfThePluginsInOrder()
{
    const CatalogueFolder folder;
    const ZAXMatJsonFileProvider provider(folder.Path());
    QCOMPARE(provider.GetSupportedMaterialExtensions(), Keys());
    QCOMPARE(provider.GetSupportedPackagingExtensions(), Keys());
    const PiercingAndGrain first;
    const GasAndTrim second;
    const Plugin<ZAXTestPiercing, ZAXTestTrim> third;
    QCOMPARE(provider.GetSupportedMaterialExtensions(),
             (Keys{"ZAXTestPiercing", "ZAXTestAssistGas", "ZAXTestPiercing"}));
    QCOMPARE(provider.GetSupportedPackagingExtensions(), (Keys{"ZAXTestGrain", "ZAXTestTrim", "ZAXTestTrim"}));
}

void tst_ZAXMatJsonFileProvider::propertiesOfExtensionsAreThoseOfThePlugins()
{
    const CatalogueFolder folder;
    const ZAXMatJsonFileProvider provider(folder.Path());
    const GasAndTrim gasAndTrim;
    const PiercingAndGrain piercingAndGrain;
    QCOMPARE(provider.GetSupportedMaterialProperties("ZAXTestAssistGas"), (Keys{"isExtensionEnabled", "pressure"}));
    QCOMPARE(provider.GetSupportedMaterialProperties("ZAXTestPiercing"), Keys{"isExtensionEnabled"});
    QCOMPARE(provider.GetSupportedPackagingProperties("ZAXTestTrim"), (Keys{"isExtensionEnabled", "margin"}));
    QCOMPARE(provider.GetSupportedPackagingProperties("ZAXTestGrain"), Keys{"isExtensionEnabled"});
}

void tst_ZAXMatJsonFileProvider::propertiesOfExtensionsLeaveOutWhatTiesAFeature()
{
    const CatalogueFolder folder;
    const ZAXMatJsonFileProvider provider(folder.Path());
    const HardeningAndCoil plugin;
    QCOMPARE(provider.GetSupportedMaterialProperties("ZAXTestHardening"),
             (Keys{"isExtensionEnabled", "pressure", "hardness", "depth"}));
    QCOMPARE(provider.GetSupportedPackagingProperties("ZAXTestCoil"),
             (Keys{"isExtensionEnabled", "margin", "providerId", "nestingColor"}));
}

void tst_ZAXMatJsonFileProvider::everyPluginOfAClassContributesItsProperties()
{
    const CatalogueFolder folder;
    const ZAXMatJsonFileProvider provider(folder.Path());
    const GasAndTrim one;
    const PiercingAndGrain between;
    const GasAndTrim other;
    QCOMPARE(provider.GetSupportedMaterialProperties("ZAXTestAssistGas"),
             (Keys{"isExtensionEnabled", "pressure", "isExtensionEnabled", "pressure"}));
    QCOMPARE(provider.GetSupportedPackagingProperties("ZAXTestTrim"),
             (Keys{"isExtensionEnabled", "margin", "isExtensionEnabled", "margin"}));
}

void tst_ZAXMatJsonFileProvider::unknownExtensionsHaveNoProperties_data()
{
    QTest::addColumn<QByteArray>("extension");
    QTest::newRow("unknown") << QByteArray("Unknown");
    QTest::newRow("letter case") << QByteArray("zaxtestassistgas");
    QTest::newRow("base class") << QByteArray("ZAXMatMaterialExtension");
    QTest::newRow("class without plug-in") << QByteArray("ZAXTestPiercing");
    QTest::newRow("bytes behind the name") << QByteArray("ZAXTestAssistGas\0", 17);
    QTest::newRow("the feature itself") << QByteArray("ZAXMatMaterial");
}

void tst_ZAXMatJsonFileProvider::unknownExtensionsHaveNoProperties()
{
    QFETCH(const QByteArray, extension);
    const CatalogueFolder folder;
    const ZAXMatJsonFileProvider provider(folder.Path());
    const GasAndTrim plugin;
    QCOMPARE(provider.GetSupportedMaterialProperties(extension), Keys());
    QCOMPARE(provider.GetSupportedPackagingProperties(extension), Keys());
    QCOMPARE(provider.GetSupportedPackagingProperties("ZAXTestAssistGas"), Keys());
    QCOMPARE(provider.GetSupportedMaterialProperties("ZAXTestTrim"), Keys());
}

void tst_ZAXMatJsonFileProvider::withoutFileTheCatalogueIsEmpty()
{
    const CatalogueFolder folder;
    const ZAXMatJsonFileProvider provider(folder.Path());
    QCOMPARE(provider.GetMaterialKeys(), Keys());
    QCOMPARE(provider.GetPackagingKeys(""), Keys());
    const ZAXMatJsonFileProvider nowhere("nowhere", QString(), folder.Path() + Text("/missing"));
    QCOMPARE(nowhere.GetMaterialKeys(), Keys());
    QCOMPARE(folder.Entries(), QStringList());
}

void tst_ZAXMatJsonFileProvider::aFileThatAppearsIsLoaded()
{
    CatalogueFolder folder;
    const ZAXMatJsonFileProvider provider(folder.Path());
    QCOMPARE(provider.GetMaterialKeys(), Keys());
    folder.Write(Catalogue({MaterialText("a")}));
    QCOMPARE(provider.GetMaterialKeys(), Keys{"a"});
}

void tst_ZAXMatJsonFileProvider::aFileIsLoadedOnConstruction()
{
    CatalogueFolder folder;
    folder.Write(Catalogue({MaterialText("a")}));
    const ZAXMatJsonFileProvider provider(folder.Path());
    folder.Remove();
    QCOMPARE(provider.GetMaterialKeys(), Keys{"a"});
}

void tst_ZAXMatJsonFileProvider::recordsOfBothKindsAreLoaded()
{
    CatalogueFolder folder;
    folder.Write(Catalogue({MaterialText("m", "{'':{'thickness':2,'density':7.85},'Cut':{'gas':'O2'}}"),
                            PackagingText("p", "m"), PackagingText("q", "elsewhere")}));
    const ZAXMatJsonFileProvider provider(folder.Path());
    QCOMPARE(provider.GetMaterialKeys(), Keys{"m"});
    const ZAXMatDefinition material = provider.GetMaterial("m");
    QCOMPARE(material.GetKey(), QByteArray("m"));
    QCOMPARE(material.GetName(), Text("Material m"));
    QCOMPARE(material.GetType(), ZAXMatDefinition::Material);
    QCOMPARE(material.GetValue("thickness"), QVariant(2LL));
    QCOMPARE(material.GetValue("density"), QVariant(7.85));
    QCOMPARE(material.GetValue("gas", "Cut"), QVariant(Text("O2")));
    QCOMPARE(provider.GetPackagingKeys("m"), Keys{"p"});
    QCOMPARE(provider.GetPackagingKeys("elsewhere"), Keys{"q"});
    QCOMPARE(provider.GetPackaging("p").GetName(), Text("Packaging p"));
    QCOMPARE(provider.GetPackaging("p").GetMaterialKey(), QByteArray("m"));
    QCOMPARE(provider.GetPackaging("p").GetType(), ZAXMatDefinition::Packaging);
}

void tst_ZAXMatJsonFileProvider::whatIsNoRecordIsDropped_data()
{
    QTest::addColumn<QByteArray>("record");
    QTest::newRow("type 3") << QByteArray("{'key':'x','type':3}");
    QTest::newRow("type -1") << QByteArray("{'key':'x','type':-1}");
    QTest::newRow("empty key") << QByteArray("{'key':'','type':0}");
    QTest::newRow("packaging without key") << QByteArray("{'type':1,'materialKey':'a'}");
    QTest::newRow("key that is no text") << QByteArray("{'key':1,'type':0}");
    QTest::newRow("no object") << QByteArray("[1]");
    QTest::newRow("null") << QByteArray("null");
}

void tst_ZAXMatJsonFileProvider::whatIsNoRecordIsDropped()
{
    QFETCH(const QByteArray, record);
    CatalogueFolder folder;
    folder.Write(Catalogue({MaterialText("a"), "'x':" + record}));
    ZAXMatJsonFileProvider provider(folder.Path());
    QCOMPARE(provider.GetMaterialKeys(), Keys{"a"});
    QCOMPARE(provider.GetPackagingKeys("a"), Keys());
    QVERIFY(!provider.GetMaterial("x").IsValid());
    QVERIFY(!provider.GetPackaging("x").IsValid());
    provider.Commit();
    QCOMPARE(MembersOf(folder.Read()), Keys{"a"});
}

void tst_ZAXMatJsonFileProvider::aRecordIsKnownByItsKeyAndNotByItsMember()
{
    CatalogueFolder folder;
    folder.Write(Json("{'member':{'key':'a'}}"));
    ZAXMatJsonFileProvider provider(folder.Path());
    QCOMPARE(provider.GetMaterialKeys(), Keys{"a"});
    QVERIFY(!provider.GetMaterial("member").IsValid());
    provider.Commit();
    QCOMPARE(MembersOf(folder.Read()), Keys{"a"});
}

void tst_ZAXMatJsonFileProvider::theLastOfSeveralRecordsWithOneKeyStays()
{
    CatalogueFolder folder;
    folder.Write(Json("{'2':{'key':'m','name':'second'},'1':{'key':'m','name':'first'},"
                      "'4':{'key':'p','type':1,'materialKey':'m','name':'second'},"
                      "'3':{'key':'p','type':1,'materialKey':'n','name':'first'}}"));
    ZAXMatJsonFileProvider provider(folder.Path());
    QCOMPARE(provider.GetMaterialKeys(), Keys{"m"});
    QCOMPARE(provider.GetMaterial("m").GetName(), Text("second"));
    QCOMPARE(provider.GetPackaging("p").GetName(), Text("second"));
    QCOMPARE(provider.GetPackaging("p").GetMaterialKey(), QByteArray("m"));
    QVERIFY(provider.RemovePackaging("p"));
    QCOMPARE(provider.GetPackagingKeys("m"), Keys());
}

void tst_ZAXMatJsonFileProvider::loadedRecordsReportAChangeUnlessEmpty()
{
    CatalogueFolder folder;
    folder.Write(
        Json("{'a':{'key':'a','name':'n'},'b':{'key':'b','properties':{'':{'thickness':null}}},'c':{'key':'c'}}"));
    const ZAXMatJsonFileProvider provider(folder.Path());
    QVERIFY(provider.GetMaterial("a").IsChanged());
    QVERIFY(provider.GetMaterial("b").IsChanged());
    QVERIFY(!provider.GetMaterial("c").IsChanged());
}

void tst_ZAXMatJsonFileProvider::theLastLinkedPackagingComesFirst()
{
    CatalogueFolder folder;
    folder.Write(Catalogue(
        {PackagingText("p2", "m"), PackagingText("p3", "m"), PackagingText("q", "n"), PackagingText("p1", "m")}));
    ZAXMatJsonFileProvider provider(folder.Path());
    QCOMPARE(provider.GetPackagingKeys("m"), (Keys{"p3", "p2", "p1"}));
    const QByteArray created = provider.CreatePackaging(Text("Sheet"), "m").GetKey();
    QCOMPARE(provider.GetPackagingKeys("m"), (Keys{created, "p3", "p2", "p1"}));
}

void tst_ZAXMatJsonFileProvider::aPackagingThatIsThereTwiceIsLinkedTwice()
{
    CatalogueFolder folder;
    // Member names count for nothing but the order.
    folder.Write(Json("{'a':{'key':'p','type':1,'materialKey':'m'},'b':{'key':'q','type':1,'materialKey':'m'},"
                      "'c':{'key':'p','type':1,'materialKey':'n'},'d':{'key':'q','type':1,'materialKey':'m'}}"));
    ZAXMatJsonFileProvider provider(folder.Path());
    QCOMPARE(provider.GetPackagingKeys("m"), (Keys{"q", "q", "p"}));
    QCOMPARE(provider.GetPackagingKeys("n"), Keys{"p"});
    QCOMPARE(provider.GetPackaging("p").GetMaterialKey(), QByteArray("n"));
}

void tst_ZAXMatJsonFileProvider::linksKeepTheirOrderWhenAPackagingGoes()
{
    CatalogueFolder folder;
    folder.Write(Catalogue(
        {PackagingText("p1", "m"), PackagingText("p2", "m"), PackagingText("p3", "m"), PackagingText("p4", "m")}));
    ZAXMatJsonFileProvider provider(folder.Path());
    // Before anybody has asked for a link.
    QVERIFY(provider.RemovePackaging("p1"));
    QCOMPARE(provider.GetPackagingKeys("m"), (Keys{"p4", "p3", "p2"}));
    QVERIFY(provider.RemovePackaging("p3"));
    QCOMPARE(provider.GetPackagingKeys("m"), (Keys{"p4", "p2"}));
}

void tst_ZAXMatJsonFileProvider::unknownKeysGiveInvalidRecords()
{
    CatalogueFolder folder;
    folder.Write(Catalogue({MaterialText("m"), PackagingText("p", "m")}));
    const ZAXMatJsonFileProvider provider(folder.Path());
    QVERIFY(provider.GetMaterial("p") == ZAXMatDefinition());
    QVERIFY(provider.GetMaterial("") == ZAXMatDefinition());
    QVERIFY(provider.GetPackaging("m") == ZAXMatDefinition());
    QCOMPARE(provider.GetPackagingKeys("p"), Keys());
}

void tst_ZAXMatJsonFileProvider::aChangedFileIsReadByEveryOperationOnRecords_data()
{
    QTest::addColumn<Operation>("operation");
    const auto row = [](const char* name, Operation operation) { QTest::newRow(name) << operation; };
    row("GetMaterialKeys", [](ZAXMatJsonFileProvider& provider) { provider.GetMaterialKeys(); });
    row("GetMaterial", [](ZAXMatJsonFileProvider& provider) { provider.GetMaterial("x"); });
    row("CreateMaterial", [](ZAXMatJsonFileProvider& provider) { provider.CreateMaterial({}); });
    row("RemoveMaterial", [](ZAXMatJsonFileProvider& provider) { provider.RemoveMaterial("x"); });
    row("GetPackagingKeys", [](ZAXMatJsonFileProvider& provider) { provider.GetPackagingKeys("x"); });
    row("GetPackaging", [](ZAXMatJsonFileProvider& provider) { provider.GetPackaging("x"); });
    row("CreatePackaging", [](ZAXMatJsonFileProvider& provider) { provider.CreatePackaging({}, {}); });
    row("RemovePackaging", [](ZAXMatJsonFileProvider& provider) { provider.RemovePackaging("x"); });
    row("Update", [](ZAXMatJsonFileProvider& provider) { provider.Update(ZAXMatDefinition()); });
}

void tst_ZAXMatJsonFileProvider::aChangedFileIsReadByEveryOperationOnRecords()
{
    QFETCH(const Operation, operation);
    CatalogueFolder folder;
    folder.Write(Catalogue({MaterialText("old")}));
    ZAXMatJsonFileProvider provider(folder.Path());
    folder.Write(Catalogue({MaterialText("new")}));
    operation(provider);
    folder.Remove();
    QVERIFY(provider.GetMaterial("new").IsValid());
    QVERIFY(!provider.GetMaterial("old").IsValid());
}

void tst_ZAXMatJsonFileProvider::noOtherOperationReadsTheFile_data()
{
    QTest::addColumn<Operation>("operation");
    const auto row = [](const char* name, Operation operation) { QTest::newRow(name) << operation; };
    row("GetSupportedMaterialExtensions",
        [](ZAXMatJsonFileProvider& provider) { provider.GetSupportedMaterialExtensions(); });
    row("GetSupportedPackagingExtensions",
        [](ZAXMatJsonFileProvider& provider) { provider.GetSupportedPackagingExtensions(); });
    row("GetSupportedMaterialProperties",
        [](ZAXMatJsonFileProvider& provider) { provider.GetSupportedMaterialProperties(""); });
    row("GetSupportedPackagingProperties",
        [](ZAXMatJsonFileProvider& provider) { provider.GetSupportedPackagingProperties(""); });
    row("IsReadOnly", [](ZAXMatJsonFileProvider& provider) { provider.IsReadOnly(); });
    row("HasPackaging", [](ZAXMatJsonFileProvider& provider) { provider.HasPackaging(); });
    row("GetProviderLabel", [](ZAXMatJsonFileProvider& provider) { provider.GetProviderLabel(); });
    row("Commit", [](ZAXMatJsonFileProvider& provider) { provider.Commit(); });
}

void tst_ZAXMatJsonFileProvider::noOtherOperationReadsTheFile()
{
    QFETCH(const Operation, operation);
    CatalogueFolder folder;
    folder.Write(Catalogue({MaterialText("old")}));
    ZAXMatJsonFileProvider provider(folder.Path());
    folder.Write(Catalogue({MaterialText("new")}));
    operation(provider);
    folder.Remove();
    QCOMPARE(provider.GetMaterialKeys(), Keys{"old"});
}

void tst_ZAXMatJsonFileProvider::aFileOfTheSameTimeIsNotReadAgain()
{
    CatalogueFolder folder;
    folder.Write(Catalogue({MaterialText("a")}));
    const ZAXMatJsonFileProvider provider(folder.Path());
    const QDateTime time = folder.Time();
    folder.Write(Catalogue({MaterialText("b")}));
    folder.SetTime(time);
    QCOMPARE(provider.GetMaterialKeys(), Keys{"a"});
}

void tst_ZAXMatJsonFileProvider::aFileOfAnEarlierTimeIsReadAgain()
{
    CatalogueFolder folder;
    folder.Write(Catalogue({MaterialText("a")}));
    const ZAXMatJsonFileProvider provider(folder.Path());
    const QDateTime time = folder.Time();
    folder.Write(Catalogue({MaterialText("b")}));
    folder.SetTime(time.addMSecs(-1));
    QCOMPARE(provider.GetMaterialKeys(), Keys{"b"});
}

void tst_ZAXMatJsonFileProvider::aFileOfTheTimeThatQtTakesForNoneIsReadOnce()
{
    CatalogueFolder folder;
    folder.Write(Catalogue({MaterialText("a")}));
    folder.SetTime(QDateTime::fromMSecsSinceEpoch(0));
    ZAXMatJsonFileProvider provider(folder.Path());
    const QByteArray created = provider.CreateMaterial(Text("Steel")).GetKey();
    QCOMPARE(Sorted(provider.GetMaterialKeys()), Sorted({"a", created}));
}

void tst_ZAXMatJsonFileProvider::aFileBelowASearchPathIsRead()
{
    CatalogueFolder folder;
    folder.Write(Catalogue({MaterialText("a")}));
    QDir::setSearchPaths(Text("stock"), {folder.Path()});
    ZAXMatJsonFileProvider provider(Text("stock:"));
    QCOMPARE(provider.GetMaterialKeys(), Keys{"a"});
    const QByteArray created = provider.CreateMaterial(Text("Steel")).GetKey();
    QCOMPARE(Sorted(provider.GetMaterialKeys()), Sorted({"a", created}));
    folder.Write(Catalogue({MaterialText("b")}));
    QCOMPARE(provider.GetMaterialKeys(), Keys{"b"});
    QDir::setSearchPaths(Text("stock"), {});
}

void tst_ZAXMatJsonFileProvider::aChangedFileReplacesAllThatWasNotCommitted()
{
    CatalogueFolder folder;
    folder.Write(Catalogue({MaterialText("a"), PackagingText("p", "a")}));
    ZAXMatJsonFileProvider provider(folder.Path());
    const QByteArray material = provider.CreateMaterial(Text("Steel")).GetKey();
    const QByteArray packaging = provider.CreatePackaging(Text("Sheet"), "a").GetKey();
    provider.RemovePackaging("p");
    folder.Write(Catalogue({MaterialText("a"), PackagingText("p", "a")}));
    QCOMPARE(provider.GetMaterialKeys(), Keys{"a"});
    QCOMPARE(provider.GetPackagingKeys("a"), Keys{"p"});
    QVERIFY(!provider.GetMaterial(material).IsValid());
    QVERIFY(!provider.GetPackaging(packaging).IsValid());
}

void tst_ZAXMatJsonFileProvider::aFileThatVanishesLeavesTheCatalogue()
{
    CatalogueFolder folder;
    folder.Write(Catalogue({MaterialText("a")}));
    const ZAXMatJsonFileProvider provider(folder.Path());
    folder.Remove();
    QCOMPARE(provider.GetMaterialKeys(), Keys{"a"});
    folder.Write(Catalogue({MaterialText("b")}));
    QCOMPARE(provider.GetMaterialKeys(), Keys{"b"});
}

void tst_ZAXMatJsonFileProvider::aFileThatCannotBeReadLeavesTheCatalogueAndIsReportedOnce()
{
    CatalogueFolder folder;
    folder.Write(Catalogue({MaterialText("a")}));
    const ZAXMatJsonFileProvider provider(folder.Path());
    folder.Write(Catalogue({MaterialText("b")}));
    CatalogueFolder::SetMode(folder.FilePath(), 0);
    {
        const OrdinaryUser user;
        ExpectWarning(Text("^Cannot read .*/zax ø .*/materials\\.json: ") + SystemError(EACCES) + u'$');
        QCOMPARE(provider.GetMaterialKeys(), Keys{"a"});
        QCOMPARE(provider.GetMaterialKeys(), Keys{"a"});
    }
    CatalogueFolder::SetMode(folder.FilePath(), 0644);
    QCOMPARE(provider.GetMaterialKeys(), Keys{"b"});
    folder.Write(Catalogue({MaterialText("c")}));
    CatalogueFolder::SetMode(folder.FilePath(), 0);
    {
        const OrdinaryUser user;
        ExpectWarning(Text("^Cannot read .*: ") + SystemError(EACCES) + u'$');
        QCOMPARE(provider.GetMaterialKeys(), Keys{"b"});
    }
}

void tst_ZAXMatJsonFileProvider::aDirectoryThatCannotBeEnteredIsReported()
{
    CatalogueFolder folder;
    folder.Write(Catalogue({MaterialText("a")}));
    CatalogueFolder::SetMode(folder.Path(), 0);
    const OrdinaryUser user;
    ExpectWarning(Text("^Cannot read .*/materials\\.json: ") + SystemError(EACCES) + u'$');
    const ZAXMatJsonFileProvider provider(folder.Path());
    QCOMPARE(provider.GetMaterialKeys(), Keys());
}

void tst_ZAXMatJsonFileProvider::aMalformedFileIsReportedAndEmpty_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<QString>("reason");
    QTest::newRow("torn") << Catalogue({MaterialText("a")}).chopped(1)
                          << Text("unterminated object \\(at byte \\d+\\)");
    QTest::newRow("no JSON") << QByteArray("  key = a") << Text("illegal value \\(at byte \\d+\\)");
    QTest::newRow("empty") << QByteArray() << Text("illegal value \\(at byte 0\\)");
    QTest::newRow("garbage behind") << QByteArray("{} x") << Text("garbage at the end of the document \\(at byte 3\\)");
    QTest::newRow("array") << QByteArray("[]") << Text("the file holds no JSON object");
}

void tst_ZAXMatJsonFileProvider::aMalformedFileIsReportedAndEmpty()
{
    QFETCH(const QByteArray, text);
    QFETCH(const QString, reason);
    CatalogueFolder folder;
    folder.Write(Catalogue({MaterialText("a"), PackagingText("p", "a")}));
    const ZAXMatJsonFileProvider provider(folder.Path());
    folder.Write(text);
    ExpectWarning(Text("^Malformed .*/zax ø .*/materials\\.json: ") + reason + u'$');
    QCOMPARE(provider.GetMaterialKeys(), Keys());
    QCOMPARE(provider.GetPackagingKeys("a"), Keys());
    QVERIFY(!provider.GetPackaging("p").IsValid());
    QCOMPARE(folder.Read(), text);
}

void tst_ZAXMatJsonFileProvider::aMalformedFileIsReplacedByTheNextCommit()
{
    CatalogueFolder folder;
    folder.Write("{");
    ExpectWarning(Text("^Malformed "));
    ZAXMatJsonFileProvider provider(folder.Path());
    provider.Commit();
    QCOMPARE(folder.Read(), QByteArray("{\n}\n"));
}

void tst_ZAXMatJsonFileProvider::reportsCanBeSwitchedOff()
{
    CatalogueFolder folder;
    folder.Write("{");
    QLoggingCategory::setFilterRules(Text("zax.material.json=false"));
    const ZAXMatJsonFileProvider provider(folder.Path());
    QLoggingCategory::setFilterRules(QString());
    QCOMPARE(provider.GetMaterialKeys(), Keys());
}

void tst_ZAXMatJsonFileProvider::aCreatedMaterialIsNewAndNamed()
{
    const CatalogueFolder folder;
    ZAXMatJsonFileProvider provider(folder.Path());
    const ZAXMatDefinition material = provider.CreateMaterial(Text("Stål"));
    const QRegularExpression uuid(Text("^\\{[0-9a-f]{8}(-[0-9a-f]{4}){3}-[0-9a-f]{12}\\}$"));
    QVERIFY(uuid.match(QString::fromLatin1(material.GetKey())).hasMatch());
    QCOMPARE(material.GetKey().size(), 38);
    QCOMPARE(material.GetName(), Text("Stål"));
    QCOMPARE(material.GetType(), ZAXMatDefinition::Material);
    QCOMPARE(material.GetMaterialKey(), QByteArray());
    QVERIFY(material.IsChanged());
    QVERIFY(provider.GetMaterial(material.GetKey()) == material);
    QVERIFY(provider.GetMaterial(material.GetKey()).IsChanged());
    QCOMPARE(provider.GetMaterialKeys(), Keys{material.GetKey()});
    QVERIFY(provider.CreateMaterial(Text("Stål")).GetKey() != material.GetKey());
}

void tst_ZAXMatJsonFileProvider::aCreatedMaterialHasEverySupportedPair()
{
    const CatalogueFolder folder;
    ZAXMatJsonFileProvider provider(folder.Path());
    const GasAndTrim plugin;
    const ZAXMatDefinition material = provider.CreateMaterial(Text("Steel"));
    QCOMPARE(Sorted(material.GetDefinedExtensions()), (Keys{"", "ZAXTestAssistGas"}));
    QCOMPARE(Sorted(material.GetDefinedProperties("")), Sorted(provider.GetSupportedMaterialProperties("")));
    QCOMPARE(Sorted(material.GetDefinedProperties("ZAXTestAssistGas")), (Keys{"isExtensionEnabled", "pressure"}));
    QVERIFY(material.IsDefined("thickness"));
    QVERIFY(!material.GetValue("thickness").isValid());
    QVERIFY(!material.GetValue("pressure", "ZAXTestAssistGas").isValid());
    QVERIFY(!material.IsDefined("providerId"));
}

void tst_ZAXMatJsonFileProvider::createdMaterialsHaveTheSchemaOfTheDerivedClass()
{
    const CatalogueFolder folder;
    DerivedProvider provider(folder.Path());
    const ZAXMatDefinition material = provider.CreateMaterial(Text("Steel"));
    QCOMPARE(provider.calls, (Keys{"material extensions", "material ", "material B", "material A"}));
    QCOMPARE(Sorted(material.GetDefinedExtensions()), (Keys{"", "A", "B"}));
    QCOMPARE(material.GetDefinedProperties("A"), Keys{"mA"});
    QCOMPARE(material.GetDefinedProperties(""), Keys{"m"});
}

void tst_ZAXMatJsonFileProvider::createdRecordsAreNotWritten()
{
    CatalogueFolder folder;
    folder.Write(Catalogue({MaterialText("m"), PackagingText("p", "m")}));
    const QByteArray before = folder.Read();
    ZAXMatJsonFileProvider provider(folder.Path());
    provider.CreateMaterial(Text("Steel"));
    provider.CreatePackaging(Text("Sheet"), "m");
    ZAXMatDefinition material = provider.GetMaterial("m");
    material.SetName(Text("Other"));
    provider.Update(material);
    provider.RemovePackaging("p");
    provider.RemoveMaterial("m");
    QCOMPARE(folder.Read(), before);
    QCOMPARE(folder.Entries(), QStringList{Text("materials.json")});
}

void tst_ZAXMatJsonFileProvider::aCreatedPackagingIsNewNamedAndLinked()
{
    CatalogueFolder folder;
    folder.Write(Catalogue({MaterialText("m")}));
    ZAXMatJsonFileProvider provider(folder.Path());
    const ZAXMatDefinition packaging = provider.CreatePackaging(Text("Sheet"), "m");
    QCOMPARE(packaging.GetKey().size(), 38);
    QVERIFY(packaging.GetKey().startsWith('{'));
    QCOMPARE(packaging.GetName(), Text("Sheet"));
    QCOMPARE(packaging.GetType(), ZAXMatDefinition::Packaging);
    QCOMPARE(packaging.GetMaterialKey(), QByteArray("m"));
    QVERIFY(packaging.IsChanged());
    QVERIFY(provider.GetPackaging(packaging.GetKey()) == packaging);
    QCOMPARE(provider.GetPackaging(packaging.GetKey()).GetMaterialKey(), QByteArray("m"));
    QCOMPARE(provider.GetPackagingKeys("m"), Keys{packaging.GetKey()});
    QCOMPARE(provider.GetPackagingKeys("other"), Keys());
    const QByteArray second = provider.CreatePackaging(Text("Sheet"), "m").GetKey();
    QCOMPARE(provider.GetPackagingKeys("m"), (Keys{second, packaging.GetKey()}));
    QCOMPARE(provider.GetMaterialKeys(), Keys{"m"});
}

void tst_ZAXMatJsonFileProvider::aCreatedPackagingHasEverySupportedPair()
{
    const CatalogueFolder folder;
    ZAXMatJsonFileProvider provider(folder.Path());
    const GasAndTrim plugin;
    const ZAXMatDefinition packaging = provider.CreatePackaging(Text("Sheet"), "m");
    QCOMPARE(Sorted(packaging.GetDefinedExtensions()), (Keys{"", "ZAXTestTrim"}));
    QCOMPARE(Sorted(packaging.GetDefinedProperties("")), Sorted(provider.GetSupportedPackagingProperties("")));
    QCOMPARE(Sorted(packaging.GetDefinedProperties("ZAXTestTrim")), (Keys{"isExtensionEnabled", "margin"}));
    QVERIFY(!packaging.GetValue("length").isValid());
    QVERIFY(!packaging.IsDefined("remoteKey"));
}

void tst_ZAXMatJsonFileProvider::createdPackagingsHaveTheSchemaOfTheDerivedClass()
{
    const CatalogueFolder folder;
    DerivedProvider provider(folder.Path());
    const ZAXMatDefinition packaging = provider.CreatePackaging(Text("Sheet"), "m");
    QCOMPARE(provider.calls, (Keys{"packaging extensions", "packaging ", "packaging D", "packaging C"}));
    QCOMPARE(Sorted(packaging.GetDefinedExtensions()), (Keys{"", "C", "D"}));
    QCOMPARE(packaging.GetDefinedProperties("D"), Keys{"pD"});
}

void tst_ZAXMatJsonFileProvider::aPackagingOfAnUnknownMaterialIsCreated()
{
    const CatalogueFolder folder;
    ZAXMatJsonFileProvider provider(folder.Path());
    const QByteArray key = provider.CreatePackaging(Text("Sheet"), "unknown").GetKey();
    QCOMPARE(provider.GetPackagingKeys("unknown"), Keys{key});
    QCOMPARE(provider.GetMaterialKeys(), Keys());
}

void tst_ZAXMatJsonFileProvider::aMaterialIsRemovedWithItsPackagings()
{
    CatalogueFolder folder;
    folder.Write(Catalogue({MaterialText("m"), MaterialText("n"), PackagingText("p1", "m"), PackagingText("p2", "m"),
                            PackagingText("q", "n")}));
    DerivedProvider provider(folder.Path());
    QVERIFY(provider.RemoveMaterial("m"));
    QCOMPARE(provider.calls, (Keys{"remove p2", "remove p1"}));
    QVERIFY(!provider.GetMaterial("m").IsValid());
    QVERIFY(!provider.GetPackaging("p1").IsValid());
    QVERIFY(!provider.GetPackaging("p2").IsValid());
    QCOMPARE(provider.GetPackagingKeys("m"), Keys());
    QCOMPARE(provider.GetMaterialKeys(), Keys{"n"});
    QCOMPARE(provider.GetPackagingKeys("n"), Keys{"q"});
    QVERIFY(!provider.RemoveMaterial("m"));
}

void tst_ZAXMatJsonFileProvider::anUnknownMaterialIsNotRemovedButItsPackagingsAre()
{
    CatalogueFolder folder;
    folder.Write(Catalogue({MaterialText("m"), PackagingText("p", "unknown")}));
    ZAXMatJsonFileProvider provider(folder.Path());
    QVERIFY(!provider.RemoveMaterial("unknown"));
    QVERIFY(!provider.GetPackaging("p").IsValid());
    QCOMPARE(provider.GetMaterialKeys(), Keys{"m"});
}

void tst_ZAXMatJsonFileProvider::removalStopsAtAPackagingThatStays()
{
    CatalogueFolder folder;
    folder.Write(
        Catalogue({MaterialText("m"), PackagingText("p1", "m"), PackagingText("p2", "m"), PackagingText("p3", "m")}));
    DerivedProvider provider(folder.Path());
    provider.refused = "p2";
    QVERIFY(!provider.RemoveMaterial("m"));
    QCOMPARE(provider.calls, (Keys{"remove p3", "remove p2"}));
    QCOMPARE(provider.GetPackagingKeys("m"), (Keys{"p2", "p1"}));
    QVERIFY(!provider.GetPackaging("p3").IsValid());
    QVERIFY(provider.GetMaterial("m").IsValid());
}

void tst_ZAXMatJsonFileProvider::aPackagingIsRemovedAlone()
{
    CatalogueFolder folder;
    folder.Write(
        Catalogue({MaterialText("m"), PackagingText("p1", "m"), PackagingText("p2", "m"), PackagingText("p3", "m")}));
    ZAXMatJsonFileProvider provider(folder.Path());
    QVERIFY(provider.RemovePackaging("p2"));
    QVERIFY(!provider.GetPackaging("p2").IsValid());
    QCOMPARE(provider.GetPackagingKeys("m"), (Keys{"p3", "p1"}));
    QVERIFY(provider.GetMaterial("m").IsValid());
    QVERIFY(!provider.RemovePackaging("p2"));
}

void tst_ZAXMatJsonFileProvider::anUnknownPackagingIsNotRemoved()
{
    CatalogueFolder folder;
    folder.Write(Catalogue({MaterialText("m"), PackagingText("p", "m")}));
    ZAXMatJsonFileProvider provider(folder.Path());
    QVERIFY(!provider.RemovePackaging("unknown"));
    QVERIFY(!provider.RemovePackaging("m"));
    QVERIFY(!provider.RemovePackaging(""));
    QCOMPARE(provider.GetMaterialKeys(), Keys{"m"});
    QCOMPARE(provider.GetPackagingKeys("m"), Keys{"p"});
}

void tst_ZAXMatJsonFileProvider::anUpdateReplacesNameAndValues_data()
{
    QTest::addColumn<int>("type");
    QTest::newRow("material") << 0;
    QTest::newRow("packaging") << 1;
    QTest::newRow("any other goes to the packagings") << 2;
}

void tst_ZAXMatJsonFileProvider::anUpdateReplacesNameAndValues()
{
    QFETCH(const int, type);
    CatalogueFolder folder;
    folder.Write(Json("{'1':{'key':'k','type':0,'properties':{'':{'comment':'m'}}},"
                      "'2':{'key':'k','type':1,'properties':{'':{'comment':'p'}}}}"));
    ZAXMatJsonFileProvider provider(folder.Path());
    ZAXMatDefinition record;
    record.SetKey("k");
    record.SetType(static_cast<ZAXMatDefinition::Type>(type));
    record.SetName(Text("New"));
    record.SetValue("gas", Text("O2"), "Cut");
    QVERIFY(provider.Update(record));
    const ZAXMatDefinition stored[] = {provider.GetMaterial("k"), provider.GetPackaging("k")};
    const ZAXMatDefinition& updated = stored[std::min(type, 1)];
    const ZAXMatDefinition& other = stored[1 - std::min(type, 1)];
    QCOMPARE(updated.GetName(), Text("New"));
    QCOMPARE(updated.GetDefinedExtensions(), Keys{"Cut"});
    QCOMPARE(updated.GetValue("gas", "Cut"), QVariant(Text("O2")));
    QCOMPARE(other.GetName(), QString());
    QVERIFY(other.IsDefined("comment"));
}

void tst_ZAXMatJsonFileProvider::anUpdateKeepsIdentityAndSavedCopies()
{
    CatalogueFolder folder;
    folder.Write(Catalogue({PackagingText("p", "m")}));
    ZAXMatJsonFileProvider provider(folder.Path());
    ZAXMatDefinition record = provider.GetPackaging("p");
    record.SetMaterialKey("elsewhere");
    record.SetType(static_cast<ZAXMatDefinition::Type>(2));
    record.SetValue("length", 2000);
    record.Commit();
    QVERIFY(provider.Update(record));
    ZAXMatDefinition stored = provider.GetPackaging("p");
    QCOMPARE(stored.GetKey(), QByteArray("p"));
    QCOMPARE(stored.GetMaterialKey(), QByteArray("m"));
    QCOMPARE(stored.GetType(), ZAXMatDefinition::Packaging);
    QCOMPARE(stored.GetValue("length"), QVariant(2000));
    QVERIFY(stored.IsChanged());
    stored.Revert();
    QCOMPARE(stored.GetName(), QString());
    QCOMPARE(provider.GetPackagingKeys("m"), Keys{"p"});
    QCOMPARE(provider.GetPackagingKeys("elsewhere"), Keys());
}

void tst_ZAXMatJsonFileProvider::whatTheProviderDoesNotHoldIsNotUpdated_data()
{
    QTest::addColumn<QByteArray>("key");
    QTest::addColumn<int>("type");
    QTest::newRow("empty key") << QByteArray() << 0;
    QTest::newRow("unknown material") << QByteArray("x") << 0;
    QTest::newRow("unknown packaging") << QByteArray("x") << 1;
    QTest::newRow("packaging as a material") << QByteArray("p") << 0;
    QTest::newRow("material as a packaging") << QByteArray("m") << 1;
    QTest::newRow("material as any other") << QByteArray("m") << 2;
}

void tst_ZAXMatJsonFileProvider::whatTheProviderDoesNotHoldIsNotUpdated()
{
    QFETCH(const QByteArray, key);
    QFETCH(const int, type);
    CatalogueFolder folder;
    folder.Write(Catalogue({MaterialText("m"), PackagingText("p", "m")}));
    ZAXMatJsonFileProvider provider(folder.Path());
    ZAXMatDefinition record;
    record.SetKey(key);
    record.SetType(static_cast<ZAXMatDefinition::Type>(type));
    record.SetName(Text("New"));
    QVERIFY(!provider.Update(record));
    QCOMPARE(provider.GetMaterialKeys(), Keys{"m"});
    QCOMPARE(provider.GetMaterial("m").GetName(), Text("Material m"));
    QCOMPARE(provider.GetPackaging("p").GetName(), Text("Packaging p"));
    QVERIFY(!provider.GetPackaging("x").IsValid());
}

void tst_ZAXMatJsonFileProvider::commitWritesOneMemberPerRecord()
{
    const CatalogueFolder folder;
    ZAXMatJsonFileProvider provider(folder.Path());
    const ZAXMatDefinition material = provider.CreateMaterial(Text("Steel"));
    const ZAXMatDefinition packaging = provider.CreatePackaging(Text("Sheet"), material.GetKey());
    provider.Commit();
    QCOMPARE(MembersOf(folder.Read()), Sorted({material.GetKey(), packaging.GetKey()}));
    const QJsonObject root = QJsonDocument::fromJson(folder.Read()).object();
    QCOMPARE(root.value(QString::fromLatin1(material.GetKey())), material.ToJson());
    QCOMPARE(root.value(QString::fromLatin1(packaging.GetKey())), packaging.ToJson());
    QCOMPARE(folder.Entries(), QStringList{Text("materials.json")});
}

void tst_ZAXMatJsonFileProvider::commitWritesIndentedText()
{
    CatalogueFolder folder;
    folder.Write(Catalogue({PackagingText("p", "m"), MaterialText("m", "{'':{'density':7.85,'comment':'Stål'}}")}));
    ZAXMatJsonFileProvider provider(folder.Path());
    provider.Commit();
    QCOMPARE(folder.Read(), QByteArray(R"({
    "m": {
        "key": "m",
        "materialKey": "",
        "name": "Material m",
        "properties": {
            "": {
                "comment": "Stål",
                "density": 7.85
            }
        },
        "type": 0
    },
    "p": {
        "key": "p",
        "materialKey": "m",
        "name": "Packaging p",
        "properties": {
        },
        "type": 1
    }
}
)"));
}

void tst_ZAXMatJsonFileProvider::aPackagingReplacesAMaterialOfItsKeyInTheFile()
{
    CatalogueFolder folder;
    folder.Write(Json("{'1':{'key':'k','type':0,'name':'material'},'2':{'key':'k','type':1,'name':'packaging'}}"));
    ZAXMatJsonFileProvider provider(folder.Path());
    provider.Commit();
    const QJsonObject root = QJsonDocument::fromJson(folder.Read()).object();
    QCOMPARE(root.keys(), QStringList{Text("k")});
    QCOMPARE(root.value(Text("k")).toObject().value(Text("name")).toString(), Text("packaging"));
}

void tst_ZAXMatJsonFileProvider::anEmptyCatalogueIsAnEmptyObject()
{
    const CatalogueFolder folder;
    ZAXMatJsonFileProvider provider(folder.Path());
    provider.Commit();
    QCOMPARE(folder.Read(), QByteArray("{\n}\n"));
}

void tst_ZAXMatJsonFileProvider::committedRecordsAreReadAgain()
{
    const CatalogueFolder folder;
    ZAXMatJsonFileProvider provider(folder.Path());
    ZAXMatDefinition material = provider.CreateMaterial(Text("Steel"));
    const ZAXMatDefinition packaging = provider.CreatePackaging(Text("Sheet"), material.GetKey());
    material.SetValue("thickness", QVariant::fromValue(ZAXSysLengthValue(2)));
    material.SetValue("density", 2.0F);
    QVERIFY(provider.Update(material));
    provider.Commit();
    const ZAXMatDefinition read = provider.GetMaterial(material.GetKey());
    QCOMPARE(read.GetValue("thickness").metaType(), QMetaType::fromType<QString>());
    QCOMPARE(read.GetValue("density").metaType(), QMetaType::fromType<qlonglong>());
    QCOMPARE(read.GetValue("comment").metaType(), QMetaType::fromType<std::nullptr_t>());
    QVERIFY(read.IsChanged());
    QCOMPARE(provider.GetPackagingKeys(material.GetKey()), Keys{packaging.GetKey()});
}

void tst_ZAXMatJsonFileProvider::committedRecordsAreReadAgainEvenWithinOneTickOfTheClock()
{
    CatalogueFolder folder;
    folder.Write(Catalogue({MaterialText("m")}));
    ZAXMatJsonFileProvider provider(folder.Path());
    const QDateTime time = folder.Time();
    ZAXMatDefinition material = provider.GetMaterial("m");
    material.SetValue("density", 2.0F);
    QVERIFY(provider.Update(material));
    provider.Commit();
    folder.SetTime(time);
    QCOMPARE(provider.GetMaterial("m").GetValue("density").metaType(), QMetaType::fromType<qlonglong>());
}

void tst_ZAXMatJsonFileProvider::commitNeverCreatesTheDirectory()
{
    const CatalogueFolder folder;
    const QString missing = folder.Path() + Text("/missing");
    ZAXMatJsonFileProvider provider(missing);
    const QByteArray key = provider.CreateMaterial(Text("Steel")).GetKey();
    ExpectWarning(Text("^Cannot write .*/missing/materials\\.json: ") + SystemError(ENOENT) + u'$');
    provider.Commit();
    QVERIFY(!QFileInfo::exists(missing));
    QCOMPARE(folder.Entries(), QStringList());
    QCOMPARE(provider.GetMaterialKeys(), Keys{key});
}

void tst_ZAXMatJsonFileProvider::commitReplacesTheFileAsAWhole()
{
    CatalogueFolder folder;
    folder.Write(Catalogue({MaterialText("m")}));
    const QByteArray before = folder.Read();
    ZAXMatJsonFileProvider provider(folder.Path());
    provider.CreateMaterial(Text("Steel"));
    QFile reader(folder.FilePath());
    QVERIFY(reader.open(QIODevice::ReadOnly | QIODevice::Unbuffered));
    const quint64 inode = CatalogueFolder::Inode(folder.FilePath());
    provider.Commit();
    // Whoever reads the old file reads on in it.
    QCOMPARE(reader.readAll(), before);
    QVERIFY(CatalogueFolder::Inode(folder.FilePath()) != inode);
    QCOMPARE(MembersOf(folder.Read()).size(), 2);
    QCOMPARE(folder.Entries(), QStringList{Text("materials.json")});
}

void tst_ZAXMatJsonFileProvider::commitKeepsThePermissions_data()
{
    QTest::addColumn<int>("mode");
    QTest::newRow("private") << 0600;
    QTest::newRow("for the group to read") << 0640;
    QTest::newRow("for the group to write") << 0664;
    QTest::newRow("executable") << 0755;
    QTest::newRow("for others alone") << 0606;
}

void tst_ZAXMatJsonFileProvider::commitKeepsThePermissions()
{
    QFETCH(const int, mode);
    CatalogueFolder folder;
    folder.Write(Catalogue({MaterialText("m")}));
    CatalogueFolder::SetMode(folder.FilePath(), mode);
    ZAXMatJsonFileProvider provider(folder.Path());
    provider.CreateMaterial(Text("Steel"));
    provider.Commit();
    QCOMPARE(CatalogueFolder::Mode(folder.FilePath()), mode);
    QCOMPARE(MembersOf(folder.Read()).size(), 2);
}

void tst_ZAXMatJsonFileProvider::commitLeavesASymbolicLink_data()
{
    QTest::addColumn<QString>("target");
    QTest::addColumn<bool>("isPresent");
    QTest::newRow("relative") << Text("real.json") << true;
    QTest::newRow("elsewhere") << Text("elsewhere/real.json") << true;
    QTest::newRow("dangling") << Text("elsewhere/none.json") << false;
}

void tst_ZAXMatJsonFileProvider::commitLeavesASymbolicLink()
{
    QFETCH(const QString, target);
    const CatalogueFolder folder;
    const QString path = folder.Path() + u'/' + target;
    QVERIFY(QDir(folder.Path()).mkdir(Text("elsewhere")));
    CatalogueFolder::WriteTo(folder.Path() + Text("/real.json"), Catalogue({MaterialText("m")}));
    CatalogueFolder::WriteTo(folder.Path() + Text("/elsewhere/real.json"), Catalogue({MaterialText("m")}));
    QCOMPARE(::symlink(QFile::encodeName(target).constData(), QFile::encodeName(folder.FilePath()).constData()), 0);
    ZAXMatJsonFileProvider provider(folder.Path());
    QTEST(!provider.GetMaterialKeys().isEmpty(), "isPresent");
    const QByteArray key = provider.CreateMaterial(Text("Steel")).GetKey();
    provider.Commit();
    QVERIFY(QFileInfo(folder.FilePath()).isSymLink());
    QVERIFY(MembersOf(CatalogueFolder::ReadFrom(path)).contains(key));
    QCOMPARE(folder.Read(), CatalogueFolder::ReadFrom(path));
}

void tst_ZAXMatJsonFileProvider::aFileThatRefusesToBeWrittenStays()
{
    CatalogueFolder folder;
    folder.Write(Catalogue({MaterialText("m")}));
    const QByteArray before = folder.Read();
    CatalogueFolder::SetMode(folder.FilePath(), 0444);
    ZAXMatJsonFileProvider provider(folder.Path());
    provider.CreateMaterial(Text("Steel"));
    ExpectWarning(Text("^Cannot write .*/zax ø .*/materials\\.json: .*not writable$"));
    {
        const OrdinaryUser user;
        provider.Commit();
    }
    QCOMPARE(folder.Read(), before);
    QCOMPARE(CatalogueFolder::Mode(folder.FilePath()), 0444);
    QCOMPARE(folder.Entries(), QStringList{Text("materials.json")});
}

void tst_ZAXMatJsonFileProvider::aDirectoryInThePlaceOfTheFileStays()
{
    const CatalogueFolder folder;
    ZAXMatJsonFileProvider provider(folder.Path());
    const QByteArray key = provider.CreateMaterial(Text("Steel")).GetKey();
    QVERIFY(QDir(folder.Path()).mkdir(Text("materials.json")));
    ExpectWarning(Text("^Cannot write .*/materials\\.json: Filename refers to a directory$"));
    provider.Commit();
    QVERIFY(QFileInfo(folder.FilePath()).isDir());
    ExpectWarning(Text("^Cannot read .*/materials\\.json: "));
    QCOMPARE(provider.GetMaterialKeys(), Keys{key});
}

void tst_ZAXMatJsonFileProvider::aDirectoryThatTakesNoNewFileIsWrittenInPlace()
{
    CatalogueFolder folder;
    folder.Write(Catalogue({MaterialText("m")}));
    CatalogueFolder::SetMode(folder.FilePath(), 0666);
    const quint64 inode = CatalogueFolder::Inode(folder.FilePath());
    ZAXMatJsonFileProvider provider(folder.Path());
    provider.RemoveMaterial("m");
    CatalogueFolder::SetMode(folder.Path(), 0555);
    {
        const OrdinaryUser user;
        provider.Commit();
    }
    QCOMPARE(folder.Read(), QByteArray("{\n}\n"));
    QCOMPARE(CatalogueFolder::Inode(folder.FilePath()), inode);
    QCOMPARE(CatalogueFolder::Mode(folder.FilePath()), 0666);
    QCOMPARE(folder.Entries(), QStringList{Text("materials.json")});
}

void tst_ZAXMatJsonFileProvider::aDirectoryThatTakesNoFileAtAllStays()
{
    const CatalogueFolder folder;
    ZAXMatJsonFileProvider provider(folder.Path());
    const QByteArray key = provider.CreateMaterial(Text("Steel")).GetKey();
    CatalogueFolder::SetMode(folder.Path(), 0555);
    ExpectWarning(Text("^Cannot write .*/materials\\.json: ") + SystemError(EACCES) + u'$');
    {
        const OrdinaryUser user;
        provider.Commit();
    }
    QCOMPARE(folder.Entries(), QStringList());
    QCOMPARE(provider.GetMaterialKeys(), Keys{key});
}

void tst_ZAXMatJsonFileProvider::onAFullDiskTheFileStays_data()
{
    QTest::addColumn<int>("newRecords");
    QTest::newRow("a few bytes") << 1;
    QTest::newRow("many blocks") << 200;
}

void tst_ZAXMatJsonFileProvider::onAFullDiskTheFileStays()
{
    QFETCH(const int, newRecords);
    CatalogueFolder folder;
    folder.Write(Catalogue({MaterialText("m")}));
    const QByteArray before = folder.Read();
    ZAXMatJsonFileProvider provider(folder.Path());
    for (int i = 0; i < newRecords; ++i)
        provider.CreateMaterial(Text("Steel"));
    ExpectWarning(Text("^Cannot write .*/materials\\.json: ") + SystemError(EFBIG) + u'$');
    {
        const FullDisk disk(100);
        provider.Commit();
    }
    QCOMPARE(folder.Read(), before);
    QCOMPARE(folder.Entries(), QStringList{Text("materials.json")});
    QCOMPARE(provider.GetMaterialKeys().size(), newRecords + 1);
}

void tst_ZAXMatJsonFileProvider::onAFullDiskAFileWrittenInPlaceStays()
{
    QFETCH(const int, newRecords);
    CatalogueFolder folder;
    folder.Write(Catalogue({MaterialText("m")}));
    const QByteArray before = folder.Read();
    const quint64 inode = CatalogueFolder::Inode(folder.FilePath());
    ZAXMatJsonFileProvider provider(folder.Path());
    for (int i = 0; i < newRecords; ++i)
        provider.CreateMaterial(Text("Steel"));
    CatalogueFolder::SetMode(folder.FilePath(), 0666);
    CatalogueFolder::SetMode(folder.Path(), 0555);
    ExpectWarning(Text("^Cannot write .*/materials\\.json: ") + SystemError(EFBIG) + u'$');
    {
        const OrdinaryUser user;
        const FullDisk disk(static_cast<rlim_t>(before.size()) + 10);
        provider.Commit();
    }
    QCOMPARE(folder.Read(), before);
    QCOMPARE(CatalogueFolder::Inode(folder.FilePath()), inode);
    QCOMPARE(provider.GetMaterialKeys().size(), newRecords + 1);
}

void tst_ZAXMatJsonFileProvider::aShorterCatalogueLeavesNothingOfALongerOneInPlace()
{
    CatalogueFolder folder;
    folder.Write(Catalogue({MaterialText("a"), MaterialText("b"), MaterialText("c")}) + QByteArray(5000, ' '));
    CatalogueFolder::SetMode(folder.FilePath(), 0666);
    ZAXMatJsonFileProvider provider(folder.Path());
    provider.RemoveMaterial("a");
    CatalogueFolder::SetMode(folder.Path(), 0555);
    {
        const OrdinaryUser user;
        provider.Commit();
    }
    QCOMPARE(MembersOf(folder.Read()), (Keys{"b", "c"}));
    QVERIFY(folder.Read().endsWith("}\n"));
}

void tst_ZAXMatJsonFileProvider::whatCouldNotBeWrittenIsStillThere()
{
    CatalogueFolder folder;
    folder.Write(Catalogue({MaterialText("m")}));
    ZAXMatJsonFileProvider provider(folder.Path());
    ZAXMatDefinition material = provider.GetMaterial("m");
    material.SetValue("density", 2.0F);
    provider.Update(material);
    ExpectWarning(Text("^Cannot write "));
    {
        const FullDisk disk(10);
        provider.Commit();
    }
    QCOMPARE(provider.GetMaterial("m").GetValue("density").metaType(), QMetaType::fromType<float>());
    provider.Commit();
    QCOMPARE(provider.GetMaterial("m").GetValue("density").metaType(), QMetaType::fromType<qlonglong>());
}

void tst_ZAXMatJsonFileProvider::editsThroughACacheReachTheFile()
{
    CatalogueFolder folder;
    folder.Write(Catalogue({MaterialText("m", "{'':{'thickness':2}}"), PackagingText("p", "m")}));
    ZAXMatJsonFileProvider provider(folder.Path());
    const std::unique_ptr<ZAXMatProviderCache> cache(ZAXMatProviderCache::GetCache("ZAXMatJsonFileProvider"));
    QVERIFY(cache);
    QCOMPARE(cache->FindMaterials({{"", {"thickness", 2.0}}}), Keys{"m"});
    ZAXMatDefinition material = cache->GetMaterial("m");
    material.SetValue("thickness", 2.5);
    QVERIFY(cache->Update(material));
    const QByteArray created = cache->CreatePackaging(Text("Roll"), "m").GetKey();
    QVERIFY(cache->RemovePackaging("p"));
    QVERIFY(cache->Commit());

    const ZAXMatJsonFileProvider other("other", QString(), folder.Path());
    QCOMPARE(other.GetMaterial("m").GetValue("thickness"), QVariant(2.5));
    QCOMPARE(other.GetPackagingKeys("m"), Keys{created});
    QVERIFY(!cache->GetMaterial("m").IsChanged());
}

QTEST_GUILESS_MAIN(tst_ZAXMatJsonFileProvider)
#include "tst_ZAXMatJsonFileProvider.moc"
