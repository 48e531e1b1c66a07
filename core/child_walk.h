// SPDX-License-Identifier: MIT
// Walking a container's children while callbacks may delete any of them, or the container itself.
#ifndef UX_CORE_CHILD_WALK_H
#define UX_CORE_CHILD_WALK_H

#include "ux.h"

namespace ux {

// Visits the children newest first. Walks that are going on know of each other, so that a released
// object is passed over by all of them; the order of visits stays.
class child_walk {
  public:
    explicit child_walk(ux_container *container);
    ~child_walk();
    child_walk(const child_walk &) = delete;
    child_walk &operator=(const child_walk &) = delete;

    // The next child, or null at the end and when the container is gone.
    ux_obj *next();

    // Whether the container still exists.
    bool container_exists() const { return m_container != nullptr; }

    // Tells all walks that `obj` is about to be released; its `next` must still be valid.
    static void forget(const ux_obj *obj);

  private:
    const ux_obj *m_container; // null once it was released
    ux_obj *m_cursor;          // the next child to visit
    child_walk *m_outer;       // the walk that this one runs inside of
};

} // namespace ux

#endif
