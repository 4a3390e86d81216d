#include "RecordLoading.h"

#include "DocumentFile.h"
#include "ObjectValues.h"
#include "Properties.h"

#include "ZAXFeatContainer.h"
#include "ZAXMatMaterial.h"
#include "ZAXMatMaterialExtension.h"
#include "ZAXMatPackaging.h"
#include "ZAXMatPackagingExtension.h"
#include "ZAXMatRoot.h"

#include <algorithm>

namespace zaxmat {

namespace {

/// A material and a stock form as they are when they are made.
class NewFeatures
{
public:
    NewFeatures()
    {
        m_material =
            CreateFeature(m_document, ZAXMatMaterial::staticMetaObject.className(), MaterialsRootOf(m_document));
        m_stockForm = CreateFeature(m_document, ZAXMatPackaging::staticMetaObject.className(), m_material);
    }

    const ZAXFeatObject& Like(const ZAXFeatObject& feature) const
    {
        return qobject_cast<const ZAXMatMaterial*>(&feature) ? *m_material : *m_stockForm;
    }

private:
    ClassDefaults m_defaults;
    ZAXHostDocument m_document;
    ZAXFeatObject* m_material;
    ZAXFeatObject* m_stockForm;
};

QList<const ZAXFeatObject*> ExtensionsOf(const ZAXFeatObject& feature)
{
    QList<const ZAXFeatObject*> extensions;
    const auto add = [&](const auto& listed) { std::ranges::copy(listed, std::back_inserter(extensions)); };
    if (const auto* const material = qobject_cast<const ZAXMatMaterial*>(&feature))
        add(material->GetExtensions());
    if (const auto* const stockForm = qobject_cast<const ZAXMatPackaging*>(&feature))
        add(stockForm->GetExtensions());
    extensions.removeAll(nullptr);
    return extensions;
}

QJsonValue PlainValueOf(const ZAXFeatObject& feature, const QByteArray& name)
{
    const QMetaProperty property = FindProperty(feature.metaObject(), name);
    return PlainValue(property, property.read(&feature));
}

/// The properties of \a feature that records hold. An ID that was not chosen is made anew wherever it is needed.
QList<QByteArray> StoredProperties(const ZAXFeatObject& feature)
{
    QList<QByteArray> names;
    const QList<ObjectValue> values = ValuesOf(feature, LengthUnit::Millimetre);
    std::ranges::transform(values, std::back_inserter(names), &ObjectValue::name);
    names.removeAll("label");
    names.removeAll(ZAXMatMaterial::Property_providerId);
    names.removeAll(ZAXMatMaterial::Property_remoteKey);
    names.removeAll(ZAXMatMaterial::Property_nestingColor);
    const auto* const material = qobject_cast<const ZAXMatMaterial*>(&feature);
    if (material && !material->isMaterialIdCustomized()) {
        names.removeAll(ZAXMatMaterial::Property_materialId);
        names.removeAll(ZAXMatMaterial::Property_isMaterialIdCustomized);
    }
    return names;
}

void Define(ZAXMatDefinition& record, const QByteArray& name, const QByteArray& extension)
{
    if (!record.IsDefined(name, extension))
        record.AddAllowedProperty(extension, name);
}

/// Makes the values that \a record got from \a target plain, and brings back those that it did not get from there.
void MakePlain(ZAXMatDefinition& record, const ZAXMatDefinition& before, const ZAXFeatObject& target,
               const QByteArray& extension)
{
    const QList<QByteArray> names = record.GetDefinedProperties(extension);
    for (const QByteArray& name : names) {
        const QMetaProperty property = FindProperty(target.metaObject(), name);
        record.SetValue(
            name, property.isWritable() ? PlainValueOf(target, name).toVariant() : before.GetValue(name, extension),
            extension);
    }
}

} // namespace

void LoadRecord(ZAXMatDefinition& record, const ZAXFeatObject& feature, bool isNew)
{
    const NewFeatures newFeatures;
    const ZAXFeatObject& blank = newFeatures.Like(feature);
    const auto isAsNew = [&](const QByteArray& name) {
        return PlainValueOf(feature, name) == PlainValueOf(blank, name);
    };
    const ZAXMatDefinition before = record;

    const QList<QByteArray> stored = StoredProperties(feature);
    for (const QByteArray& name : stored) {
        if (isNew || !isAsNew(name))
            Define(record, name, {});
    }
    const QList<const ZAXFeatObject*> extensions = ExtensionsOf(feature);
    for (const ZAXFeatObject* const extension : extensions) {
        const QList<QByteArray> names = StoredProperties(*extension);
        for (const QByteArray& name : names)
            Define(record, name, extension->metaObject()->className());
    }

    record.LoadFromFeature(&feature);
    MakePlain(record, before, feature, {});
    for (const ZAXFeatObject* const extension : extensions)
        MakePlain(record, before, *extension, extension->metaObject()->className());
    for (const QByteArray& name : stored) {
        if (before.IsDefined(name, {}) && IsMissing(before.GetValue(name, {})) && isAsNew(name) && !isNew)
            record.SetValue(name, before.GetValue(name, {}), {});
    }
}

} // namespace zaxmat
