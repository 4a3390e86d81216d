#ifndef ZAXMAT_PROGRESS_H
#define ZAXMAT_PROGRESS_H

#include <QElapsedTimer>
#include <QString>

namespace zaxmat {

class Output;

/// Tells the user on the standard error how far a longer piece of work is, in one line that is rewritten and wiped out
/// at the end: "importing 4200/10000". The line appears when the work has taken a second, and only on a terminal and
/// without --quiet.
class Progress
{
public:
    /// \a what is the work, in the user's language, and \a total the number of its steps.
    Progress(const Output& output, const QString& what, qsizetype total);
    ~Progress();
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;

    /// The first \a done steps are done.
    void Advance(qsizetype done);

private:
    QString m_what;
    qsizetype m_total;
    bool m_isWanted;
    qsizetype m_width = 0;
    qint64 m_next;
    QElapsedTimer m_timer;
};

} // namespace zaxmat

#endif
