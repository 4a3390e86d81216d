#ifndef ZAXMATNESTINGCOLOR_H
#define ZAXMATNESTINGCOLOR_H

// Private: how a material comes by the colour it is nested in.

#include <QColor>
#include <QRandomGenerator>

/// An opaque colour of the low eight bits of three numbers from \a generator: blue, then green, then red.
inline QColor ZAXMatDrawNestingColor(QRandomGenerator& generator)
{
    const auto draw = [&generator] { return static_cast<int>(generator.generate() & 0xFFu); };
    const int blue = draw();
    const int green = draw();
    const int red = draw();
    return QColor(red, green, blue, 255);
}

#endif
