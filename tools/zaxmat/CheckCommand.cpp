#include "CheckCommand.h"

#include "CatalogueCheck.h"
#include "CatalogueFile.h"
#include "Failure.h"
#include "FileLock.h"
#include "FileReplacement.h"
#include "Output.h"
#include "Table.h"
#include "Text.h"

#include "ZAXHostFileSaver.h"

#include <QFileInfo>

#include <algorithm>
#include <memory>
#include <optional>

namespace zaxmat {

namespace {

/// What became of \a finding, for people.
Cell StateOf(const Finding& finding, bool isFixing)
{
    if (!finding.isFixable)
        return QString();
    return isFixing ? Cell(Text::tr("mended"), Emphasis::Added) : Cell(Text::tr("yes"));
}

Table TableOf(const QList<Finding>& findings, bool isFixing)
{
    constexpr auto right = Table::Alignment::Right;
    constexpr auto left = Table::Alignment::Left;
    Table table({{Text::tr("Line"), right, QLatin1String("line")},
                 {Text::tr("Column"), right, QLatin1String("column")},
                 {{}, left, QLatin1String("problem")},
                 {Text::tr("Record"), left, QLatin1String("name")},
                 {{}, left, QLatin1String("key")},
                 {{}, left, QLatin1String("property")},
                 {Text::tr("Problem"), left, QLatin1String("message")},
                 {Text::tr("Can be mended"), left},
                 {{}, left, QLatin1String("isFixable")},
                 {{}, left, QLatin1String("isFixed")}});
    for (const Finding& finding : findings) {
        const auto number = [](qsizetype value) { return Cell(QString::number(value), QJsonValue(qint64(value))); };
        table.AddRow({number(finding.position.line), number(finding.position.column), finding.problem,
                      Cell(finding.name.isEmpty() ? finding.key : finding.name, QJsonValue(finding.name)), finding.key,
                      finding.property, Cell(finding.message), StateOf(finding, isFixing),
                      Cell(QString(), QJsonValue(finding.isFixable)),
                      Cell(QString(), QJsonValue(finding.isFixable && isFixing))});
    }
    return table;
}

void PrintSummary(const QString& path, const QList<Finding>& findings, bool isFixing, Output& output)
{
    if (findings.isEmpty())
        return output.Print(Text::tr("The catalogue %1 is in order.").arg(QuotedPath(path)));
    const auto fixable = std::ranges::count_if(findings, &Finding::isFixable);
    output.Print(QString());
    output.Print((isFixing ? Text::tr("Catalogue %1: found: %2, mended: %3")
                           : Text::tr("Catalogue %1: found: %2, can be mended with --fix: %3"))
                     .arg(QuotedPath(path), QString::number(findings.size()), QString::number(fixable)));
    if (findings.first().problem == QLatin1String("syntax"))
        output.Print(isFixing && fixable > 0 ? Text::tr("It can be read now. Check it once more for other problems.")
                                             : Text::tr("Other problems show when it can be read."));
}

/// Writes what is mended. \returns where the bytes that were there are kept.
QString Fix(const QString& path, const QByteArray& bytes, const CatalogueCheck& check)
{
    // Whatever is wrong with the mending must not reach the file.
    const CatalogueCheck again = CheckCatalogue(check.mended);
    const bool isSyntax = check.findings.first().problem == QLatin1String("syntax");
    const bool isUnreadable = !again.findings.isEmpty() && again.findings.first().problem == QLatin1String("syntax");
    if (isUnreadable || (!isSyntax && again.findings.size() > check.findings.size()))
        throw Failure(ExitCode::InternalError, Text::tr("Mending would make it worse. Nothing was written."));
    const QString copy = KeepCopy(path, bytes, QLatin1String(".bak"));
    ReplaceCatalogueFile(path, bytes, check.mended);
    return copy;
}

} // namespace

ExitCode RunCheck(const CheckOptions& options, Output& output)
{
    const QString path = CatalogueFilePath(options.catalogue);
    std::optional<FileLock> lock;
    if (options.isFixing && QFileInfo(path).isFile())
        lock.emplace(ZAXHostFileSaver::TargetOf(path), output);
    const QByteArray bytes = ReadCatalogueFile(path);
    const CatalogueCheck check = CheckCatalogue(bytes);
    const bool isFixing = options.isFixing && std::ranges::any_of(check.findings, &Finding::isFixable);
    const QString copy = isFixing ? Fix(path, bytes, check) : QString();
    if (!check.findings.isEmpty() || output.GetFormat() != Format::Table)
        output.Print(TableOf(check.findings, isFixing));
    PrintSummary(path, check.findings, isFixing, output);
    if (isFixing)
        output.AddNote(Text::tr("the catalogue as it was is kept in %1").arg(QuotedPath(copy)));
    for (const QString& extension : check.unknownExtensions)
        output.AddNote(Text::tr("the values under %1 were not judged: no loaded module provides that extension")
                           .arg(Quoted(extension)));
    const bool isLeft =
        std::ranges::any_of(check.findings, [&](const Finding& finding) { return !isFixing || !finding.isFixable; });
    return isLeft ? ExitCode::InvalidValues : ExitCode::Done;
}

void AddCheckCommand(CLI::App& program, Action& chosen)
{
    CLI::App* const command =
        DeclareCommand(program, QLatin1String("check"), Text::tr("Looks for mistakes in a catalogue, and mends some."));
    const auto options = std::make_shared<CheckOptions>();
    AddCatalogueOptions(*command, options->catalogue);
    AddFlag(*command, QLatin1String("--fix"),
            Text::tr("Mends what can be mended without losing anything, after keeping a copy of the "
                     "file beside it. Nothing else is changed."),
            options->isFixing);
    AddExample(*command, QLatin1String("zaxmat check --catalogue examples/catalogue"));
    WhenChosen(*command,
               [options, &chosen] { chosen = [options](Output& output) { return RunCheck(*options, output); }; });
}

} // namespace zaxmat
