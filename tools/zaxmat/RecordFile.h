#ifndef ZAXMAT_RECORDFILE_H
#define ZAXMAT_RECORDFILE_H

#include "ZAXMatDefinition.h"

#include <QByteArray>
#include <QList>
#include <QString>

namespace zaxmat {

/// The materials.json that \a path leads to: \a path itself unless that is a folder.
QString CatalogueFileAt(const QString& path);

/// The bytes of the catalogue \a path.
/// \throws Failure (FileFailure) when it is no file, or cannot be read.
QByteArray ReadRecordFile(const QString& path);

/// The records of the catalogue \a path as a provider reads them, materials first, each kind by name. Any number of
/// catalogues can be read at a time.
/// \throws Failure (FileFailure) when it cannot be read or is damaged, which says where.
QList<ZAXMatDefinition> ReadRecords(const QString& path);

} // namespace zaxmat

#endif
