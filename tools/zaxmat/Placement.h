#ifndef ZAXMAT_PLACEMENT_H
#define ZAXMAT_PLACEMENT_H

#include <QList>

#include <algorithm>

class ZAXHostDocument;
class ZAXMatMaterial;
class ZAXMatPackaging;

namespace zaxmat {

class Complaints;
struct MaterialChoice;

/// A feature of a document that stands for a record, and whether it was made for that.
template <typename Feature>
struct Placed
{
    Feature* feature = nullptr;
    bool isNew = false;
};

/// The features of a document that stand for a choice, its stock forms in the same order.
struct Placement
{
    Placed<ZAXMatMaterial> material;
    QList<Placed<ZAXMatPackaging>> stockForms;

    bool HasNew() const { return material.isNew || std::ranges::any_of(stockForms, &Placed<ZAXMatPackaging>::isNew); }
};

/// Finds the features that stand for \a choice in \a document, and makes those that are missing: a material by its
/// provider, key and thickness, its stock forms by their keys. The first stock form that is made for a material without
/// an active one is made active, else the application would make up some default one.
/// Values of the records that a new feature cannot take are added to \a complaints.
/// \throws Failure (InvalidValues) when an extension of a record cannot be made.
Placement Place(const MaterialChoice& choice, ZAXHostDocument& document, Complaints& complaints);

} // namespace zaxmat

#endif
