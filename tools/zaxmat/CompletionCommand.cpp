#include "CompletionCommand.h"

#include "BashCompletion.h"
#include "Text.h"

#include <memory>

namespace zaxmat {

void AddCompletionCommand(CLI::App& program, Action& chosen)
{
    CLI::App* const command = DeclareCommand(program, QLatin1String("completion"),
                                             Text::tr("Prints a script with which a shell completes command lines."));
    const auto shell = std::make_shared<QString>();
    AddText(*command, QLatin1String("bash"), QString(), Text::tr("The shell."), *shell)
        .Required()
        .Checked([](const QString& text) {
            return text == QLatin1String("bash") ? QString() : Text::tr("There is a script for bash only.");
        });
    AddExample(*command, QLatin1String("zaxmat completion bash > zaxmat-completion.bash"));
    // Made at once, as long as the program is declared.
    WhenChosen(*command, [shell, &program, &chosen] {
        chosen = [script = BashCompletion(program)](Output& output) {
            output.PrintText(script.trimmed());
            return ExitCode::Done;
        };
    });
}

} // namespace zaxmat
