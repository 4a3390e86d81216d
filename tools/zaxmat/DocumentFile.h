#ifndef ZAXMAT_DOCUMENTFILE_H
#define ZAXMAT_DOCUMENTFILE_H

#include "ZAXFeatLastSavedStore.h"
#include "ZAXHostDocument.h"

#include <QString>

class ZAXFeatObject;
class ZAXMatRoot;

namespace zaxmat {

/// While it lives, new features start with the defaults of their classes. Otherwise they would start with what the
/// features made or loaded before them hold, and the same command would not always give the same document.
class ClassDefaults : public ZAXFeatLastSavedStore
{
public:
    ClassDefaults() { SetCurrent(this); }
    ~ClassDefaults() override { SetCurrent(nullptr); }

    QVariant GetValue(const QByteArray&, const QByteArray&) const override { return {}; }
    void SetValue(const QByteArray&, const QByteArray&, const QVariant&) override {}
};

/// \throws Failure (FileFailure) with what went wrong in the host, if anything did.
void Require(const ZAXHostResult& result);

/// Opens the file \a path in \a document, which stays new and empty when there is no such file; false then.
/// \throws Failure (FileFailure) for what cannot be read or is no document, nor for \a damage what is left of one.
bool OpenDocument(ZAXHostDocument& document, const QString& path,
                  ZAXHostDocument::Damage damage = ZAXHostDocument::RefuseDamage);

/// The materials root of \a document, made if there is none.
ZAXMatRoot* MaterialsRootOf(ZAXHostDocument& document);

/// A new feature of the class \a className under \a parent, at the top of \a document for a null one. Never null.
/// \throws Failure (InternalError) when the host refuses to make it.
ZAXFeatObject* CreateFeature(ZAXHostDocument& document, const char* className, ZAXFeatObject* parent);

/// Saves \a document to the file \a path, and opens that in \a reopened to see that it is the same document. When this
/// returns, the file holds the document.
/// \throws Failure (FileFailure) when that is not so. Then the file is as it was before, unless the message says
/// otherwise.
void SaveDocument(ZAXHostDocument& document, const QString& path, ZAXHostDocument& reopened);

} // namespace zaxmat

#endif
