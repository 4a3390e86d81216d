#include <ZAXFeatContainer.h>
#include <ZAXFeatLastSavedStore.h>
#include <ZAXHostDocument.h>
#include <ZAXMatExtensionPlugin.h>
#include <ZAXMatJsonFileProvider.h>
#include <ZAXMatMaterial.h>
#include <ZAXMatMaterialExtension.h>
#include <ZAXMatMaterialProviderManager.h>
#include <ZAXMatPackaging.h>
#include <ZAXMatPackagingExtension.h>
#include <ZAXMatRoot.h>
#include <ZAXSysStartup.h>

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QLibrary>
#include <QMetaProperty>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

#include <dlfcn.h>

#include <algorithm>
#include <memory>

namespace {

const QByteArray gasKey("WorkshopGasExtension");
const QByteArray sheetKey("WorkshopSheetExtension");
const QByteArray grainType("WorkshopSheetExtension::GrainDirection");

QStringList Texts(QList<QByteArray> names)
{
    std::ranges::sort(names);
    QStringList texts;
    std::ranges::transform(names, std::back_inserter(texts), [](const auto& name) { return QString::fromUtf8(name); });
    return texts;
}

QStringList TypeNames()
{
    QStringList names;
    for (const QMetaObject* type : ZAXGeoContainer::GetRegisteredTypes())
        names.append(QString::fromLatin1(type->className()));
    return names;
}

QStringList ProviderIds()
{
    QList<QByteArray> ids;
    for (const ZAXMatProvider* provider : ZAXMatProvider::GetProviders())
        ids.append(provider->GetProviderId());
    return Texts(ids);
}

QStringList PluginNames()
{
    QStringList names;
    for (const ZAXMatExtensionPlugin* plugin : ZAXMatExtensionPlugin::GetPlugins()) {
        names.append(QString::fromLatin1(plugin->GetMaterialExtensionMetaObject()->className()));
        names.append(QString::fromLatin1(plugin->GetPackagingExtensionMetaObject()->className()));
    }
    return names;
}

/// Everything that modules register, as text.
QStringList Registries()
{
    return QStringList(QLatin1String("types")) + TypeNames()
           << QLatin1String("plug-ins") << PluginNames() << QLatin1String("managers")
           << Texts(ZAXMatMaterialProviderManager::GetHash().keys()) << QLatin1String("providers") << ProviderIds();
}

/// The ids of the meta-types whose description lies in memory that nothing is mapped to.
QList<int> StrayMetaTypes()
{
    QList<int> stray;
    for (int id = QMetaType::User + 1; id < QMetaType::User + 1000; ++id) {
        Dl_info info{};
        if (QMetaType::isRegistered(id) && dladdr(QMetaType(id).iface(), &info) == 0)
            stray.append(id);
    }
    return stray;
}

bool IsMapped(const QString& path)
{
    QFile maps(QLatin1String("/proc/self/maps"));
    return maps.open(QIODevice::ReadOnly) && maps.readAll().contains(QFile::encodeName(QFileInfo(path).fileName()));
}

/// "name = value" for each property of \a object named in \a names.
QStringList Values(const QObject* object, const QList<QByteArray>& names)
{
    QStringList values;
    for (const QByteArray& name : names)
        values.append(QString::fromUtf8(name) + QLatin1String(" = ") + object->property(name).toString());
    return values;
}

/// The names of the properties of the extension \a object, the switch of its base first.
QList<QByteArray> ExtensionProperties(const QObject* object, const QMetaObject& base)
{
    QList<QByteArray> names;
    for (int i = base.propertyOffset(); i < object->metaObject()->propertyCount(); ++i)
        names.append(object->metaObject()->property(i).name());
    return names;
}

/// A document with one material and one packaging of it.
struct Job
{
    Job() : Job(std::make_unique<ZAXHostDocument>())
    {
        ZAXFeatContainer* const container = document->GetContainer();
        material = qobject_cast<ZAXMatMaterial*>(
            container->CreateInstance("ZAXMatMaterial", container->CreateInstance("ZAXMatRoot", nullptr)));
        packaging = qobject_cast<ZAXMatPackaging*>(container->CreateInstance("ZAXMatPackaging", material));
    }

