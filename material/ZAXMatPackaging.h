#ifndef ZAXMATPACKAGING_H
#define ZAXMATPACKAGING_H

#include "ZAXFeatObject.h"
#include "ZAXMatGlobal.h"
#include "ZAXSysDefinedValue.h"

#include <QByteArray>
#include <QList>
#include <QString>

#include <memory>

class ZAXMatMaterial;
class ZAXMatPackagingExtension;
class ZAXMatPackagingPrivate;

/// One stock form in which a material is bought or held: a rectangular sheet or a roll, with its dimensions and cost.
/// A child of its material; its own children are its extensions.
///
/// Setters take any value and raise the property's signal when it changes; UpdateResult() reports what is invalid.
/// Every change is undoable. The host remembers the length, width, form, cost and comment that were set last and
/// starts the next new packaging with them.
class ZAXMATERIAL_EXPORT ZAXMatPackaging : public ZAXFeatObject
{
    Q_OBJECT
    Q_DECLARE_PRIVATE(ZAXMatPackaging)
    Q_MOC_INCLUDE("ZAXMatPackagingExtension.h")

    Q_CLASSINFO("defaultLabel", "Packaging")
    Q_CLASSINFO("inputProps", "length width form cost comment packagingExtensions")
    Q_CLASSINFO("outputProps", "isActive")
    Q_CLASSINFO("visProps", "")
    Q_CLASSINFO("contextualActions", "")
    Q_CLASSINFO("editAction", "")
    Q_CLASSINFO("allowedParents", "ZAXMatMaterial")
    Q_CLASSINFO("PropertyLabel_length", "Length")
    Q_CLASSINFO("PropertyLabel_width", "Width")
    Q_CLASSINFO("PropertyLabel_form", "Form")
    Q_CLASSINFO("PropertyLabel_cost", "Cost")
    Q_CLASSINFO("PropertyLabel_comment", "Comment")
    Q_CLASSINFO("PropertyLabel_isActive", "Is Active")
    Q_CLASSINFO("PropertyLabel_remoteKey", "Remote Key")
    Q_CLASSINFO("PropertyLabel_packagingExtensions", "Packaging Extensions")
    Q_CLASSINFO("version", "4")

    Q_PROPERTY(ZAXSysLengthValue length READ ReadLength WRITE WriteLength NOTIFY LengthChanged)
    Q_PROPERTY(ZAXSysLengthValue width READ ReadWidth WRITE WriteWidth NOTIFY WidthChanged)
    Q_PROPERTY(Form form READ GetForm WRITE SetForm NOTIFY FormChanged)
    Q_PROPERTY(double cost READ GetCost WRITE SetCost NOTIFY CostChanged)
    Q_PROPERTY(QString comment READ GetComment WRITE SetComment NOTIFY CommentChanged)
    Q_PROPERTY(QByteArray remoteKey READ GetRemoteKey WRITE SetRemoteKey NOTIFY RemoteKeyChanged)
    Q_PROPERTY(bool isActive READ IsActive WRITE SetActive NOTIFY ActiveChanged)
    Q_PROPERTY(QList<ZAXMatPackagingExtension*> packagingExtensions READ GetExtensions)

public:
    /// The shape of the stock. The numbers are stored in documents.
    enum Form : int
    {
        Rectangular = 0, ///< a sheet of length by width
        Roll = 1,        ///< a coil, of which length is unrolled
    };
    Q_ENUM(Form)

    /// The names of the properties.
    static const char Property_length[];
    static const char Property_width[];
    static const char Property_form[];
    static const char Property_cost[];
    static const char Property_comment[];
    static const char Property_isActive[];
    static const char Property_remoteKey[];
    static const char Property_packagingExtensions[];

    /// The packaging that \a reference refers to, re-created in \a container by the host before Load().
    Q_INVOKABLE ZAXMatPackaging(ZAXGeoContainer* container, const ZAXGeoGeometryRef& reference);
    /// A new packaging, the last child of the ZAXMatMaterial \a parent.
    /// \throws ZAXSysException "A packaging needs a material as its parent." for any other parent, or none.
    Q_INVOKABLE explicit ZAXMatPackaging(ZAXFeatObject* parent);
    ~ZAXMatPackaging() override;

