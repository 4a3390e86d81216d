#include "DocumentFile.h"

#include "Failure.h"
#include "FileLock.h"
#include "Progress.h"
#include "Text.h"

#include "ZAXFeatContainer.h"
#include "ZAXFeatObject.h"
#include "ZAXHostFileSaver.h"
#include "ZAXMatRoot.h"

#include <QBuffer>
#include <QDeadlineTimer>
#include <QFileInfo>
#include <QLockFile>
#include <QRandomGenerator>
#include <QThread>

#include <algorithm>
#include <optional>

namespace zaxmat {

namespace {

/// How long to wait for others, in milliseconds. Commands are done within that; an application in which the document
/// is open may keep it all day.
constexpr qint64 patience = 5000;

/// Whether there is a lock on the document \a path that says whose it is.
bool IsLocked(const QString& path)
{
    qint64 process = 0;
    QString host;
    QString application;
    return QLockFile(ZAXHostFileSaver::TargetOf(path) + QLatin1String(".lock"))
        .getLockInfo(&process, &host, &application);
}

bool CanBeLocked(const QString& path)
{
    return QFileInfo(QFileInfo(ZAXHostFileSaver::TargetOf(path)).absolutePath()).isWritable();
}

bool IsSame(const ZAXHostDocument& a, const ZAXHostDocument& b)
{
    return a.Encode() == b.Encode();
}

/// \throws Failure unless \a document comes back from its own bytes as it is.
void RequireLoadable(const ZAXHostDocument& document, const QString& path)
{
    QByteArray bytes = document.Encode();
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::ReadOnly);
    ZAXHostDocument copy;
    Require(copy.Load(&buffer));
    if (!IsSame(document, copy))
        throw Failure(ExitCode::FileFailure,
                      Text::tr("The document %1 is not saved: it would not come back as it is.").arg(QuotedPath(path)));
}

} // namespace

void Require(const ZAXHostResult& result)
{
    if (!result)
        throw Failure(ExitCode::FileFailure, result.GetMessage());
}

bool OpenDocument(ZAXHostDocument& document, const QString& path, ZAXHostDocument::Damage damage, const Output& output)
{
    const Progress progress(output, Text::tr("opening %1").arg(QuotedPath(path)));
    const QFileInfo file(path);
    if (!file.exists())
        return false;
    // A pipe or a device might never end.
    if (!file.isFile())
        throw Failure(ExitCode::FileFailure,
                      Text::tr("The document %1 cannot be opened: it is no file.").arg(QuotedPath(path)));
    Require(document.Open(path, damage));
    return true;
}

bool OpenDocumentForChange(ZAXHostDocument& document, const QString& path, ZAXHostDocument::Damage damage,
                           const Output& output)
{
    QDeadlineTimer deadline(patience);
    QString holder;
    std::optional<Progress> waiting;
    while (OpenDocument(document, path, damage, output)) {
        const QString reason = document.GetReadOnlyReason();
        if (reason.isEmpty() || !CanBeLocked(path))
            return true;
        // Many may wait, and each gets its turn as long as those before it come to an end.
        if (reason != holder) {
            holder = reason;
            deadline.setRemainingTime(patience);
            waiting.reset();
            waiting.emplace(output, Text::tr("waiting: %1").arg(Printable(holder)));
        }
        do {
            if (deadline.hasExpired())
                return true;
            // Not all that wait at the same time.
            QThread::usleep(1000 + QRandomGenerator::global()->bounded(9000));
        } while (IsLocked(path));
    }
    return false;
}

std::unique_ptr<FileLock> LockCreation(const QString& path, const Output& output)
{
    const QFileInfo file(path);
    if (file.exists() || !QFileInfo(file.absolutePath()).isWritable())
        return nullptr;
    return std::make_unique<FileLock>(path + QLatin1String(".new"), output);
}

ZAXMatRoot* MaterialsRootOf(ZAXHostDocument& document)
{
    const QList<ZAXFeatObject*> roots = document.GetContainer()->GetRoots();
    const auto found = std::ranges::find_if(roots, [](ZAXFeatObject* root) { return qobject_cast<ZAXMatRoot*>(root); });
    ZAXFeatObject* const root =
        found != roots.end() ? *found : CreateFeature(document, ZAXMatRoot::staticMetaObject.className(), nullptr);
    return qobject_cast<ZAXMatRoot*>(root);
}

ZAXFeatObject* CreateFeature(ZAXHostDocument& document, const char* className, ZAXFeatObject* parent)
{
    ZAXFeatObject* const feature = document.GetContainer()->CreateInstance(className, parent);
    if (!feature)
        throw Failure(ExitCode::InternalError,
                      Text::tr("The document takes no object of class %1.").arg(QString::fromUtf8(className)));
    return feature;
}

void SaveDocument(ZAXHostDocument& document, const QString& path, ZAXHostDocument& reopened)
{
    // First that what is to be written can be read, as long as the old file is untouched; then the file, which the
    // host writes aside, puts in the place of the old one and reads back; last, that it opens as the same document.
    RequireLoadable(document, path);
    Require(document.SaveAs(path));
    Require(reopened.Open(path));
    if (!IsSame(document, reopened))
        throw Failure(ExitCode::FileFailure,
                      Text::tr("The document %1 was written, but does not come back as it is.").arg(QuotedPath(path)));
}

} // namespace zaxmat
