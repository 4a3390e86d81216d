#ifndef ZAXMAT_PROGRESS_H
#define ZAXMAT_PROGRESS_H

#include <QString>

#include <chrono>
#include <condition_variable>
#include <cstdio>
#include <mutex>
#include <thread>

namespace zaxmat {

class Output;

/// Tells the user what a command is at that takes longer than a second, in one line of a terminal that is rewritten ten
/// times a second and wiped out at the end. It is written from a thread of its own, so that it appears during work
/// that cannot be interrupted, too.
class ProgressLine
{
public:
    /// Shows nothing unless \a isWanted. What is told goes to \a stream.
    explicit ProgressLine(bool isWanted, std::FILE* stream = stderr);
    /// As Stop().
    ~ProgressLine();
    ProgressLine(const ProgressLine&) = delete;
    ProgressLine& operator=(const ProgressLine&) = delete;

    /// What the work is at: \a what, in the user's language and, unless \a total is 0, that \a done of so many steps
    /// are done.
    void Show(const QString& what, qsizetype done = 0, qsizetype total = 0);
    QString GetWhat() const;
    /// Wipes out the line for good.
    void Stop();

private:
    void Run();
    QString Text() const;

    mutable std::mutex m_mutex;
    std::condition_variable m_stopped;
    QString m_what;
    qsizetype m_done = 0;
    qsizetype m_total = 0;
    bool m_isStopped;
    std::FILE* m_stream;
    std::thread m_thread;
};

/// A part of the work of a command, which its progress line tells of as long as this lives: "importing 4200/10000".
class Progress
{
public:
    /// \a what is the work, in the user's language, and \a total the number of its steps, 0 for one that has none.
    Progress(const Output& output, const QString& what, qsizetype total = 0);
    ~Progress();
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;

    /// The first \a done steps are done.
    void Advance(qsizetype done);

private:
    ProgressLine& m_line;
    QString m_outer;
    QString m_what;
    qsizetype m_total;
};

} // namespace zaxmat

#endif
