#ifndef CATALOGUETEXT_H
#define CATALOGUETEXT_H

#include <QByteArray>
#include <QString>
#include <QStringList>

class ZAXMatProviderBase;

/// JSON with single quotes in the place of double ones.
QByteArray Json(QByteArray text);

/// A record as a member of a catalogue, in the quotes of Json().
QByteArray MaterialText(const QByteArray& key, const QByteArray& properties = "{}");
QByteArray PackagingText(const QByteArray& key, const QByteArray& materialKey);
QByteArray CatalogueOf(const QByteArrayList& members);

/// What \a provider holds: a line for each material with its thickness and the names of its packagings, in order.
QStringList ContentOf(const ZAXMatProviderBase& provider);

/// What the system says about an error, in the language of the locale, as a pattern.
QString SystemError(int number);
/// The test fails unless a warning comes that matches \a pattern.
void ExpectWarning(const QString& pattern);

#endif
