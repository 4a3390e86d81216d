#include "ZAXMatPackaging.h"

#include "ZAXMatExtensions.h"
#include "ZAXMatMaterial.h"
#include "ZAXMatPackagingPrivate.h"

const char ZAXMatPackaging::Property_length[] = "length";
const char ZAXMatPackaging::Property_width[] = "width";
const char ZAXMatPackaging::Property_form[] = "form";
const char ZAXMatPackaging::Property_cost[] = "cost";
const char ZAXMatPackaging::Property_comment[] = "comment";
const char ZAXMatPackaging::Property_isActive[] = "isActive";
const char ZAXMatPackaging::Property_remoteKey[] = "remoteKey";
const char ZAXMatPackaging::Property_packagingExtensions[] = "packagingExtensions";

namespace {

/// Looked up once, not for each feature.
template <const char* property>
int IndexOf()
{
    static const int index = ZAXMatPackaging::staticMetaObject.indexOfProperty(property);
    return index;
}

} // namespace

ZAXMatPackagingPrivate::ZAXMatPackagingPrivate(ZAXMatPackaging* packaging)
    : length(packaging, IndexOf<ZAXMatPackaging::Property_length>(), 1000.0, false),
      width(packaging, IndexOf<ZAXMatPackaging::Property_width>(), 500.0, false),
      form(packaging, IndexOf<ZAXMatPackaging::Property_form>(), ZAXMatPackaging::Rectangular, false),
      cost(packaging, IndexOf<ZAXMatPackaging::Property_cost>(), 1.0, false),
      comment(packaging, IndexOf<ZAXMatPackaging::Property_comment>(), QString(), false),
      remoteKey(packaging, IndexOf<ZAXMatPackaging::Property_remoteKey>(), QByteArray(""), true),
      isActive(packaging, IndexOf<ZAXMatPackaging::Property_isActive>(), false, true),
      packagingExtensions(packaging, IndexOf<ZAXMatPackaging::Property_packagingExtensions>(),
                          &ZAXMatPackaging::PackagingExtensionAdded, &ZAXMatPackaging::PackagingExtensionRemoved)
{
}

void ZAXMatPackagingPrivate::RequestInitialization()
{
    length.RequestInitialization();
    width.RequestInitialization();
    // Asked for by name: whether another module's copy of the type is registered, this one's cannot tell.
    if (QMetaType::fromName("ZAXMatPackaging::Form").id() != 0)
        form.RequestInitialization();
    cost.RequestInitialization();
    comment.RequestInitialization();
}

ZAXMatPackaging::ZAXMatPackaging(ZAXGeoContainer* container, const ZAXGeoGeometryRef& reference)
    : ZAXFeatObject(reference, container), d_ptr(std::make_unique<ZAXMatPackagingPrivate>(this))
{
}

ZAXMatPackaging::ZAXMatPackaging(ZAXFeatObject* parent) : ZAXMatPackaging(qobject_cast<ZAXMatMaterial*>(parent)) {}

ZAXMatPackaging::ZAXMatPackaging(ZAXMatMaterial* material)
    : ZAXFeatObject(
          ZAXMatFeatures::ContainerFor(material, QLatin1String("A packaging needs a material as its parent.")),
          material),
      d_ptr(std::make_unique<ZAXMatPackagingPrivate>(this))
{
    d_ptr->RequestInitialization();
}

ZAXMatPackaging::~ZAXMatPackaging() = default;

void ZAXMatPackaging::_constructor_checker()
{
    ZAXMatPackaging(static_cast<ZAXGeoContainer*>(nullptr), ZAXGeoGeometryRef());
}

double ZAXMatPackaging::GetLength() const
{
    Q_D(const ZAXMatPackaging);
    return d->length.GetValue();
}

void ZAXMatPackaging::SetLength(double length)
{
    Q_D(ZAXMatPackaging);
    d->length.Apply(length);
}

ZAXSysLengthValue ZAXMatPackaging::ReadLength() const
{
    return ZAXSysLengthValue(GetLength());
}

void ZAXMatPackaging::WriteLength(const ZAXSysLengthValue& length)
{
    SetLength(length.GetValue());
}

double ZAXMatPackaging::GetWidth() const
{
    Q_D(const ZAXMatPackaging);
    return d->width.GetValue();
}

void ZAXMatPackaging::SetWidth(double width)
{
    Q_D(ZAXMatPackaging);
    d->width.Apply(width);
}

ZAXSysLengthValue ZAXMatPackaging::ReadWidth() const
{
    return ZAXSysLengthValue(GetWidth());
}

void ZAXMatPackaging::WriteWidth(const ZAXSysLengthValue& width)
{
    SetWidth(width.GetValue());
}

ZAXMatPackaging::Form ZAXMatPackaging::GetForm() const
{
    Q_D(const ZAXMatPackaging);
    return d->form.GetValue();
}

