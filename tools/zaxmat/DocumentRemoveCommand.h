#ifndef ZAXMAT_DOCUMENTREMOVECOMMAND_H
#define ZAXMAT_DOCUMENTREMOVECOMMAND_H

#include "CommandOptions.h"
#include "OpenedDocument.h"

namespace zaxmat {

struct DocumentRemoveOptions
{
    DocumentOptions document;
    /// Objects, as FindObject() reads them.
    QStringList objects;
    /// Whether what is below them may go with them.
    bool isConfirmed = false;
};

/// Removes objects of a document with all below them, and saves the document. Prints what went.
/// Whenever this fails, the file is what it was.
/// \throws Failure
ExitCode RunDocumentRemove(const DocumentRemoveOptions& options, Output& output);

/// Declares the command to \a program; when it is the one given, \a chosen becomes its action.
void AddDocumentRemoveCommand(CLI::App& program, Action& chosen);

} // namespace zaxmat

#endif
