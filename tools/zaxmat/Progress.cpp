#include "Progress.h"

#include "Output.h"

#include <cstdio>

namespace zaxmat {

namespace {

/// Milliseconds until the line appears, and from one rewriting to the next.
constexpr qint64 firstTime = 1000;
constexpr qint64 interval = 100;

void PrintOver(const QString& line)
{
    const QByteArray text = '\r' + line.toUtf8();
    std::fwrite(text.constData(), 1, text.size(), stderr);
    std::fflush(stderr);
}

} // namespace

Progress::Progress(const Output& output, const QString& what, qsizetype total)
    : m_what(what), m_total(total), m_isWanted(!output.IsQuiet() && IsTerminal(stderr)), m_next(firstTime)
{
    m_timer.start();
}

Progress::~Progress()
{
    if (m_width > 0)
        PrintOver(QString(m_width, u' ') + u'\r');
}

void Progress::Advance(qsizetype done)
{
    if (!m_isWanted || m_timer.elapsed() < m_next)
        return;
    m_next = m_timer.elapsed() + interval;
    const QString line = m_what + u' ' + QString::number(done) + u'/' + QString::number(m_total);
    m_width = qMax(m_width, line.size());
    PrintOver(line);
}

} // namespace zaxmat
