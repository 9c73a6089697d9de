// Linked into every program of a build with the thread sanitizer. Debian's Qt and GLib are not instrumented,
// so that the sanitizer sees neither their locks nor the queues by which work goes from one thread to
// another. The calls of ours that hand work over pass through here, where the sanitizer is told of the order
// that Qt keeps.

#include <functional>
#include <utility>

#include <dlfcn.h>

#include <QMetaObject>
#include <QRunnable>
#include <QThreadPool>

extern "C" {
void __tsan_acquire(void *address);
void __tsan_release(void *address);

const char *__tsan_default_options()
{
    // What the libraries do among themselves cannot be judged; what they call of ours still is.
    return "ignore_noninstrumented_modules=1:second_deadlock_stack=1:halt_on_error=0:exitcode=66";
}

const char *__tsan_default_suppressions()
{
    return
        // GLib guards its thread pools and its types by futexes of its own, which are not intercepted.
        "called_from_lib:libglib-2.0.so\n"
        "called_from_lib:libgobject-2.0.so\n"
        // The picture library computes on GLib's pools.
        "called_from_lib:libvips.so\n"
        // Qt's mutexes are futexes of its own, too.
        "called_from_lib:libQt6Core.so\n"
        "called_from_lib:libQt6Gui.so\n"
        "called_from_lib:libQt6DBus.so\n"
        // Caches of glyphs, colours and settings lie behind these mutexes, and are freed by whichever thread
        // is the last to let go.
        "called_from_lib:libfontconfig.so\n"
        "called_from_lib:libfreetype.so\n";
}
}

namespace {

/// Work that learns, before anything else, of what was done before it was asked for.
class OrderedWork : public QRunnable {
public:
    OrderedWork(QThreadPool *pool, std::function<void()> work) : m_pool(pool), m_work(std::move(work))
    {
        __tsan_release(this);
    }
    void run() override
    {
        __tsan_acquire(this);
        m_work();
        m_work = nullptr;
        __tsan_release(m_pool);
    }

private:
    QThreadPool *m_pool;
    std::function<void()> m_work;
};

template<typename Call>
Call *following(const char *symbol)
{
    return reinterpret_cast<Call *>(dlsym(RTLD_NEXT, symbol));
}

} // namespace

void QThreadPool::start(std::function<void()> work, int priority)
{
    start(new OrderedWork(this, std::move(work)), priority);
}

bool QThreadPool::waitForDone(int patienceMs)
{
    static auto *const wait = following<bool(QThreadPool *, int)>("_ZN11QThreadPool11waitForDoneEi");
    const bool done = wait(this, patienceMs);
    __tsan_acquire(this);
    return done;
}

#if QT_VERSION < QT_VERSION_CHECK(6, 7, 0)
namespace {

/// The same for a call that waits in another thread's queue.
class OrderedCall : public QtPrivate::QSlotObjectBase {
public:
    explicit OrderedCall(QtPrivate::QSlotObjectBase *call) : QSlotObjectBase(&act), m_call(call)
    {
        __tsan_release(this);
    }

private:
    static void act(int which, QSlotObjectBase *self, QObject *receiver, void **arguments, bool *)
    {
        __tsan_acquire(self);
        auto *ordered = static_cast<OrderedCall *>(self);
        if (which == Call) {
            ordered->m_call->call(receiver, arguments);
        } else if (which == Destroy) {
            ordered->m_call->destroyIfLastRef();
            delete ordered;
        }
    }

    QtPrivate::QSlotObjectBase *m_call;
};

} // namespace

bool QMetaObject::invokeMethodImpl(QObject *object, QtPrivate::QSlotObjectBase *call, Qt::ConnectionType type,
                                   void *result)
{
    static auto *const invoke = following<bool(QObject *, QtPrivate::QSlotObjectBase *, Qt::ConnectionType,
                                               void *)>(
        "_ZN11QMetaObject16invokeMethodImplEP7QObjectPN9QtPrivate15QSlotObjectBaseEN2Qt14ConnectionTypeEPv");
    return invoke(object, new OrderedCall(call), type, result);
}
#endif
