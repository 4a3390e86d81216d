#ifndef ZAXMAT_MANUALPAGE_H
#define ZAXMAT_MANUALPAGE_H

#include <QString>

namespace CLI {
class App;
} // namespace CLI

namespace zaxmat {

/// The manual page of \a program, in roff with the macros of man(7): all that the helps of its commands say.
QString ManualPage(const CLI::App& program);

} // namespace zaxmat

#endif
