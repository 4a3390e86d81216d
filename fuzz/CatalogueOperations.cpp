// Catalogues in use: an input is a sequence of operations on the provider of a file and on its cache, and of changes
// that other programs make to the file meanwhile. After each, provider and cache hold what a plain model of them holds.

#include "CatalogueModel.h"
#include "FuzzInput.h"
#include "ZAXMatJsonFileProvider.h"
#include "ZAXMatProviderCache.h"

#include <QDateTime>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>

#include <algorithm>
#include <memory>
#include <optional>

namespace {

QByteArrayList Sorted(QByteArrayList keys)
{
    std::ranges::sort(keys);
    return keys;
}

/// What others do to the file. Its times are told apart from those that the provider gives it, which are of today.
class Outside
{
public:
    Outside() { QFile::remove(Path()); }

    static QString Path() { return FuzzFolder() + QLatin1String("/materials.json"); }

    void Write(const QByteArray& text, int minute)
    {
        QFile file(Path());
        Require(file.open(QIODevice::WriteOnly) && file.write(text) == text.size() && file.flush(),
                "the folder takes the file");
        m_time = QDateTime(QDate(2020, 1, 1), QTime(0, minute), Qt::UTC);
        Require(file.setFileTime(m_time, QFileDevice::FileModificationTime), "the file takes a time");
    }
    void Remove() { QFile::remove(Path()); }

    static std::optional<QByteArray> Read()
    {
        QFile file(Path());
        return file.open(QIODevice::ReadOnly) ? std::optional(file.readAll()) : std::nullopt;
    }

    /// When the file was changed from outside the last time.
    QDateTime GetTime() const { return m_time; }

private:
    QDateTime m_time;
};

/// The provider as it is meant to be.
class ProviderModel
{
public:
    /// Takes the file over if it is not the one that was read last.
    void LoadIfChanged()
    {
        const auto text = Outside::Read();
        const QDateTime time = QFile(Outside::Path()).fileTime(QFileDevice::FileModificationTime);
        if (!text || (!m_mustLoad && time == m_time))
            return;
        tables = CatalogueModel::FromText(*text);
        m_time = time;
        m_mustLoad = false;
    }
    void Committed() { m_mustLoad = true; }

    CatalogueModel tables;

private:
    QDateTime m_time;
    bool m_mustLoad = true;
};

/// A cached record, and what Discard() brings back.
struct CachedModel
{
    ZAXMatDefinition now;
    ZAXMatDefinition saved;
};

class Session
{
public:
    explicit Session(FuzzInput input) : m_input(input) { Restart(); }

    void Run()
    {
        using Operation = void (Session::*)();
        static const QList<Operation> operations{
            &Session::CreateMaterial, &Session::CreatePackaging,
            &Session::UpdateRecord,   &Session::Remove,
            &Session::CommitProvider, &Session::CommitCache,
            &Session::DiscardCache,   &Session::RefreshCache,
            &Session::ReadCache,      &Session::WriteOutside,
            &Session::RemoveOutside,  &Session::Restart,
            &Session::DamageOutside,  &Session::Find,
        };
        for (int steps = 0; steps < 200 && !m_input.IsEmpty(); ++steps) {
            (this->*m_input.OneOf(operations))();
            // Not always: this reads the file if it has changed, which other operations must do as well.
            if (m_input.Below(3) != 0)
                CheckProvider();
        }
        CheckProvider();
    }

private:
    void Restart()
    {
        m_cache.reset();
        m_provider.reset();
        m_provider = std::make_unique<ZAXMatJsonFileProvider>(FuzzFolder());
        m_cache.reset(ZAXMatProviderCache::GetCache("ZAXMatJsonFileProvider"));
        m_model = {};
        m_model.LoadIfChanged();
        ForgetCache();
    }

    bool IsThroughCache() { return m_input.Below(2) == 1; }
    ZAXMatProviderBase& Target(bool isThroughCache)
    {
        return isThroughCache ? static_cast<ZAXMatProviderBase&>(*m_cache) : *m_provider;
    }
    /// A key of one of the records that there are, or of none.
    QByteArray AnyKey()
    {
        QByteArrayList keys = m_model.tables.materials.keys() + m_model.tables.packagings.keys();
        keys.append({"m", "none", QByteArray()});
        return keys.at(m_input.Below(keys.size()));
    }
    QString AnyName() { return QString::fromUtf8(m_input.Bytes(m_input.Below(4))); }
    QVariant AnyValue()
    {
        static const QList<QVariant> values{{},   0.5,   2,      QString(), QLatin1String("S235"),
                                            true, false, -1e300, 1e15,      QString::fromUtf8("ø")};
        return m_input.OneOf(values);
    }

