#include "Progress.h"

#include "Output.h"

#include <sys/ioctl.h>

namespace zaxmat {

namespace {

using namespace std::chrono_literals;

/// Until the line appears, and from one rewriting to the next.
constexpr auto firstTime = 1s;
constexpr auto interval = 100ms;

/// The columns of the terminal.
qsizetype WidthOf(std::FILE* stream)
{
    constexpr qsizetype usual = 80;
    winsize size = {};
    return ioctl(fileno(stream), TIOCGWINSZ, &size) == 0 && size.ws_col > 1 ? size.ws_col : usual;
}

void PrintOver(std::FILE* stream, const QString& line)
{
    const QByteArray text = '\r' + line.toUtf8();
    std::fwrite(text.constData(), 1, text.size(), stream);
    std::fflush(stream);
}

} // namespace

ProgressLine::ProgressLine(bool isWanted, std::FILE* stream) : m_isStopped(!isWanted), m_stream(stream)
{
    if (isWanted)
        m_thread = std::thread(&ProgressLine::Run, this);
}

ProgressLine::~ProgressLine()
{
    Stop();
}

void ProgressLine::Show(const QString& what, qsizetype done, qsizetype total)
{
    const std::lock_guard guard(m_mutex);
    m_what = what;
    m_done = done;
    m_total = total;
}

QString ProgressLine::GetWhat() const
{
    const std::lock_guard guard(m_mutex);
    return m_what;
}

void ProgressLine::Stop()
{
    {
        const std::lock_guard guard(m_mutex);
        m_isStopped = true;
    }
    m_stopped.notify_one();
    if (m_thread.joinable())
        m_thread.join();
}

void ProgressLine::Run()
{
    qsizetype width = 0;
    auto pause = std::chrono::milliseconds(firstTime);
    std::unique_lock guard(m_mutex);
    while (!m_stopped.wait_for(guard, pause, [this] { return m_isStopped; })) {
        pause = interval;
        // A line that wraps could not be rewritten.
        const QString text = Text().left(WidthOf(m_stream) - 1);
        width = qMax(width, text.size());
        // A shorter text covers a longer one.
        PrintOver(m_stream, text.leftJustified(width));
    }
    if (width > 0)
        PrintOver(m_stream, QString(width, u' ') + u'\r');
}

QString ProgressLine::Text() const
{
    return m_total > 0 ? m_what + u' ' + QString::number(m_done) + u'/' + QString::number(m_total) : m_what;
}

Progress::Progress(const Output& output, const QString& what, qsizetype total)
    : m_line(output.GetProgressLine()), m_outer(m_line.GetWhat()), m_what(what), m_total(total)
{
    m_line.Show(m_what, 0, m_total);
}

Progress::~Progress()
{
    m_line.Show(m_outer);
}

void Progress::Advance(qsizetype done)
{
    m_line.Show(m_what, done, m_total);
}

} // namespace zaxmat
