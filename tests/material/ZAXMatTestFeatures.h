#ifndef ZAXMATTESTFEATURES_H
#define ZAXMATTESTFEATURES_H

#include "ZAXFeatContainer.h"
#include "ZAXFeatObjectProperty.h"
#include "ZAXFeatValueProperty.h"
#include "ZAXMatMaterial.h"
#include "ZAXMatMaterialExtension.h"
#include "ZAXMatPackaging.h"
#include "ZAXMatPackagingExtension.h"

/// A material extension with a field of its own.
class ZAXTestAssistGas : public ZAXMatMaterialExtension
{
    Q_OBJECT
    Q_CLASSINFO("defaultLabel", "Assist Gas")
    Q_PROPERTY(double pressure READ GetPressure WRITE SetPressure NOTIFY PressureChanged)

public:
    Q_INVOKABLE ZAXTestAssistGas(ZAXGeoContainer* container, const ZAXGeoGeometryRef& reference);
    Q_INVOKABLE explicit ZAXTestAssistGas(ZAXFeatObject* parent);

    double GetPressure() const;
    void SetPressure(double pressure);

    void Save(ZAXGeoStream& stream) const override;
    void Load(ZAXGeoStream& stream) override;
    QString GetExtensionLabel() const override;

signals:
    void PressureChanged(double pressure);

private:
    ZAXFeatValueProperty<double> m_pressure;
};

/// A material extension that adds nothing.
class ZAXTestPiercing : public ZAXMatMaterialExtension
{
    Q_OBJECT

public:
    Q_INVOKABLE ZAXTestPiercing(ZAXGeoContainer* container, const ZAXGeoGeometryRef& reference);
    Q_INVOKABLE explicit ZAXTestPiercing(ZAXFeatObject* parent);

    QString GetExtensionLabel() const override;
};

/// A packaging extension with a field of its own.
class ZAXTestTrim : public ZAXMatPackagingExtension
{
    Q_OBJECT
    Q_CLASSINFO("defaultLabel", "Trim")
    Q_PROPERTY(double margin READ GetMargin WRITE SetMargin NOTIFY MarginChanged)

public:
    Q_INVOKABLE ZAXTestTrim(ZAXGeoContainer* container, const ZAXGeoGeometryRef& reference);
    Q_INVOKABLE explicit ZAXTestTrim(ZAXFeatObject* parent);

    double GetMargin() const;
    void SetMargin(double margin);

    void Save(ZAXGeoStream& stream) const override;
    void Load(ZAXGeoStream& stream) override;
    QString GetExtensionLabel() const override;

signals:
    void MarginChanged(double margin);

private:
    ZAXFeatValueProperty<double> m_margin;
};

/// A packaging extension that adds nothing.
class ZAXTestGrain : public ZAXMatPackagingExtension
{
    Q_OBJECT

public:
    Q_INVOKABLE ZAXTestGrain(ZAXGeoContainer* container, const ZAXGeoGeometryRef& reference);
    Q_INVOKABLE explicit ZAXTestGrain(ZAXFeatObject* parent);

    QString GetExtensionLabel() const override;
};

/// A material as another module might derive it.
class ZAXTestCoatedMaterial : public ZAXMatMaterial
{
    Q_OBJECT

public:
    Q_INVOKABLE ZAXTestCoatedMaterial(ZAXGeoContainer* container, const ZAXGeoGeometryRef& reference);
    explicit ZAXTestCoatedMaterial(ZAXMatRoot* root);
};

/// A feature at the top of a document that points at another.
class ZAXTestDependent : public ZAXFeatObject
{
    Q_OBJECT

public:
    explicit ZAXTestDependent(ZAXFeatContainer* container);

    void PointAt(ZAXFeatObject* feature);

private:
    ZAXFeatObjectProperty<ZAXFeatObject> m_target;
};

#endif
