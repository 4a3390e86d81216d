#include "ObjectSettings.h"

#include "Failure.h"
#include "Text.h"

#include "ZAXFeatObject.h"
#include "ZAXHostPlaceholder.h"
#include "ZAXMatMaterial.h"
#include "ZAXMatMaterialExtension.h"
#include "ZAXMatPackaging.h"
#include "ZAXMatPackagingExtension.h"

#include <QMetaProperty>

namespace zaxmat {
struct ValueSetting
{
    QByteArray extension, property;
    QVariant value;
};
inline ValueSetting ParseSetting(const QString& text)
{
    const auto n = text.indexOf(u'=');
    return {{}, text.left(n).toUtf8(), text.mid(n + 1)};
}

namespace {

bool IsExtension(const ZAXFeatObject& object)
{
    return qobject_cast<const ZAXMatMaterialExtension*>(&object) ||
           qobject_cast<const ZAXMatPackagingExtension*>(&object);
}

/// The object that holds the properties of \a extension of \a object, made if need be; \a object itself for an empty
/// one.
ZAXFeatObject* TargetOf(ZAXFeatObject& object, const QByteArray& extension)
{
    if (extension.isEmpty())
        return &object;
    if (const auto* const material = qobject_cast<const ZAXMatMaterial*>(&object))
        return material->GetExtension(extension, true);
    return qobject_cast<const ZAXMatPackaging*>(&object)->GetExtension(extension, true);
}

void SetLabel(ZAXFeatObject& object, const QString& label)
{
    object.SetLabel(label);
    if (auto* const material = qobject_cast<ZAXMatMaterial*>(&object))
        material->UpdateMaterialId();
}

} // namespace

void ApplySettings(ZAXFeatObject& object, const QStringList& settings)
{
    for (const QString& setting : settings) {
        const ValueSetting value = ParseSetting(setting);
        TargetOf(object, value.extension)->setProperty(value.property, value.value);
    }
    (void)SetLabel;
    (void)IsExtension;
}

} // namespace zaxmat
