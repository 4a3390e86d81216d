#ifndef ZAXFRESHPROCESS_H
#define ZAXFRESHPROCESS_H

#include <QByteArray>
#include <QList>
#include <QString>
#include <QStringList>

#include <functional>

#include <sys/wait.h>
#include <unistd.h>

/// Runs \a scenario in a child process, so that what it does to process-wide state ends with it, and gives what it
/// wrote down; a last entry "exit <status>" when the child ended otherwise than by returning from \a scenario.
inline QStringList InAFreshProcess(const std::function<QStringList()>& scenario)
{
    int ends[2];
    if (pipe(ends) != 0)
        return {QLatin1String("no pipe")};
    const pid_t child = fork();
    if (child == 0) {
        close(ends[0]);
        const QByteArray text = scenario().join(u'\n').toUtf8();
        const bool isWritten = write(ends[1], text.constData(), static_cast<size_t>(text.size())) == text.size();
        _exit(isWritten ? 0 : 1);
    }
    close(ends[1]);
    QByteArray text;
    char buffer[4096];
    for (ssize_t size = read(ends[0], buffer, sizeof buffer); size > 0; size = read(ends[0], buffer, sizeof buffer))
        text.append(buffer, static_cast<qsizetype>(size));
    close(ends[0]);
    int status = 0;
    waitpid(child, &status, 0);
    QStringList lines = QString::fromUtf8(text).split(u'\n', Qt::SkipEmptyParts);
    if (status != 0)
        lines.append(QStringLiteral("exit %1").arg(WEXITSTATUS(status)));
    return lines;
}

#endif
