#ifndef CATALOGUEMODEL_H
#define CATALOGUEMODEL_H

#include "ZAXMatDefinition.h"

#include <QByteArray>
#include <QByteArrayList>
#include <QJsonObject>
#include <QList>
#include <QMap>

/// All that there is to know about \a value, the bits of a number included.
QByteArray Describe(const QVariant& value);
/// All that can be asked of \a record, but for what was saved.
QByteArrayList Describe(const ZAXMatDefinition& record);

/// What a catalogue's file says, kept the plain way.
struct CatalogueModel
{
    /// The records as Qt reads them from \a text.
    static QList<ZAXMatDefinition> ReadByQt(const QByteArray& text);
    static CatalogueModel FromText(const QByteArray& text);

    void AddPackaging(const ZAXMatDefinition& packaging);
    bool RemovePackaging(const QByteArray& key);
    /// Whether it was there; its packagings go in any case.
    bool RemoveMaterial(const QByteArray& key);

    /// The text of the file as QJsonDocument writes it.
    QByteArray ToText() const;

    QMap<QByteArray, ZAXMatDefinition> materials;
    QMap<QByteArray, ZAXMatDefinition> packagings;
    /// By the key of the material, the packaging linked last first.
    QMap<QByteArray, QByteArrayList> links;
};

#endif
