#include "Output.h"

#include "Text.h"

#include <QFile>

#include <cstdio>

namespace zaxmat {

namespace {

void PrintToError(const QString& text)
{
    const QByteArray line = text.toUtf8() + '\n';
    std::fwrite(line.constData(), 1, line.size(), stderr);
}

} // namespace

void Output::Print(const QString& text)
{
    m_text += text.toUtf8() + '\n';
}

bool Output::Write(QString* reason)
{
    QFile file;
    const bool isWritten =
        file.open(stdout, QIODevice::WriteOnly) && file.write(m_text) == m_text.size() && file.flush();
    if (!isWritten)
        *reason = file.errorString();
    m_text.clear();
    return isWritten;
}

void PrintError(const QString& message)
{
    PrintToError(QLatin1String("zaxmat: ") + message);
}

void PrintNote(const QString& message)
{
    PrintToError(QLatin1String("zaxmat: ") + Text::tr("note: ") + message);
}

} // namespace zaxmat
