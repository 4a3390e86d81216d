#ifndef ZAXHOSTSTATELOADER_H
#define ZAXHOSTSTATELOADER_H

// Private to the host: may change without notice.

#include "ZAXGeoGeometryRef.h"

#include <QByteArray>
#include <QHash>
#include <QList>
#include <QString>

#include <functional>
#include <memory>

struct QMetaObject;
class QObject;
class ZAXFeatContainer;
class ZAXFeatObject;
class ZAXGeoStream;

/// Brings features back from their streamed states, as loading a document and duplicating features both do: first
/// all features are made, then each is loaded, then each is told that all have been.
class ZAXHostStateLoader
{
public:
    explicit ZAXHostStateLoader(ZAXFeatContainer* container);
    ~ZAXHostStateLoader();
    ZAXHostStateLoader(const ZAXHostStateLoader&) = delete;
    ZAXHostStateLoader& operator=(const ZAXHostStateLoader&) = delete;

    /// The version table of the states; without one they come from this program.
    void SetVersions(const QHash<QByteArray, int>& versions);
    /// How references in the states map to the features made.
    void SetReferenceMap(const std::function<ZAXGeoGeometryRef(const ZAXGeoGeometryRef&)>& map);
    /// Which mapped references lead to nothing that can be made.
    void SetUnavailable(const std::function<bool(const ZAXGeoGeometryRef&)>& isUnavailable);

    /// Makes a feature of class \a type, at the top of the tree, through the constructor for re-creation. An invalid
    /// \a reference gives it a new id.
    /// \throws ZAXSysException for a class without that constructor.
    std::unique_ptr<ZAXFeatObject> Make(const QMetaObject* type, const ZAXGeoGeometryRef& reference);

    /// Loads \a payload into \a feature, which a later EndLoad() completes.
    /// \throws ZAXSysException when the payload is not what the feature's class reads.
    void Load(ZAXFeatObject* feature, const QByteArray& payload, const QList<ZAXGeoGeometryRef>& references);

    /// Completes all features loaded so far, in the order of loading.
    void EndLoad();
    /// EndLoad() that goes on when a feature throws, and tells \a refused so.
    void EndLoad(const std::function<void(ZAXFeatObject* feature, const QString& why)>& refused);

private:
    /// Null for a class that cannot be re-created.
    QObject* Construct(const QMetaObject* type, const ZAXGeoGeometryRef& reference);

    ZAXFeatContainer* m_container;
    /// One for all states.
    std::unique_ptr<ZAXGeoStream> m_stream;
    /// The indices of the constructors.
    QHash<const QMetaObject*, int> m_constructors;
    QList<ZAXFeatObject*> m_loaded;
};

#endif
