#include "DocumentCommand.h"

#include "DocumentDuplicateCommand.h"
#include "DocumentRemoveCommand.h"
#include "DocumentSetCommand.h"
#include "DocumentShowCommand.h"
#include "DocumentStoreCommand.h"
#include "DocumentTreeCommand.h"
#include "DocumentValidateCommand.h"
#include "Text.h"

namespace zaxmat {

void AddDocumentCommand(CLI::App& program, Action& chosen)
{
    CLI::App* const command =
        DeclareCommand(program, QLatin1String("document"), Text::tr("Shows and changes the objects of a document."));
    // Before the footer, which commands below would take over.
    AddDocumentTreeCommand(*command, chosen);
    AddDocumentShowCommand(*command, chosen);
    AddDocumentSetCommand(*command, chosen);
    AddDocumentDuplicateCommand(*command, chosen);
    AddDocumentRemoveCommand(*command, chosen);
    AddDocumentValidateCommand(*command, chosen);
    AddDocumentStoreCommand(*command, chosen);
    SetFooter(
        *command,
        Text::tr("An object is named by its number in the tree (@12), by its name, label or catalogue key, by a path "
                 "of names "
                 "that ends with it (\"Structural steel - 2 mm/Sheet large\"), an extension by its class, or a "
                 "material by its "
                 "type.\n\n"
                 "A damaged document is read as far as it can be, and the exit code is 3 then; it is changed only with "
                 "--accept-damage. Objects that need a module which is not there stay as they are.\n\n"
                 "\"zaxmat document COMMAND --help\" explains a command."));
    AddExample(*command, QLatin1String("zaxmat document tree job.zaxdoc"));
}

} // namespace zaxmat
