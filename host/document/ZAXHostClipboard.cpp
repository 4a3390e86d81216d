#include "ZAXHostClipboard.h"

#include "ZAXFeatContainerPrivate.h"
#include "ZAXFeatObject.h"
#include "ZAXFeatObjectPrivate.h"
#include "ZAXHostDocumentImager.h"
#include "ZAXHostPlaceholder.h"
#include "ZAXHostStateLoader.h"
#include "ZAXSysException.h"

#include <QCoreApplication>
#include <QHash>
#include <QLoggingCategory>
#include <QPointer>
#include <QScopeGuard>

#include <algorithm>
#include <iterator>
#include <memory>
#include <vector>

namespace {

Q_LOGGING_CATEGORY(logClipboard, "zax.host.clipboard")

QString Tr(const char* text)
{
    return QCoreApplication::translate("ZAXHostClipboard", text);
}

bool IsBelowAnyOf(const ZAXFeatObject* feature, const QList<ZAXFeatObject*>& features)
{
    for (const ZAXFeatObject* above = feature->GetParent(); above; above = above->GetParent()) {
        if (features.contains(above))
            return true;
    }
    return false;
}

/// Makes the objects of an image under a feature, with new ids.
class Paster
{
public:
    Paster(const ZAXHostDocumentImage& image, ZAXFeatObject* parent)
        : m_image(image), m_parent(parent), m_loader(ZAXFeatObjectPrivate::Get(*parent).container)
    {
    }

    ~Paster()
    {
        // What features outside made of the objects must not outlive them.
        for (const auto& top : m_tops) {
            try {
                ZAXFeatObjectPrivate::Get(*top).ReleasePointers();
            } catch (const std::exception& exception) {
                qCWarning(logClipboard, "A reference to a discarded object was not released: %s", exception.what());
            }
        }
    }
    Paster(const Paster&) = delete;
    Paster& operator=(const Paster&) = delete;

    void MakeAll()
    {
        for (const ZAXHostDocumentRecord& record : m_image.records)
            Make(record);
        m_loader.SetReferenceMap([this](const ZAXGeoGeometryRef& reference) { return m_references.value(reference); });
        for (qsizetype i = 0; i < m_features.size(); ++i)
            Load(m_features.at(i), m_image.records.at(i));
        m_loader.EndLoad();
    }

    /// The features that were made, which belong to the document from now on.
    QList<QPointer<ZAXFeatObject>> Release()
    {
        QList<QPointer<ZAXFeatObject>> tops;
        for (auto& top : m_tops)
            tops.append(top.release());
        m_tops.clear();
        return tops;
    }

    const QList<ZAXFeatObject*>& GetFeatures() const { return m_features; }

    QList<ZAXHostProblem> problems;

private:
    void Make(const ZAXHostDocumentRecord& record)
    {
        const auto chain = m_image.GetChain(record.classIndex);
        const QString why = ZAXHostDocumentImager::WhyUnavailable(chain, {});
        const QMetaObject* const type =
            why.isEmpty() ? ZAXGeoContainer::FindType(chain.constFirst().name) : &ZAXHostPlaceholder::staticMetaObject;
        auto made = m_loader.Make(type, {});
        ZAXFeatObject* const feature = made.get();
        if (!why.isEmpty()) {
            problems.append({ZAXHostProblem::Unavailable, feature->GetId(), chain.constFirst().name,
                             Tr("The object of class %1 is not available: %2")
                                 .arg(QString::fromUtf8(chain.constFirst().name), why)});
        } else if (record.parent == 0 && !m_parent->IsChildAllowed(type)) {
            throw ZAXSysException(Tr("%1 does not allow an object of class %2.")
                                      .arg(m_parent->GetLabel(), QString::fromUtf8(chain.constFirst().name)));
        }
        auto& d = ZAXFeatObjectPrivate::Get(*feature);
        if (record.parent == 0) {
            d.AttachTo(m_parent, -1);
            m_tops.push_back(std::move(made));
        } else {
            d.AttachTo(m_byId.value(record.parent), -1);
            static_cast<void>(made.release());
        }
        m_byId.insert(record.id, feature);
        m_references.insert(ZAXGeoGeometryRef::FromId(record.id), ZAXGeoGeometryRef(feature));
        m_features.append(feature);
    }

