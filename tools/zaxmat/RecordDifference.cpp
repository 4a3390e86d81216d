#include "RecordDifference.h"

#include "Properties.h"

#include <QJsonValue>

#include <algorithm>
#include <set>
#include <utility>

namespace zaxmat {

namespace {

void AddValues(const ZAXMatDefinition& record, std::set<std::pair<QByteArray, QByteArray>>& fields)
{
    const QList<QByteArray> extensions = record.GetDefinedExtensions();
    for (const QByteArray& extension : extensions) {
        const QList<QByteArray> properties = record.GetDefinedProperties(extension);
        for (const QByteArray& property : properties)
            fields.insert({extension, property});
    }
}

QVariant NameOf(const ZAXMatDefinition& record)
{
    return record.IsValid() ? record.GetName() : QVariant();
}

QVariant MaterialKeyOf(const ZAXMatDefinition& record)
{
    return record.GetMaterialKey().isEmpty() ? QVariant() : QString::fromLatin1(record.GetMaterialKey());
}

QVariant TypeOf(const ZAXMatDefinition& record)
{
    return record.IsValid() ? static_cast<int>(record.GetType()) : QVariant();
}

/// Whether \a record holds all values that \a other does.
bool HasValuesOf(const ZAXMatDefinition& record, const ZAXMatDefinition& other)
{
    const QList<QByteArray> extensions = other.GetDefinedExtensions();
    return std::ranges::all_of(extensions, [&](const QByteArray& extension) {
        const QList<QByteArray> properties = other.GetDefinedProperties(extension);
        return std::ranges::all_of(properties, [&](const QByteArray& property) {
            return zaxmat::IsSameValue(record.GetValue(property, extension), other.GetValue(property, extension));
        });
    });
}

} // namespace

bool IsSameValue(const QVariant& a, const QVariant& b)
{
    if (IsMissing(a) || IsMissing(b))
        return IsMissing(a) && IsMissing(b);
    return QJsonValue::fromVariant(a) == QJsonValue::fromVariant(b);
}

QList<FieldDifference> DifferencesOf(const ZAXMatDefinition& before, const ZAXMatDefinition& after)
{
    QList<FieldDifference> differences;
    const auto add = [&](const QString& field, const QVariant& a, const QVariant& b) {
        if (!IsSameValue(a, b))
            differences.append({field, {}, {}, a, b});
    };
    add(QLatin1String("name"), NameOf(before), NameOf(after));
    add(QLatin1String("materialKey"), MaterialKeyOf(before), MaterialKeyOf(after));
    add(QLatin1String("type"), TypeOf(before), TypeOf(after));
    std::set<std::pair<QByteArray, QByteArray>> fields;
    AddValues(before, fields);
    AddValues(after, fields);
    for (const auto& [extension, property] : fields) {
        const QVariant a = before.GetValue(property, extension);
        const QVariant b = after.GetValue(property, extension);
        if (!IsSameValue(a, b))
            differences.append({FieldName(extension, property), extension, property, a, b});
    }
    return differences;
}

bool IsSameRecord(const ZAXMatDefinition& a, const ZAXMatDefinition& b)
{
    return IsSameValue(NameOf(a), NameOf(b)) && IsSameValue(MaterialKeyOf(a), MaterialKeyOf(b)) &&
           IsSameValue(TypeOf(a), TypeOf(b)) && HasValuesOf(a, b) && HasValuesOf(b, a);
}

QString FieldName(const QByteArray& extension, const QByteArray& property)
{
    return extension.isEmpty() ? QString::fromLatin1(property)
                               : QString::fromLatin1(extension) + u'.' + QString::fromLatin1(property);
}

} // namespace zaxmat
