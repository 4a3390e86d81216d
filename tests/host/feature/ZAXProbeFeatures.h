#ifndef ZAXPROBEFEATURES_H
#define ZAXPROBEFEATURES_H

#include "ZAXFeatChangeObserver.h"
#include "ZAXFeatContainer.h"
#include "ZAXFeatObject.h"
#include "ZAXFeatObjectListProperty.h"
#include "ZAXFeatObjectProperty.h"
#include "ZAXFeatRoot.h"
#include "ZAXFeatValueProperty.h"
#include "ZAXSysDefinedValue.h"

#include <QPointer>

#include <functional>

/// A feature with a property of every kind. It may stand anywhere, allows every child and writes down what the host
/// calls on it, with its name: "Initialize bolt".
class ZAXProbePart : public ZAXFeatObject
{
    Q_OBJECT
    Q_CLASSINFO("defaultLabel", "Part")
    Q_CLASSINFO("inputProps", "name companions")
    Q_CLASSINFO("version", "2")
    Q_PROPERTY(QString name READ GetName WRITE SetName NOTIFY NameChanged)
    Q_PROPERTY(ZAXSysLengthValue length READ ReadLength WRITE WriteLength NOTIFY LengthChanged)
    Q_PROPERTY(QList<ZAXProbePart*> companions READ GetCompanions NOTIFY CompanionsChanged)

public:
    Q_INVOKABLE ZAXProbePart(ZAXGeoContainer* container, const ZAXGeoGeometryRef& reference);
    Q_INVOKABLE explicit ZAXProbePart(ZAXFeatObject* parent);
    Q_INVOKABLE explicit ZAXProbePart(ZAXFeatContainer* container);
    ~ZAXProbePart() override;

    QString GetName() const { return name.GetValue(); }
    void SetName(const QString& value) { name.Apply(value); }
    ZAXSysLengthValue ReadLength() const { return ZAXSysLengthValue(length.GetValue()); }
    void WriteLength(const ZAXSysLengthValue& value) { length.Apply(value.GetValue()); }
    ZAXProbePart* GetPartner() const { return partner.GetObject(); }
    QList<ZAXProbePart*> GetCompanions() const { return companions.GetObjects(); }

    void Save(ZAXGeoStream& stream) const override;
    void Load(ZAXGeoStream& stream) override;
    void Initialize() override;
    void InitializeNonStreamed() override;
    void BeginStateLoad() override;
    void EndStateLoad() override;
    void Cleanup() override;
    void PostDuplicate(const ZAXFeatObject* source, const ZAXFeatObject* duplicated) override;
    void PostMove(ZAXFeatObject* oldParent, int oldIndex) override;

    ZAXFeatValueProperty<QString> name{this, staticMetaObject.indexOfProperty("name"), QString(), true};
    /// Starts as what the user last saved, 1 at first.
    ZAXFeatValueProperty<double> length{this, staticMetaObject.indexOfProperty("length"), 1.0, false};
    ZAXFeatObjectProperty<ZAXProbePart> partner{this, true};
    ZAXFeatObjectListProperty<ZAXProbePart> companions{this, staticMetaObject.indexOfProperty("companions"),
                                                       &ZAXProbePart::CompanionAdded, &ZAXProbePart::CompanionRemoved};

signals:
    void NameChanged(const QString& name);
    void LengthChanged(double length);
    void CompanionsChanged(const QList<ZAXProbePart*>& companions);
    void CompanionAdded(ZAXProbePart* companion);
    void CompanionRemoved(ZAXProbePart* companion);

private:
    void Note(const char* what) const;

    ZAXGeoGeometryRef m_loadedPartner;
    /// What the partner was, be it there or not.
    ZAXGeoGeometryRef m_storedPartner;
};

/// A kind of part, with no class information of its own.
class ZAXProbeSpecialPart : public ZAXProbePart
{
    Q_OBJECT

public:
    Q_INVOKABLE ZAXProbeSpecialPart(ZAXGeoContainer* container, const ZAXGeoGeometryRef& reference)
        : ZAXProbePart(container, reference)
    {
    }
    Q_INVOKABLE explicit ZAXProbeSpecialPart(ZAXFeatObject* parent) : ZAXProbePart(parent) {}
};

