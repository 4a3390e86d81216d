#ifndef ZAXMAT_TEXT_H
#define ZAXMAT_TEXT_H

#include <QCoreApplication>
#include <QString>

namespace zaxmat {

/// The translation context of everything that the program says: Text::tr("...").
class Text
{
    Q_DECLARE_TR_FUNCTIONS(zaxmat)
};

/// \a text with control characters, line breaks among them, made visible: a name from a file cannot drive the terminal.
QString Printable(const QString& text);

/// Printable() in quotation marks.
QString Quoted(const QString& text);

/// The path as the user's system writes it, in quotation marks.
QString QuotedPath(const QString& path);

/// The shortest text that reads back to exactly \a number, with a decimal point in every locale.
QString NumberText(double number);

} // namespace zaxmat

#endif
