#include "codecs/VipsRuntime.h"

#include <new>

namespace tarnovel {
namespace {

bool start()
{
    // Nothing of what it says is for a person: failures come back as codes.
    for (const char *domain : {"VIPS", "GLib", "GLib-GObject"}) {
        g_log_set_handler(
            domain, static_cast<GLogLevelFlags>(G_LOG_LEVEL_MASK & ~G_LOG_LEVEL_ERROR),
            [](const gchar *, GLogLevelFlags, const gchar *, gpointer) {}, nullptr);
    }
    if (VIPS_INIT("tarnovel") != 0) {
        return false;
    }
    vips_cache_set_max(0);
    vips_concurrency_set(2);
    vips_block_untrusted_set(TRUE);
    vips_operation_block_set("VipsForeignLoad", TRUE);
    for (const char *loader : {"VipsForeignLoadJpeg", "VipsForeignLoadPng", "VipsForeignLoadHeif",
                               "VipsForeignLoadWebp", "VipsForeignLoadTiff"}) {
        vips_operation_block_set(loader, FALSE);
    }
    return true;
}

struct ThreadEnd {
    ~ThreadEnd() { vips_thread_shutdown(); }
};

} // namespace

void ensureVips()
{
    static const bool started = start();
    if (!started) {
        throw std::bad_alloc();
    }
    static thread_local const ThreadEnd atThreadEnd;
    static_cast<void>(atThreadEnd);
}

} // namespace tarnovel
