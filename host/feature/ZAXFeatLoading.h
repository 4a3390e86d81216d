#ifndef ZAXFEATLOADING_H
#define ZAXFEATLOADING_H

// Private to the host: may change without notice.

#include "ZAXFeatExport.h"

#include <QVariant>

#include <unordered_map>
#include <vector>

class ZAXFeatContainer;

/// Held while features are made and loaded that nobody knows yet. Announcements that nobody listens to are not made
/// then, and of all values that are to be remembered for new features only the last one of each property is, when the
/// outermost loading ends or somebody asks for the store.
class ZAXFEATURE_EXPORT ZAXFeatLoading
{
public:
    explicit ZAXFeatLoading(ZAXFeatContainer& container);
    ~ZAXFeatLoading();
    ZAXFeatLoading(const ZAXFeatLoading&) = delete;
    ZAXFeatLoading& operator=(const ZAXFeatLoading&) = delete;

    /// Keeps \a value back that is to be remembered; false when nothing is being loaded.
    static bool KeepBack(const QMetaObject* type, int index, const QVariant& value);
    /// Hands what is kept back to the store in use.
    /// \throws what the store throws, when all else is handed on.
    static void Flush();

private:
    struct Property
    {
        QVariant keptBack;
        /// When the value was kept back, counted from 1; 0 for none.
        quint64 order = 0;
    };
    using Properties = std::vector<Property>;

    Property& Find(const QMetaObject* type, int index);

    ZAXFeatContainer& m_container;
    std::unordered_map<const QMetaObject*, Properties> m_properties;
    /// The class that was asked for last.
    const QMetaObject* m_type = nullptr;
    Properties* m_found = nullptr;
    quint64 m_order = 0;
};

#endif
