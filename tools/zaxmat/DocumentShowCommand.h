#ifndef ZAXMAT_DOCUMENTSHOWCOMMAND_H
#define ZAXMAT_DOCUMENTSHOWCOMMAND_H

#include "CommandOptions.h"
#include "OpenedDocument.h"

namespace zaxmat {

struct DocumentShowOptions
{
    DocumentOptions document;
    /// An object, as FindObject() reads it.
    QString object;
};

/// Prints all that an object of a document holds.
/// \throws Failure
ExitCode RunDocumentShow(const DocumentShowOptions& options, Output& output);

/// Declares the command to \a program; when it is the one given, \a chosen becomes its action.
void AddDocumentShowCommand(CLI::App& program, Action& chosen);

} // namespace zaxmat

#endif
