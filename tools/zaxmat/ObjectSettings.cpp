#include "ObjectSettings.h"

#include "DocumentObjects.h"
#include "Failure.h"
#include "Properties.h"
#include "Schema.h"
#include "Text.h"
#include "Values.h"

#include "ZAXHostPlaceholder.h"
#include "ZAXMatMaterial.h"
#include "ZAXMatMaterialExtension.h"
#include "ZAXMatPackaging.h"
#include "ZAXMatPackagingExtension.h"
#include "ZAXSysException.h"

#include <algorithm>

namespace zaxmat {

namespace {

/// What a setting is about: a property of a material or a stock form, or of an extension of it.
struct Target
{
    ZAXFeatObject* owner = nullptr;
    PropertyName name;

    ZAXMatDefinition::Type GetType() const
    {
        return qobject_cast<const ZAXMatMaterial*>(owner) ? ZAXMatDefinition::Material : ZAXMatDefinition::Packaging;
    }
};

/// \throws Failure (WrongUsage) for an object that has no properties.
Target TargetOf(ZAXFeatObject& object, const QString& name)
{
    if (const auto* const placeholder = qobject_cast<const ZAXHostPlaceholder*>(&object)) {
        throw Failure(ExitCode::WrongUsage, Text::tr("%1 is not available and cannot be changed: %2")
                                                .arg(Quoted(ObjectPath(object)), placeholder->GetReason()));
    }
    if (qobject_cast<const ZAXMatMaterialExtension*>(&object) || qobject_cast<const ZAXMatPackagingExtension*>(&object))
        return {object.GetParent(), {object.metaObject()->className(), name.toLatin1()}};
    if (!qobject_cast<const ZAXMatMaterial*>(&object) && !qobject_cast<const ZAXMatPackaging*>(&object)) {
        throw Failure(ExitCode::WrongUsage,
                      Text::tr("%1 has no property %2, only a label.").arg(Quoted(ObjectPath(object)), Quoted(name)));
    }
    return {&object, ParsePropertyName(name)};
}

/// The object that holds the properties which \a target is about, made if need be.
ZAXFeatObject& HolderOf(const Target& target)
{
    if (target.name.extension.isEmpty())
        return *target.owner;
    if (const auto* const material = qobject_cast<const ZAXMatMaterial*>(target.owner))
        return *material->GetExtension(target.name.extension, true);
    return *qobject_cast<const ZAXMatPackaging*>(target.owner)->GetExtension(target.name.extension, true);
}

/// The property that \a target is about; those that link an object of a document to the catalogue are among them.
QMetaProperty PropertyOf(const Target& target)
{
    const QMetaProperty property = FindProperty(ClassOf(target.GetType(), target.name.extension), target.name.property);
    return property.isWritable() ? property : RequireProperty(target.GetType(), target.name);
}

/// \throws Failure (InvalidValues) when \a text is no value of \a property.
QVariant ValueOf(const QMetaProperty& property, const PropertyName& name, const QString& text)
{
    if (property.typeId() == QMetaType::QByteArray)
        return text.toLatin1();
    if (property.typeId() == QMetaType::QString)
        return text;
    const QVariant value = ParseValue(property, name, text);
    if (IsMissing(value)) {
        throw Failure(ExitCode::InvalidValues,
                      Text::tr("%1 needs a value: an object of a document always has one.").arg(NameText(name)));
    }
    return value;
}

void SetLabel(ZAXFeatObject& object, const QString& label)
{
    // An empty label that is not null would be saved, and come back as null.
    object.SetLabel(label.isEmpty() ? QString() : label);
    if (auto* const material = qobject_cast<ZAXMatMaterial*>(&object))
        material->UpdateMaterialId();
}

void SetValue(ZAXFeatObject& object, const QString& name, const QString& text)
{
    const Target target = TargetOf(object, name);
    const QMetaProperty property = PropertyOf(target);
    const QVariant value = ValueOf(property, target.name, text);
    property.write(&HolderOf(target), value);
    auto* const material = qobject_cast<ZAXMatMaterial*>(&object);
    if (material && target.name.property == ZAXMatMaterial::Property_materialId)
        material->SetMaterialIdCustomized(true);
}

} // namespace

void SetObjectValues(ZAXFeatObject& object, const QStringList& settings)
{
    QStringList names;
    for (const QString& setting : settings) {
        const qsizetype sign = setting.indexOf(u'=');
        if (sign <= 0)
            throw Failure(ExitCode::WrongUsage, Text::tr("%1 is no property=value.").arg(Quoted(setting)));
        const QString name = setting.first(sign);
        if (names.contains(name))
            throw Failure(ExitCode::WrongUsage, Text::tr("%1 is given twice.").arg(Quoted(name)));
        names.append(name);
        const QString text = setting.sliced(sign + 1);
        if (name == QLatin1String("label"))
            SetLabel(object, text);
        else
            SetValue(object, name, text);
    }
}

} // namespace zaxmat
