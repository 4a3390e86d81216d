#include "Schema.h"

#include "ZAXMatExtensionPlugin.h"
#include "ZAXMatJsonFileProvider.h"
#include "ZAXMatMaterial.h"
#include "ZAXMatPackaging.h"

#include <QMetaProperty>
#include <QUuid>

#include <algorithm>

namespace zaxmat {

Schema::Schema()
{
    // The same for every file, so it is asked of a provider that has none, under an id that nobody else has.
    const QByteArray id = QUuid::createUuid().toByteArray();
    ZAXMatJsonFileProvider provider(id, QString(), QString::fromLatin1(id));
    m_models = {provider.CreateMaterial(QString()), provider.CreatePackaging(QString(), QByteArray())};
}

ZAXMatDefinition Schema::NewRecord(ZAXMatDefinition::Type type, const QString& name) const
{
    ZAXMatDefinition record = m_models.at(type);
    record.SetKey(QUuid::createUuid().toByteArray(QUuid::WithBraces));
    record.SetName(name);
    return record;
}

ZAXMatDefinition Schema::NewMaterial(const QString& name) const
{
    return NewRecord(ZAXMatDefinition::Material, name);
}

ZAXMatDefinition Schema::NewStockForm(const QString& name, const QByteArray& materialKey) const
{
    ZAXMatDefinition record = NewRecord(ZAXMatDefinition::Packaging, name);
    record.SetMaterialKey(materialKey);
    return record;
}

QList<QByteArray> Schema::GetProperties(ZAXMatDefinition::Type type, const QByteArray& extension) const
{
    const QMetaObject* const metaObject = ClassOf(type, extension);
    const ZAXMatDefinition& model = m_models.at(type);
    QList<QByteArray> names;
    for (int i = 0; metaObject && i < metaObject->propertyCount(); ++i) {
        const QMetaProperty property = metaObject->property(i);
        if (property.isWritable() && model.IsDefined(property.name(), extension))
            names.append(property.name());
    }
    return names;
}

const QMetaObject* ClassOf(ZAXMatDefinition::Type type, const QByteArray& extension)
{
    const bool isMaterial = type == ZAXMatDefinition::Material;
    if (extension.isEmpty())
        return isMaterial ? &ZAXMatMaterial::staticMetaObject : &ZAXMatPackaging::staticMetaObject;
    const QList<ZAXMatExtensionPlugin*> plugins = ZAXMatExtensionPlugin::GetPlugins();
    for (const ZAXMatExtensionPlugin* const plugin : plugins) {
        const QMetaObject* const metaObject =
            isMaterial ? plugin->GetMaterialExtensionMetaObject() : plugin->GetPackagingExtensionMetaObject();
        if (extension == metaObject->className())
            return metaObject;
    }
    return nullptr;
}

} // namespace zaxmat
