#include "ZAXMatMaterial.h"

#include "ZAXMatExtensions.h"
#include "ZAXMatMaterialPrivate.h"
#include "ZAXMatNestingColor.h"
#include "ZAXMatPackaging.h"
#include "ZAXMatRoot.h"

#include <QSet>

#include <utility>

const char ZAXMatMaterial::Property_materialId[] = "materialId";
const char ZAXMatMaterial::Property_isMaterialIdCustomized[] = "isMaterialIdCustomized";
const char ZAXMatMaterial::Property_materialType[] = "materialType";
const char ZAXMatMaterial::Property_thickness[] = "thickness";
const char ZAXMatMaterial::Property_category[] = "category";
const char ZAXMatMaterial::Property_density[] = "density";
const char ZAXMatMaterial::Property_comment[] = "comment";
const char ZAXMatMaterial::Property_providerId[] = "providerId";
const char ZAXMatMaterial::Property_remoteKey[] = "remoteKey";
const char ZAXMatMaterial::Property_nestingColor[] = "nestingColor";
const char ZAXMatMaterial::Property_materialExtensions[] = "materialExtensions";

namespace {

/// Looked up once, not for each feature.
template <const char* property>
int IndexOf()
{
    static const int index = ZAXMatMaterial::staticMetaObject.indexOfProperty(property);
    return index;
}

/// Makes the packaging that \a reference leads to active, or else the first one of \a material, if there is any.
void ActivatePackaging(const ZAXMatMaterial& material, const ZAXGeoGeometryRef& reference)
{
    const ZAXGeoContainer* const container = material.GetContainer();
    auto* packaging = container ? qobject_cast<ZAXMatPackaging*>(container->GetGeometryByRef(reference)) : nullptr;
    if (!packaging)
        packaging = material.GetPackaging().value(0);
    if (packaging)
        packaging->SetActive(true);
}

} // namespace

ZAXMatMaterialPrivate::ZAXMatMaterialPrivate(ZAXMatMaterial* material)
    : materialId(material, IndexOf<ZAXMatMaterial::Property_materialId>(), QString(), true),
      isMaterialIdCustomized(material, IndexOf<ZAXMatMaterial::Property_isMaterialIdCustomized>(), false, true),
      materialType(material, IndexOf<ZAXMatMaterial::Property_materialType>(), QLatin1String("Generic"), false),
      thickness(material, IndexOf<ZAXMatMaterial::Property_thickness>(), 0.5, false),
      category(material, IndexOf<ZAXMatMaterial::Property_category>(), tr("Metal"), false),
      density(material, IndexOf<ZAXMatMaterial::Property_density>(), 0.1, false),
      comment(material, IndexOf<ZAXMatMaterial::Property_comment>(), QLatin1String(""), true),
      providerId(material, IndexOf<ZAXMatMaterial::Property_providerId>(), QByteArray(), true),
      remoteKey(material, IndexOf<ZAXMatMaterial::Property_remoteKey>(), QByteArray(), true),
      nestingColor(material, IndexOf<ZAXMatMaterial::Property_nestingColor>(),
                   ZAXMatDrawNestingColor(*QRandomGenerator::global()), true),
      materialExtensions(material, IndexOf<ZAXMatMaterial::Property_materialExtensions>(),
                         &ZAXMatMaterial::MaterialExtensionAdded, &ZAXMatMaterial::MaterialExtensionRemoved)
{
    materialType.RequestInitialization();
    thickness.RequestInitialization();
    category.RequestInitialization();
    density.RequestInitialization();
}

ZAXMatMaterial::ZAXMatMaterial(ZAXGeoContainer* container, const ZAXGeoGeometryRef& reference)
    : ZAXFeatObject(reference, container), d_ptr(std::make_unique<ZAXMatMaterialPrivate>(this))
{
}

ZAXMatMaterial::ZAXMatMaterial(ZAXFeatObject* parent) : ZAXMatMaterial(qobject_cast<ZAXMatRoot*>(parent)) {}

ZAXMatMaterial::ZAXMatMaterial(ZAXMatRoot* root)
    : ZAXFeatObject(
          ZAXMatFeatures::ContainerFor(root, QLatin1String("A material needs a materials root as its parent.")), root),
      d_ptr(std::make_unique<ZAXMatMaterialPrivate>(this))
{
}

ZAXMatMaterial::~ZAXMatMaterial() = default;

void ZAXMatMaterial::_constructor_checker()
{
    ZAXMatMaterial(static_cast<ZAXGeoContainer*>(nullptr), ZAXGeoGeometryRef());
}

QString ZAXMatMaterial::GetMaterialId() const
{
    Q_D(const ZAXMatMaterial);
    const QLatin1String stem("Material ID");
    QString id = d->materialId.GetValue();
    const qsizetype dot = id.lastIndexOf(u'.');
    if (dot >= 0 && QStringView(id).first(dot) == stem)
        id.replace(stem, tr("Material ID"));
    return id;
}

void ZAXMatMaterial::SetMaterialId(const QString& id)
{
    Q_D(ZAXMatMaterial);
    d->materialId.Apply(id);
}