    void Load(ZAXFeatObject* feature, const ZAXHostDocumentRecord& record)
    {
        const auto chain = m_image.GetChain(record.classIndex);
        if (std::ranges::any_of(record.references,
                                [this](const auto& to) { return to.IsValid() && !m_references.contains(to); }))
            problems.append({ZAXHostProblem::Unresolved, feature->GetId(), chain.constFirst().name,
                             Tr("An object of class %1 referred to something that was not copied.")
                                 .arg(QString::fromUtf8(chain.constFirst().name))});
        if (auto* const placeholder = qobject_cast<ZAXHostPlaceholder*>(feature)) {
            QList<ZAXGeoGeometryRef> references;
            for (const ZAXGeoGeometryRef& reference : record.references)
                references.append(m_references.value(reference));
            placeholder->SetObject(chain, record.payload, references, ZAXHostDocumentImager::WhyUnavailable(chain, {}));
            return;
        }
        m_loader.SetVersions(m_image.GetVersions(record.classIndex));
        m_loader.Load(feature, record.payload, record.references);
    }

    const ZAXHostDocumentImage& m_image;
    ZAXFeatObject* m_parent;
    ZAXHostStateLoader m_loader;
    /// Owned until everything went well; all others are below them.
    std::vector<std::unique_ptr<ZAXFeatObject>> m_tops;
    QList<ZAXFeatObject*> m_features;
    QHash<quint64, ZAXFeatObject*> m_byId;
    QHash<ZAXGeoGeometryRef, ZAXGeoGeometryRef> m_references;
};

} // namespace

QByteArray ZAXHostClipboard::Copy(const QList<ZAXFeatObject*>& features)
{
    ZAXHostDocumentImage image;
    QList<ZAXFeatObject*> tops;
    std::ranges::copy_if(features, std::back_inserter(tops),
                         [&](ZAXFeatObject* feature) { return !tops.contains(feature); });
    tops.removeIf([&](const ZAXFeatObject* feature) { return IsBelowAnyOf(feature, features); });
    ZAXHostDocumentImager::Add(tops, true, image);
    image.lastId = ZAXHostDocumentImager::HighestId(image, 0);
    return ZAXHostDocumentCodec::Encode(image);
}

ZAXHostResult ZAXHostClipboard::Paste(const QByteArray& bytes, ZAXFeatObject* parent, QList<ZAXFeatObject*>& pasted,
                                      QList<ZAXHostProblem>& problems)
{
    ZAXHostDocumentImage image;
    if (const auto result = ZAXHostDocumentCodec::Decode(bytes, image); !result)
        return result;
    if (!image.damages.isEmpty())
        return ZAXHostResult::Failed(image.damages.constFirst().GetMessage());
    if (ZAXFeatObjectPrivate::Get(*parent).isAside)
        return ZAXHostResult::Failed(Tr("%1 was removed.").arg(parent->GetLabel()));
    // Outlives what is made: objects that are discarded leave nothing of themselves in the step.
    const ZAXFeatStep step(ZAXFeatObjectPrivate::Get(*parent).container);
    Paster paster(image, parent);
    try {
        paster.MakeAll();
    } catch (const std::exception& exception) {
        return ZAXHostResult::Failed(QString::fromUtf8(exception.what()));
    }
    problems = paster.problems;
    const auto tops = paster.Release();
    // Not what a slot has done away with.
    const auto list = qScopeGuard([&] {
        pasted.clear();
        std::ranges::copy_if(tops, std::back_inserter(pasted),
                             [](const auto& top) { return top && !ZAXFeatObjectPrivate::Get(*top).isAside; });
    });
    ZAXFeatObjectPrivate::Announce(paster.GetFeatures());
    return ZAXHostResult::Done();
}
