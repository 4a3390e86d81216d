#include "Output.h"

#include "Text.h"

#include <QFile>

#include <cstdio>

namespace zaxmat {

void Output::Print(const QString& text)
{
    m_text += text.toUtf8() + '\n';
}

bool Output::Write(QString* reason)
{
    for (const QString& note : std::as_const(m_notes))
        PrintError(Text::tr("note: %1").arg(note));
    QFile file;
    const bool isWritten =
        file.open(stdout, QIODevice::WriteOnly) && file.write(m_text) == m_text.size() && file.flush();
    if (!isWritten)
        *reason = file.errorString();
    return isWritten;
}

void PrintError(const QString& message)
{
    const QByteArray line = "zaxmat: " + message.toUtf8() + '\n';
    std::fwrite(line.constData(), 1, line.size(), stderr);
}

} // namespace zaxmat
