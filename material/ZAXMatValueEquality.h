#ifndef ZAXMATVALUEEQUALITY_H
#define ZAXMATVALUEEQUALITY_H

// Private to the library: not installed, and free to change.

#include <QVariant>

/// Whether a catalogue takes two values for the same: as QVariant compares them, numbers of different types by their
/// value, but a text equals nothing but a text. (QVariant of Qt 6.4 reads a number out of a text to compare the two.)
inline bool ZAXMatIsSameValue(const QVariant& a, const QVariant& b)
{
    const auto isText = [](const QVariant& value) { return value.typeId() == QMetaType::QString; };
    return isText(a) == isText(b) && a == b;
}

#endif
