#ifndef ZAXMAT_DOCUMENTTREECOMMAND_H
#define ZAXMAT_DOCUMENTTREECOMMAND_H

#include "CommandOptions.h"
#include "OpenedDocument.h"

namespace zaxmat {

struct DocumentTreeOptions
{
    DocumentOptions document;
};

/// Prints all objects of a document.
/// \throws Failure
ExitCode RunDocumentTree(const DocumentTreeOptions& options, Output& output);

/// Declares the command to \a program; when it is the one given, \a chosen becomes its action.
void AddDocumentTreeCommand(CLI::App& program, Action& chosen);

} // namespace zaxmat

#endif
