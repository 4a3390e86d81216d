#include "ZAXFeatChildLists.h"

#include "ZAXFeatObjectPrivate.h"

#include <algorithm>
#include <utility>

namespace {

// Beyond these, collecting a list anew costs less than following.
constexpr int followedChanges = 16;
constexpr qsizetype followedFeatures = 64;

bool IsOf(const ZAXFeatObject* feature, const QMetaObject* type)
{
    return type->cast(feature) != nullptr;
}

/// Takes those of \a gone out that are in \a features, where they stand one behind the other in the same order. The
/// first one may have been of the class \a type until now.
void TakeOut(QList<ZAXFeatObject*>& features, const QList<ZAXFeatObject*>& gone, const QMetaObject* type)
{
    qsizetype first = -1;
    qsizetype count = 0;
    for (ZAXFeatObject* const feature : gone) {
        if (feature != gone.constFirst() && !IsOf(feature, type))
            continue;
        // Most often it is one of the last.
        if (first < 0)
            first = features.lastIndexOf(feature);
        if (first >= 0 && features.value(first + count) == feature)
            ++count;
    }
    if (count > 0)
        features.remove(first, count);
}

/// Where the last one of \a feature and those below it stands that is listed; negative for none.
qsizetype LastListed(const ZAXFeatObject* feature, const QMetaObject* type, const QList<ZAXFeatObject*>& listed)
{
    const auto& children = ZAXFeatObjectPrivate::Get(*feature).children;
    for (auto child = children.crbegin(); child != children.crend(); ++child) {
        if (const qsizetype place = LastListed(*child, type, listed); place >= 0)
            return place;
    }
    return IsOf(feature, type) ? listed.lastIndexOf(feature) : -1;
}

/// Where the last one stands of those that come before \a feature below \a top and are listed; negative for none.
qsizetype LastListedBefore(const ZAXFeatObject* feature, const ZAXFeatObject* top, const QMetaObject* type,
                           const QList<ZAXFeatObject*>& listed)
{
    for (const ZAXFeatObject* parent = feature->GetParent(); parent; parent = feature->GetParent()) {
        const auto& siblings = ZAXFeatObjectPrivate::Get(*parent).children;
        for (qsizetype i = siblings.lastIndexOf(feature) - 1; i >= 0; --i) {
            if (const qsizetype place = LastListed(siblings.at(i), type, listed); place >= 0)
                return place;
        }
        if (parent == top)
            return -1;
        if (const qsizetype place = IsOf(parent, type) ? listed.lastIndexOf(parent) : -1; place >= 0)
            return place;
        feature = parent;
    }
    return -1;
}

void KeepOnly(QList<ZAXFeatObject*>& features, const QMetaObject* type)
{
    features.removeIf([type](const ZAXFeatObject* feature) { return !IsOf(feature, type); });
}

} // namespace

QList<ZAXFeatObject*> ZAXFeatChildLists::Find(const QMetaObject* type)
{
    m_changes = 0;
    const auto found = std::ranges::find(m_lists, type, &List::type);
    if (found != m_lists.end()) {
        Update(*found, m_top);
        return found->features;
    }
    List list{type, ZAXFeatObjectPrivate::Get(*m_top).Subtree().sliced(1), {}};
    KeepOnly(list.features, type);
    m_lists.push_back(list);
    return list.features;
}

void ZAXFeatChildLists::Update(List& list, const ZAXFeatObject* top)
{
    const auto placed = std::exchange(list.placed, {});
    for (const ZAXFeatObject* feature : placed) {
        auto subtree = ZAXFeatObjectPrivate::Get(*feature).Subtree();
        TakeOut(list.features, subtree, list.type);
        KeepOnly(subtree, list.type);
        if (subtree.isEmpty())
            continue;
        const qsizetype place = LastListedBefore(feature, top, list.type, list.features) + 1;
        list.features.insert(place, subtree.size(), nullptr);
        std::ranges::copy(std::as_const(subtree), list.features.begin() + place);
    }
}

bool ZAXFeatChildLists::Place(ZAXFeatObject* feature)
{
    bool isNew = false;
    for (List& list : m_lists) {
        if (list.placed.contains(feature))
            continue;
        list.placed.append(feature);
        isNew = true;
    }
    return !isNew || CountChange();
}

bool ZAXFeatChildLists::Remove(const QList<ZAXFeatObject*>& features)
{
    if (features.size() > followedFeatures)
        return false;
    for (List& list : m_lists) {
        list.placed.removeIf([&](ZAXFeatObject* placed) { return features.contains(placed); });
        TakeOut(list.features, features, list.type);
    }
    return CountChange();
}

bool ZAXFeatChildLists::CountChange()
{
    return ++m_changes <= followedChanges;
}
