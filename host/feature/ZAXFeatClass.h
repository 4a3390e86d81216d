#ifndef ZAXFEATCLASS_H
#define ZAXFEATCLASS_H

// Private to the host: may change without notice.

#include "ZAXFeatExport.h"
#include "ZAXFeatPropertySignals.h"

#include <QByteArray>

#include <vector>

/// What the host has looked up about a class of features. Kept by the features of that class, and gone with the last of
/// them: the module that the class is part of may leave then.
class ZAXFEATURE_EXPORT ZAXFeatClass
{
public:
    struct Property
    {
        bool isKnown = false;
        /// A change of the value has been seen to change what is saved.
        bool isSaved = false;
        /// Copies, which may be kept when the module has left.
        QByteArray name;
        /// Without a signal for a property that has none.
        ZAXFeatNotification notification;
    };

    explicit ZAXFeatClass(const QMetaObject* type) : m_type(type), m_name(type->className()) {}

    const QMetaObject* GetType() const { return m_type; }
    const QByteArray& GetName() const { return m_name; }
    /// The property \a index, always at the same address; null when the class has none.
    Property* GetProperty(int index);

private:
    void Learn(int index, Property& property) const;

    const QMetaObject* m_type;
    QByteArray m_name;
    std::vector<Property> m_properties;
};

#endif
