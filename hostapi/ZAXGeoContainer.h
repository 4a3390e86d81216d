#ifndef ZAXGEOCONTAINER_H
#define ZAXGEOCONTAINER_H

#include "ZAXGeoExport.h"
#include "ZAXGeoGeometryRef.h"

#include <QList>
#include <QObject>

#include <memory>

class ZAXGeoContainerPrivate;
class ZAXGeoGeometry;

/// Holds geometries and finds them by reference, and keeps the process-wide list of the classes that containers can
/// create by name.
class ZAXGEOMETRY_EXPORT ZAXGeoContainer : public QObject
{
    Q_OBJECT

public:
    explicit ZAXGeoContainer(QObject* parent = nullptr);
    /// The container does not own its geometries: those that still live are without a container from now on.
    ~ZAXGeoContainer() override;

    /// The geometry that \a reference refers to; null for an invalid reference, one to another container's geometry
    /// whose id this container never gave, or one to a geometry that is gone.
    ZAXGeoGeometry* GetGeometryByRef(const ZAXGeoGeometryRef& reference) const;
    /// All geometries of the container, in the order of their ids.
    QList<ZAXGeoGeometry*> GetGeometries() const;

    /// Makes the class \a type creatable by name. Null and a class that is registered already are ignored. Of several
    /// classes with one name the one registered last is created.
    static void RegisterType(const QMetaObject* type);
    /// Takes RegisterType() back; ignored for a class that is not registered. With the last class of a module the
    /// host also releases whatever else it keeps of that module: the module is about to leave the process.
    static void UnregisterType(const QMetaObject* type);
    /// The registered classes in the order of their registration.
    static QList<const QMetaObject*> GetRegisteredTypes();
    /// The registered class named \a className; null when there is none.
    static const QMetaObject* FindType(const QByteArray& className);

private:
    friend class ZAXGeoContainerPrivate;
    std::unique_ptr<ZAXGeoContainerPrivate> d_ptr;
};

#endif
