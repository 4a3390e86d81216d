#ifndef ZAXFEATLASTSAVEDSTORE_H
#define ZAXFEATLASTSAVEDSTORE_H

#include "ZAXFeatExport.h"

#include <QByteArray>
#include <QVariant>

/// Where the values that the user last saved are kept, by the class of the feature and the name of the property.
class ZAXFEATURE_EXPORT ZAXFeatLastSavedStore
{
public:
    ZAXFeatLastSavedStore();
    virtual ~ZAXFeatLastSavedStore();
    ZAXFeatLastSavedStore(const ZAXFeatLastSavedStore&) = delete;
    ZAXFeatLastSavedStore& operator=(const ZAXFeatLastSavedStore&) = delete;

    /// The value kept; invalid if there is none.
    virtual QVariant GetValue(const QByteArray& className, const QByteArray& property) const = 0;
    /// Keeps \a value; an invalid one forgets what is kept.
    virtual void SetValue(const QByteArray& className, const QByteArray& property, const QVariant& value) = 0;
    /// \a module is about to leave the process: keeps no value whose type is part of it. The base does nothing, for
    /// stores that keep no QVariant of their own.
    virtual void ReleaseModule(const void* module);

    /// \a value without a tie to the module that made it, where that can be: a value of one of Qt's types as Qt itself
    /// makes it, that of an enumeration as its number. Other values are given back as they are.
    static QVariant Detached(const QVariant& value);

    /// The store in use; at first one in memory.
    static ZAXFeatLastSavedStore& GetCurrent();
    /// Puts \a store, which must outlive its use, in the place of the one in use; null brings a new, empty one in
    /// memory.
    static void SetCurrent(ZAXFeatLastSavedStore* store);
};

#endif
