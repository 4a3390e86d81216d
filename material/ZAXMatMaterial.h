#ifndef ZAXMATMATERIAL_H
#define ZAXMATMATERIAL_H

#include "ZAXFeatObject.h"
#include "ZAXMatGlobal.h"
#include "ZAXSysDefinedValue.h"

#include <QByteArray>
#include <QColor>
#include <QList>
#include <QString>

#include <memory>

class ZAXMatMaterialExtension;
class ZAXMatMaterialPrivate;
class ZAXMatPackaging;
class ZAXMatRoot;

/// One sheet material that a job uses: its identity, its physical data, the catalogue record it came from, and the
/// colour in which nested parts are drawn. Lives under the materials root; its children are its packagings, the stock
/// forms it is held in, and its extensions.
///
/// Setters take any value and raise the property's signal when it changes; UpdateResult() reports what is invalid.
/// Every change is undoable. The host remembers the type, thickness, category and density that were set last and
/// starts the next new material with them.
class ZAXMATERIAL_EXPORT ZAXMatMaterial : public ZAXFeatObject
{
    Q_OBJECT
    Q_DECLARE_PRIVATE(ZAXMatMaterial)
    Q_MOC_INCLUDE("ZAXMatMaterialExtension.h")

    Q_CLASSINFO("defaultLabel", "Material")
    Q_CLASSINFO("inputProps", "materialType thickness category density comment materialExtensions")
    Q_CLASSINFO("outputProps", "")
    Q_CLASSINFO("visProps", "")
    Q_CLASSINFO("contextualActions", "")
    Q_CLASSINFO("editAction", "")
    Q_CLASSINFO("allowedParents", "ZAXMatRoot")
    Q_CLASSINFO("version", "7")
    Q_CLASSINFO("PropertyLabel_materialId", "Material ID")
    Q_CLASSINFO("PropertyLabel_isMaterialIdCustomized", "Is Material ID Customized")
    Q_CLASSINFO("PropertyLabel_materialType", "Material Type")
    Q_CLASSINFO("PropertyLabel_thickness", "Thickness")
    Q_CLASSINFO("PropertyLabel_category", "Category")
    Q_CLASSINFO("PropertyLabel_density", "Density")
    Q_CLASSINFO("PropertyLabel_comment", "Comment")
    Q_CLASSINFO("PropertyLabel_providerId", "Provider")
    Q_CLASSINFO("PropertyLabel_remoteKey", "Remote Material Key")
    Q_CLASSINFO("PropertyLabel_nestingColor", "Nesting Color")
    Q_CLASSINFO("PropertyLabel_materialExtensions", "Material Extensions")

    Q_PROPERTY(QString materialId READ GetMaterialId WRITE SetMaterialId NOTIFY MaterialIdChanged)
    Q_PROPERTY(bool isMaterialIdCustomized READ isMaterialIdCustomized WRITE SetMaterialIdCustomized NOTIFY
                   MaterialIdCustomizedChanged)
    Q_PROPERTY(QString materialType READ GetMaterialType WRITE SetMaterialType NOTIFY MaterialTypeChanged)
    Q_PROPERTY(ZAXSysLengthValue thickness READ ReadThickness WRITE WriteThickness NOTIFY ThicknessChanged)
    Q_PROPERTY(QString category READ GetCategory WRITE SetCategory NOTIFY CategoryChanged)
    Q_PROPERTY(ZAXSysDensityValue density READ ReadDensity WRITE WriteDensity NOTIFY DensityChanged)
    Q_PROPERTY(QString comment READ GetComment WRITE SetComment NOTIFY CommentChanged)
    Q_PROPERTY(QByteArray providerId READ GetProviderId WRITE SetProviderId NOTIFY ProviderIdChanged)
    Q_PROPERTY(QByteArray remoteKey READ GetRemoteKey WRITE SetRemoteKey NOTIFY RemoteKeyChanged)
    Q_PROPERTY(QColor nestingColor READ GetNestingColor WRITE SetNestingColor NOTIFY NestingColorChanged)
    Q_PROPERTY(QList<ZAXMatMaterialExtension*> materialExtensions READ GetExtensions)

public:
    /// The names of the properties.
    static const char Property_materialId[];
    static const char Property_isMaterialIdCustomized[];
    static const char Property_materialType[];
    static const char Property_thickness[];
    static const char Property_category[];
    static const char Property_density[];
    static const char Property_comment[];
    static const char Property_providerId[];
    static const char Property_remoteKey[];
    static const char Property_nestingColor[];
    static const char Property_materialExtensions[];

    /// The material that \a reference refers to, re-created in \a container by the host before Load().
    Q_INVOKABLE ZAXMatMaterial(ZAXGeoContainer* container, const ZAXGeoGeometryRef& reference);
    /// A new material, the last child of the ZAXMatRoot \a parent. Its ID stays empty until Initialize().
    /// \throws ZAXSysException "A material needs a materials root as its parent." for any other parent, or none.
    Q_INVOKABLE explicit ZAXMatMaterial(ZAXFeatObject* parent);
    ~ZAXMatMaterial() override;

    /// The name that tells this material from its siblings, made of label and thickness unless customised. Where all
    /// before the last '.' of the stored ID is "Material ID", that is given in the user's language.
    QString GetMaterialId() const;
    /// Stores \a id as it is; UpdateResult() reports an empty one. Emits MaterialIdChanged() on a change. The next
    /// UpdateMaterialId() replaces it unless the ID is customised.
    void SetMaterialId(const QString& id);

    /// Whether the ID was chosen by the user and no longer follows label and thickness. False at first.
    bool isMaterialIdCustomized() const;
    /// Emits MaterialIdCustomizedChanged() on a change. Does not renew the ID.
    void SetMaterialIdCustomized(bool customized);