/// Stands under parts only, and allows no children but folders.
class ZAXProbeLeaf : public ZAXFeatObject
{
    Q_OBJECT
    Q_CLASSINFO("defaultLabel", "Leaf")
    Q_CLASSINFO("allowedParents", "ZAXProbePart ZAXProbeOther")

public:
    Q_INVOKABLE ZAXProbeLeaf(ZAXGeoContainer* container, const ZAXGeoGeometryRef& reference);
    Q_INVOKABLE explicit ZAXProbeLeaf(ZAXFeatObject* parent);

    bool IsChildAllowed(const QMetaObject* childType) const override;

    /// The class of the parent that the constructor was given.
    QByteArray parentOfConstruction;
};

/// Stands at the top only, and allows parts and their kinds as children.
class ZAXProbeRoot : public ZAXFeatRoot
{
    Q_OBJECT
    Q_CLASSINFO("defaultLabel", "Probes")

public:
    Q_INVOKABLE ZAXProbeRoot(ZAXGeoContainer* container, const ZAXGeoGeometryRef& reference);
    Q_INVOKABLE explicit ZAXProbeRoot(ZAXFeatContainer* container);

    bool IsChildAllowed(const QMetaObject* childType) const override;
};

/// Has none of the constructors that the host creates features by.
class ZAXProbeUncreatable : public ZAXFeatObject
{
    Q_OBJECT

public:
    ZAXProbeUncreatable(ZAXFeatContainer* container, ZAXFeatObject* parent, int) : ZAXFeatObject(container, parent) {}
};

/// Fails in its constructors.
class ZAXProbeStillborn : public ZAXFeatObject
{
    Q_OBJECT

public:
    Q_INVOKABLE ZAXProbeStillborn(ZAXGeoContainer* container, const ZAXGeoGeometryRef& reference);
    Q_INVOKABLE explicit ZAXProbeStillborn(ZAXFeatObject* parent);
};

/// Makes a part of its own below it when it is constructed, and another one when it has been loaded.
class ZAXProbeParent : public ZAXProbePart
{
    Q_OBJECT

public:
    Q_INVOKABLE ZAXProbeParent(ZAXGeoContainer* container, const ZAXGeoGeometryRef& reference)
        : ZAXProbePart(container, reference)
    {
    }
    Q_INVOKABLE explicit ZAXProbeParent(ZAXFeatObject* parent) : ZAXProbePart(parent) {}

    void EndStateLoad() override;
};

/// The value of the property "name" of \a feature, for a feature without one the name of its class.
QString NameOf(const ZAXFeatObject* feature);

/// Writes the changes of a container's features down, by NameOf(): "about to change A", "changed A" at the end of the
/// step that belongs to it, "A came", "A went", "A moved", "A destroyed". Removed features are not kept.
class ZAXProbeObserver : public ZAXFeatChangeObserver
{
public:
    explicit ZAXProbeObserver(ZAXFeatContainer& container);
    ~ZAXProbeObserver() override;
    Q_DISABLE_COPY_MOVE(ZAXProbeObserver)

    void AboutToChange(ZAXFeatObject* feature, ZAXFeatValuePropertyBase* only) override;
    void BeginStep() override;
    void EndStep() override;
    void Placed(ZAXFeatObject* feature, const ZAXFeatPlace& from, const ZAXFeatPlace& to) override;
    void Destroyed(ZAXFeatObject* feature) override;
    bool KeepsRemoved() const override { return false; }

private:
    /// By open step, what it changes; empty for nothing yet.
    QStringList m_steps;
    QPointer<ZAXFeatContainer> m_container;
};

/// Registers the probe classes that documents can hold, as long as it lives.
class ZAXProbeRegistration
{
public:
    ZAXProbeRegistration();
    ~ZAXProbeRegistration();
    Q_DISABLE_COPY_MOVE(ZAXProbeRegistration)
};

/// A new part named \a name, as the last child of \a parent and initialised.
ZAXProbePart* AddPart(ZAXFeatObject* parent, const char* name);
/// A new part at the top of \a container.
ZAXProbePart* AddPart(ZAXFeatContainer& container, const char* name);

/// The messages of an exception that \a call throws; "nothing was thrown" for none.
QString MessageOf(const std::function<void()>& call);

#endif
