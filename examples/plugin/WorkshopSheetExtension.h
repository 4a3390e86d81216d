#ifndef WORKSHOPSHEETEXTENSION_H
#define WORKSHOPSHEETEXTENSION_H

#include <ZAXFeatValueProperty.h>
#include <ZAXMatPackagingExtension.h>
#include <ZAXSysDefinedValue.h>

/// What nesting has to know of a sheet: the direction of its grain, and the margin that is trimmed off.
class WorkshopSheetExtension : public ZAXMatPackagingExtension
{
    Q_OBJECT

    Q_CLASSINFO("defaultLabel", "Sheet")
    Q_CLASSINFO("inputProps", "isExtensionEnabled grainDirection trimMargin")
    Q_CLASSINFO("PropertyLabel_grainDirection", "Grain Direction")
    Q_CLASSINFO("PropertyLabel_trimMargin", "Trim Margin")
    Q_CLASSINFO("version", "1")

    Q_PROPERTY(
        GrainDirection grainDirection READ GetGrainDirection WRITE SetGrainDirection NOTIFY GrainDirectionChanged)
    Q_PROPERTY(ZAXSysLengthValue trimMargin READ ReadTrimMargin WRITE WriteTrimMargin NOTIFY TrimMarginChanged)

public:
    /// How the grain runs. The numbers are stored in documents, the names in catalogues.
    enum GrainDirection : int
    {
        None = 0,
        AlongLength = 1,
        AlongWidth = 2,
    };
    Q_ENUM(GrainDirection)

    /// The names of the properties.
    static constexpr char Property_grainDirection[] = "grainDirection";
    static constexpr char Property_trimMargin[] = "trimMargin";

    /// The extension that \a reference refers to, re-created in \a container by the host before Load().
    Q_INVOKABLE WorkshopSheetExtension(ZAXGeoContainer* container, const ZAXGeoGeometryRef& reference);
    /// A new extension of the ZAXMatPackaging \a parent.
    /// \throws ZAXSysException for any other parent, or none.
    Q_INVOKABLE explicit WorkshopSheetExtension(ZAXFeatObject* parent);

    /// A new extension starts with what the user last chose, None at first.
    GrainDirection GetGrainDirection() const;
    /// Emits GrainDirectionChanged() on a change.
    void SetGrainDirection(GrainDirection direction);

    /// Margin in millimetres, the same on all four sides. A new extension starts with what the user last chose, 10 at
    /// first.
    double GetTrimMargin() const;
    /// UpdateResult() reports a negative margin. Emits TrimMarginChanged() on a change.
    void SetTrimMargin(double margin);

    void Save(ZAXGeoStream& stream) const override;
    void Load(ZAXGeoStream& stream) override;
    /// Sets an error message on the trim margin if it is invalid. An extension that is not enabled is valid.
    bool UpdateResult() override;
    QString GetExtensionLabel() const override;

signals:
    void GrainDirectionChanged(GrainDirection direction);
    void TrimMarginChanged(double margin);

private:
    static int IndexOf(const char* property) { return staticMetaObject.indexOfProperty(property); }

    // A length is held as a plain number of millimetres and shown with its unit.
    ZAXSysLengthValue ReadTrimMargin() const { return ZAXSysLengthValue(GetTrimMargin()); }
    void WriteTrimMargin(const ZAXSysLengthValue& margin) { SetTrimMargin(margin.GetValue()); }

    ZAXFeatValueProperty<GrainDirection> m_grainDirection{this, IndexOf(Property_grainDirection), None, false};
    ZAXFeatValueProperty<double> m_trimMargin{this, IndexOf(Property_trimMargin), 10.0, false};
};

#endif
