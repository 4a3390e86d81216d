#ifndef ZAXFEATLOADING_H
#define ZAXFEATLOADING_H

// Private to the host: may change without notice.

#include "ZAXFeatExport.h"

#include <QMetaMethod>
#include <QVariant>

#include <unordered_map>
#include <vector>

class ZAXFeatContainer;
class ZAXFeatObject;

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

    /// Whether the notify signal of the property \a index reaches nobody, and could be raised if it did.
    bool IsUnheard(const ZAXFeatObject* feature, int index);

    /// Keeps \a value back that is to be remembered; false when nothing is being loaded.
    static bool KeepBack(const QMetaObject* type, int index, const QVariant& value);
    /// Hands what is kept back to the store in use.
    static void Flush();

private:
    struct Property
    {
        bool isKnown = false;
        /// Raising the signal cannot fail.
        bool isSafe = false;
        QMetaMethod signal;
        QVariant keptBack;
        /// When the value was kept back, counted from 1; 0 for none.
        quint64 order = 0;
    };
    using Properties = std::vector<Property>;

    Property& Find(const QMetaObject* type, int index);
    static void Learn(const QMetaObject* type, int index, Property& property);

    ZAXFeatContainer& m_container;
    std::unordered_map<const QMetaObject*, Properties> m_properties;
    /// The class that was asked for last.
    const QMetaObject* m_type = nullptr;
    Properties* m_found = nullptr;
    quint64 m_order = 0;
};

#endif