    void CreateMaterial()
    {
        const bool isThroughCache = IsThroughCache();
        const QString name = AnyName();
        const ZAXMatDefinition created = Target(isThroughCache).CreateMaterial(name);
        m_model.LoadIfChanged();
        Require(created.IsValid() && created.GetName() == name && created.GetType() == ZAXMatDefinition::Material,
                "a created material is one");
        Require(!m_model.tables.materials.contains(created.GetKey()), "a created material is new");
        m_model.tables.materials.insert(created.GetKey(), created);
        if (!isThroughCache)
            return;
        m_cachedMaterials.insert(created.GetKey(), {created, created});
        if (!m_cachedKeys.isEmpty())
            m_cachedKeys.append(created.GetKey());
    }

    void CreatePackaging()
    {
        const bool isThroughCache = IsThroughCache();
        const QString name = AnyName();
        const QByteArray material = AnyKey();
        const ZAXMatDefinition created = Target(isThroughCache).CreatePackaging(name, material);
        m_model.LoadIfChanged();
        Require(created.IsValid() && created.GetName() == name && created.GetMaterialKey() == material,
                "a created stock form is one of the material");
        m_model.tables.AddPackaging(created);
        if (!isThroughCache)
            return;
        m_cachedPackagings.insert(created.GetKey(), {created, created});
        if (!m_cachedLinks.contains(material))
            return;
        m_cachedLinks[material].append(created.GetKey());
        m_cachedMaterialOf.insert(created.GetKey(), material);
    }

    void UpdateRecord()
    {
        const bool isThroughCache = IsThroughCache();
        const QByteArray key = AnyKey();
        // The cache keeps a record without a key from the provider.
        if (!isThroughCache || !key.isEmpty())
            m_model.LoadIfChanged();
        ZAXMatDefinition record =
            m_input.Below(2) == 0 ? m_model.tables.materials.value(key) : m_model.tables.packagings.value(key);
        record.SetKey(key);
        record.SetName(AnyName());
        record.SetValue("thickness", AnyValue());
        record.SetValue("own", AnyValue(), "Extension");
        record.SetMaterialKey("moved");
        const bool isTaken = Target(isThroughCache).Update(record);

        auto& records =
            record.GetType() == ZAXMatDefinition::Material ? m_model.tables.materials : m_model.tables.packagings;
        const auto stored = records.find(key);
        const bool isKnown = record.IsValid() && stored != records.end();
        Require(isTaken == (isThroughCache ? record.IsValid() : isKnown), "what is unknown is not updated");
        if (!isKnown)
            return;
        stored->CopyValues(record);
        if (!isThroughCache)
            return;
        auto& cached = record.GetType() == ZAXMatDefinition::Material ? m_cachedMaterials : m_cachedPackagings;
        cached[key].now.CopyValues(record);
    }

    void Remove()
    {
        const bool isThroughCache = IsThroughCache();
        const bool isMaterial = m_input.Below(2) == 0;
        const QByteArray key = AnyKey();
        ZAXMatProviderBase& target = Target(isThroughCache);
        const bool isRemoved = isMaterial ? target.RemoveMaterial(key) : target.RemovePackaging(key);
        m_model.LoadIfChanged();
        Require(isRemoved == (isMaterial ? m_model.tables.RemoveMaterial(key) : m_model.tables.RemovePackaging(key)),
                "what is there is removed");
        if (!isThroughCache || !isRemoved)
            return;
        if (isMaterial)
            ForgetMaterial(key);
        else
            ForgetPackaging(key);
    }

    void ForgetMaterial(const QByteArray& key)
    {
        m_cachedMaterials.remove(key);
        m_cachedKeys.removeAll(key);
        const QByteArrayList linked = m_cachedLinks.take(key);
        for (const QByteArray& packaging : linked) {
            m_cachedPackagings.remove(packaging);
            m_cachedMaterialOf.remove(packaging);
        }
    }

    void ForgetPackaging(const QByteArray& key)
    {
        const QByteArray material = m_cachedMaterialOf.value(key);
        if (m_cachedLinks.contains(material))
            m_cachedLinks[material].removeAll(key);
        m_cachedPackagings.remove(key);
        m_cachedMaterialOf.remove(key);
    }

