#include "Document.h"

#include "ZAXFeatContainer.h"
#include "ZAXHostUndo.h"
#include "ZAXMatMaterial.h"
#include "ZAXMatPackaging.h"
#include "ZAXMatRoot.h"

#include <QDataStream>
#include <QIODevice>

namespace bench {

// In the namespace of the types, where Qt looks for them.
static QDataStream& operator<<(QDataStream& stream, const BarePackaging& packaging)
{
    return stream << packaging.label << packaging.length << packaging.width << packaging.form << packaging.cost
                  << packaging.comment << packaging.remoteKey << packaging.isActive;
}

static QDataStream& operator>>(QDataStream& stream, BarePackaging& packaging)
{
    return stream >> packaging.label >> packaging.length >> packaging.width >> packaging.form >> packaging.cost >>
           packaging.comment >> packaging.remoteKey >> packaging.isActive;
}

static QDataStream& operator<<(QDataStream& stream, const BareMaterial& material)
{
    return stream << material.label << material.materialId << material.isMaterialIdCustomized << material.materialType
                  << material.thickness << material.category << material.density << material.comment
                  << material.providerId << material.remoteKey << material.nestingColor << material.packagings;
}

static QDataStream& operator>>(QDataStream& stream, BareMaterial& material)
{
    return stream >> material.label >> material.materialId >> material.isMaterialIdCustomized >>
           material.materialType >> material.thickness >> material.category >> material.density >> material.comment >>
           material.providerId >> material.remoteKey >> material.nestingColor >> material.packagings;
}

namespace {

QByteArray Key(int number)
{
    return "{00000000-0000-4000-8000-" + QByteArray::number(number).rightJustified(12, '0') + '}';
}

void Fill(ZAXFeatContainer& container, ZAXFeatObject* parent, const BarePackaging& bare)
{
    auto* const packaging = qobject_cast<ZAXMatPackaging*>(container.CreateInstance("ZAXMatPackaging", parent));
    packaging->SetLabel(bare.label);
    packaging->SetLength(bare.length);
    packaging->SetWidth(bare.width);
    packaging->SetForm(static_cast<ZAXMatPackaging::Form>(bare.form));
    packaging->SetCost(bare.cost);
    packaging->SetComment(bare.comment);
    packaging->SetRemoteKey(bare.remoteKey);
    packaging->SetActive(bare.isActive);
}

void Fill(ZAXFeatContainer& container, ZAXFeatObject* parent, const BareMaterial& bare)
{
    auto* const material = qobject_cast<ZAXMatMaterial*>(container.CreateInstance("ZAXMatMaterial", parent));
    material->SetLabel(bare.label);
    material->SetMaterialIdCustomized(bare.isMaterialIdCustomized);
    material->SetMaterialId(bare.materialId);
    material->SetMaterialType(bare.materialType);
    material->SetThickness(bare.thickness);
    material->SetCategory(bare.category);
    material->SetDensity(bare.density);
    material->SetComment(bare.comment);
    material->SetProviderId(bare.providerId);
    material->SetRemoteKey(bare.remoteKey);
    material->SetNestingColor(bare.nestingColor);
    for (const BarePackaging& packaging : bare.packagings)
        Fill(container, material, packaging);
}

} // namespace

BareDocument MakeBareDocument(int materials)
{
    BareDocument bare;
    for (int i = 0; i < materials; ++i) {
        BareMaterial material{QLatin1String("Structural steel S235JR"),
                              QLatin1String("S235JR ") + QString::number(i),
                              true,
                              QLatin1String("S235JR"),
                              0.5 + i % 40 * 0.5,
                              QLatin1String("Metal"),
                              7.85,
                              QLatin1String("EN 10025-2"),
                              "ZAXMatJsonFileProvider",
                              Key(4 * i),
                              QColor(i % 256, 100, 200),
                              {}};
        for (int n = 1; n <= 3; ++n)
            material.packagings.append({QLatin1String("Sheet 1500 x 3000"), 3000, 1500, 0, 100.25 + n,
                                        QLatin1String("Large format"), Key(4 * i + n), n == 1});
        bare.append(material);
    }
    return bare;
}

QByteArray Save(const BareDocument& bare)
{
    QByteArray bytes;
    QDataStream stream(&bytes, QIODevice::WriteOnly);
    stream << bare;
    return bytes;
}

BareDocument Load(const QByteArray& bytes)
{
    BareDocument bare;
    QDataStream stream(bytes);
    stream >> bare;
    return bare;
}

ZAXMatRoot* Fill(ZAXHostDocument& document, const BareDocument& bare)
{
    ZAXFeatContainer* const container = document.GetContainer();
    document.GetUndo().SetContainer(nullptr);
    auto* const root = qobject_cast<ZAXMatRoot*>(container->CreateInstance("ZAXMatRoot", nullptr));
    for (const BareMaterial& material : bare)
        Fill(*container, root, material);
    document.GetUndo().SetContainer(container);
    return root;
}

void Require(const ZAXHostResult& result)
{
    if (!result)
        qFatal("A document cannot be saved or loaded.");
}

} // namespace bench
