#ifndef WORKSHOPGASEXTENSION_H
#define WORKSHOPGASEXTENSION_H

#include <ZAXFeatValueProperty.h>
#include <ZAXMatMaterialExtension.h>

#include <QString>

/// How a material is pierced: the gas that assists, its pressure, and the time that a piercing takes.
class WorkshopGasExtension : public ZAXMatMaterialExtension
{
    Q_OBJECT

    Q_CLASSINFO("defaultLabel", "Assist Gas")
    Q_CLASSINFO("inputProps", "isExtensionEnabled assistGas gasPressure piercingTime")
    Q_CLASSINFO("PropertyLabel_assistGas", "Assist Gas")
    Q_CLASSINFO("PropertyLabel_gasPressure", "Gas Pressure")
    Q_CLASSINFO("PropertyLabel_piercingTime", "Piercing Time")
    Q_CLASSINFO("version", "1")

    Q_PROPERTY(QString assistGas READ GetAssistGas WRITE SetAssistGas NOTIFY AssistGasChanged)
    Q_PROPERTY(double gasPressure READ GetGasPressure WRITE SetGasPressure NOTIFY GasPressureChanged)
    Q_PROPERTY(double piercingTime READ GetPiercingTime WRITE SetPiercingTime NOTIFY PiercingTimeChanged)

public:
    /// The names of the properties.
    static constexpr char Property_assistGas[] = "assistGas";
    static constexpr char Property_gasPressure[] = "gasPressure";
    static constexpr char Property_piercingTime[] = "piercingTime";

    /// The extension that \a reference refers to, re-created in \a container by the host before Load().
    Q_INVOKABLE WorkshopGasExtension(ZAXGeoContainer* container, const ZAXGeoGeometryRef& reference);
    /// A new extension of the ZAXMatMaterial \a parent.
    /// \throws ZAXSysException for any other parent, or none.
    Q_INVOKABLE explicit WorkshopGasExtension(ZAXFeatObject* parent);

    /// The gas, as the workshop calls it. A new extension starts with what the user last chose, "Nitrogen" at first.
    QString GetAssistGas() const;
    /// UpdateResult() reports an empty text. Emits AssistGasChanged() on a change.
    void SetAssistGas(const QString& gas);

    /// Pressure at the nozzle in bar, 0 at first.
    double GetGasPressure() const;
    /// UpdateResult() reports a negative pressure. Emits GasPressureChanged() on a change.
    void SetGasPressure(double pressure);

    /// Time in seconds, 0 at first.
    double GetPiercingTime() const;
    /// UpdateResult() reports a negative time. Emits PiercingTimeChanged() on a change.
    void SetPiercingTime(double time);

    void Save(ZAXGeoStream& stream) const override;
    void Load(ZAXGeoStream& stream) override;
    /// Sets an error message on every property whose value is invalid. An extension that is not enabled is valid.
    bool UpdateResult() override;
    QString GetExtensionLabel() const override;

signals:
    void AssistGasChanged(const QString& gas);
    void GasPressureChanged(double pressure);
    void PiercingTimeChanged(double time);

private:
    static int IndexOf(const char* property) { return staticMetaObject.indexOfProperty(property); }

    ZAXFeatValueProperty<QString> m_assistGas{this, IndexOf(Property_assistGas), QLatin1String("Nitrogen"), false};
    ZAXFeatValueProperty<double> m_gasPressure{this, IndexOf(Property_gasPressure), 0.0, true};
    ZAXFeatValueProperty<double> m_piercingTime{this, IndexOf(Property_piercingTime), 0.0, true};
};

#endif
