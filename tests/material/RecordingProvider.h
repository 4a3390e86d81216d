#ifndef RECORDINGPROVIDER_H
#define RECORDINGPROVIDER_H

#include "ZAXMatProvider.h"

#include <QSet>
#include <QStringList>

#include <functional>
#include <utility>

/// A provider that holds what a test puts into it and notes every call, as "Name(arguments)".
class RecordingProvider : public ZAXMatProvider
{
public:
    explicit RecordingProvider(const QByteArray& id) : ZAXMatProvider(id), reportedId(id) {}

    bool IsReadOnly() const override { return Note("IsReadOnly"), isReadOnly; }
    State GetState() const override { return Note("GetState"), ZAXMatProvider::GetState(); }
    void SetState(State state) override { Note("SetState"), ZAXMatProvider::SetState(state); }
    QList<QByteArray> GetSupportedMaterialExtensions() const override
    {
        return Note("GetSupportedMaterialExtensions"), materialSchema.names;
    }
    bool HasPackaging() const override { return Note("HasPackaging"), hasPackaging; }
    QList<QByteArray> GetSupportedPackagingExtensions() const override
    {
        return Note("GetSupportedPackagingExtensions"), packagingSchema.names;
    }
    QList<QByteArray> GetSupportedMaterialProperties(const QByteArray& extension) const override
    {
        return Note("GetSupportedMaterialProperties", extension), materialSchema.properties.value(extension);
    }
    QList<QByteArray> GetSupportedPackagingProperties(const QByteArray& extension) const override
    {
        return Note("GetSupportedPackagingProperties", extension), packagingSchema.properties.value(extension);
    }

    QList<QByteArray> GetMaterialKeys() const override { return Note("GetMaterialKeys"), materialKeys; }
    ZAXMatDefinition GetMaterial(const QByteArray& key) const override
    {
        return Note("GetMaterial", key), materials.value(key);
    }
    ZAXMatDefinition CreateMaterial(const QString& name) override
    {
        return Note("CreateMaterial", name.toUtf8()), created;
    }
    bool RemoveMaterial(const QByteArray& key) override { return Note("RemoveMaterial", key), !refused.contains(key); }

    QList<QByteArray> GetPackagingKeys(const QByteArray& materialKey) const override
    {
        return Note("GetPackagingKeys", materialKey), packagingKeys.value(materialKey);
    }
    ZAXMatDefinition GetPackaging(const QByteArray& key) const override
    {
        return Note("GetPackaging", key), packagings.value(key);
    }
    ZAXMatDefinition CreatePackaging(const QString& name, const QByteArray& materialKey) override
    {
        return Note("CreatePackaging", name.toUtf8() + ',' + materialKey), created;
    }
    bool RemovePackaging(const QByteArray& key) override
    {
        return Note("RemovePackaging", key), !refused.contains(key);
    }

    bool Update(const ZAXMatDefinition& definition) override
    {
        Note("Update", definition.GetKey());
        updates.append(definition);
        whenUpdated();
        return !refused.contains(definition.GetKey());
    }

    QString GetProviderLabel() const override { return Note("GetProviderLabel"), QLatin1String("Recorder"); }
    QByteArray GetProviderId() const override { return Note("GetProviderId"), reportedId; }
    void Commit() override { Note("Commit"); }

    using ZAXMatProvider::CreateDefinition;

    /// The calls noted since the last time.
    QStringList TakeCalls() const { return std::exchange(m_calls, {}); }

    /// A valid record that is not committed, kept under its key.
    static ZAXMatDefinition Record(const QByteArray& key, ZAXMatDefinition::Type type, const QVariant& value)
    {
        ZAXMatDefinition record;
        record.SetKey(key);
        record.SetType(type);
        record.SetName(QString::fromUtf8("Record " + key));
        record.SetValue("value", value);
        return record;
    }
    void AddMaterial(const QByteArray& key, const QVariant& value = {})
    {
        materialKeys.append(key);
        materials.insert(key, Record(key, ZAXMatDefinition::Material, value));
    }
    void AddPackaging(const QByteArray& materialKey, const QByteArray& key, const QVariant& value = {})
    {
        packagingKeys[materialKey].append(key);
        packagings.insert(key, Record(key, ZAXMatDefinition::Packaging, value));
    }

    struct Schema
    {
        QList<QByteArray> names;
        QHash<QByteArray, QList<QByteArray>> properties;
    };

    QByteArray reportedId;
    bool isReadOnly = false;
    bool hasPackaging = true;
    Schema materialSchema;
    Schema packagingSchema;
    QList<QByteArray> materialKeys;
    QHash<QByteArray, ZAXMatDefinition> materials;
    QHash<QByteArray, QList<QByteArray>> packagingKeys;
    QHash<QByteArray, ZAXMatDefinition> packagings;
    /// What the next Create...() gives.
    ZAXMatDefinition created;
    /// Keys that Update() and Remove...() refuse.
    QSet<QByteArray> refused;
    QList<ZAXMatDefinition> updates;
    /// What else Update() does.
    std::function<void()> whenUpdated = [] {};

private:
    void Note(const char* name, const QByteArray& arguments = {}) const
    {
        m_calls.append(QLatin1String(name) + u'(' + QString::fromUtf8(arguments) + u')');
    }

    mutable QStringList m_calls;
};

#endif
