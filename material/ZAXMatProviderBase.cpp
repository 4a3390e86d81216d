#include "ZAXMatProviderBase.h"

#include "ZAXMatDefinitionPrivate.h"

#include <vector>

class ZAXMatProviderBasePrivate
{
public:
    ZAXMatProviderBase::State state = ZAXMatProviderBase::InitialState;
};

ZAXMatProviderBase::ZAXMatProviderBase() : d_ptr(std::make_unique<ZAXMatProviderBasePrivate>()) {}

ZAXMatProviderBase::~ZAXMatProviderBase() = default;

bool ZAXMatProviderBase::IsReadOnly() const
{
    return true;
}

ZAXMatProviderBase::State ZAXMatProviderBase::GetState() const
{
    Q_D(const ZAXMatProviderBase);
    return d->state;
}

void ZAXMatProviderBase::SetState(State state)
{
    Q_D(ZAXMatProviderBase);
    d->state = state;
}

QList<QByteArray> ZAXMatProviderBase::GetSupportedMaterialExtensions() const
{
    return {};
}

bool ZAXMatProviderBase::HasPackaging() const
{
    return false;
}

QList<QByteArray> ZAXMatProviderBase::GetSupportedPackagingExtensions() const
{
    return {};
}

QList<QByteArray> ZAXMatProviderBase::GetSupportedMaterialProperties(const QByteArray&) const
{
    return {};
}

QList<QByteArray> ZAXMatProviderBase::GetSupportedPackagingProperties(const QByteArray&) const
{
    return {};
}

ZAXMatDefinition ZAXMatProviderBase::CreateMaterial(const QString&)
{
    return {};
}

bool ZAXMatProviderBase::RemoveMaterial(const QByteArray&)
{
    return false;
}

QList<QByteArray> ZAXMatProviderBase::GetPackagingKeys(const QByteArray&) const
{
    return {};
}

ZAXMatDefinition ZAXMatProviderBase::GetPackaging(const QByteArray&) const
{
    return {};
}

ZAXMatDefinition ZAXMatProviderBase::CreatePackaging(const QString&, const QByteArray&)
{
    return {};
}

bool ZAXMatProviderBase::RemovePackaging(const QByteArray&)
{
    return false;
}

bool ZAXMatProviderBase::Update(const ZAXMatDefinition&)
{
    return false;
}

bool ZAXMatProviderBase::IsMaterialProperty(const QByteArray& property, const QByteArray& extension) const
{
    return GetSupportedMaterialProperties(extension).contains(property);
}

bool ZAXMatProviderBase::IsPackagingProperty(const QByteArray& property, const QByteArray& extension) const
{
    return GetSupportedPackagingProperties(extension).contains(property);
}

QList<QByteArray>
ZAXMatProviderBase::FindMaterials(const QMultiHash<QByteArray, std::pair<QByteArray, QVariant>>& criteria) const
{
    struct Criterion
    {
        ZAXMatValueLocator locator;
        QVariant required;
    };
    std::vector<Criterion> wanted;
    for (const auto& [extension, criterion] : criteria.asKeyValueRange())
        wanted.push_back({ZAXMatValueLocator(extension, criterion.first), criterion.second});

    const ZAXMatValue missing;
    QList<QByteArray> found;
    const QList<QByteArray> keys = GetMaterialKeys();
    for (const QByteArray& key : keys) {
        const ZAXMatDefinition material = GetMaterial(key);
        const ZAXMatValues& values = ZAXMatDefinitionPrivate::Of(material).values;
        bool matches = true;
        for (Criterion& criterion : wanted) {
            const ZAXMatValue* const value = criterion.locator.FindIn(values);
            matches &= (value ? *value : missing).IsSame(criterion.required);
        }
        if (matches)
            found.append(key);
    }
    return found;
}

QList<QByteArray> ZAXMatProviderBase::FindMaterials(const QString& materialType, double thickness) const
{
    return FindMaterials(QMultiHash<QByteArray, std::pair<QByteArray, QVariant>>{
        {QByteArray(), {QByteArray("materialType"), QVariant(materialType)}},
        {QByteArray(), {QByteArray("thickness"), QVariant(thickness)}},
    });
}
