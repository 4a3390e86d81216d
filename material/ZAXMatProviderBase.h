#ifndef ZAXMATPROVIDERBASE_H
#define ZAXMATPROVIDERBASE_H

#include "ZAXMatDefinition.h"
#include "ZAXMatGlobal.h"

#include <QByteArray>
#include <QList>
#include <QMultiHash>
#include <QString>
#include <QVariant>

#include <memory>
#include <utility>

class ZAXMatProviderBasePrivate;

/// A catalogue of materials and of the packagings that each is bought in. Every record has a key, an opaque byte
/// string compared byte for byte; every packaging belongs to one material.
///
/// A provider says which extension types it stores values for and which properties under each of them (the empty
/// extension key means the properties of the material or packaging itself), and whether it can be written to. One that
/// overrides GetMaterialKeys() and GetMaterial() alone is a read-only catalogue of materials without packagings.
///
/// No operation throws: what is unknown or refused is told by false, an empty list or an invalid record. A provider is
/// used from one thread at a time.
///
/// The order of the virtual operations is part of the interface, since other modules derive from this class.
class ZAXMATERIAL_EXPORT ZAXMatProviderBase
{
    Q_DECLARE_PRIVATE(ZAXMatProviderBase)

public:
    /// A value that belongs to the host, which defines what any but the first one means.
    enum State : int
    {
        InitialState = 100, ///< from construction until SetState()
    };

    virtual ~ZAXMatProviderBase();
    ZAXMatProviderBase(const ZAXMatProviderBase&) = delete;
    ZAXMatProviderBase& operator=(const ZAXMatProviderBase&) = delete;

    /// Whether the catalogue refuses to be changed. The base says yes.
    virtual bool IsReadOnly() const;

    /// The host's value for this object; InitialState until it is set.
    virtual State GetState() const;
    /// Stores any \a state.
    virtual void SetState(State state);

    /// Class names of the extension types that material records hold values for, without the empty key. None by
    /// default.
    virtual QList<QByteArray> GetSupportedMaterialExtensions() const;
    /// Whether materials can have packagings. The base says no.
    virtual bool HasPackaging() const;
    /// Class names of the extension types that packaging records hold values for, without the empty key. None by
    /// default.
    virtual QList<QByteArray> GetSupportedPackagingExtensions() const;
    /// Names of the properties that material records hold under \a extension. None by default.
    virtual QList<QByteArray> GetSupportedMaterialProperties(const QByteArray& extension) const;
    /// Names of the properties that packaging records hold under \a extension. None by default.
    virtual QList<QByteArray> GetSupportedPackagingProperties(const QByteArray& extension) const;

    /// The keys of all materials, in the provider's order.
    virtual QList<QByteArray> GetMaterialKeys() const = 0;
    /// The material under \a key, an invalid record when there is none.
    virtual ZAXMatDefinition GetMaterial(const QByteArray& key) const = 0;
    /// Makes a material under a new key and returns its record, an invalid one when none was made, as by default.
    virtual ZAXMatDefinition CreateMaterial(const QString& name);
    /// Removes the material under \a key. False when that was refused, as by default.
    virtual bool RemoveMaterial(const QByteArray& key);

    /// The keys of the packagings of a material, in the provider's order. None by default.
    virtual QList<QByteArray> GetPackagingKeys(const QByteArray& materialKey) const;
    /// The packaging under \a key, an invalid record when there is none, as by default.
    virtual ZAXMatDefinition GetPackaging(const QByteArray& key) const;
    /// Makes a packaging of a material under a new key and returns its record, an invalid one when none was made, as by
    /// default.
    virtual ZAXMatDefinition CreatePackaging(const QString& name, const QByteArray& materialKey);
    /// Removes the packaging under \a key. False when that was refused, as by default.
    virtual bool RemovePackaging(const QByteArray& key);

    /// Takes name and values of \a definition over into the record of that key and type. False when that was refused,
    /// as by default.
    virtual bool Update(const ZAXMatDefinition& definition);

    /// Whether GetSupportedMaterialProperties() lists \a property under \a extension.
    bool IsMaterialProperty(const QByteArray& property, const QByteArray& extension) const;
    /// Whether GetSupportedPackagingProperties() lists \a property under \a extension.
    bool IsPackagingProperty(const QByteArray& property, const QByteArray& extension) const;

    /// The keys of the materials that meet all \a criteria (extension key to property name and required value), in the
    /// order of GetMaterialKeys(); all keys for no criteria. Numbers compare by value, whatever their types, without
    /// tolerance; a text equals nothing but the same text. An invalid QVariant asks for a pair that is not defined or
    /// holds none. Reads every material, so ask a cache (ZAXMatProviderCache) when searching often.
    QList<QByteArray> FindMaterials(const QMultiHash<QByteArray, std::pair<QByteArray, QVariant>>& criteria) const;
    /// The keys of the materials whose "materialType" is \a materialType, letter case included, and whose "thickness",
    /// in millimetres, is exactly \a thickness.
    QList<QByteArray> FindMaterials(const QString& materialType, double thickness) const;

protected:
    ZAXMatProviderBase();

private:
    std::unique_ptr<ZAXMatProviderBasePrivate> d_ptr;
};

#endif
