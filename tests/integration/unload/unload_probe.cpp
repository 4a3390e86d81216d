#include "ZAXFeatContainer.h"
#include "ZAXHostDocument.h"
#include "ZAXHostDuplicator.h"
#include "ZAXMatDefinition.h"
#include "ZAXMatExtensionPlugin.h"
#include "ZAXMatGlobal.h"
#include "ZAXMatJsonFileProvider.h"
#include "ZAXMatMaterial.h"
#include "ZAXMatMaterialExtension.h"
#include "ZAXMatMaterialProviderManager.h"
#include "ZAXMatPackaging.h"
#include "ZAXMatPackagingExtension.h"
#include "ZAXMatProviderCache.h"
#include "ZAXMatRoot.h"
#include "ZAXSysException.h"

#include <QBuffer>
#include <QColor>
#include <QDir>
#include <QMetaProperty>
#include <QSequentialIterable>
#include <QTemporaryDir>

// A module that uses everything the library offers, so that whatever the library could leave behind in the process is
// there to be left behind.

namespace {

class ProbeMaterialExtension : public ZAXMatMaterialExtension
{
    Q_OBJECT

public:
    Q_INVOKABLE ProbeMaterialExtension(ZAXGeoContainer* container, const ZAXGeoGeometryRef& reference)
        : ZAXMatMaterialExtension(container, reference)
    {
    }
    Q_INVOKABLE explicit ProbeMaterialExtension(ZAXFeatObject* parent)
        : ZAXMatMaterialExtension(qobject_cast<ZAXMatMaterial*>(parent))
    {
    }
    QString GetExtensionLabel() const override { return QLatin1String("Probe"); }
};

class ProbePackagingExtension : public ZAXMatPackagingExtension
{
    Q_OBJECT

public:
    Q_INVOKABLE ProbePackagingExtension(ZAXGeoContainer* container, const ZAXGeoGeometryRef& reference)
        : ZAXMatPackagingExtension(container, reference)
    {
    }
    Q_INVOKABLE explicit ProbePackagingExtension(ZAXFeatObject* parent)
        : ZAXMatPackagingExtension(qobject_cast<ZAXMatPackaging*>(parent))
    {
    }
    QString GetExtensionLabel() const override { return QLatin1String("Probe"); }
};

class ProbePlugin : public ZAXMatExtensionPlugin
{
public:
    const QMetaObject* GetMaterialExtensionMetaObject() const override
    {
        return &ProbeMaterialExtension::staticMetaObject;
    }
    const QMetaObject* GetPackagingExtensionMetaObject() const override
    {
        return &ProbePackagingExtension::staticMetaObject;
    }
};

class ProbeManager : public ZAXMatMaterialProviderManager
{
public:
    explicit ProbeManager(const QString& directory)
        : ZAXMatMaterialProviderManager("ProbeManager"), m_directory(directory)
    {
    }
    void UpdateProviders() override
    {
        if (!m_provider)
            m_provider = std::make_unique<ZAXMatJsonFileProvider>(QByteArray("Probe"), QString(QLatin1String("Probe")),
                                                                  m_directory);
    }

private:
    QString m_directory;
    std::unique_ptr<ZAXMatJsonFileProvider> m_provider;
};

struct Registration
{
    Registration()
    {
        ZAXGeoContainer::RegisterType(&ProbeMaterialExtension::staticMetaObject);
        ZAXGeoContainer::RegisterType(&ProbePackagingExtension::staticMetaObject);
    }
    ~Registration()
    {
        ZAXGeoContainer::UnregisterType(&ProbePackagingExtension::staticMetaObject);
        ZAXGeoContainer::UnregisterType(&ProbeMaterialExtension::staticMetaObject);
    }
};
const Registration registration;

void Require(bool condition, const char* what)
{
    if (!condition)
        throw ZAXSysException(QString::fromUtf8(what));
}

void RequireDone(const ZAXHostResult& result)
{
    if (!result)
        throw ZAXSysException(result.GetMessage());
}

/// Reads every property of \a feature as text and as a list, and writes it back as read.
void UseProperties(ZAXFeatObject* feature)
{
    const QMetaObject* const type = feature->metaObject();
    for (int i = ZAXFeatObject::staticMetaObject.propertyCount(); i < type->propertyCount(); ++i) {
        const QMetaProperty property = type->property(i);
        const QVariant value = property.read(feature);
        Require(value.isValid(), property.name());
        Require(!property.isWritable() || property.write(feature, value), property.name());
        if (QByteArray(property.typeName()).startsWith("QList<")) {
            Require(value.canConvert<QSequentialIterable>(), property.name());
            for (const QVariant& element : value.value<QSequentialIterable>())
                Require(element.isValid(), property.name());
        }
    }
}

void UseCatalogue(ZAXMatMaterial* material)
{
    const QTemporaryDir directory(QDir::tempPath() + QString::fromUtf8("/zax ø XXXXXX"));
    ProbeManager manager(directory.path());
    const ProbePlugin plugin;
    Require(ZAXMatProvider::GetProviders().size() == 1, "The manager's provider is not listed.");
    const std::unique_ptr<ZAXMatProviderCache> cache(ZAXMatProviderCache::GetCache("Probe"));
    Require(cache != nullptr, "There is no cache.");
    ZAXMatDefinition record = cache->CreateMaterial(QLatin1String("Steel"));
    record.SetValue("thickness", 2);
    record.SetValue("isExtensionEnabled", true, "ProbeMaterialExtension");
    Require(cache->Update(record) && cache->Commit(), "The record is not stored.");
    cache->Refresh();
    record = cache->GetMaterial(record.GetKey());
    record.SaveToFeature(material);
    Require(material->GetThickness() == 2.0, "The thickness did not arrive.");
    Require(material->GetExtension("ProbeMaterialExtension", false), "The extension did not arrive.");
    record.LoadFromFeature(material);
    Require(record.ToJson().isObject(), "The record has no JSON form.");
}

void UseForm(ZAXMatPackaging* packaging)
{
    Require(packaging->setProperty("form", QLatin1String("Roll")), "A form is not read from its label.");
    Require(packaging->property("form").toString() == QLatin1String("Roll"), "A form has no label.");
    // Remembered by the host, for longer than this library may be loaded.
    packaging->SetForm(ZAXMatPackaging::Rectangular);
    packaging->SetForm(ZAXMatPackaging::Roll);
}

void UseDocument()
{
    ZAXHostDocument document;
    auto* const root = qobject_cast<ZAXMatRoot*>(document.GetContainer()->CreateInstance("ZAXMatRoot", nullptr));
    Require(root, "There is no root.");
    int added = 0;
    QObject::connect(root, &ZAXMatRoot::MaterialAdded, root, [&added] { ++added; });
    auto* const material =
        qobject_cast<ZAXMatMaterial*>(document.GetContainer()->CreateInstance("ZAXMatMaterial", root));
    Require(material && added == 1, "There is no material.");
    auto* const packaging = material->CreateDefaultPackaging();
    material->GetExtension("ProbeMaterialExtension", true);
    packaging->GetExtension("ProbePackagingExtension", true);
    material->GetNestingColor();
    for (ZAXFeatObject* feature : QList<ZAXFeatObject*>{root} + root->GetAllChildren())
        UseProperties(feature);
    UseForm(packaging);
    UseCatalogue(material);
    material->SetThickness(0);
    Require(!material->UpdateResult() && !material->GetPropertyMessages().isEmpty(), "A thickness of 0 is valid.");
    ZAXHostDuplicator::Duplicate(material)->Remove();
    QBuffer file;
    file.open(QIODevice::ReadWrite);
    RequireDone(document.Save(&file));
    file.seek(0);
    RequireDone(document.Load(&file));
}

QByteArray failure;

} // namespace

/// Uses every class of the library and every property; null, or what went wrong.
extern "C" Q_DECL_EXPORT const char* UseEverything()
{
    try {
        Require(_ZAXMaterialLoaded, "The library is not loaded.");
        UseDocument();
        return nullptr;
    } catch (const ZAXSysException& exception) {
        failure = exception.what();
        return failure.constData();
    }
}

#include "unload_probe.moc"
