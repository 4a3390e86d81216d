#include "ZAXHostDocument.h"

#include "ZAXFeatContainer.h"
#include "ZAXFeatObject.h"
#include "ZAXGeoContainerPrivate.h"
#include "ZAXHostDocumentImager.h"
#include "ZAXHostDocumentLock.h"
#include "ZAXHostFileSaver.h"
#include "ZAXHostUndo.h"
#include "ZAXSysException.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QUndoStack>

#include <algorithm>

namespace {

QString Tr(const char* text)
{
    return QCoreApplication::translate("ZAXHostDocument", text);
}

bool IsSameFile(const QString& a, const QString& b)
{
    return !a.isEmpty() && (a == b || QFileInfo(a) == QFileInfo(b));
}

} // namespace

class ZAXHostDocumentPrivate
{
public:
    ZAXHostDocumentImage MakeImage() const;
    /// Puts the objects of \a image in the place of the document's.
    void Replace(const ZAXHostDocumentImage& image, const QSet<QByteArray>& retired);
    /// The bytes of \a image, once they are known to give the same image back.
    ZAXHostResult EncodeChecked(const ZAXHostDocumentImage& image, QByteArray& bytes) const;
    /// Makes sure that the file \a path may be written by this document.
    ZAXHostResult Claim(const QString& path);

    std::unique_ptr<ZAXFeatContainer> container = std::make_unique<ZAXFeatContainer>();
    ZAXHostUndo undo{container.get()};
    QUuid documentId = QUuid::createUuid();
    /// The highest id that a file of this document may know; what was never saved may be given again.
    quint64 highestSavedId = 0;
    /// Changed in a way that the undo stack does not know.
    bool isTouched = false;

    QString path;
    QString readOnlyReason;
    QList<ZAXHostProblem> problems;
    bool isDamageAccepted = false;
    std::unique_ptr<ZAXHostDocumentLock> lock;
};

ZAXHostDocumentImage ZAXHostDocumentPrivate::MakeImage() const
{
    ZAXHostDocumentImage image;
    image.documentId = documentId;
    ZAXHostDocumentImager::Add(container->GetRoots(), true, image);
    image.lastId = ZAXHostDocumentImager::HighestId(image, highestSavedId);
    return image;
}

void ZAXHostDocumentPrivate::Replace(const ZAXHostDocumentImage& image, const QSet<QByteArray>& retired)
{
    auto replacement = std::make_unique<ZAXFeatContainer>();
    problems = ZAXHostDocumentImager::Populate(*replacement, image, retired);
    undo.SetContainer(replacement.get());
    container = std::move(replacement);
    documentId = image.documentId;
    highestSavedId = image.lastId;
    isTouched = false;
    isDamageAccepted = false;
}

ZAXHostResult ZAXHostDocumentPrivate::EncodeChecked(const ZAXHostDocumentImage& image, QByteArray& bytes) const
{
    bytes = ZAXHostDocumentCodec::Encode(image);
    ZAXHostDocumentImage read;
    if (const auto result = ZAXHostDocumentCodec::Decode(bytes, read); !result)
        return result;
    if (!read.damages.isEmpty())
        return ZAXHostResult::Failed(read.damages.constFirst().message);
    if (ZAXHostDocumentCodec::Encode(read) != bytes)
        return ZAXHostResult::Failed(Tr("its bytes do not read back."));
    return ZAXHostResult::Done();
}

ZAXHostResult ZAXHostDocumentPrivate::Claim(const QString& newPath)
{
    if (lock && lock->IsLocked() && IsSameFile(path, newPath))
        return ZAXHostResult::Done();
    auto newLock = std::make_unique<ZAXHostDocumentLock>();
    const auto result = newLock->Lock(newPath);
    if (result)
        lock = std::move(newLock);
    return result;
}

ZAXHostDocument::ZAXHostDocument() : d_ptr(std::make_unique<ZAXHostDocumentPrivate>()) {}

ZAXHostDocument::~ZAXHostDocument() = default;

ZAXFeatContainer* ZAXHostDocument::GetContainer() const
{
    return d_ptr->container.get();
}

QUuid ZAXHostDocument::GetDocumentId() const
{
    return d_ptr->documentId;
}

ZAXHostUndo& ZAXHostDocument::GetUndo() const
{
    return d_ptr->undo;
}

bool ZAXHostDocument::IsModified() const
{
    return d_ptr->isTouched || !d_ptr->undo.GetStack()->isClean();
}

QString ZAXHostDocument::GetPath() const
{
    return d_ptr->path;
}

QString ZAXHostDocument::GetReadOnlyReason() const
{
    return d_ptr->readOnlyReason;
}

QList<ZAXHostProblem> ZAXHostDocument::GetProblems() const
{
    return d_ptr->problems;
}

bool ZAXHostDocument::IsDamaged() const
{
    return !d_ptr->isDamageAccepted && std::ranges::any_of(d_ptr->problems, [](const ZAXHostProblem& problem) {
        return problem.kind == ZAXHostProblem::Damaged;
    });
}

void ZAXHostDocument::AcceptDamage()
{
    d_ptr->isDamageAccepted = true;
}

QByteArray ZAXHostDocument::Encode() const
{
    return ZAXHostDocumentCodec::Encode(d_ptr->MakeImage());
}

