#include "ManualCommand.h"

#include "ManualPage.h"
#include "Text.h"

namespace zaxmat {

void AddManualCommand(CLI::App& program, Action& chosen)
{
    CLI::App* const command =
        DeclareCommand(program, QLatin1String("manual"), Text::tr("Prints the manual page, which man(1) shows."));
    AddExample(*command, QLatin1String("zaxmat manual > zaxmat.1"));
    // Made at once, as long as the program is declared.
    WhenChosen(*command, [&program, &chosen] {
        chosen = [page = ManualPage(program)](Output& output) {
            output.PrintText(page.trimmed());
            return ExitCode::Done;
        };
    });
}

} // namespace zaxmat