    static Job Opened(const QString& path)
    {
        Job job(std::make_unique<ZAXHostDocument>());
        const ZAXHostResult result = job.document->Open(path);
        if (!result)
            qFatal("%s", qPrintable(result.GetMessage()));
        const auto* const root = qobject_cast<ZAXMatRoot*>(job.document->GetContainer()->GetRoots().constFirst());
        job.material = root->GetMaterials().constFirst();
        job.packaging = job.material->GetPackaging().constFirst();
        return job;
    }

    void Fill() const
    {
        material->SetLabel(QLatin1String("Steel"));
        material->setProperty("materialType", QLatin1String("Structural steel"));
        material->setProperty("thickness", QLatin1String("0.1 in"));
        packaging->SetLabel(QLatin1String("Large sheet"));
        packaging->setProperty("length", 3000);
        ZAXMatMaterialExtension* const gas = material->GetExtension(gasKey, true);
        gas->setProperty("isExtensionEnabled", true);
        gas->setProperty("assistGas", QString::fromUtf8("Sauerstoff, größte Reinheit"));
        gas->setProperty("gasPressure", 0.1 + 0.2);
        gas->setProperty("piercingTime", 3);
        ZAXMatPackagingExtension* const sheet = packaging->GetExtension(sheetKey, true);
        sheet->setProperty("isExtensionEnabled", true);
        sheet->setProperty("grainDirection", QLatin1String("AlongWidth"));
        sheet->setProperty("trimMargin", QLatin1String("0.5 in"));
    }

    /// The extension, created if need be, that has a property named \a property.
    ZAXFeatObject* ExtensionWith(const QByteArray& property) const
    {
        ZAXFeatObject* const gas = material->GetExtension(gasKey, true);
        ZAXFeatObject* const sheet = packaging->GetExtension(sheetKey, true);
        return gas->metaObject()->indexOfProperty(property) >= 0 ? gas : sheet;
    }

    QStringList ExtensionValues() const
    {
        const ZAXMatMaterialExtension* const gas = material->GetExtension(gasKey, false);
        const ZAXMatPackagingExtension* const sheet = packaging->GetExtension(sheetKey, false);
        return Values(gas, ExtensionProperties(gas, ZAXMatMaterialExtension::staticMetaObject)) +
               Values(sheet, ExtensionProperties(sheet, ZAXMatPackagingExtension::staticMetaObject));
    }

    std::unique_ptr<ZAXHostDocument> document;
    ZAXMatMaterial* material = nullptr;
    ZAXMatPackaging* packaging = nullptr;

private:
    explicit Job(std::unique_ptr<ZAXHostDocument> document) : document(std::move(document)) {}
};

const QStringList filledValues{
    QStringLiteral("isExtensionEnabled = true"),
    QStringLiteral("assistGas = Sauerstoff, größte Reinheit"),
    QStringLiteral("gasPressure = 0.30000000000000004"),
    QStringLiteral("piercingTime = 3"),
    QStringLiteral("isExtensionEnabled = true"),
    QStringLiteral("grainDirection = AlongWidth"),
    QStringLiteral("trimMargin = 12.7 mm"),
};

} // namespace

/// What a module of another team can rely on, with the module loaded anew for each test and closed after it.
class tst_Consumer : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void cleanup();

    void loadingAnnouncesTheModule();
    void managerCreatesItsProviderOnce();
    void providerIsAReadOnlyCatalogue();
    void everyRecordOfTheProviderFillsItsSchema();
    void recordsOfTheProviderFillADocument();
    void documentKeepsEveryValue();
    void catalogueKeepsEveryValue();
    void invalidValuesAreReported_data();
    void invalidValuesAreReported();
    void switchedOffExtensionIsValid();
    void lastChoicesOutliveTheModule();
    void changeIsAnnouncedOnce_data();
    void changeIsAnnouncedOnce();

private:
    void Load();
    void Unload();

    QTemporaryDir m_folder{QDir::tempPath() + QStringLiteral("/zax ø XXXXXX")};
    QLibrary m_module{QString::fromUtf8(ZAX_WORKSHOP_MODULE)};
    QStringList m_before;
};

void tst_Consumer::initTestCase()
{
    QVERIFY(m_folder.isValid());
    ZAXSysStartup::Start();
    m_before = Registries();
    QVERIFY(!m_before.contains(QString::fromLatin1(gasKey)));
}

void tst_Consumer::init()
{
    Load();
}

void tst_Consumer::cleanup()
{
    Unload();
    ZAXFeatLastSavedStore::SetCurrent(nullptr);
}

void tst_Consumer::Load()
{
    QVERIFY2(m_module.load(), qPrintable(m_module.errorString()));
    QVERIFY(IsMapped(m_module.fileName()));
}

