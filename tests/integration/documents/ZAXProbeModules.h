#ifndef ZAXPROBEMODULES_H
#define ZAXPROBEMODULES_H

#include "ZAXFeatFolder.h"
#include "ZAXFeatObjectListProperty.h"
#include "ZAXFeatObjectProperty.h"
#include "ZAXFeatValueProperty.h"
#include "ZAXMatMaterial.h"
#include "ZAXMatMaterialExtension.h"
#include "ZAXMatPackaging.h"
#include "ZAXMatPackagingExtension.h"

// Feature classes as two modules would bring them, which come and go.

/// What every probe does with its data, and how often its code ran.
class ZAXProbeData
{
public:
    explicit ZAXProbeData(ZAXFeatObject* feature);
    ~ZAXProbeData();

    void Save(ZAXGeoStream& stream) const;
    void Load(ZAXGeoStream& stream);
    /// \throws std::runtime_error "The probe fails at <where>." when failAt says so.
    static void Run(const char* where);

    /// How many operations of probes ran.
    static int calls;
    static const char* failAt;

    ZAXFeatValueProperty<QString> text;
    ZAXFeatObjectProperty<ZAXFeatObject> link;
};

/// Of the first module: an extension of materials.
class ZAXProbeGas : public ZAXMatMaterialExtension
{
    Q_OBJECT
    Q_CLASSINFO("version", "2")

public:
    Q_INVOKABLE ZAXProbeGas(ZAXGeoContainer* container, const ZAXGeoGeometryRef& reference);
    Q_INVOKABLE explicit ZAXProbeGas(ZAXFeatObject* parent);

    void Save(ZAXGeoStream& stream) const override;
    void Load(ZAXGeoStream& stream) override;
    void EndStateLoad() override;
    QString GetExtensionLabel() const override;

    ZAXProbeData data{this};
};

/// Of the first module: an extension of packagings.
class ZAXProbeGrain : public ZAXMatPackagingExtension
{
    Q_OBJECT

public:
    Q_INVOKABLE ZAXProbeGrain(ZAXGeoContainer* container, const ZAXGeoGeometryRef& reference);
    Q_INVOKABLE explicit ZAXProbeGrain(ZAXFeatObject* parent);

    void Save(ZAXGeoStream& stream) const override;
    void Load(ZAXGeoStream& stream) override;
    QString GetExtensionLabel() const override;

    ZAXProbeData data{this};
};

/// Of the second module: a part of a machine, which holds others.
class ZAXProbePart : public ZAXFeatFolder
{
    Q_OBJECT

public:
    Q_INVOKABLE ZAXProbePart(ZAXGeoContainer* container, const ZAXGeoGeometryRef& reference);
    Q_INVOKABLE explicit ZAXProbePart(ZAXFeatObject* parent);
    Q_INVOKABLE explicit ZAXProbePart(ZAXFeatContainer* container);

    void SetText(const QString& text, bool silent = false) { data.text.SetValue(text, silent); }
    void Save(ZAXGeoStream& stream) const override;
    void Load(ZAXGeoStream& stream) override;
    void EndStateLoad() override;
    void PostDuplicate(const ZAXFeatObject* source, const ZAXFeatObject* duplicated) override;

    ZAXProbeData data{this};
    ZAXFeatObjectListProperty<ZAXFeatObject> links{this, -1, &ZAXProbePart::LinkAdded, &ZAXProbePart::LinkRemoved};

signals:
    void LinkAdded(ZAXFeatObject* feature);
    void LinkRemoved(ZAXFeatObject* feature);
};

#endif
