#ifndef ZAXMAT_STYLE_H
#define ZAXMAT_STYLE_H

#include <QString>

#include <cstdio>

namespace zaxmat {

/// What a text is to stand out as.
enum class Emphasis
{
    None,
    Heading, ///< bold
    Added,   ///< green
    Removed, ///< red
    Changed, ///< yellow
    Error,   ///< red
};

/// Whether \a stream leads to a terminal.
bool IsTerminal(std::FILE* stream);

/// Whether \a stream leads to a terminal that shows colours, and the user wants them: TERM is not "dumb", and NO_COLOR
/// is not set, or empty.
bool IsColoured(std::FILE* stream);

/// \a text as a terminal shows it with \a emphasis.
QString Emphasized(const QString& text, Emphasis emphasis);

} // namespace zaxmat

#endif