    void CommitProvider()
    {
        m_provider->Commit();
        const auto written = Outside::Read();
        Require(written == m_model.tables.ToText(), "the file holds the catalogue");
        m_model.Committed();
    }

    void CommitCache()
    {
        const bool isCommitted = m_cache->Commit();
        // Without anything changed the provider is asked for nothing else.
        const auto isToUpdate = [](const CachedModel& cached) { return cached.now.IsValid() && IsChanged(cached); };
        if (std::ranges::any_of(m_cachedMaterials, isToUpdate) || std::ranges::any_of(m_cachedPackagings, isToUpdate))
            m_model.LoadIfChanged();
        // Whichever of several changed records is refused first, nothing is written then.
        bool isRefused = false;
        for (const bool isMaterial : {true, false}) {
            auto& cached = isMaterial ? m_cachedMaterials : m_cachedPackagings;
            auto& records = isMaterial ? m_model.tables.materials : m_model.tables.packagings;
            for (auto entry = cached.begin(); entry != cached.end(); ++entry) {
                if (isToUpdate(*entry) && !records.contains(entry.key()))
                    isRefused = true;
            }
        }
        Require(isCommitted == !isRefused, "what the provider refuses is not committed");
        // How far it came before that is up to the order of a hash: the next steps start anew.
        if (isRefused) {
            Restart();
            return;
        }
        TakeCommitted(m_cachedMaterials, m_model.tables.materials);
        TakeCommitted(m_cachedPackagings, m_model.tables.packagings);
        Require(Outside::Read() == m_model.tables.ToText(), "the file holds the catalogue");
        m_model.Committed();
    }

    static bool IsChanged(const CachedModel& cached)
    {
        ZAXMatDefinition record = cached.saved;
        record.Commit();
        record.CopyValues(cached.now);
        return record.IsChanged();
    }

    static void TakeCommitted(QMap<QByteArray, CachedModel>& cached, QMap<QByteArray, ZAXMatDefinition>& records)
    {
        for (auto entry = cached.begin(); entry != cached.end(); ++entry) {
            if (!entry->now.IsValid() || !IsChanged(*entry))
                continue;
            records[entry.key()].CopyValues(entry->now);
            entry->saved.CopyValues(entry->now);
        }
    }

    void DiscardCache()
    {
        m_cache->Discard();
        for (auto* const cached : {&m_cachedMaterials, &m_cachedPackagings}) {
            for (CachedModel& entry : *cached)
                entry.now.CopyValues(entry.saved);
        }
    }

    void RefreshCache()
    {
        m_cache->Refresh();
        ForgetCache();
    }

    void ForgetCache()
    {
        m_cachedMaterials.clear();
        m_cachedPackagings.clear();
        m_cachedKeys.clear();
        m_cachedLinks.clear();
        m_cachedMaterialOf.clear();
    }

    /// Asks the cache for everything that the provider knows, which it keeps from then on.
    void ReadCache()
    {
        const QByteArrayList keys = m_cache->GetMaterialKeys();
        m_model.LoadIfChanged();
        if (m_cachedKeys.isEmpty()) {
            Require(Sorted(keys) == m_model.tables.materials.keys(), "the cache asks for the keys");
            m_cachedKeys = keys;
        }
        Require(keys == m_cachedKeys, "the cache keeps the keys");
        const QByteArrayList known = m_model.tables.materials.keys() + keys + QByteArrayList{"none"};
        for (const QByteArray& key : known) {
            CheckCached(m_cache->GetMaterial(key), key, m_cachedMaterials, m_model.tables.materials);
            CheckCachedLinks(key);
        }
        const QByteArrayList packagings = m_model.tables.packagings.keys() + m_cachedMaterialOf.keys();
        for (const QByteArray& key : packagings)
            CheckCached(m_cache->GetPackaging(key), key, m_cachedPackagings, m_model.tables.packagings);
    }

    static void CheckCached(const ZAXMatDefinition& got, const QByteArray& key, QMap<QByteArray, CachedModel>& cached,
                            const QMap<QByteArray, ZAXMatDefinition>& records)
    {
        if (cached.value(key).now.IsValid()) {
            Require(Describe(got) == Describe(cached.value(key).now), "the cache keeps a record");
            Require(got.IsChanged() == IsChanged(cached.value(key)), "the cache knows what is changed");
            return;
        }
        Require(Describe(got) == Describe(records.value(key)), "the cache asks for a record");
        Require(!got.IsValid() || !got.IsChanged(), "what was asked for is not changed");
        if (got.IsValid())
            cached.insert(key, {got, got});
    }

