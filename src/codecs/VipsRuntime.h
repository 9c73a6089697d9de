#pragma once

#include <memory>

#include <vips/vips.h>

namespace tarnovel {

struct GObjectUnref {
    void operator()(void *object) const { g_object_unref(object); }
};
using VipsImagePtr = std::unique_ptr<VipsImage, GObjectUnref>;
using VipsSourcePtr = std::unique_ptr<VipsSource, GObjectUnref>;

struct GFree {
    void operator()(void *memory) const { g_free(memory); }
};

/// Starts the library at the first call (about 60 ms): no cache, few threads, silent, and every loader
/// blocked but those of the formats that are read. To be called on each thread before it uses the library.
/// Throws std::bad_alloc when it cannot start.
void ensureVips();

} // namespace tarnovel