/// Closes the module and checks that nothing of it is left.
void tst_Consumer::Unload()
{
    QVERIFY2(m_module.unload(), qPrintable(m_module.errorString()));
    QVERIFY(!IsMapped(m_module.fileName()));
    QCOMPARE(Registries(), m_before);
    QCOMPARE(StrayMetaTypes(), QList<int>());
    QVERIFY(!QMetaType::fromName(grainType).isValid());
}

void tst_Consumer::loadingAnnouncesTheModule()
{
    QCOMPARE(TypeNames().mid(TypeNames().size() - 2), Texts({gasKey, sheetKey}));
    QCOMPARE(PluginNames(), Texts({gasKey, sheetKey}));
    QCOMPARE(ZAXMatMaterialProviderManager::GetHash().keys(), QList<QByteArray>{"WorkshopProviderManager"});
    QVERIFY(!ZAXMatProvider::GetProvider("WorkshopProvider"));
}

void tst_Consumer::managerCreatesItsProviderOnce()
{
    const QList<ZAXMatProvider*> first = ZAXMatProvider::GetProviders();
    QCOMPARE(first.size(), 1);
    QCOMPARE(first.constFirst()->GetProviderId(), QByteArray("WorkshopProvider"));
    QCOMPARE(first.constFirst()->GetProviderLabel(), QLatin1String("Workshop stock"));
    QCOMPARE(ZAXMatProvider::GetProviders(), first);
    QCOMPARE(ZAXMatProvider::GetProvider("WorkshopProvider"), first.constFirst());
}

void tst_Consumer::providerIsAReadOnlyCatalogue()
{
    ZAXMatProvider* const provider = ZAXMatProvider::GetProviders().constFirst();
    QVERIFY(provider->IsReadOnly());
    QVERIFY(provider->HasPackaging());
    QCOMPARE(provider->GetMaterialKeys(), (QList<QByteArray>{"steel-2", "stainless-1.5", "aluminium-3"}));
    QCOMPARE(provider->GetPackagingKeys("steel-2"), (QList<QByteArray>{"steel-2-large", "steel-2-coil"}));
    QCOMPARE(provider->GetPackagingKeys("oak"), QList<QByteArray>());
    QVERIFY(!provider->GetMaterial("oak").IsValid());
    QVERIFY(!provider->GetPackaging("steel-2").IsValid());
    QVERIFY(!provider->CreateMaterial(QLatin1String("Oak")).IsValid());
    QVERIFY(!provider->RemoveMaterial("steel-2"));
    QVERIFY(!provider->Update(provider->GetMaterial("steel-2")));
    QCOMPARE(provider->FindMaterials(QLatin1String("Aluminium"), 3.0), QList<QByteArray>{"aluminium-3"});
    QVERIFY(provider->IsMaterialProperty("piercingTime", gasKey));
    QVERIFY(!provider->IsMaterialProperty("piercingTime", ""));
    QVERIFY(provider->IsPackagingProperty("trimMargin", sheetKey));
    QCOMPARE(provider->GetSupportedMaterialProperties(sheetKey), QList<QByteArray>());
}

void tst_Consumer::everyRecordOfTheProviderFillsItsSchema()
{
    const ZAXMatProvider* const provider = ZAXMatProvider::GetProviders().constFirst();
    QList<ZAXMatDefinition> records;
    for (const QByteArray& key : provider->GetMaterialKeys()) {
        records.append(provider->GetMaterial(key));
        for (const QByteArray& packagingKey : provider->GetPackagingKeys(key)) {
            records.append(provider->GetPackaging(packagingKey));
            QCOMPARE(records.constLast().GetMaterialKey(), key);
            QCOMPARE(records.constLast().GetType(), ZAXMatDefinition::Packaging);
        }
    }
    QCOMPARE(records.size(), 7);
    for (const ZAXMatDefinition& record : std::as_const(records)) {
        QVERIFY(!record.GetName().isEmpty());
        QVERIFY(!record.IsChanged());
        QCOMPARE(record.GetDefinedExtensions().size(), 2);
        for (const QByteArray& extension : record.GetDefinedExtensions()) {
            for (const QByteArray& property : record.GetDefinedProperties(extension))
                QVERIFY2(record.GetValue(property, extension).isValid(),
                         (record.GetKey() + ' ' + property).constData());
        }
    }
}