void ZAXMatPackaging::SetForm(Form form)
{
    Q_D(ZAXMatPackaging);
    d->form.Apply(form);
}

double ZAXMatPackaging::GetCost() const
{
    Q_D(const ZAXMatPackaging);
    return d->cost.GetValue();
}

void ZAXMatPackaging::SetCost(double cost)
{
    Q_D(ZAXMatPackaging);
    d->cost.Apply(cost);
}

QString ZAXMatPackaging::GetComment() const
{
    Q_D(const ZAXMatPackaging);
    return d->comment.GetValue();
}

void ZAXMatPackaging::SetComment(const QString& comment)
{
    Q_D(ZAXMatPackaging);
    d->comment.Apply(comment);
}

QByteArray ZAXMatPackaging::GetRemoteKey() const
{
    Q_D(const ZAXMatPackaging);
    return d->remoteKey.GetValue();
}

void ZAXMatPackaging::SetRemoteKey(const QByteArray& key)
{
    Q_D(ZAXMatPackaging);
    d->remoteKey.Apply(key);
}

bool ZAXMatPackaging::IsActive() const
{
    Q_D(const ZAXMatPackaging);
    return d->isActive.GetValue();
}

void ZAXMatPackaging::SetActive(bool active)
{
    Q_D(ZAXMatPackaging);
    d->isActive.Apply(active);
}

QList<ZAXMatPackagingExtension*> ZAXMatPackaging::GetExtensions() const
{
    Q_D(const ZAXMatPackaging);
    return d->packagingExtensions.GetObjects();
}

ZAXMatPackagingExtension* ZAXMatPackaging::GetExtension(const QByteArray& key, bool create) const
{
    auto* const d = d_ptr.get();
    ZAXMatPackagingExtension* const extension = ZAXMatExtensions::Find(d->packagingExtensions, key);
    if (extension || !create)
        return extension;
    return ZAXMatExtensions::Create(d->packagingExtensions, key, QLatin1String("type is not a packaging extension"));
}

QList<ZAXMatPackaging::Form> ZAXMatPackaging::GetAllForms()
{
    static const QList<Form> forms{Rectangular, Roll};
    return forms;
}

QString ZAXMatPackaging::GetFormLabel(Form form)
{
    switch (form) {
    case Rectangular:
        return tr("Rectangular");
    case Roll:
        return tr("Roll");
    }
    return {};
}

void ZAXMatPackaging::Save(ZAXGeoStream& stream) const
{
    Q_D(const ZAXMatPackaging);
    ZAXFeatObject::Save(stream);
    stream << d->length << d->width << d->form << d->cost << d->comment // version 1
           << d->remoteKey                                              // version 2
           << d->isActive                                               // version 3
           << d->packagingExtensions;                                   // version 4
}

void ZAXMatPackaging::Load(ZAXGeoStream& stream)
{
    Q_D(ZAXMatPackaging);
    ZAXFeatObject::Load(stream);
    const int version = stream.GetVersion(&staticMetaObject);
    stream >> d->length >> d->width >> d->form >> d->cost >> d->comment;
    if (version >= 2)
        stream >> d->remoteKey;
    if (version >= 3)
        stream >> d->isActive;
    if (version >= 4)
        stream >> d->packagingExtensions;
}

bool ZAXMatPackaging::IsChildAllowed(const QMetaObject* childType) const
{
    static const QList<QByteArray> allowed{"ZAXMatPackagingExtension"};
    return IsValidParent(metaObject(), childType, allowed);
}

bool ZAXMatPackaging::IsUserDeletable() const
{
    return ZAXFeatObject::IsUserDeletable() && GetAllDependents().isEmpty();
}

bool ZAXMatPackaging::UpdateResult()
{
    using ZAXMatFeatures::IsSubstantial;
    using ZAXMatFeatures::Require;
    Q_D(const ZAXMatPackaging);
    bool ok = ZAXFeatObject::UpdateResult();
    ok &= Require(this, IsSubstantial(d->length.GetValue()), Property_length,
                  tr("Length must be a positive, non-zero value."));
    ok &= Require(this, IsSubstantial(d->width.GetValue()), Property_width,
                  tr("Width must be a positive, non-zero value."));
    ok &=
        Require(this, IsSubstantial(d->cost.GetValue()), Property_cost, tr("Cost must be a positive, non-zero value."));
    return ok;
}

void ZAXMatPackaging::PostDuplicate(const ZAXFeatObject*, const ZAXFeatObject*)
{
    if (!GetRemoteKey().isEmpty())
        SetRemoteKey(QByteArray(""));
}

void ZAXMatPackaging::EndStateLoad()
{
    Q_D(ZAXMatPackaging);
    ZAXFeatObject::EndStateLoad();
    ZAXMatExtensions::ListMissingChildren(d->packagingExtensions);
}
