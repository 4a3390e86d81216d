#include "ZAXProbeJournal.h"

#include "ZAXSysException.h"

#include <utility>

namespace {

ZAXProbeJournal* current = nullptr;

} // namespace

ZAXProbeJournal::ZAXProbeJournal() : m_outer(std::exchange(current, this)) {}

ZAXProbeJournal::~ZAXProbeJournal()
{
    current = m_outer;
}

void ZAXProbeJournal::Note(const QString& entry)
{
    if (!current)
        return;
    current->m_entries.append(entry);
    if (entry != current->m_failing)
        return;
    current->m_failing.clear();
    throw ZAXSysException(QStringLiteral("The probe fails: %1.").arg(entry));
}

void ZAXProbeJournal::FailAt(const char* entry)
{
    m_failing = QString::fromUtf8(entry);
}

QStringList ZAXProbeJournal::Take()
{
    return std::exchange(m_entries, {});
}

QStringList Entries(const char* text)
{
    QStringList entries = QString::fromUtf8(text).split(u'\n');
    for (QString& entry : entries)
        entry = entry.trimmed();
    entries.removeAll(QString());
    return entries;
}
