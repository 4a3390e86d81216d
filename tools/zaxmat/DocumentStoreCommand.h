#ifndef ZAXMAT_DOCUMENTSTORECOMMAND_H
#define ZAXMAT_DOCUMENTSTORECOMMAND_H

#include "CommandOptions.h"
#include "OpenedDocument.h"

namespace zaxmat {

struct DocumentStoreOptions
{
    DocumentOptions document;
    CatalogueOptions catalogue;
    /// A material of the document, as FindObject() reads it.
    QString material;
    /// The record to change, as FindMaterials() reads it; the one that the material came from if empty.
    QString record;
    /// Whether a new record is made in any case.
    bool isNew = false;
    /// Whether the stock forms of the material are stored too.
    bool hasStockForms = false;
};

/// Writes a material of a document to a catalogue. Prints what is different there.
/// Whenever this fails, the catalogue is what it was.
/// \throws Failure
ExitCode RunDocumentStore(const DocumentStoreOptions& options, Output& output);

/// Declares the command to \a program; when it is the one given, \a chosen becomes its action.
void AddDocumentStoreCommand(CLI::App& program, Action& chosen);

} // namespace zaxmat

#endif