void tst_Consumer::recordsOfTheProviderFillADocument()
{
    const ZAXMatProvider* const provider = ZAXMatProvider::GetProviders().constFirst();
    const Job job;
    provider->GetMaterial("stainless-1.5").SaveToFeature(job.material);
    provider->GetPackaging("stainless-1.5-medium").SaveToFeature(job.packaging);
    QCOMPARE(job.material->GetLabel(), QLatin1String("Stainless steel 1.5 mm"));
    QCOMPARE(job.material->GetThickness(), 1.5);
    QCOMPARE(job.packaging->GetCost(), 142.0);
    QCOMPARE(job.ExtensionValues(),
             (QStringList{QStringLiteral("isExtensionEnabled = true"), QStringLiteral("assistGas = Nitrogen"),
                          QStringLiteral("gasPressure = 14"), QStringLiteral("piercingTime = 0.3"),
                          QStringLiteral("isExtensionEnabled = true"), QStringLiteral("grainDirection = AlongLength"),
                          QStringLiteral("trimMargin = 12.7 mm")}));
}

void tst_Consumer::documentKeepsEveryValue()
{
    const QString path = m_folder.filePath(QStringLiteral("job ø.zax"));
    const Job job;
    job.Fill();
    QCOMPARE(job.ExtensionValues(), filledValues);
    const ZAXHostResult saved = job.document->SaveAs(path);
    QVERIFY2(saved, qPrintable(saved.GetMessage()));

    const Job reopened = Job::Opened(path);
    QCOMPARE(reopened.ExtensionValues(), filledValues);
    QCOMPARE(reopened.material->GetExtensions().size(), 1);
    QCOMPARE(reopened.material->GetExtensions().constFirst()->GetParent(), reopened.material);
    QCOMPARE(reopened.packaging->GetExtensions().size(), 1);
    QCOMPARE(reopened.document->Encode(), job.document->Encode());
}

void tst_Consumer::catalogueKeepsEveryValue()
{
    const QString folder = m_folder.path();
    const Job job;
    job.Fill();
    QByteArray materialKey;
    QByteArray packagingKey;
    QStringList baseValues;
    {
        ZAXMatJsonFileProvider catalogue(folder);
        ZAXMatDefinition material = catalogue.CreateMaterial(QString());
        ZAXMatDefinition packaging = catalogue.CreatePackaging(QString(), material.GetKey());
        QCOMPARE(material.GetDefinedProperties(gasKey).size(), 4);
        QCOMPARE(packaging.GetDefinedProperties(sheetKey).size(), 3);
        material.LoadFromFeature(job.material);
        packaging.LoadFromFeature(job.packaging);
        QVERIFY(catalogue.Update(material));
        QVERIFY(catalogue.Update(packaging));
        catalogue.Commit();
        materialKey = material.GetKey();
        packagingKey = packaging.GetKey();
        baseValues = Values(job.material, catalogue.GetSupportedMaterialProperties("")) +
                     Values(job.packaging, catalogue.GetSupportedPackagingProperties(""));
    }
    ZAXFeatLastSavedStore::SetCurrent(nullptr);

    const ZAXMatJsonFileProvider catalogue(folder);
    QCOMPARE(catalogue.GetPackagingKeys(materialKey), QList<QByteArray>{packagingKey});
    const Job other;
    catalogue.GetMaterial(materialKey).SaveToFeature(other.material);
    catalogue.GetPackaging(packagingKey).SaveToFeature(other.packaging);
    QCOMPARE(other.ExtensionValues(), filledValues);
    QCOMPARE(other.material->GetLabel(), QLatin1String("Steel"));
    QCOMPARE(other.packaging->GetLabel(), QLatin1String("Large sheet"));
    QCOMPARE(Values(other.material, catalogue.GetSupportedMaterialProperties("")) +
                 Values(other.packaging, catalogue.GetSupportedPackagingProperties("")),
             baseValues);
}

