#ifndef ZAXSYSABSTRACTENUMLOCALIZATION_H
#define ZAXSYSABSTRACTENUMLOCALIZATION_H

#include "ZAXSysExport.h"

#include <QList>
#include <QString>

#include <functional>

/// The labels of enumerations, as the user reads and writes them.
class ZAXSYSTEM_EXPORT ZAXSysAbstractEnumLocalization
{
public:
    ZAXSysAbstractEnumLocalization() = delete;

    /// Makes \a values of the enumeration with \a metaTypeId known, labelled by \a label, in this order. A second
    /// registration of an enumeration replaces the first; a \a metaTypeId of 0 or an empty \a label is ignored.
    /// The registration ends when the calling module leaves the process.
    static void RegisterValueLocalization(int metaTypeId, const QList<int>& values,
                                          const std::function<QString(int)>& label);

    /// The value whose current label is \a text, else the value of the enumerator named \a text, else -1.
    /// Labels are asked for at each call, so a change of language takes effect at once. Case counts.
    static int StringToInteger(int metaTypeId, const QString& text);

    /// The current label of \a value; empty for an enumeration or a value that is not registered.
    static QString IntegerToString(int metaTypeId, int value);

    /// The registered values in the order of their registration; empty for an unknown enumeration.
    static QList<int> GetValues(int metaTypeId);
};

#endif
