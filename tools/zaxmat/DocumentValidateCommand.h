#ifndef ZAXMAT_DOCUMENTVALIDATECOMMAND_H
#define ZAXMAT_DOCUMENTVALIDATECOMMAND_H

#include "CommandOptions.h"
#include "OpenedDocument.h"

namespace zaxmat {

struct DocumentValidateOptions
{
    DocumentOptions document;
};

/// Has all objects of a document check their values and prints what they find.
/// Returns InvalidValues when one is invalid.
/// \throws Failure
ExitCode RunDocumentValidate(const DocumentValidateOptions& options, Output& output);

/// Declares the command to \a program; when it is the one given, \a chosen becomes its action.
void AddDocumentValidateCommand(CLI::App& program, Action& chosen);

} // namespace zaxmat

#endif
