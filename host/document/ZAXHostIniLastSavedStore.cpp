#include "ZAXHostIniLastSavedStore.h"

#include <QLoggingCategory>
#include <QMetaEnum>
#include <QSettings>

namespace {

Q_LOGGING_CATEGORY(logLastSaved, "zax.host.lastsaved")

QString Key(const QByteArray& className, const QByteArray& property)
{
    return QString::fromUtf8(className + '/' + property);
}

/// The name of the enumerator that \a value is; invalid when it has none.
QVariant EnumeratorName(const QVariant& value)
{
    const QMetaObject* const scope = value.metaType().metaObject();
    const QByteArray name = QByteArray(value.metaType().name());
    const int index = scope ? scope->indexOfEnumerator(name.mid(name.lastIndexOf(':') + 1).constData()) : -1;
    const char* const key = index >= 0 ? scope->enumerator(index).valueToKey(value.toInt()) : nullptr;
    return key ? QVariant(QLatin1String(key)) : QVariant();
}

/// \a value as the file keeps it: an enumeration by the name of its enumerator, which outlives a renumbering, and
/// what is not of one of Qt's types as text; invalid for what has no text. The settings hold on to it, so it is tied to
/// no module.
QVariant Stored(const QVariant& value)
{
    if (value.metaType().flags() & QMetaType::IsEnumeration) {
        const QVariant name = EnumeratorName(value);
        return name.isValid() ? name : ZAXFeatLastSavedStore::Detached(value);
    }
    if (value.typeId() < QMetaType::User)
        return ZAXFeatLastSavedStore::Detached(value);
    return value.canConvert<QString>() ? QVariant(value.toString()) : QVariant();
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
    const QVariant stored = Stored(value);
    if (value.isValid() && !stored.isValid())
        qCWarning(logLastSaved, "A value of type %s cannot be kept: %s of %s.", value.typeName(), property.constData(),
                  className.constData());
    if (stored.isValid())
        m_settings->setValue(Key(className, property), stored);
    else
        m_settings->remove(Key(className, property));
}
