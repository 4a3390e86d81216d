#include "ZAXHostDocumentImager.h"

#include "ZAXFeatContainerPrivate.h"
#include "ZAXFeatFolder.h"
#include "ZAXFeatLoading.h"
#include "ZAXFeatObjectPrivate.h"
#include "ZAXGeoContainerPrivate.h"
#include "ZAXGeoStream.h"
#include "ZAXHostPlaceholder.h"
#include "ZAXHostStateLoader.h"
#include "ZAXSysException.h"

#include <QCoreApplication>

#include <algorithm>
#include <optional>

namespace {

QString Tr(const char* text)
{
    return QCoreApplication::translate("ZAXHostDocument", text);
}

QList<ZAXHostDocumentClass> ChainOf(const QMetaObject* type)
{
    QList<ZAXHostDocumentClass> chain;
    for (; type && type != &QObject::staticMetaObject; type = type->superClass())
        chain.append({type->className(), ZAXGeoStream::GetCurrentVersion(type), -1});
    return chain;
}

class Adder
{
public:
    explicit Adder(ZAXHostDocumentImage& image) : m_image(image) {}

    /// With \a isAll, there are no other features in the document.
    void AddAll(const QList<ZAXFeatObject*>& features, quint64 parent, bool isAll)
    {
        if (isAll)
            m_image.records.reserve(
                ZAXGeoContainerPrivate::Get(*features.constFirst()->GetContainer()).geometries.size());
        Add(features, parent, 1);
        m_image.data = m_payloads;
        for (const auto& [record, start, size] : m_slices)
            m_image.records[record].payload = QByteArray::fromRawData(m_image.data.constData() + start, size);
    }

private:
    /// Where the payload of a record lies among all.
    struct Slice
    {
        qsizetype record;
        qsizetype start;
        qsizetype size;
    };

    void Add(const QList<ZAXFeatObject*>& siblings, quint64 parent, int nesting)
    {
        if (nesting > ZAXHostDocumentCodec::maximumNesting && !siblings.isEmpty())
            throw ZAXSysException(Tr("The objects of the document are nested too deeply to be saved."));
        quint32 place = 0;
        for (const ZAXFeatObject* feature : siblings) {
            ZAXHostDocumentRecord record = RecordOf(feature);
            record.id = feature->GetId();
            record.parent = parent;
            record.place = place++;
            m_image.records.append(std::move(record));
            const auto children = feature->GetChildren();
            if (!children.isEmpty())
                Add(children, feature->GetId(), nesting + 1);
        }
    }

    ZAXHostDocumentRecord RecordOf(const ZAXFeatObject* feature)
    {
        ZAXHostDocumentRecord record;
        if (ZAXFeatObjectPrivate::Get(*feature).isPlaceholder) {
            const auto* const placeholder = static_cast<const ZAXHostPlaceholder*>(feature);
            record.classIndex = m_image.AddClass(placeholder->GetClasses());
            record.references = placeholder->GetReferences();
            record.payload = placeholder->GetPayload();
            return record;
        }
        const auto known = m_classes.constFind(feature->metaObject());
        record.classIndex =
            known != m_classes.constEnd()
                ? known.value()
                : m_classes.insert(feature->metaObject(), m_image.AddClass(ChainOf(feature->metaObject()))).value();
        if (!m_stream || m_stream->GetContainer() != feature->GetContainer())
            m_stream.emplace(feature->GetContainer());
        m_stream->Restart();
        feature->Save(*m_stream);
        record.references = m_stream->GetReferences();
        const QByteArrayView payload = m_stream->ViewPayload();
        m_slices.append({m_image.records.size(), m_payloads.size(), payload.size()});
        m_payloads.append(payload);
        return record;
    }

    ZAXHostDocumentImage& m_image;
    QHash<const QMetaObject*, quint32> m_classes;
    /// One for all, whose buffer has grown to what they take.
    std::optional<ZAXGeoStream> m_stream;
    QByteArray m_payloads;
    QList<Slice> m_slices;
};

/// Makes the objects of an image. Objects that turn out not to take their data are noted in \a refused: the reading
/// starts anew then, with placeholders for them, so that everyone else sees them as missing from the start.
class Populator
{
public:
    Populator(ZAXFeatContainer& container, const ZAXHostDocumentImage& image, const QSet<QByteArray>& retired)
        : m_container(container), m_image(image), m_retired(retired)
    {
    }