    /// What the material is, "Generic" at first, which is given in the user's language.
    QString GetMaterialType() const;
    /// Stores \a type as it is; UpdateResult() reports an empty one. Emits MaterialTypeChanged() on a change.
    /// Renews the ID, changed or not, unless that is customised.
    void SetMaterialType(const QString& type);

    /// Sheet thickness in millimetres. A new material starts with what the user last chose, 0.5 at first.
    double GetThickness() const;
    /// Stores \a thickness as it is; UpdateResult() reports a value below 0.001. Emits ThicknessChanged() on a change.
    /// Renews the ID, changed or not, unless that is customised.
    void SetThickness(double thickness);

    /// The group the material belongs to, "Metal" in the user's language at first. "Misc" is given in the user's
    /// language.
    QString GetCategory() const;
    /// Stores \a category as it is. Emits CategoryChanged() on a change.
    void SetCategory(const QString& category);

    /// Density in grams per cubic centimetre. A new material starts with what the user last chose, 0.1 at first.
    double GetDensity() const;
    /// Stores \a density as it is; no value is invalid. Emits DensityChanged() on a change.
    void SetDensity(double density);

    /// Free text, empty at first.
    QString GetComment() const;
    /// Emits CommentChanged() on a change.
    void SetComment(const QString& comment);

    /// The id of the catalogue provider that the material came from; empty for none.
    QByteArray GetProviderId() const;
    /// Emits ProviderIdChanged() on a change.
    void SetProviderId(const QByteArray& id);

    /// The key of the catalogue record that the material came from; empty for none.
    QByteArray GetRemoteKey() const;
    /// Emits RemoteKeyChanged() on a change.
    void SetRemoteKey(const QByteArray& key);

    /// The colour in which nested parts of the material are drawn; a random opaque one at first.
    QColor GetNestingColor() const;
    /// Emits NestingColorChanged() on a change.
    void SetNestingColor(const QColor& color);

    /// The stock forms: the children that are packagings, in child order.
    QList<ZAXMatPackaging*> GetPackaging() const;
    /// Those of GetPackaging() that are active, in the same order.
    QList<ZAXMatPackaging*> GetActivePackaging() const;
    /// The first active packaging; if there is none, a new packaging child with last-saved values, initialised and
    /// set active. The material owns it. Null when a slot has removed it at once.
    ZAXMatPackaging* CreateDefaultPackaging();

    /// The extensions in list order. Holds null where a document named an extension that could not be brought along.
    QList<ZAXMatMaterialExtension*> GetExtensions() const;
    /// The first listed extension whose class is named \a key. If there is none: null, or with \a create a new child
    /// of that class, which joins the list; the material owns it.
    /// \throws ZAXSysException "type is not a material extension" when \a key names no material extension class that
    /// the host can create; a feature of another kind that it did create stays.
    ZAXMatMaterialExtension* GetExtension(const QByteArray& key, bool create) const;

    /// Makes the ID label and thickness, "Steel - 2 mm", unless it is customised. Emits MaterialIdChanged() on a
    /// change.
    void UpdateMaterialId();

    void Save(ZAXGeoStream& stream) const override;
    /// Reads every version of the layout. A field younger than the stream keeps its value.
    /// \throws ZAXGeoGeometryNotFoundException for a stored extension that is no material extension.
    void Load(ZAXGeoStream& stream) override;
    /// Derives the ID, after the last-saved values are in place.
    void Initialize() override;
    /// Makes one packaging active where an old document named it apart, and lists the extension children again when
    /// one of them is missing in the list.
    void EndStateLoad() override;

    /// Admits packagings and material extensions.
    bool IsChildAllowed(const QMetaObject* childType) const override;
    /// False while another feature depends on the material.
    bool IsUserDeletable() const override;
    /// Sets an error message on each of: an empty ID, an empty type, a thickness below 0.001.
    bool UpdateResult() override;
    /// Gives the copy an ID of its own, "X (Copy)", "X (Copy 2)", a new random colour, and takes the link to the
    /// catalogue from it if it has a remote key.
    void PostDuplicate(const ZAXFeatObject* source, const ZAXFeatObject* duplicated) override;

Q_SIGNALS:
    void MaterialIdChanged(const QString& id);
    void MaterialIdCustomizedChanged(bool customized);
    void MaterialTypeChanged(const QString& type);
    void ThicknessChanged(double thickness);
    void CategoryChanged(const QString& category);
    void DensityChanged(double density);
    void CommentChanged(const QString& comment);
    void ProviderIdChanged(const QByteArray& id);
    void RemoteKeyChanged(const QByteArray& key);
    void NestingColorChanged(const QColor& color);
    /// An item joined the list of extensions; null for one that points at nothing.
    void MaterialExtensionAdded(ZAXMatMaterialExtension* materialExtension);
    /// An item left the list of extensions; null for one that points at nothing.
    void MaterialExtensionRemoved(ZAXMatMaterialExtension* materialExtension);

protected:
    /// A new material, the last child of \a root.
    /// \throws ZAXSysException "A material needs a materials root as its parent." for null.
    explicit ZAXMatMaterial(ZAXMatRoot* root);

private:
    ZAXSysLengthValue ReadThickness() const;
    void WriteThickness(const ZAXSysLengthValue& thickness);
    ZAXSysDensityValue ReadDensity() const;
    void WriteDensity(const ZAXSysDensityValue& density);
    QString NewCopyId() const;

    /// Never called: it proves at build time that the host can re-create the class from a stream.
    void _constructor_checker();

    std::unique_ptr<ZAXMatMaterialPrivate> d_ptr;
};

#endif
