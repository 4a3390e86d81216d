#include "ManualCommand.h"

#include "ManualPage.h"
#include "Text.h"

#include <CLI/CLI.hpp>

namespace zaxmat {

void AddManualCommand(CLI::App& program, Action& chosen)
{
    CLI::App* const command =
        program.add_subcommand("manual", Utf8(Text::tr("Prints the manual page, which man(1) shows.")));
    AddExample(*command, QLatin1String("zaxmat manual > zaxmat.1"));
    // Made at once, as long as the program is declared.
    command->callback([&program, &chosen] {
        chosen = [page = ManualPage(program)](Output& output) {
            output.PrintText(page.trimmed());
            return ExitCode::Done;
        };
    });
}

} // namespace zaxmat
