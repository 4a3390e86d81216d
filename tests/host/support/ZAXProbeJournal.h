#ifndef ZAXPROBEJOURNAL_H
#define ZAXPROBEJOURNAL_H

#include <QString>
#include <QStringList>

/// What the probe classes of the tests did, in order. They write to the journal that was made last and still lives;
/// without one they write nowhere.
class ZAXProbeJournal
{
public:
    ZAXProbeJournal();
    ~ZAXProbeJournal();
    Q_DISABLE_COPY_MOVE(ZAXProbeJournal)

    /// Appends \a entry.
    /// \throws ZAXSysException "The probe fails: <entry>." when FailAt() named the entry.
    static void Note(const QString& entry);

    /// Has the probes fail at the next \a entry, once.
    void FailAt(const char* entry);
    /// The entries so far, which are then forgotten.
    QStringList Take();

private:
    ZAXProbeJournal* m_outer;
    QStringList m_entries;
    QString m_failing;
};

/// The lines of \a text, for comparison with a journal: one entry in each, spaces at both ends left out.
QStringList Entries(const char* text);

#endif