    QList<ZAXHostProblem> Run()
    {
        const ZAXFeatLoading loading(m_container);
        while (!TryOnce())
            ZAXFeatContainerPrivate::Get(m_container).DestroyAll();
        return m_problems;
    }

private:
    bool TryOnce()
    {
        m_problems.clear();
        m_live.clear();
        m_isLive.clear();
        m_features.clear();
        m_folders.clear();
        m_isGood = true;
        // What one object removes while others are loaded stays in memory until they are.
        const ZAXFeatStep step(&m_container);
        // No new object gets the id of one that is lost.
        auto& index = ZAXGeoContainerPrivate::Get(m_container);
        index.lastId = std::max(index.lastId, ZAXHostDocumentImager::HighestId(m_image, m_image.lastId));
        index.geometries.reserve(m_image.records.size());
        m_features.reserve(m_image.records.size());
        m_isLive.reserve(m_image.records.size());
        ZAXHostStateLoader loader(&m_container);
        loader.SetUnavailable([this](const ZAXGeoGeometryRef& reference) { return !Live().contains(reference); });
        for (const ZAXHostDocumentRecord& record : m_image.records)
            Make(loader, record);
        if (!m_isGood)
            return false;
        for (qsizetype i = 0; i < m_features.size(); ++i) {
            if (m_isLive.at(i))
                Load(loader, m_features.at(i), m_image.records.at(i));
        }
        if (m_isGood)
            Complete(loader);
        return m_isGood;
    }

    void Make(ZAXHostStateLoader& loader, const ZAXHostDocumentRecord& record)
    {
        const Kind& kind = KindOf(record.classIndex);
        const auto reference = ZAXGeoGeometryRef::FromId(record.id);
        QString why = m_refused.value(record.id);
        if (why.isEmpty())
            why = kind.why;
        ZAXFeatObject* feature = nullptr;
        bool isLive = false;
        if (why.isEmpty()) {
            try {
                feature = loader.Make(kind.type, reference).release();
                isLive = true;
            } catch (const std::exception& exception) {
                Refuse(record.id, QString::fromUtf8(exception.what()));
                feature = new ZAXHostPlaceholder(&m_container, reference);
            }
        } else {
            auto* const placeholder = new ZAXHostPlaceholder(&m_container, reference);
            placeholder->SetObject(kind.chain, record.payload, record.references, why);
            feature = placeholder;
            m_problems.append(
                {ZAXHostProblem::Unavailable, record.id, kind.chain.constFirst().name,
                 Tr("The object %1 of class %2 is not available: %3")
                     .arg(QString::number(record.id), QString::fromUtf8(kind.chain.constFirst().name), why)});
        }
        Attach(feature, record);
        m_features.append(feature);
        m_isLive.append(isLive);
    }

    /// What the objects of one class have in common.
    struct Kind
    {
        QList<ZAXHostDocumentClass> chain;
        QHash<QByteArray, int> versions;
        /// Why there are none of it; empty if there are.
        QString why;
        const QMetaObject* type = nullptr;
    };

    const Kind& KindOf(quint32 classIndex)
    {
        const auto known = m_kinds.constFind(classIndex);
        if (known != m_kinds.constEnd())
            return known.value();
        Kind kind{m_image.GetChain(classIndex), m_image.GetVersions(classIndex), {}, nullptr};
        kind.why = ZAXHostDocumentImager::WhyUnavailable(kind.chain, m_retired);
        kind.type = ZAXGeoContainer::FindType(kind.chain.constFirst().name);
        return m_kinds.insert(classIndex, kind).value();
    }

    /// The objects that were made. Only few documents have references that ask for it.
    const QSet<ZAXGeoGeometryRef>& Live()
    {
        if (m_live.isEmpty()) {
            for (qsizetype i = 0; i < m_isLive.size(); ++i) {
                if (m_isLive.at(i))
                    m_live.insert(ZAXGeoGeometryRef::FromId(m_image.records.at(i).id));
            }
        }
        return m_live;
    }

    void Attach(ZAXFeatObject* feature, const ZAXHostDocumentRecord& record)
    {
        auto& d = ZAXFeatObjectPrivate::Get(*feature);
        d.isAnnounced = true;
        if (record.parent == 0)
            return;
        ZAXGeoGeometry* const parent = m_container.GetGeometryByRef(ZAXGeoGeometryRef::FromId(record.parent));
        d.AttachTo(parent ? static_cast<ZAXFeatObject*>(parent) : FolderInPlaceOf(record.parent), -1);
        // Whoever follows the parent finds the feature there.
        d.toldParent = d.parent;
    }

