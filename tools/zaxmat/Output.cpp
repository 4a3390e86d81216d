#include "Output.h"

#include "Csv.h"
#include "Progress.h"
#include "Table.h"
#include "Text.h"

#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <cstdio>

namespace zaxmat {

namespace {

void PrintLine(const QString& line, Emphasis emphasis)
{
    const QByteArray text =
        QByteArray("zaxmat: ") + (IsColoured(stderr) ? Emphasized(line, emphasis) : line).toUtf8() + '\n';
    std::fwrite(text.constData(), 1, text.size(), stderr);
}

} // namespace

Output::Output(const OutputOptions& options)
    : m_options(options), m_progressLine(std::make_unique<ProgressLine>(!options.isQuiet && IsTerminal(stderr)))
{
    m_progressLine->Show(Text::tr("working"));
}

Output::~Output() = default;

QString Output::Emphasize(const QString& text, Emphasis emphasis) const
{
    return m_isColoured ? Emphasized(text, emphasis) : text;
}

void Output::Print(const QString& text)
{
    if (!m_options.isQuiet)
        PrintText(text);
}

void Output::Print(const Table& table)
{
    switch (m_options.format) {
    case Format::Table:
        return PrintText(table.ToText(m_isColoured));
    case Format::Json:
        return PrintJson(table.ToJson());
    case Format::Csv:
        const QList<QStringList> rows = table.ToTexts();
        for (const QStringList& row : rows)
            m_text += CsvLine(row);
    }
}

void Output::PrintText(const QString& text)
{
    if (m_options.format == Format::Table)
        m_text += text.toUtf8() + '\n';
}

void Output::PrintJson(const QJsonValue& value)
{
    if (m_options.format == Format::Json)
        m_text += (value.isArray() ? QJsonDocument(value.toArray()) : QJsonDocument(value.toObject())).toJson();
}

void Output::AddNote(const QString& note)
{
    if (!m_options.isQuiet)
        m_notes.append(note);
}

void Output::PrintError(const QString& message)
{
    m_progressLine->Stop();
    zaxmat::PrintError(message);
}

bool Output::Write(QString* reason)
{
    m_progressLine->Stop();
    for (const QString& note : std::as_const(m_notes))
        PrintLine(Text::tr("note: %1").arg(note), Emphasis::None);
    QFile file;
    const bool isWritten =
        file.open(stdout, QIODevice::WriteOnly) && file.write(m_text) == m_text.size() && file.flush();
    if (!isWritten)
        *reason = file.errorString();
    return isWritten;
}

void PrintError(const QString& message)
{
    PrintLine(message, Emphasis::Error);
}

} // namespace zaxmat
