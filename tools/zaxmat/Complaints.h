#ifndef ZAXMAT_COMPLAINTS_H
#define ZAXMAT_COMPLAINTS_H

#include <QByteArray>
#include <QString>
#include <QStringList>

class ZAXFeatObject;

namespace zaxmat {

/// What is wrong with the values of features, one line each.
class Complaints
{
public:
    /// The value of \a property of \a feature is wrong, as \a text says.
    void Add(const ZAXFeatObject& feature, const QByteArray& property, const QString& text);

    /// Has \a feature and all below it check their values, and adds what they find.
    void AddInvalidValues(ZAXFeatObject& feature);

    /// Adds the values of \a feature that are right in a document, but must not be stored in a catalogue.
    void AddBelowLimits(const ZAXFeatObject& feature);

    /// \throws Failure (InvalidValues) if there is a complaint. The document's file \a path was not written then.
    void Raise(const QString& path) const;
    /// \throws Failure (InvalidValues) that begins with the sentence \a outcome if there is a complaint.
    void RaiseFor(const QString& outcome) const;

private:
    QStringList m_lines;
};

} // namespace zaxmat

#endif