ZAXHostResult ZAXHostDocument::Load(QIODevice* device, Damage damage)
{
    ZAXHostDocumentImage image;
    if (const auto result = ZAXHostDocumentCodec::Decode(device->readAll(), image); !result)
        return result;
    if (damage == RefuseDamage && !image.damages.isEmpty())
        return ZAXHostResult::Failed(image.damages.constFirst().message);
    if (d_ptr->undo.IsBusy())
        return ZAXHostResult::Failed(Tr("A change of the document is still under way."));
    d_ptr->Replace(image, {});
    d_ptr->path.clear();
    d_ptr->readOnlyReason.clear();
    d_ptr->lock.reset();
    return ZAXHostResult::Done();
}

ZAXHostResult ZAXHostDocument::Save(QIODevice* device)
{
    try {
        const ZAXHostDocumentImage image = d_ptr->MakeImage();
        QByteArray bytes;
        if (const auto result = d_ptr->EncodeChecked(image, bytes); !result)
            return result;
        d_ptr->highestSavedId = image.lastId;
        if (device->write(bytes) != bytes.size())
            return ZAXHostResult::Failed(device->errorString());
    } catch (const ZAXSysException& exception) {
        return ZAXHostResult::Failed(exception.GetMessage());
    }
    return ZAXHostResult::Done();
}

ZAXHostResult ZAXHostDocument::Open(const QString& path, Damage damage)
{
    const auto failed = [&](const char* text, const QString& why) {
        return ZAXHostResult::Failed(Tr(text).arg(QDir::toNativeSeparators(path), why));
    };
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return failed(QT_TRANSLATE_NOOP("ZAXHostDocument", "The document %1 cannot be opened: %2"), file.errorString());
    // Locked before it is read: nobody must write in between. A file that does not load keeps the lock held now.
    auto lock = std::make_unique<ZAXHostDocumentLock>();
    const bool isOwn = d_ptr->lock && IsSameFile(d_ptr->path, path);
    const auto locked = isOwn ? ZAXHostResult::Done() : lock->Lock(path);
    if (isOwn)
        lock = std::move(d_ptr->lock);
    const auto result = Load(&file, damage);
    if (!result) {
        if (isOwn)
            d_ptr->lock = std::move(lock);
        return failed(QT_TRANSLATE_NOOP("ZAXHostDocument", "The document %1 cannot be read: %2"), result.GetMessage());
    }
    d_ptr->path = path;
    d_ptr->lock = std::move(lock);
    d_ptr->readOnlyReason = locked.GetMessage();
    return result;
}

ZAXHostResult ZAXHostDocument::SaveAs(const QString& path)
{
    ZAXHostFileSystem system;
    return SaveAs(path, system);
}

ZAXHostResult ZAXHostDocument::SaveAs(const QString& path, ZAXHostFileSystem& system)
{
    const auto failed = [&](const QString& why) {
        return ZAXHostResult::Failed(
            Tr("The document %1 cannot be saved: %2").arg(QDir::toNativeSeparators(path), why));
    };
    if (IsDamaged() && IsSameFile(d_ptr->path, path))
        return failed(Tr("part of it was lost, and saving it would make the loss final; accept that first, or save "
                         "it under another name."));
    ZAXHostDocumentImage image;
    QByteArray bytes;
    try {
        image = d_ptr->MakeImage();
    } catch (const ZAXSysException& exception) {
        return failed(exception.GetMessage());
    }
    if (const auto result = d_ptr->EncodeChecked(image, bytes); !result)
        return failed(result.GetMessage());
    if (const auto result = d_ptr->Claim(path); !result)
        return failed(result.GetMessage());
    // From here on a file may hold these ids, whatever comes back.
    d_ptr->highestSavedId = image.lastId;
    if (const auto result = ZAXHostFileSaver::Save(path, bytes, system); !result)
        return failed(result.GetMessage());
    d_ptr->path = path;
    d_ptr->readOnlyReason.clear();
    d_ptr->problems.removeIf([](const ZAXHostProblem& problem) { return problem.kind == ZAXHostProblem::Damaged; });
    d_ptr->isTouched = false;
    d_ptr->undo.GetStack()->setClean();
    return ZAXHostResult::Done();
}

QList<ZAXFeatObject*> ZAXHostDocument::GetInstances(const QMetaObject* type) const
{
    const auto& index = ZAXGeoContainerPrivate::Get(*d_ptr->container);
    QList<ZAXFeatObject*> instances;
    const auto geometries = index.geometries.values() + index.aside.values();
    for (ZAXGeoGeometry* geometry : geometries) {
        if (geometry->metaObject()->inherits(type))
            instances.append(static_cast<ZAXFeatObject*>(geometry));
    }
    std::ranges::sort(instances, {}, &ZAXFeatObject::GetId);
    return instances;
}

ZAXHostResult ZAXHostDocument::ConvertToPlaceholders(const QList<const QMetaObject*>& types)
{
    if (const auto result = d_ptr->undo.Clear(); !result)
        return result;
    QSet<QByteArray> retired;
    for (const QMetaObject* type : types) {
        const auto instances = GetInstances(type);
        for (const ZAXFeatObject* instance : instances)
            retired.insert(instance->metaObject()->className());
    }
    const bool wasModified = IsModified();
    const auto damages = d_ptr->problems;
    const bool wasDamageAccepted = d_ptr->isDamageAccepted;
    try {
        d_ptr->Replace(d_ptr->MakeImage(), retired);
    } catch (const ZAXSysException& exception) {
        return ZAXHostResult::Failed(exception.GetMessage());
    }
    for (const ZAXHostProblem& problem : damages) {
        if (problem.kind == ZAXHostProblem::Damaged)
            d_ptr->problems.append(problem);
    }
    d_ptr->isDamageAccepted = wasDamageAccepted;
    d_ptr->isTouched = wasModified;
    return ZAXHostResult::Done();
}
