#ifndef ZAXMATDEFINITION_H
#define ZAXMATDEFINITION_H

#include "ZAXMatGlobal.h"

#include <QByteArray>
#include <QJsonValue>
#include <QList>
#include <QMultiHash>
#include <QSharedDataPointer>
#include <QString>
#include <QVariant>

class ZAXFeatObject;
class ZAXMatDefinitionPrivate;

/// The catalogue record of one material or of one packaging, a stock form of a material: a key, a name and a table of
/// property values, with a saved copy of name and values by which a change is told.
///
/// A value is addressed by an extension key and a property name. The empty extension key means the properties of the
/// material or packaging itself, any other key the class name of an extension. The pairs that are present in the table
/// are the record's schema: they are called defined, and may hold no value (an invalid QVariant).
///
/// Beware of the order of arguments: operations on values take (property, [value,] extension), operations on the
/// schema (extension, property).
///
/// Records are implicitly shared: a copy costs next to nothing and is unaffected by later changes to the original.
/// Copies may live in different threads; one record is not to be changed by two threads at once.
class ZAXMATERIAL_EXPORT ZAXMatDefinition
{
public:
    /// What a record describes. Other values can be stored and are carried as they are.
    enum Type : int
    {
        Material = 0,
        Packaging = 1,
    };

    /// An empty record: no key, no name, a material, nothing defined, nothing changed.
    ZAXMatDefinition();
    ZAXMatDefinition(const ZAXMatDefinition& other);
    ZAXMatDefinition& operator=(const ZAXMatDefinition& other);
    virtual ~ZAXMatDefinition();

    /// Identity of the record in its provider, compared byte for byte; empty means no record.
    QByteArray GetKey() const;
    void SetKey(const QByteArray& key);

    /// For a packaging the key of its material; empty for a material.
    QByteArray GetMaterialKey() const;
    void SetMaterialKey(const QByteArray& materialKey);

    /// Display name.
    QString GetName() const;
    void SetName(const QString& name);

    /// What the record describes; a material at first.
    Type GetType() const;
    void SetType(Type type);

    /// True exactly when the key is not empty.
    bool IsValid() const;

    /// Defines the pair without a value. A value that it had is cleared.
    void AddAllowedProperty(const QByteArray& extension, const QByteArray& property);
    /// Takes the pair and its value out. The extension stays, even without properties. Absent pairs are ignored.
    void RemoveAllowedProperty(const QByteArray& extension, const QByteArray& property);
    /// Whether the pair is present, with or without a value.
    bool IsDefined(const QByteArray& property, const QByteArray& extension = QByteArray()) const;
    /// The extension keys, in no particular order; the empty key among them when it is present.
    QList<QByteArray> GetDefinedExtensions() const;
    /// The names of the properties defined under \a extension, in no particular order; empty when it is absent.
    QList<QByteArray> GetDefinedProperties(const QByteArray& extension) const;

    /// The value of the pair; an invalid QVariant when it has none or is not defined.
    QVariant GetValue(const QByteArray& property, const QByteArray& extension = QByteArray()) const;
    /// Stores \a value, whatever it is, defining the pair if need be. False tells that the pair was not defined before.
    bool SetValue(const QByteArray& property, const QVariant& value, const QByteArray& extension = QByteArray());

    /// Makes the current name and values the saved ones.
    void Commit();
    /// Brings the saved name and values back.
    void Revert();
    /// Whether the name or a value differs from the saved one, or the saved table has other pairs. Values compare as
    /// QVariants do, but a text equals nothing but a text ("90" is not 90). Key, material key and type are not tracked.
    bool IsChanged() const;
    /// Replaces name and values by those of \a other, pairs that \a other lacks included. Everything else stays, the
    /// saved name and values among it.
    void CopyValues(const ZAXMatDefinition& other);

    /// Fills name and values from a material or packaging feature: the name from its label, the value of each defined
    /// pair from the property of that name, an invalid QVariant where there is no such property. Values of extensions
    /// that \a feature does not carry stay as they are, and so do the saved copies.
    /// \throws ZAXSysException "Types do not match." when a material's record meets a feature that is no material, or
    /// a packaging's one that is no packaging; the record is unchanged then. \a feature must not be null.
    void LoadFromFeature(const ZAXFeatObject* feature);
    /// Writes the name into the label of \a feature, which must not be null, and each defined value into the property
    /// of that name, creating missing extensions. What a property makes of a value, one that is missing included, is
    /// up to the property. The type is not checked; on a feature that can have no extensions only the base properties
    /// are written.
    /// \throws ZAXSysException when an extension key names no extension type of the right kind; what is written up to
    /// then stays written.
    void SaveToFeature(ZAXFeatObject* feature) const;

    /// The record as a JSON object: "key", "materialKey", "name", "type" and "properties", an object with an object of
    /// values per extension. A missing value is null. The saved copies are left out.
    QJsonValue ToJson() const;
    /// Reads what ToJson() gives. Values come back as the types that JSON knows, and keys of bytes beyond ASCII do not
    /// come back as they were. A missing or malformed member reads as empty, a type as Material. A table of values
    /// replaces the one of the same extension; other extensions and the saved copies stay. Anything but an object reads
    /// as an empty one.
    void FromJson(const QJsonValue& value);

    /// Compares key, name, type and values, these as IsChanged() does. Material key and saved copies play no part.
    bool operator==(const ZAXMatDefinition& other) const;
    bool operator!=(const ZAXMatDefinition& other) const;

private:
    friend class ZAXMatDefinitionPrivate;
    friend class ZAXMatProvider;
    /// A record with \a allowedProperties (extension key to property names) defined without values and unchanged.
    ZAXMatDefinition(const QByteArray& key, Type type, const QMultiHash<QByteArray, QByteArray>& allowedProperties);

    QSharedDataPointer<ZAXMatDefinitionPrivate> d;
};

Q_DECLARE_TYPEINFO(ZAXMatDefinition, Q_RELOCATABLE_TYPE);

#endif