    void CheckCachedLinks(const QByteArray& material)
    {
        const QByteArrayList got = m_cache->GetPackagingKeys(material);
        if (m_cachedLinks.value(material).isEmpty()) {
            Require(got == m_model.tables.links.value(material), "the cache asks for the stock forms");
            m_cachedLinks.insert(material, got);
            for (const QByteArray& key : got)
                m_cachedMaterialOf.insert(key, material);
        }
        Require(got == m_cachedLinks.value(material), "the cache keeps the stock forms");
    }

    /// Looks for materials by two of the values that UpdateRecord() gives them.
    void Find()
    {
        const QVariant thickness = AnyValue();
        const QVariant own = AnyValue();
        const QByteArrayList found = m_provider->FindMaterials({{QByteArray(), {QByteArray("thickness"), thickness}},
                                                                {QByteArray("Extension"), {QByteArray("own"), own}}});
        m_model.LoadIfChanged();
        const auto isSame = [](const QVariant& a, const QVariant& b) {
            const bool isText = a.typeId() == QMetaType::QString;
            return isText == (b.typeId() == QMetaType::QString) && a == b;
        };
        QByteArrayList expected;
        for (auto material = m_model.tables.materials.cbegin(); material != m_model.tables.materials.cend();
             ++material) {
            if (isSame(material->GetValue("thickness"), thickness) &&
                isSame(material->GetValue("own", "Extension"), own))
                expected.append(material.key());
        }
        Require(Sorted(found) == expected, "the materials of these values are found");
    }

    /// Another program writes a catalogue, at a time that may be that of the present file, or an earlier one.
    void WriteOutside()
    {
        const QByteArray record =
            "{\"key\":\"m\",\"name\":\"" + QByteArray::number(m_input.Below(4)) + "\",\"type\":0}";
        const QByteArray other =
            "{\"key\":\"p\",\"materialKey\":\"m\",\"type\":1,\"properties\":{\"\":{\"cost\":2.0}}}";
        const int records = m_input.Below(3);
        m_outside.Write(records == 0   ? QByteArray("{}")
                        : records == 1 ? "{\"x\":" + record + '}'
                                       : "{\"x\":" + record + ",\"y\":" + other + '}',
                        m_input.Below(4));
    }
    void RemoveOutside() { m_outside.Remove(); }

    /// Another program leaves a part of the file.
    void DamageOutside()
    {
        const QByteArray text = Outside::Read().value_or(QByteArray());
        m_outside.Write(text.first(text.size() * m_input.Below(16) / 16), m_input.Below(4));
    }

    void CheckProvider()
    {
        const QByteArrayList keys = m_provider->GetMaterialKeys();
        m_model.LoadIfChanged();
        const CatalogueModel& tables = m_model.tables;
        Require(Sorted(keys) == tables.materials.keys(), "the provider has the materials");
        for (auto material = tables.materials.begin(); material != tables.materials.end(); ++material)
            Require(Describe(m_provider->GetMaterial(material.key())) == Describe(*material),
                    "a material is as it was");
        for (auto packaging = tables.packagings.begin(); packaging != tables.packagings.end(); ++packaging)
            Require(Describe(m_provider->GetPackaging(packaging.key())) == Describe(*packaging),
                    "a stock form is as it was");
        for (auto linked = tables.links.begin(); linked != tables.links.end(); ++linked)
            Require(m_provider->GetPackagingKeys(linked.key()) == *linked, "a material has its stock forms");
        Require(!m_provider->GetMaterial("none").IsValid() && m_provider->GetPackagingKeys("other").isEmpty(),
                "there is nothing under an unknown key");
    }

    FuzzInput m_input;
    Outside m_outside;
    std::unique_ptr<ZAXMatJsonFileProvider> m_provider;
    std::unique_ptr<ZAXMatProviderCache> m_cache;
    ProviderModel m_model;

    // The cache as it is meant to be.
    QMap<QByteArray, CachedModel> m_cachedMaterials;
    QMap<QByteArray, CachedModel> m_cachedPackagings;
    QByteArrayList m_cachedKeys;
    QMap<QByteArray, QByteArrayList> m_cachedLinks;
    QMap<QByteArray, QByteArray> m_cachedMaterialOf;
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    Session(FuzzInput(data, size)).Run();
    return 0;
}
