#ifndef ZAXFEATOBJECTLISTPROPERTY_H
#define ZAXFEATOBJECTLISTPROPERTY_H

#include "ZAXFeatObjectListPropertyBase.h"
#include "ZAXFeatObjectListPropertyItem.h"
#include "ZAXFeatPropertySignals.h"
#include "ZAXGeoContainer.h"
#include "ZAXGeoGeometryNotFoundException.h"
#include "ZAXGeoStream.h"

#include <QList>

#include <algorithm>
#include <memory>
#include <vector>

/// An ordered list of pointers to features of type T as a property of another feature, which announces additions and
/// removals through two signals of its own. An item may point at nothing.
template <typename T>
class ZAXFeatObjectListProperty : public ZAXFeatObjectListPropertyBase
{
public:
    using Item = ZAXFeatObjectListPropertyItem<T>;

    /// The list property \a propertyIndex of \a feature. \a added and \a removed are signals of the feature's class.
    /// \throws ZAXSysException when either is no signal.
    template <typename AddedSignal, typename RemovedSignal>
    ZAXFeatObjectListProperty(ZAXFeatObject* feature, int propertyIndex, AddedSignal added, RemovedSignal removed)
        : ZAXFeatObjectListPropertyBase(feature, propertyIndex),
          m_addedSignal(QMetaMethod::fromSignal(added).methodIndex()),
          m_removedSignal(QMetaMethod::fromSignal(removed).methodIndex())
    {
        if (m_addedSignal == -1 || m_removedSignal == -1)
            throw ZAXSysException(QLatin1String("Invalid added signal index."));
    }

    /// Closes the change and, unless \a silent, raises the notify signal, if the property has one.
    void EndModify(bool silent) override
    {
        ZAXFeatObjectListPropertyBase::EndModify(silent);
        if (!silent)
            ZAXFeatPropertySignals::EmitPropertyChanged(GetFeature(), GetPropertyIndex());
    }

    /// Appends \a object, which may be null: the change is closed as \a silent says, then the added signal is raised,
    /// silent or not.
    void Add(T* object, bool silent) { Append(object, {}, silent); }

    /// Add() for a null item in the place of an object that could not be brought along: it is stored as \a reference.
    void AddUnavailable(const ZAXGeoGeometryRef& reference, bool silent) { Append(nullptr, reference, silent); }

    /// Takes \a item out, raises the removed signal, silent or not, destroys the item and closes the change as
    /// \a silent says.
    /// \throws ZAXSysException when the list does not hold \a item.
    void RemoveItem(ZAXFeatObjectPropertyBase* item, bool silent) override
    {
        const auto found = std::ranges::find(m_items, item, [](const auto& held) { return held.get(); });
        if (found == m_items.end())
            throw ZAXSysException(QLatin1String("Cannot remove an item that is not contained in the list."));
        ZAXFeatPropertyChange change(*this);
        Take(found);
        change.EndModify(silent);
    }

    /// Takes all items out, front to back, raising the removed signal for each, silent or not, then closes the change
    /// as \a silent says. Nothing happens to an empty list.
    void Clear(bool silent)
    {
        if (m_items.empty())
            return;
        ZAXFeatPropertyChange change(*this);
        while (!m_items.empty())
            Take(m_items.begin());
        change.EndModify(silent);
    }

    /// The objects pointed at, in list order; null for an item that points at nothing.
    QList<T*> GetObjects() const
    {
        QList<T*> objects;
        objects.reserve(static_cast<qsizetype>(m_items.size()));
        for (const auto& item : m_items)
            objects.append(item->GetObject());
        return objects;
    }

    /// The items in list order; the list owns them.
    QList<Item*> GetItems() const
    {
        QList<Item*> items;
        items.reserve(static_cast<qsizetype>(m_items.size()));
        for (const auto& item : m_items)
            items.append(item.get());
        return items;
    }

private:
    using Items = std::vector<std::unique_ptr<Item>>;

    void Append(T* object, const ZAXGeoGeometryRef& unavailable, bool silent)
    {
        ZAXFeatPropertyChange change(*this);
        auto item = std::make_unique<Item>(this);
        item->SetPointedObject(object, silent);
        item->SetUnavailableReference(unavailable);
        m_items.push_back(std::move(item));
        change.EndModify(silent);
        Emit(m_addedSignal, object, QLatin1String("added"));
    }

    void Take(typename Items::iterator position)
    {
        const std::unique_ptr<Item> item = std::move(*position);
        m_items.erase(position);
        T* const object = item->GetObject();
        // A slot may remove the object, which must find no item any more that is in no list.
        item->SetPointedObject(nullptr);
        Emit(m_removedSignal, object, QLatin1String("removed"));
    }

    void Emit(int signal, T* object, QLatin1String what)
    {
        ZAXFeatPropertySignals::EmitListSignal(GetFeature(), signal, T::staticMetaObject.className(), object, what);
    }

    Items m_items;
    int m_addedSignal;
    int m_removedSignal;
};

/// Writes the number of items as a qint32, then the reference of each object; for null an invalid one, or that of an
/// object that could not be brought along at the last load.
template <typename T>
ZAXGeoStream& operator<<(ZAXGeoStream& stream, const ZAXFeatObjectListProperty<T>& list)
{
    const auto items = list.GetItems();
    stream << static_cast<qint32>(items.size());
    for (const auto* item : items)
        stream.GetDataStream() << item->GetReference();
    return stream;
}

/// Replaces the list by a stored one, with notification; a count below 1 is an empty list. A reference that maps to an
/// invalid one gives a null item. Where the stream ends too early or is damaged, its status says so and the list keeps
/// what was read. \throws ZAXGeoGeometryNotFoundException for a valid reference that does not lead to a T.
template <typename T>
ZAXGeoStream& operator>>(ZAXGeoStream& stream, ZAXFeatObjectListProperty<T>& list)
{
    list.Clear(false);
    qint32 count = 0;
    stream >> count;
    const ZAXGeoContainer* const container = stream.GetContainer();
    for (qint32 i = 0; i < count; ++i) {
        ZAXGeoGeometryRef stored;
        stream.GetDataStream() >> stored;
        // A count larger than what follows is damage; the reader of the document reports it by the stream's status.
        if (stream.GetDataStream().status() != QDataStream::Ok)
            break;
        const ZAXGeoGeometryRef reference = stream.GetMappedReference(stored);
        T* const object = container ? qobject_cast<T*>(container->GetGeometryByRef(reference)) : nullptr;
        if (!object && reference.IsValid())
            throw ZAXGeoGeometryNotFoundException(reference);
        if (object)
            list.Add(object, false);
        else
            list.AddUnavailable(stream.MapReference(stored), false);
    }
    return stream;
}

#endif
