#ifndef ZAXMAT_DOCUMENTDUPLICATECOMMAND_H
#define ZAXMAT_DOCUMENTDUPLICATECOMMAND_H

#include "CommandOptions.h"
#include "OpenedDocument.h"

namespace zaxmat {

struct DocumentDuplicateOptions
{
    DocumentOptions document;
    /// An object, as FindObject() reads it.
    QString object;
    /// What is to be different in the copy: "property=value", as SetObjectValues() reads them.
    QStringList settings;
};

/// Copies an object of a document, with all below it, to a place behind it, and saves the document. Prints the copies.
/// Whenever this fails, the file is what it was.
/// \throws Failure
ExitCode RunDocumentDuplicate(const DocumentDuplicateOptions& options, Output& output);

/// Declares the command to \a program; when it is the one given, \a chosen becomes its action.
void AddDocumentDuplicateCommand(CLI::App& program, Action& chosen);

} // namespace zaxmat

#endif
