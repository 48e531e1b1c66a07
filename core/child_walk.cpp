// SPDX-License-Identifier: MIT
// The list of walks that are going on; see child_walk.h.

#include "core/child_walk.h"

namespace ux {
namespace {

struct walk_state {
    child_walk *innermost; // the walk begun last, or null
};

walk_state s_walks;

} // namespace

child_walk::child_walk(ux_container *container)
    : m_container(&container->obj), m_cursor(container->children), m_outer(s_walks.innermost) {
    s_walks.innermost = this;
}

child_walk::~child_walk() {
    s_walks.innermost = m_outer;
}

ux_obj *child_walk::next() {
    ux_obj *child = m_cursor;
    if (child)
        m_cursor = child->next;
    return child;
}

void child_walk::forget(const ux_obj *obj) {
    for (child_walk *walk = s_walks.innermost; walk; walk = walk->m_outer) {
        if (walk->m_cursor == obj)
            walk->m_cursor = obj->next;
        if (walk->m_container == obj) {
            walk->m_container = nullptr;
            walk->m_cursor = nullptr;
        }
    }
}

} // namespace ux
