#ifndef ZAXMATJSONFILEPROVIDERPRIVATE_H
#define ZAXMATJSONFILEPROVIDERPRIVATE_H

// Private to the library: not installed, and free to change.

#include "ZAXMatDefinition.h"
#include "ZAXMatFileTime.h"
#include "ZAXMatRecordTable.h"

#include <QJsonObject>
#include <QMultiHash>

#include <optional>

class QFile;

/// The catalogue in memory and the file that it is read from and written to.
class ZAXMatJsonFileProviderPrivate
{
public:
    using Links = QMultiHash<QByteArray, QByteArray>;

    ZAXMatJsonFileProviderPrivate(const QByteArray& id, const std::optional<QString>& label, const QString& directory);

    /// Replaces the tables by what the file holds if that is not what was read last. They stay if it cannot be read.
    void LoadIfChanged();
    /// Replaces the file by the tables. False, with the reason logged, when that fails.
    bool Write();

    /// The keys of the packagings of a material, the one that was linked last in front.
    QList<QByteArray> GetPackagingKeys(const QByteArray& materialKey);
    /// Stores \a packaging and links it to its material.
    void AddPackaging(const ZAXMatDefinition& packaging);
    /// Removes and unlinks a packaging; false when there is none.
    bool RemovePackaging(const QByteArray& key);
    /// The table that \a type is kept in: packagings for anything but a material.
    ZAXMatRecordTable& RecordsOf(ZAXMatDefinition::Type type);

    const QByteArray id;
    /// Null for the default label, which follows the user's language.
    const std::optional<QString> label;
    const QString filePath;
    const ZAXMatFileTime fileTime;

    /// Modification time of the file at the last load, at first the time of construction.
    ZAXMatFileTime::Time lastFileTime;
    /// Set before the first load and after a Commit(): the file is to be read whatever its time, since times are too
    /// coarse to tell a file from one that was written a moment later.
    bool mustLoad = true;
    bool isReadFailureLogged = false;

    ZAXMatRecordTable materials;
    ZAXMatRecordTable packagings;

private:
    /// Replaces the tables by what \a file holds, which is open. Gives the reason why it cannot; null when it did.
    QString TakeText(QFile& file);
    void TakeRecords(const ZAXMatRecordTable::Records& records);
    /// The links, made if need be.
    Links& GetLinks();
    /// Overwrites \a file, which is open. False, with the reason logged, when that fails.
    bool WriteInPlace(QFile& file, const QByteArray& text);

    /// Material key to the keys of its packagings: the link of a packaging to the material whose key it holds. Null
    /// until somebody asks for one, as long as it follows from the packagings and their order.
    std::optional<Links> materialPackagings;
};

#endif
