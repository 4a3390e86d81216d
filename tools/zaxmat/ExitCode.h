#ifndef ZAXMAT_EXITCODE_H
#define ZAXMAT_EXITCODE_H

namespace zaxmat {

/// How a run of the program ended, for the shell. ExitCodesText() explains them to the user.
enum class ExitCode : int
{
    Done = 0,
    InvalidValues = 1,  ///< values that a material or a stock form must not have, or differences that were looked for
    WrongUsage = 2,     ///< a mistake in the arguments: unknown, ambiguous, no number
    FileFailure = 3,    ///< a file that cannot be read, understood or written
    FileChanged = 4,    ///< somebody else changed the same record meanwhile
    InternalError = 70, ///< a mistake in the program itself
};

} // namespace zaxmat

#endif