bool ZAXMatMaterial::isMaterialIdCustomized() const
{
    Q_D(const ZAXMatMaterial);
    return d->isMaterialIdCustomized.GetValue();
}

void ZAXMatMaterial::SetMaterialIdCustomized(bool customized)
{
    Q_D(ZAXMatMaterial);
    d->isMaterialIdCustomized.Apply(customized);
}

QString ZAXMatMaterial::GetMaterialType() const
{
    Q_D(const ZAXMatMaterial);
    const QString& type = d->materialType.GetValue();
    return type == QLatin1String("Generic") ? tr("Generic") : type;
}

void ZAXMatMaterial::SetMaterialType(const QString& type)
{
    Q_D(ZAXMatMaterial);
    // Type and ID change as one undoable change.
    const ZAXFeatPropertyChange change(d->materialType);
    d->materialType.Apply(type);
    UpdateMaterialId();
}

double ZAXMatMaterial::GetThickness() const
{
    Q_D(const ZAXMatMaterial);
    return d->thickness.GetValue();
}

void ZAXMatMaterial::SetThickness(double thickness)
{
    Q_D(ZAXMatMaterial);
    // Thickness and ID change as one undoable change.
    const ZAXFeatPropertyChange change(d->thickness);
    d->thickness.Apply(thickness);
    UpdateMaterialId();
}

ZAXSysLengthValue ZAXMatMaterial::ReadThickness() const
{
    return ZAXSysLengthValue(GetThickness());
}

void ZAXMatMaterial::WriteThickness(const ZAXSysLengthValue& thickness)
{
    SetThickness(thickness.GetValue());
}

QString ZAXMatMaterial::GetCategory() const
{
    Q_D(const ZAXMatMaterial);
    const QString& category = d->category.GetValue();
    return category == QLatin1String("Misc") ? tr("Misc") : category;
}

void ZAXMatMaterial::SetCategory(const QString& category)
{
    Q_D(ZAXMatMaterial);
    d->category.Apply(category);
}

double ZAXMatMaterial::GetDensity() const
{
    Q_D(const ZAXMatMaterial);
    return d->density.GetValue();
}

void ZAXMatMaterial::SetDensity(double density)
{
    Q_D(ZAXMatMaterial);
    d->density.Apply(density);
}

ZAXSysDensityValue ZAXMatMaterial::ReadDensity() const
{
    return ZAXSysDensityValue(GetDensity());
}

void ZAXMatMaterial::WriteDensity(const ZAXSysDensityValue& density)
{
    SetDensity(density.GetValue());
}

QString ZAXMatMaterial::GetComment() const
{
    Q_D(const ZAXMatMaterial);
    return d->comment.GetValue();
}

void ZAXMatMaterial::SetComment(const QString& comment)
{
    Q_D(ZAXMatMaterial);
    d->comment.Apply(comment);
}

QByteArray ZAXMatMaterial::GetProviderId() const
{
    Q_D(const ZAXMatMaterial);
    return d->providerId.GetValue();
}

void ZAXMatMaterial::SetProviderId(const QByteArray& id)
{
    Q_D(ZAXMatMaterial);
    d->providerId.Apply(id);
}

QByteArray ZAXMatMaterial::GetRemoteKey() const
{
    Q_D(const ZAXMatMaterial);
    return d->remoteKey.GetValue();
}

void ZAXMatMaterial::SetRemoteKey(const QByteArray& key)
{
    Q_D(ZAXMatMaterial);
    d->remoteKey.Apply(key);
}

QColor ZAXMatMaterial::GetNestingColor() const
{
    Q_D(const ZAXMatMaterial);
    return d->nestingColor.GetValue();
}

void ZAXMatMaterial::SetNestingColor(const QColor& color)
{
    Q_D(ZAXMatMaterial);
    d->nestingColor.Apply(color);
}

QList<ZAXMatPackaging*> ZAXMatMaterial::GetPackaging() const
{
    return ZAXMatFeatures::Only<ZAXMatPackaging>(GetChildren());
}

QList<ZAXMatPackaging*> ZAXMatMaterial::GetActivePackaging() const
{
    QList<ZAXMatPackaging*> packaging = GetPackaging();
    packaging.removeIf([](const ZAXMatPackaging* candidate) { return !candidate->IsActive(); });
    return packaging;
}

ZAXMatPackaging* ZAXMatMaterial::CreateDefaultPackaging()
{
    const QList<ZAXMatPackaging*> active = GetActivePackaging();
    if (!active.isEmpty())
        return active.constFirst();
    // Changes of a feature nest, whatever property they are of: making the packaging and activating it is one step.
    Q_D(ZAXMatMaterial);
    const ZAXFeatPropertyChange change(d->materialExtensions);
    auto* const packaging = new ZAXMatPackaging(this);
    packaging->Initialize();
    packaging->SetActive(true);
    return packaging->GetParent() == this ? packaging : nullptr;
}

QList<ZAXMatMaterialExtension*> ZAXMatMaterial::GetExtensions() const
{
    Q_D(const ZAXMatMaterial);
    return d->materialExtensions.GetObjects();
}

