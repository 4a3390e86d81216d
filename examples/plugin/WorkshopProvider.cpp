#include "WorkshopProvider.h"

#include "WorkshopGasExtension.h"
#include "WorkshopSheetExtension.h"

#include <ZAXMatMaterial.h>
#include <ZAXMatPackaging.h>

#include <QCoreApplication>
#include <QMetaEnum>
#include <QMetaProperty>

#include <algorithm>
#include <iterator>

namespace {

using Form = ZAXMatPackaging::Form;
using Grain = WorkshopSheetExtension::GrainDirection;

struct Material
{
    const char* key;
    const char* name;
    const char* type;
    double thickness; ///< millimetres
    double density;   ///< grams per cubic centimetre
    const char* gas;
    double pressure; ///< bar
    double piercing; ///< seconds
};

struct Packaging
{
    const char* key;
    const char* materialKey;
    const char* name;
    double length; ///< millimetres
    double width;  ///< millimetres
    Form form;
    double cost;
    Grain grain;
    double margin; ///< millimetres
};

constexpr Material materials[] = {
    {"steel-2", "Structural steel 2 mm", "Structural steel", 2.0, 7.85, "Oxygen", 3.5, 0.25},
    {"stainless-1.5", "Stainless steel 1.5 mm", "Stainless steel", 1.5, 7.93, "Nitrogen", 14.0, 0.3},
    {"aluminium-3", "Aluminium 3 mm", "Aluminium", 3.0, 2.68, "Nitrogen", 12.5, 0.45},
};

constexpr Packaging packagings[] = {
    {"steel-2-large", "steel-2", "Large sheet", 3000.0, 1500.0, Form::Rectangular, 78.0, Grain::None, 10.0},
    {"steel-2-coil", "steel-2", "Coil", 50000.0, 1250.0, Form::Roll, 1090.0, Grain::AlongLength, 0.0},
    {"stainless-1.5-medium", "stainless-1.5", "Medium sheet", 2500.0, 1250.0, Form::Rectangular, 142.0,
     Grain::AlongLength, 12.7},
    {"aluminium-3-small", "aluminium-3", "Small sheet", 2000.0, 1000.0, Form::Rectangular, 69.5, Grain::AlongWidth,
     8.0},
};

/// The row of \a rows with \a key; null when there is none.
template <typename Row, std::size_t Count>
const Row* RowOf(const Row (&rows)[Count], const QByteArray& key)
{
    const auto* const row = std::ranges::find_if(rows, [&key](const Row& row) { return key == row.key; });
    return row == std::end(rows) ? nullptr : row;
}

/// The names of the properties that \a type and its bases declare, from the class \a first down.
QList<QByteArray> PropertiesOf(const QMetaObject& type, const QMetaObject& first)
{
    QList<QByteArray> names;
    for (int i = first.propertyOffset(); i < type.propertyCount(); ++i)
        names.append(QByteArray(type.property(i).name()));
    return names;
}

} // namespace

WorkshopProvider::WorkshopProvider() : ZAXMatProvider(Id()) {}

QByteArray WorkshopProvider::Id()
{
    return "WorkshopProvider";
}

QString WorkshopProvider::GetProviderLabel() const
{
    return QCoreApplication::translate("WorkshopProvider", "Workshop stock");
}

QByteArray WorkshopProvider::GetProviderId() const
{
    return Id();
}

QList<QByteArray> WorkshopProvider::GetSupportedMaterialExtensions() const
{
    return {WorkshopGasExtension::staticMetaObject.className()};
}

QList<QByteArray> WorkshopProvider::GetSupportedMaterialProperties(const QByteArray& extension) const
{
    if (extension.isEmpty())
        return {ZAXMatMaterial::Property_materialType, ZAXMatMaterial::Property_thickness,
                ZAXMatMaterial::Property_density};
    if (GetSupportedMaterialExtensions().contains(extension))
        return PropertiesOf(WorkshopGasExtension::staticMetaObject, ZAXMatMaterialExtension::staticMetaObject);
    return {};
}

QList<QByteArray> WorkshopProvider::GetMaterialKeys() const
{
    QList<QByteArray> keys;
    for (const Material& row : materials)
        keys.append(row.key);
    return keys;
}

ZAXMatDefinition WorkshopProvider::GetMaterial(const QByteArray& key) const
{
    const Material* const row = RowOf(materials, key);
    if (!row)
        return {};
    ZAXMatDefinition record = CreateDefinition(ZAXMatDefinition::Material, key);
    record.SetName(QString::fromUtf8(row->name));
    record.SetValue(ZAXMatMaterial::Property_materialType, QString::fromUtf8(row->type));
    record.SetValue(ZAXMatMaterial::Property_thickness, row->thickness);
    record.SetValue(ZAXMatMaterial::Property_density, row->density);
    const QByteArray gas = WorkshopGasExtension::staticMetaObject.className();
    record.SetValue(WorkshopGasExtension::Property_isExtensionEnabled, true, gas);
    record.SetValue(WorkshopGasExtension::Property_assistGas, QString::fromUtf8(row->gas), gas);
    record.SetValue(WorkshopGasExtension::Property_gasPressure, row->pressure, gas);
    record.SetValue(WorkshopGasExtension::Property_piercingTime, row->piercing, gas);
    record.Commit();
    return record;
}

bool WorkshopProvider::HasPackaging() const
{
    return true;
}

QList<QByteArray> WorkshopProvider::GetSupportedPackagingExtensions() const
{
    return {WorkshopSheetExtension::staticMetaObject.className()};
}

QList<QByteArray> WorkshopProvider::GetSupportedPackagingProperties(const QByteArray& extension) const
{
    if (extension.isEmpty())
        return {ZAXMatPackaging::Property_length, ZAXMatPackaging::Property_width, ZAXMatPackaging::Property_form,
                ZAXMatPackaging::Property_cost};
    if (GetSupportedPackagingExtensions().contains(extension))
        return PropertiesOf(WorkshopSheetExtension::staticMetaObject, ZAXMatPackagingExtension::staticMetaObject);
    return {};
}

QList<QByteArray> WorkshopProvider::GetPackagingKeys(const QByteArray& materialKey) const
{
    QList<QByteArray> keys;
    for (const Packaging& row : packagings) {
        if (materialKey == row.materialKey)
            keys.append(row.key);
    }
    return keys;
}

ZAXMatDefinition WorkshopProvider::GetPackaging(const QByteArray& key) const
{
    const Packaging* const row = RowOf(packagings, key);
    if (!row)
        return {};
    ZAXMatDefinition record = CreateDefinition(ZAXMatDefinition::Packaging, key);
    record.SetMaterialKey(row->materialKey);
    record.SetName(QString::fromUtf8(row->name));
    record.SetValue(ZAXMatPackaging::Property_length, row->length);
    record.SetValue(ZAXMatPackaging::Property_width, row->width);
    record.SetValue(ZAXMatPackaging::Property_form, static_cast<int>(row->form));
    record.SetValue(ZAXMatPackaging::Property_cost, row->cost);
    const QByteArray sheet = WorkshopSheetExtension::staticMetaObject.className();
    const char* const grain = QMetaEnum::fromType<Grain>().valueToKey(row->grain);
    record.SetValue(WorkshopSheetExtension::Property_isExtensionEnabled, true, sheet);
    record.SetValue(WorkshopSheetExtension::Property_grainDirection, QString::fromLatin1(grain), sheet);
    record.SetValue(WorkshopSheetExtension::Property_trimMargin, row->margin, sheet);
    record.Commit();
    return record;
}