void tst_Consumer::invalidValuesAreReported_data()
{
    QTest::addColumn<QByteArray>("property");
    QTest::addColumn<QVariant>("value");
    QTest::addColumn<QString>("message");
    QTest::newRow("no gas") << QByteArray("assistGas") << QVariant(QString())
                            << QStringLiteral("The assist gas cannot be empty.");
    QTest::newRow("pressure") << QByteArray("gasPressure") << QVariant(-0.001)
                              << QStringLiteral("The gas pressure cannot be negative.");
    QTest::newRow("pressure that is no number")
        << QByteArray("gasPressure") << QVariant(qQNaN()) << QStringLiteral("The gas pressure cannot be negative.");
    QTest::newRow("no pressure") << QByteArray("gasPressure") << QVariant(0.0) << QString();
    QTest::newRow("piercing time") << QByteArray("piercingTime") << QVariant(-1)
                                   << QStringLiteral("The piercing time cannot be negative.");
    QTest::newRow("no piercing time") << QByteArray("piercingTime") << QVariant(0) << QString();
    QTest::newRow("margin") << QByteArray("trimMargin") << QVariant(QStringLiteral("-1 mm"))
                            << QStringLiteral("The trim margin cannot be negative.");
    QTest::newRow("no margin") << QByteArray("trimMargin") << QVariant(0) << QString();
}

void tst_Consumer::invalidValuesAreReported()
{
    QFETCH(const QByteArray, property);
    QFETCH(const QVariant, value);
    QFETCH(const QString, message);

    const Job job;
    job.Fill();
    ZAXFeatObject* const extension = job.ExtensionWith(property);
    QVERIFY(extension->UpdateResult());
    QVERIFY(extension->setProperty(property, value));
    QCOMPARE(extension->UpdateResult(), message.isEmpty());
    QString reported;
    for (const auto& entry : extension->GetPropertyMessages(property))
        reported += entry.text;
    QCOMPARE(reported, message);
}

void tst_Consumer::switchedOffExtensionIsValid()
{
    const Job job;
    ZAXMatMaterialExtension* const gas = job.material->GetExtension(gasKey, true);
    ZAXMatPackagingExtension* const sheet = job.packaging->GetExtension(sheetKey, true);
    gas->setProperty("gasPressure", -1);
    sheet->setProperty("trimMargin", -1);
    QVERIFY(gas->UpdateResult());
    QVERIFY(sheet->UpdateResult());
}

void tst_Consumer::lastChoicesOutliveTheModule()
{
    Job().Fill();
    Unload();
    Load();
    const Job job;
    const ZAXMatMaterialExtension* const gas = job.material->GetExtension(gasKey, true);
    const ZAXMatPackagingExtension* const sheet = job.packaging->GetExtension(sheetKey, true);
    QCOMPARE(gas->property("assistGas").toString(), QString::fromUtf8("Sauerstoff, größte Reinheit"));
    QCOMPARE(gas->property("gasPressure").toDouble(), 0.0);
    QCOMPARE(sheet->property("grainDirection").toString(), QLatin1String("AlongWidth"));
    QCOMPARE(sheet->property("trimMargin").toString(), QLatin1String("12.7 mm"));
    QVERIFY(!sheet->IsExtensionEnabled());
}

void tst_Consumer::changeIsAnnouncedOnce_data()
{
    QTest::addColumn<QByteArray>("property");
    QTest::addColumn<QVariant>("value");
    QTest::addColumn<QString>("announced");
    QTest::newRow("switch") << QByteArray("isExtensionEnabled") << QVariant(true) << QStringLiteral("true");
    QTest::newRow("gas") << QByteArray("assistGas") << QVariant(QStringLiteral("Argon")) << QStringLiteral("Argon");
    QTest::newRow("pressure") << QByteArray("gasPressure") << QVariant(2.5) << QStringLiteral("2.5");
    QTest::newRow("piercing time") << QByteArray("piercingTime") << QVariant(1) << QStringLiteral("1");
    QTest::newRow("grain") << QByteArray("grainDirection") << QVariant(2) << QStringLiteral("AlongWidth");
    QTest::newRow("margin") << QByteArray("trimMargin") << QVariant(QStringLiteral("1 in")) << QStringLiteral("25.4");
}

void tst_Consumer::changeIsAnnouncedOnce()
{
    QFETCH(const QByteArray, property);
    QFETCH(const QVariant, value);
    QFETCH(const QString, announced);

    const Job job;
    ZAXFeatObject* const extension = job.ExtensionWith(property);
    const QMetaObject* const type = extension->metaObject();
    QSignalSpy changes(extension, type->property(type->indexOfProperty(property)).notifySignal());
    QVERIFY(extension->setProperty(property, value));
    QVERIFY(extension->setProperty(property, value));
    QCOMPARE(changes.size(), 1);
    QCOMPARE(changes.constFirst().constFirst().toString(), announced);
}

QTEST_GUILESS_MAIN(tst_Consumer)

#include "tst_Consumer.moc"
