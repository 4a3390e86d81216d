#ifndef ZAXMATJSONFILEPROVIDER_H
#define ZAXMATJSONFILEPROVIDER_H

#include "ZAXMatProvider.h"

class ZAXMatJsonFileProviderPrivate;

/// The catalogue in a file "materials.json" of a directory: one JSON object with one member per record, materials and
/// packagings side by side, each in the form of ZAXMatDefinition::ToJson() and named by its key.
///
/// The whole catalogue is held in memory. Every operation on records first looks at the file's modification time and
/// reads the file again when that has changed: what was not committed is lost then. A missing or unreadable file is
/// tried again each time, the records in memory staying. A malformed file counts as an empty one, and the next Commit()
/// replaces it. Creating, updating and removing change the records in memory alone; Commit() writes them.
///
/// The properties and extension types that can be stored are those of ZAXMatMaterial, ZAXMatPackaging and the
/// registered extension plug-ins (ZAXMatExtensionPlugin), without what ties a feature to its document or its catalogue.
///
/// What goes wrong with the file is told to nobody but the log, category "zax.material.json".
class ZAXMATERIAL_EXPORT ZAXMatJsonFileProvider : public ZAXMatProvider
{
    Q_DECLARE_PRIVATE(ZAXMatJsonFileProvider)

public:
    /// The catalogue in "C:/JSONDOC", with the id "ZAXMatJsonFileProvider". Where there are no drives that is a
    /// directory named so below the current one.
    /// \throws ZAXSysException "A provider with the given ID already exists." while there is another provider of that
    /// id.
    ZAXMatJsonFileProvider();
    /// The same for the catalogue in \a directory. The directory need not exist, and is never created.
    explicit ZAXMatJsonFileProvider(const QString& directory);
    /// The same with an id and a label of its own, so that several catalogues can be open at a time.
    ZAXMatJsonFileProvider(const QByteArray& id, const QString& label, const QString& directory);
    ~ZAXMatJsonFileProvider() override;

    /// False, even when the file cannot be written to.
    bool IsReadOnly() const override;

    /// The class names of the plug-ins' material extensions, in the order of the plug-ins, duplicates included.
    QList<QByteArray> GetSupportedMaterialExtensions() const override;
    /// True.
    bool HasPackaging() const override;
    /// The class names of the plug-ins' packaging extensions, in the order of the plug-ins, duplicates included.
    QList<QByteArray> GetSupportedPackagingExtensions() const override;
    /// The properties in the order of their declaration: for the empty key those that ZAXMatMaterial declares, for an
    /// extension class of a plug-in those that it and its bases down from ZAXMatMaterialExtension declare, once per
    /// plug-in of that class; all without "providerId", "remoteKey" and "nestingColor". Empty for an unknown class.
    QList<QByteArray> GetSupportedMaterialProperties(const QByteArray& extension) const override;
    /// The same for ZAXMatPackaging and ZAXMatPackagingExtension, without "remoteKey".
    QList<QByteArray> GetSupportedPackagingProperties(const QByteArray& extension) const override;

    /// The keys in no particular order.
    QList<QByteArray> GetMaterialKeys() const override;
    ZAXMatDefinition GetMaterial(const QByteArray& key) const override;
    /// A record with a new key, \a name and every supported pair without a value. It reports a change.
    ZAXMatDefinition CreateMaterial(const QString& name) override;
    /// Removes the material's packagings too, each by RemovePackaging(); at the first that cannot be removed it stops
    /// and returns false, the material staying. False also for an unknown \a key, whose packagings go nevertheless.
    bool RemoveMaterial(const QByteArray& key) override;

    /// The keys of the material's packagings, the one linked last first.
    QList<QByteArray> GetPackagingKeys(const QByteArray& materialKey) const override;
    ZAXMatDefinition GetPackaging(const QByteArray& key) const override;
    /// A record with a new key, \a name and every supported pair without a value, linked to \a materialKey, whether
    /// there is such a material or not. It reports a change.
    ZAXMatDefinition CreatePackaging(const QString& name, const QByteArray& materialKey) override;
    /// False for an unknown \a key.
    bool RemovePackaging(const QByteArray& key) override;

    /// Copies name and values into the stored record, which keeps key, material key, type and saved copies. Looks among
    /// the packagings for anything but a material. False when there is no such record, and for an invalid one.
    bool Update(const ZAXMatDefinition& definition) override;

    /// The label given to the constructor, else "JSON File Provider" in the user's language.
    QString GetProviderLabel() const override;
    /// The id given to the constructor, else "ZAXMatJsonFileProvider".
    QByteArray GetProviderId() const override;
    /// Writes all records to the file, whatever it holds, and has the next operation read it again. The file is
    /// replaced as a whole and keeps its permissions, though it then belongs to who wrote it; a symbolic link to it
    /// stays. Only in a directory that takes no new file is it overwritten in place. If it cannot be written, or could
    /// not be read then since a value is nested in more than 1,024 levels, it stays as it was, and so do the records;
    /// what is overwritten in place is lost only if the system then refuses to take the old bytes back.
    void Commit() override;

private:
    explicit ZAXMatJsonFileProvider(std::unique_ptr<ZAXMatJsonFileProviderPrivate> data);

    std::unique_ptr<ZAXMatJsonFileProviderPrivate> d_ptr;
};

#endif
