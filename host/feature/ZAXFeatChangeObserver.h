#ifndef ZAXFEATCHANGEOBSERVER_H
#define ZAXFEATCHANGEOBSERVER_H

#include "ZAXFeatExport.h"

class ZAXFeatObject;

/// Follows the changes of a container's features; set as ZAXFeatContainerPrivate::observer. A feature that is not
/// announced yet is not followed: what it goes through is part of its coming, which changes its parent.
class ZAXFeatChangeObserver
{
public:
    virtual ~ZAXFeatChangeObserver() = default;

    /// The state of \a feature, or its list of children, is about to change: the outermost of nested changes.
    virtual void AboutToChange(ZAXFeatObject* feature) = 0;
    /// The change that AboutToChange() announced is complete.
    virtual void Changed(ZAXFeatObject* feature) = 0;
};

#endif
