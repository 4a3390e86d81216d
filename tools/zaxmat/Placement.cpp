#include "Placement.h"

#include "Complaints.h"
#include "DocumentFile.h"
#include "Failure.h"
#include "MaterialChoice.h"
#include "Properties.h"
#include "Records.h"
#include "Text.h"

#include "ZAXMatMaterial.h"
#include "ZAXMatMaterialExtension.h"
#include "ZAXMatPackaging.h"
#include "ZAXMatPackagingExtension.h"
#include "ZAXMatRoot.h"
#include "ZAXSysException.h"

namespace zaxmat {

namespace {

/// Adds what the properties of \a feature cannot take of the values under \a extension, which belong to \a target.
void AddRefusedValues(const ZAXMatDefinition& record, const QByteArray& extension, const QObject& target,
                      const ZAXFeatObject& feature, Complaints& complaints)
{
    const QList<QByteArray> names = PropertiesOf(record, extension);
    for (const QByteArray& name : names) {
        const QMetaProperty property = FindProperty(target.metaObject(), name);
        const QVariant value = record.GetValue(name, extension);
        if (property.isWritable() && !IsMissing(value) && !IsAccepted(property, value))
            complaints.Add(feature, name,
                           Text::tr("The catalogue's value %1 cannot be taken.").arg(Quoted(ValueText({}, value))));
    }
}

/// Gives \a feature the extensions of \a record.
/// \throws Failure (InvalidValues) that names the one that cannot be made.
template <typename Feature>
void MakeExtensions(const ZAXMatDefinition& record, const Feature& feature)
{
    const QList<QByteArray> extensions = ExtensionsOf(record);
    for (const QByteArray& extension : extensions) {
        try {
            if (!extension.isEmpty())
                feature.GetExtension(extension, true);
        } catch (const ZAXSysException& exception) {
            throw Failure(
                ExitCode::InvalidValues,
                Text::tr("%1 of the catalogue cannot be taken over: its extension %2 cannot be made (%3). No "
                         "loaded module provides it.")
                    .arg(Quoted(record.GetName()), Quoted(QString::fromLatin1(extension)), exception.GetMessage()));
        }
    }
}

/// Writes \a record into the new \a feature.
template <typename Feature>
void WriteRecord(const ZAXMatDefinition& record, Feature& feature, Complaints& complaints)
{
    MakeExtensions(record, feature);
    record.SaveToFeature(&feature);
    const QList<QByteArray> extensions = ExtensionsOf(record);
    for (const QByteArray& extension : extensions) {
        const QObject* const target =
            extension.isEmpty() ? static_cast<QObject*>(&feature) : feature.GetExtension(extension, false);
        AddRefusedValues(record, extension, *target, feature, complaints);
    }
}

/// Gives \a material the ID of \a record if it is customised, else the one made of its name and thickness. The record
/// was written in the order of a hash: an ID may be gone, its own or the one made, when another property came later.
void WriteMaterialId(const ZAXMatDefinition& record, ZAXMatMaterial& material)
{
    if (material.isMaterialIdCustomized())
        material.SetMaterialId(record.GetValue(ZAXMatMaterial::Property_materialId).toString());
    material.UpdateMaterialId();
}

Placed<ZAXMatMaterial> PlaceMaterial(const MaterialChoice& choice, ZAXHostDocument& document, Complaints& complaints)
{
    ZAXMatRoot* const root = MaterialsRootOf(document);
    const QByteArray key = choice.material.GetKey();
    if (auto* const material = root->GetMaterial(choice.providerId, key, choice.thickness))
        return {material, false};
    auto* const material =
        qobject_cast<ZAXMatMaterial*>(CreateFeature(document, ZAXMatMaterial::staticMetaObject.className(), root));
    WriteRecord(choice.material, *material, complaints);
    if (!ThicknessOf(choice.material))
        material->SetThickness(choice.thickness);
    material->SetProviderId(choice.providerId);
    material->SetRemoteKey(key);
    WriteMaterialId(choice.material, *material);
    return {material, true};
}

Placed<ZAXMatPackaging> PlaceStockForm(const ZAXMatDefinition& record, ZAXMatMaterial& material,
                                       ZAXHostDocument& document, Complaints& complaints)
{
    const QList<ZAXMatPackaging*> present = material.GetPackaging();
    const auto found = std::ranges::find(present, record.GetKey(), &ZAXMatPackaging::GetRemoteKey);
    if (found != present.end())
        return {*found, false};
    const bool isFirstActive = material.GetActivePackaging().isEmpty();
    auto* const stockForm = qobject_cast<ZAXMatPackaging*>(
        CreateFeature(document, ZAXMatPackaging::staticMetaObject.className(), &material));
    WriteRecord(record, *stockForm, complaints);
    stockForm->SetRemoteKey(record.GetKey());
    if (isFirstActive)
        stockForm->SetActive(true);
    return {stockForm, true};
}

} // namespace

Placement Place(const MaterialChoice& choice, ZAXHostDocument& document, Complaints& complaints)
{
    Placement placement;
    placement.material = PlaceMaterial(choice, document, complaints);
    for (const ZAXMatDefinition& stockForm : choice.stockForms)
        placement.stockForms.append(PlaceStockForm(stockForm, *placement.material.feature, document, complaints));
    return placement;
}

} // namespace zaxmat
