#include "ZAXHostIniLastSavedStore.h"

#include <QMetaEnum>
#include <QSettings>

namespace {

QString Key(const QByteArray& className, const QByteArray& property)
{
    return QString::fromUtf8(className + '/' + property);
}

/// \a value as the file keeps it: an enumeration by the name of its enumerator, which outlives a renumbering, and
/// what is not of one of Qt's types as text. The settings hold on to it, so it is tied to no module.
QVariant Stored(const QVariant& value)
{
    const QMetaType type = value.metaType();
    if (!(type.flags() & QMetaType::IsEnumeration))
        return type.id() < QMetaType::User ? ZAXFeatLastSavedStore::Detached(value) : QVariant(value.toString());
    const QMetaObject* const scope = type.metaObject();
    const QByteArray name = QByteArray(type.name());
    const int index = scope ? scope->indexOfEnumerator(name.mid(name.lastIndexOf(':') + 1).constData()) : -1;
    const char* const key = index >= 0 ? scope->enumerator(index).valueToKey(value.toInt()) : nullptr;
    return key ? QVariant(QLatin1String(key)) : QVariant(value.toInt());
}

} // namespace

ZAXHostIniLastSavedStore::ZAXHostIniLastSavedStore(const QString& path)
    : m_settings(std::make_unique<QSettings>(path, QSettings::IniFormat))
{
}

ZAXHostIniLastSavedStore::~ZAXHostIniLastSavedStore() = default;

QVariant ZAXHostIniLastSavedStore::GetValue(const QByteArray& className, const QByteArray& property) const
{
    return m_settings->value(Key(className, property));
}

void ZAXHostIniLastSavedStore::SetValue(const QByteArray& className, const QByteArray& property, const QVariant& value)
{
    if (value.isValid())
        m_settings->setValue(Key(className, property), Stored(value));
    else
        m_settings->remove(Key(className, property));
}
