#ifndef DOCUMENT_H
#define DOCUMENT_H

#include "ZAXHostDocument.h"

#include <QByteArray>
#include <QColor>
#include <QList>
#include <QString>

class QDataStream;
class ZAXMatRoot;

namespace bench {

/// The fields of a packaging, bare.
struct BarePackaging
{
    QString label;
    double length = 0;
    double width = 0;
    int form = 0;
    double cost = 0;
    QString comment;
    QByteArray remoteKey;
    bool isActive = false;
};

/// The fields of a material with its packagings, bare.
struct BareMaterial
{
    QString label;
    QString materialId;
    bool isMaterialIdCustomized = false;
    QString materialType;
    double thickness = 0;
    QString category;
    double density = 0;
    QString comment;
    QByteArray providerId;
    QByteArray remoteKey;
    QColor nestingColor;
    QList<BarePackaging> packagings;
};

using BareDocument = QList<BareMaterial>;

/// So many materials with three packagings each, the same ones every time.
BareDocument MakeBareDocument(int materials);

QByteArray Save(const BareDocument& bare);
BareDocument Load(const QByteArray& bytes);

/// Fills \a document, which must be new, with the features that have the fields of \a bare. No step can be undone.
ZAXMatRoot* Fill(ZAXHostDocument& document, const BareDocument& bare);

/// Ends the program, unless \a result is a success: a figure of what failed is worth nothing.
void Require(const ZAXHostResult& result);

} // namespace bench

#endif
