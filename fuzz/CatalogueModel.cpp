#include "CatalogueModel.h"

#include <QJsonDocument>

#include <algorithm>
#include <bit>

QByteArray Describe(const QVariant& value)
{
    const QByteArray type(value.metaType().name());
    if (value.typeId() == QMetaType::Double)
        return type + ' ' + QByteArray::number(std::bit_cast<quint64>(value.toDouble()), 16);
    if (value.typeId() == QMetaType::QString) {
        const QString text = value.toString();
        return type + (text.isNull() ? " null " : " ") +
               QByteArray(reinterpret_cast<const char*>(text.utf16()), text.size() * 2).toHex();
    }
    return type + ' ' + QJsonDocument(QJsonObject{{QString(), QJsonValue::fromVariant(value)}}).toJson();
}

QByteArrayList Describe(const ZAXMatDefinition& record)
{
    QByteArrayList lines{record.GetKey(), record.GetMaterialKey(), Describe(QVariant(record.GetName())),
                         QByteArray::number(record.GetType())};
    QByteArrayList extensions = record.GetDefinedExtensions();
    std::ranges::sort(extensions);
    for (const QByteArray& extension : std::as_const(extensions)) {
        lines.append("extension " + extension);
        QByteArrayList properties = record.GetDefinedProperties(extension);
        std::ranges::sort(properties);
        for (const QByteArray& property : std::as_const(properties))
            lines.append(property + ' ' + Describe(record.GetValue(property, extension)));
    }
    return lines;
}

QList<ZAXMatDefinition> CatalogueModel::ReadByQt(const QByteArray& text)
{
    QList<ZAXMatDefinition> records;
    const QJsonObject root = QJsonDocument::fromJson(text).object();
    for (auto member = root.begin(); member != root.end(); ++member)
        records.emplace_back().FromJson(member.value());
    return records;
}

CatalogueModel CatalogueModel::FromText(const QByteArray& text)
{
    CatalogueModel model;
    const QList<ZAXMatDefinition> records = ReadByQt(text);
    for (const ZAXMatDefinition& record : records) {
        if (record.IsValid() && record.GetType() == ZAXMatDefinition::Material)
            model.materials.insert(record.GetKey(), record);
        if (record.IsValid() && record.GetType() == ZAXMatDefinition::Packaging)
            model.AddPackaging(record);
    }
    return model;
}

void CatalogueModel::AddPackaging(const ZAXMatDefinition& packaging)
{
    packagings.insert(packaging.GetKey(), packaging);
    links[packaging.GetMaterialKey()].prepend(packaging.GetKey());
}

bool CatalogueModel::RemovePackaging(const QByteArray& key)
{
    const auto packaging = packagings.constFind(key);
    if (packaging == packagings.constEnd())
        return false;
    links[packaging->GetMaterialKey()].removeAll(key);
    packagings.erase(packaging);
    return true;
}

bool CatalogueModel::RemoveMaterial(const QByteArray& key)
{
    const QByteArrayList linked = links.value(key);
    for (const QByteArray& packaging : linked) {
        if (!RemovePackaging(packaging))
            return false;
    }
    return materials.remove(key) > 0;
}

QByteArray CatalogueModel::ToText() const
{
    QJsonObject root;
    for (const auto& records : {materials, packagings}) {
        for (auto record = records.begin(); record != records.end(); ++record)
            root.insert(QString::fromUtf8(record.key()), record->ToJson());
    }
    return QJsonDocument(root).toJson(QJsonDocument::Indented);
}