    /// Length in millimetres. A new packaging starts with what the user last chose, 1000 at first.
    double GetLength() const;
    /// Stores \a length as it is; UpdateResult() reports a value below 0.001. Emits LengthChanged() on a change.
    void SetLength(double length);

    /// Width in millimetres, of a roll too. A new packaging starts with what the user last chose, 500 at first.
    double GetWidth() const;
    /// Stores \a width as it is; UpdateResult() reports a value below 0.001. Emits WidthChanged() on a change.
    void SetWidth(double width);

    /// A new packaging starts with what the user last chose, Rectangular at first.
    Form GetForm() const;
    /// Stores \a form as it is, a value outside the enumeration too. Emits FormChanged() on a change.
    void SetForm(Form form);

    /// The price of one such sheet or roll, in whatever currency the workshop counts. A new packaging starts with what
    /// the user last chose, 1 at first.
    double GetCost() const;
    /// Stores \a cost as it is; UpdateResult() reports a value below 0.001. Emits CostChanged() on a change.
    void SetCost(double cost);

    /// Free text. A new packaging starts with what the user last wrote, empty at first.
    QString GetComment() const;
    /// Emits CommentChanged() on a change.
    void SetComment(const QString& comment);

    /// The key of the catalogue record that the packaging came from; empty for none.
    QByteArray GetRemoteKey() const;
    /// Emits RemoteKeyChanged() on a change.
    void SetRemoteKey(const QByteArray& key);

    /// Whether the stock form is in use for the job. False at first.
    bool IsActive() const;
    /// Emits ActiveChanged() on a change. Leaves the other packagings of the material alone: several may be active.
    void SetActive(bool active);

    /// The extensions in list order. Holds null where a document named an extension that could not be brought along.
    QList<ZAXMatPackagingExtension*> GetExtensions() const;
    /// The first listed extension whose class is named \a key. If there is none: null, or with \a create a new child
    /// of that class, which joins the list; the packaging owns it.
    /// \throws ZAXSysException "type is not a packaging extension" when \a key names no packaging extension class that
    /// the host can create; a feature of another kind that it did create stays.
    ZAXMatPackagingExtension* GetExtension(const QByteArray& key, bool create) const;

    /// All forms, in the order of their numbers.
    static QList<Form> GetAllForms();
    /// The name of \a form in the user's language; empty for a value outside the enumeration.
    static QString GetFormLabel(Form form);

    void Save(ZAXGeoStream& stream) const override;
    /// Reads every version of the layout. A field younger than the stream keeps its value.
    /// \throws ZAXGeoGeometryNotFoundException for a stored extension that is no packaging extension.
    void Load(ZAXGeoStream& stream) override;

    /// Admits packaging extensions.
    bool IsChildAllowed(const QMetaObject* childType) const override;
    /// False while another feature depends on the packaging.
    bool IsUserDeletable() const override;
    /// Sets an error message on each of length, width and cost that is below 0.001, whatever the form.
    bool UpdateResult() override;
    /// Takes the link to the catalogue from the copy.
    void PostDuplicate(const ZAXFeatObject* source, const ZAXFeatObject* duplicated) override;

Q_SIGNALS:
    void LengthChanged(double length);
    void WidthChanged(double width);
    void FormChanged(Form form);
    void CostChanged(double cost);
    void CommentChanged(const QString& comment);
    void ActiveChanged(bool state);
    void RemoteKeyChanged(const QByteArray& key);
    /// An item joined the list of extensions; null for one that points at nothing.
    void PackagingExtensionAdded(ZAXMatPackagingExtension* packagingExtension);
    /// An item left the list of extensions; null for one that points at nothing.
    void PackagingExtensionRemoved(ZAXMatPackagingExtension* packagingExtension);

protected:
    /// Lists the extension children again when one of them is missing in the list.
    void EndStateLoad() override;

private:
    friend class ZAXMatMaterial;

    explicit ZAXMatPackaging(ZAXMatMaterial* material);

    ZAXSysLengthValue ReadLength() const;
    void WriteLength(const ZAXSysLengthValue& length);
    ZAXSysLengthValue ReadWidth() const;
    void WriteWidth(const ZAXSysLengthValue& width);

    /// Never called: it proves at build time that the host can re-create the class from a stream.
    void _constructor_checker();

    std::unique_ptr<ZAXMatPackagingPrivate> d_ptr;
};

#endif
