#ifndef ZAXMAT_CATALOGUECHECK_H
#define ZAXMAT_CATALOGUECHECK_H

#include "JsonText.h"

#include <QByteArray>
#include <QList>
#include <QString>
#include <QStringList>

#include <optional>

namespace zaxmat {

/// Something that is wrong with the text of a catalogue.
struct Finding
{
    /// What kind of mistake it is, one word that stays the same in every language.
    QString problem;
    TextPosition position;
    /// The record that it concerns, as far as it has a key and a name.
    QString key;
    QString name;
    /// The property that it concerns, "Extension.property" for one of an extension; empty for none.
    QString property;
    /// What is wrong, for the user.
    QString message;
    /// Whether it can be mended without losing anything.
    bool isFixable = false;
};

/// What is wrong with a catalogue, and what it looks like mended.
struct CatalogueCheck
{
    /// In the order of the text. A text that is no JSON has one finding, the first mistake.
    QList<Finding> findings;
    /// The text without the findings that can be mended, the rest of its bytes as they were.
    QByteArray mended;
    /// The extensions of which records hold values that cannot be judged, since no loaded module provides them.
    QStringList unknownExtensions;
};

/// Looks for everything in \a bytes, the contents of a materials.json, that makes the catalogue unreadable, that
/// readers would drop or misread, or that a material or stock form must not have.
CatalogueCheck CheckCatalogue(const QByteArray& bytes);

/// \a bytes, which is no JSON, with its commas and closing brackets put right. Empty unless that is enough, and
/// nothing can have been lost or have ended up in another place: every record is whole then, and holds nothing that a
/// record does not have.
std::optional<QByteArray> MendSyntax(const QByteArray& bytes);

} // namespace zaxmat

#endif