    /// The folder for the children of an object that is lost. It has an id of its own: what refers to the lost object
    /// must not find a folder.
    ZAXFeatFolder* FolderInPlaceOf(quint64 lost)
    {
        ZAXFeatFolder*& folder = m_folders[lost];
        if (!folder) {
            folder = new ZAXFeatFolder(&m_container, ZAXGeoGeometryRef());
            folder->SetLabel(Tr("Recovered objects"));
            ZAXFeatObjectPrivate::Get(*folder).isAnnounced = true;
        }
        return folder;
    }

    void Load(ZAXHostStateLoader& loader, ZAXFeatObject* feature, const ZAXHostDocumentRecord& record)
    {
        try {
            loader.SetVersions(KindOf(record.classIndex).versions);
            loader.Load(feature, record.payload, record.references);
        } catch (const std::exception& exception) {
            Refuse(record.id, QString::fromUtf8(exception.what()));
        }
        for (const ZAXGeoGeometryRef& reference : record.references) {
            if (reference.IsValid() && !m_container.GetGeometryByRef(reference))
                m_problems.append({ZAXHostProblem::Unresolved, record.id, feature->metaObject()->className(),
                                   Tr("The object %1 refers to the object %2, which does not exist.")
                                       .arg(QString::number(record.id), QString::number(reference.GetId()))});
        }
    }

    void Complete(ZAXHostStateLoader& loader)
    {
        loader.EndLoad([this](ZAXFeatObject* feature, const QString& why) { Refuse(feature->GetId(), why); });
    }

    void Refuse(quint64 id, const QString& why)
    {
        m_refused.insert(id, why);
        m_isGood = false;
    }

    ZAXFeatContainer& m_container;
    const ZAXHostDocumentImage& m_image;
    const QSet<QByteArray>& m_retired;
    QList<ZAXHostProblem> m_problems;
    QHash<quint32, Kind> m_kinds;
    QSet<ZAXGeoGeometryRef> m_live;
    QList<ZAXFeatObject*> m_features;
    /// Which of them were made, as opposed to placeholders.
    QList<bool> m_isLive;
    QHash<quint64, ZAXFeatFolder*> m_folders;
    QHash<quint64, QString> m_refused;
    bool m_isGood = true;
};

} // namespace

void ZAXHostDocumentImager::Add(const QList<ZAXFeatObject*>& features, bool isTop, ZAXHostDocumentImage& image)
{
    const ZAXFeatObject* const parent = features.isEmpty() || isTop ? nullptr : features.constFirst()->GetParent();
    const bool isAll = !features.isEmpty() && !features.constFirst()->GetParent();
    Adder(image).AddAll(features, parent ? parent->GetId() : 0, isAll);
}

quint64 ZAXHostDocumentImager::HighestId(const ZAXHostDocumentImage& image, quint64 highest)
{
    for (const ZAXHostDocumentRecord& record : image.records) {
        highest = std::max(highest, record.id);
        for (const ZAXGeoGeometryRef& reference : record.references)
            highest = std::max(highest, reference.GetId());
    }
    return highest;
}

QString ZAXHostDocumentImager::WhyUnavailable(const QList<ZAXHostDocumentClass>& chain, const QSet<QByteArray>& retired)
{
    const QMetaObject* type = ZAXGeoContainer::FindType(chain.constFirst().name);
    if (!type || retired.contains(chain.constFirst().name))
        return Tr("no loaded module provides the class.");
    for (; type && type != &QObject::staticMetaObject; type = type->superClass()) {
        const auto saved = std::ranges::find(chain, QByteArray(type->className()), &ZAXHostDocumentClass::name);
        const int stored = saved != chain.end() ? saved->version : 1;
        const int current = ZAXGeoStream::GetCurrentVersion(type);
        if (stored > current)
            return Tr("it was saved by a newer program (version %1 of %2, this program knows version %3).")
                .arg(QString::number(stored), QString::fromUtf8(type->className()), QString::number(current));
    }
    return {};
}

QList<ZAXHostProblem> ZAXHostDocumentImager::Populate(ZAXFeatContainer& container, const ZAXHostDocumentImage& image,
                                                      const QSet<QByteArray>& retired)
{
    QList<ZAXHostProblem> problems = Populator(container, image, retired).Run();
    for (const ZAXHostDocumentDamage& damage : image.damages)
        problems.append({ZAXHostProblem::Damaged, damage.id, damage.className, damage.GetMessage()});
    return problems;
}
