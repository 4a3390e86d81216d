#ifndef ZAXGEOGEOMETRY_H
#define ZAXGEOGEOMETRY_H

#include "ZAXGeoExport.h"
#include "ZAXGeoGeometryRef.h"

#include <QByteArray>
#include <QObject>

#include <memory>

class ZAXGeoContainer;
class ZAXGeoGeometryPrivate;
class ZAXGeoStream;

/// An object with an identity in a geometry container: it can be referred to, saved and re-created.
///
/// A class that documents can hold is registered with ZAXGeoContainer::RegisterType() and has an invokable
/// constructor (ZAXGeoContainer*, ZAXGeoGeometryRef), through which the host re-creates it before Load().
class ZAXGEOMETRY_EXPORT ZAXGeoGeometry : public QObject
{
    Q_OBJECT

public:
    /// A new geometry in \a container under an id of its own. A null \a container makes a geometry without identity.
    explicit ZAXGeoGeometry(ZAXGeoContainer* container);
    /// The geometry that \a reference refers to, re-created in \a container. An invalid \a reference gets a new id.
    /// \throws ZAXSysException when the container holds a geometry with that id already.
    ZAXGeoGeometry(const ZAXGeoGeometryRef& reference, ZAXGeoContainer* container);
    ~ZAXGeoGeometry() override;

    /// The container that the geometry lives in; null for one made without a container and once that is gone.
    ZAXGeoContainer* GetContainer() const;
    /// The id within the container, 0 for a geometry made without one. Never changes.
    quint64 GetId() const;

    /// Keeps the geometry in memory until the matching RemoveReference(), even when it is removed meanwhile, but not
    /// longer than its container.
    void AddReference();
    /// Releases what AddReference() keeps; the last release of a removed geometry deletes it.
    /// \throws ZAXSysException without a matching AddReference().
    void RemoveReference();

    /// Writes the fields. An override calls its base class first.
    virtual void Save(ZAXGeoStream& stream) const;
    /// Reads what Save() of this or an older version of the class wrote. An override calls its base class first.
    virtual void Load(ZAXGeoStream& stream);
    /// Called once after a new geometry is made and attached, never after a load or a duplication.
    virtual void Initialize();
    /// Sets up what no stream carries: called within Initialize(), or after a load before EndStateLoad(), and again
    /// whenever undo or redo brings a removed geometry back.
    virtual void InitializeNonStreamed();
    /// Called before Load().
    virtual void BeginStateLoad();
    /// Called after Load() once all geometries loaded together have been read, so that references can be resolved.
    virtual void EndStateLoad();
    /// Brings the geometry back to a state of GetCurrentState(): BeginStateLoad(), Load(), EndStateLoad().
    /// \throws ZAXSysException when \a state cannot be read. What is no state at all changes nothing; of one whose
    /// fields are damaged the geometry keeps what was read, and EndStateLoad() is not called.
    virtual void SetCurrentState(const QByteArray& state);
    /// Takes leave of whatever the geometry keeps outside itself; called while it is whole, before each removal, be it
    /// by undo or redo. Not called when the document is closed.
    virtual void Cleanup();

    /// What Save() writes, references included, for SetCurrentState().
    QByteArray GetCurrentState() const;

private:
    friend class ZAXGeoGeometryPrivate;
    std::unique_ptr<ZAXGeoGeometryPrivate> d_ptr;
};

#endif
