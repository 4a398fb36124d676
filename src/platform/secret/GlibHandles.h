#pragma once

#include <glib-object.h>

#include <memory>

namespace glintar::platform {

template <auto release>
struct GlibRelease {
    template <class T>
    void operator()(T* held) const {
        release(held);
    }
};

using GlibString = std::unique_ptr<char, GlibRelease<g_free>>;
using GlibContext = std::unique_ptr<GMainContext, GlibRelease<g_main_context_unref>>;
using GlibTable = std::unique_ptr<GHashTable, GlibRelease<g_hash_table_unref>>;

template <class T>
using GlibObject = std::unique_ptr<T, GlibRelease<g_object_unref>>;

}  // namespace glintar::platform
