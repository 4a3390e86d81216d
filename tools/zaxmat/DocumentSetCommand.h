#ifndef ZAXMAT_DOCUMENTSETCOMMAND_H
#define ZAXMAT_DOCUMENTSETCOMMAND_H

#include "CommandOptions.h"
#include "OpenedDocument.h"

namespace zaxmat {

struct DocumentSetOptions
{
    DocumentOptions document;
    /// An object, as FindObject() reads it.
    QString object;
    /// "property=value", as SetObjectValues() reads them.
    QStringList settings;
};

/// Changes values of an object of a document, all of them or none, and saves the document. Prints what is different.
/// Whenever this fails, the file is what it was.
/// \throws Failure
ExitCode RunDocumentSet(const DocumentSetOptions& options, Output& output);

/// Declares the command to \a program; when it is the one given, \a chosen becomes its action.
void AddDocumentSetCommand(CLI::App& program, Action& chosen);

} // namespace zaxmat

#endif