ZAXMatMaterialExtension* ZAXMatMaterial::GetExtension(const QByteArray& key, bool create) const
{
    auto* const d = d_ptr.get();
    ZAXMatMaterialExtension* const extension = ZAXMatExtensions::Find(d->materialExtensions, key);
    if (extension || !create)
        return extension;
    return ZAXMatExtensions::Create(d->materialExtensions, key, QLatin1String("type is not a material extension"));
}

void ZAXMatMaterial::UpdateMaterialId()
{
    Q_D(ZAXMatMaterial);
    if (d->isMaterialIdCustomized.GetValue())
        return;
    const ZAXSysValue thickness(ZAXSysQuantity::Length, d->thickness.GetValue());
    d->materialId.Apply(GetLabel() + QLatin1String(" - ") + thickness.ToString());
}

void ZAXMatMaterial::Save(ZAXGeoStream& stream) const
{
    Q_D(const ZAXMatMaterial);
    ZAXFeatObject::Save(stream);
    stream << d->materialId << d->materialType << d->thickness << d->category << d->density << d->comment // version 1
           << d->providerId                                                                               // version 2
           << d->remoteKey                                                                                // version 3
           << d->nestingColor                                                                             // version 4
           << d->materialExtensions                                                                       // version 6
           << d->isMaterialIdCustomized;                                                                  // version 7
}

void ZAXMatMaterial::Load(ZAXGeoStream& stream)
{
    Q_D(ZAXMatMaterial);
    ZAXFeatObject::Load(stream);
    const int version = stream.GetVersion(&staticMetaObject);
    stream >> d->materialId >> d->materialType >> d->thickness >> d->category >> d->density >> d->comment;
    if (version < 5) {
        ZAXGeoGeometryRef active;
        stream >> active;
        d->oldActivePackaging = stream.GetMappedReference(active);
    }
    if (version < 2)
        return;
    stream >> d->providerId;
    if (version == 2) {
        QString unused;
        stream >> unused;
    }
    if (version >= 3)
        stream >> d->remoteKey;
    if (version >= 4)
        stream >> d->nestingColor;
    if (version >= 6)
        stream >> d->materialExtensions;
    if (version >= 7)
        stream >> d->isMaterialIdCustomized;
}

void ZAXMatMaterial::Initialize()
{
    Q_D(ZAXMatMaterial);
    // The material comes with its id, as one change.
    const ZAXFeatPropertyChange change(d->materialId);
    ZAXFeatObject::Initialize();
    UpdateMaterialId();
}

void ZAXMatMaterial::EndStateLoad()
{
    Q_D(ZAXMatMaterial);
    ZAXFeatObject::EndStateLoad();
    if (d->oldActivePackaging)
        ActivatePackaging(*this, *std::exchange(d->oldActivePackaging, std::nullopt));
    ZAXMatExtensions::ListMissingChildren(d->materialExtensions);
}

bool ZAXMatMaterial::IsChildAllowed(const QMetaObject* childType) const
{
    static const QList<QByteArray> allowed{"ZAXMatMaterialExtension", "ZAXMatPackaging"};
    return IsValidParent(metaObject(), childType, allowed);
}

bool ZAXMatMaterial::IsUserDeletable() const
{
    return ZAXFeatObject::IsUserDeletable() && GetAllDependents().isEmpty();
}

bool ZAXMatMaterial::UpdateResult()
{
    using ZAXMatFeatures::IsSubstantial;
    using ZAXMatFeatures::Require;
    Q_D(const ZAXMatMaterial);
    bool ok = ZAXFeatObject::UpdateResult();
    ok &=
        Require(this, !d->materialId.GetValue().isEmpty(), Property_materialId, tr("The material ID cannot be empty."));
    ok &= Require(this, !d->materialType.GetValue().isEmpty(), Property_materialType,
                  tr("The material type cannot be empty."));
    ok &= Require(this, IsSubstantial(d->thickness.GetValue()), Property_thickness,
                  tr("The thickness is not a positive non-zero length."));
    return ok;
}

void ZAXMatMaterial::PostDuplicate(const ZAXFeatObject* source, const ZAXFeatObject* duplicated)
{
    ZAXFeatObject::PostDuplicate(source, duplicated);
    SetMaterialId(NewCopyId());
    SetNestingColor(ZAXMatDrawNestingColor(*QRandomGenerator::global()));
    if (GetRemoteKey().isEmpty())
        return;
    SetProviderId(QByteArray());
    SetRemoteKey(QByteArray());
}

QString ZAXMatMaterial::NewCopyId() const
{
    const QString id = GetMaterialId();
    const QString copy = tr("Copy");
    QSet<QString> taken;
    if (const ZAXFeatObject* const parent = GetParent()) {
        for (const ZAXMatMaterial* material : ZAXMatFeatures::Only<ZAXMatMaterial>(parent->GetChildren()))
            taken.insert(material->GetMaterialId());
    }
    QString candidate = QString(QLatin1String("%1 (%2)")).arg(id, copy);
    for (int n = 2; taken.contains(candidate); ++n)
        candidate = QString(QLatin1String("%1 (%2 %3)")).arg(id, copy, QString::number(n));
    return candidate;
}
