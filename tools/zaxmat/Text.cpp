#include "Text.h"

#include <QDir>
#include <QLocale>

#include <algorithm>
#include <cmath>

namespace zaxmat {

QString Printable(const QString& text)
{
    QString printable = text;
    std::ranges::replace_if(
        printable, [](QChar character) { return character.category() == QChar::Other_Control; }, QChar(0xFFFD));
    return printable;
}

QString Quoted(const QString& text)
{
    return u'"' + Printable(text) + u'"';
}

QString QuotedPath(const QString& path)
{
    return Quoted(QDir::toNativeSeparators(path));
}

QString NumberText(double number)
{
    const double magnitude = std::abs(number);
    const char format = magnitude == 0.0 || (magnitude >= 1e-6 && magnitude < 1e15) ? 'f' : 'g';
    return QString::number(number, format, QLocale::FloatingPointShortest);
}

} // namespace zaxmat
