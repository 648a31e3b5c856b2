// Messages to another thread's loop, from 1 and from 4 threads: the library's own run loop, the
// same hosted by other loops, and what those loops have for it themselves (those that were
// installed when this was built). Nanoseconds a message by the clock, from the start of the senders
// to the last arrival; every message holds its target, brings two numbers and is checked.
//
// Wanted: 60 ns and ahead of every peer; a hosted loop at most 1.5 times the library's own.

#include <benchmark/benchmark.h>

#include <boost/asio/executor_work_guard.hpp>
#include <boost/asio/io_context.hpp>
#include <boost/asio/post.hpp>
#include <mutex>

#include "bench/thread_load.h"

#ifdef QX_BENCH_LIBUV
#include <uv.h>
#endif
#ifdef QX_BENCH_GLIB
#include <glib-unix.h>
#endif
#ifdef QX_BENCH_QT
#include <QtCore/QCoreApplication>
#include <QtCore/QSocketNotifier>
#endif

namespace {

using bench::Numbers;

// ---- this library

// Calls leave their target held: that is given up between the rounds.
struct OwnRound {
  OwnRound(int senders, std::function<void()> finished)
      : numbers(qx::make<Numbers>(senders, std::move(finished))) {}
  explicit OwnRound(int senders)
      : OwnRound(senders, [] { qx::RunLoop::currentRunLoop()->stop(); }) {}
  OwnRound(const OwnRound&) = delete;
  OwnRound& operator=(const OwnRound&) = delete;
  ~OwnRound() {
    for (long i = 0; i < bench::kMessages; ++i) numbers->release();
  }
  void send(int s, long n) { message->sendMessageTo(numbers, "number:of:", s, n); }
  void receive() { qx::RunLoop::currentRunLoop()->run(); }

  qx::Ref<Numbers> numbers;
  qx::Ref<qx::QXThreadMessage> message = qx::QXThreadMessage::init();
};

// ---- peers

struct AsioRound {
  explicit AsioRound(int senders)
      : numbers(qx::make<Numbers>(senders, [this] { context.stop(); })) {}
  void send(int s, long n) {
    boost::asio::post(context, [to = numbers, s, n] { to->number(s, n); });
  }
  void receive() { context.run(); }

  qx::Ref<Numbers> numbers;
  boost::asio::io_context context;
  boost::asio::executor_work_guard<boost::asio::io_context::executor_type> guard{
      context.get_executor()};
};

#ifdef QX_BENCH_LIBUV
// Its asynchronous handle wakes the loop and tells nothing: the messages are in a queue beside it.
struct LibuvRound {
  explicit LibuvRound(int senders)
      : numbers(qx::make<Numbers>(senders, [this] { uv_stop(&loop); })) {
    uv_loop_init(&loop);
    uv_async_init(
        &loop, &async, +[](uv_async_t* a) { static_cast<LibuvRound*>(a->data)->drain(); });
    async.data = this;
  }
  LibuvRound(const LibuvRound&) = delete;
  LibuvRound& operator=(const LibuvRound&) = delete;
  ~LibuvRound() {
    uv_close(reinterpret_cast<uv_handle_t*>(&async), nullptr);
    uv_run(&loop, UV_RUN_DEFAULT);
    uv_loop_close(&loop);
  }
  void send(int s, long n) {
    {
      const std::lock_guard lock(mutex);
      queue.emplace_back([to = numbers, s, n] { to->number(s, n); });
    }
    uv_async_send(&async);
  }
  void drain() {
    std::vector<std::function<void()>> taken;
    {
      const std::lock_guard lock(mutex);
      taken.swap(queue);
    }
    for (const auto& call : taken) call();
  }
  void receive() { uv_run(&loop, UV_RUN_DEFAULT); }

  qx::Ref<Numbers> numbers;
  uv_loop_t loop;
  uv_async_t async;
  std::mutex mutex;
  std::vector<std::function<void()>> queue;
};

struct HostedByLibuvRound : OwnRound {
  explicit HostedByLibuvRound(int senders) : OwnRound(senders, [this] { uv_stop(&loop); }) {
    uv_loop_init(&loop);
    uv_poll_init(&loop, &poll, qx::RunLoop::currentRunLoop()->fileDescriptor());
    uv_poll_start(
        &poll, UV_READABLE,
        +[](uv_poll_t*, int, int) { qx::RunLoop::currentRunLoop()->runPending(); });
  }
  HostedByLibuvRound(const HostedByLibuvRound&) = delete;
  HostedByLibuvRound& operator=(const HostedByLibuvRound&) = delete;
  ~HostedByLibuvRound() {
    uv_close(reinterpret_cast<uv_handle_t*>(&poll), nullptr);
    uv_run(&loop, UV_RUN_DEFAULT);
    uv_loop_close(&loop);
  }
  void receive() { uv_run(&loop, UV_RUN_DEFAULT); }
  uv_loop_t loop;
  uv_poll_t poll;
};
#endif

#ifdef QX_BENCH_GLIB
struct GlibRound {
  // What is sent while nobody owns the context is invoked by the senders themselves.
  explicit GlibRound(int senders)
      : numbers(qx::make<Numbers>(senders, [this] { g_main_loop_quit(loop); })) {
    g_main_context_acquire(nullptr);
  }
  GlibRound(const GlibRound&) = delete;
  GlibRound& operator=(const GlibRound&) = delete;
  ~GlibRound() {
    g_main_context_release(nullptr);
    g_main_loop_unref(loop);
  }

  struct Call {
    qx::Ref<Numbers> to;
    int sender;
    long n;
  };
  void send(int s, long n) {
    g_main_context_invoke_full(
        nullptr, G_PRIORITY_DEFAULT,
        +[](gpointer p) -> gboolean {
          const Call* call = static_cast<Call*>(p);
          call->to->number(call->sender, call->n);
          return G_SOURCE_REMOVE;
        },
        new Call{numbers, s, n}, +[](gpointer p) { delete static_cast<Call*>(p); });
  }
  void receive() { g_main_loop_run(loop); }

  qx::Ref<Numbers> numbers;
  GMainLoop* loop = g_main_loop_new(nullptr, FALSE);
};

struct HostedByGlibRound : OwnRound {
  explicit HostedByGlibRound(int senders) : OwnRound(senders, [this] { g_main_loop_quit(loop); }) {}
  HostedByGlibRound(const HostedByGlibRound&) = delete;
  HostedByGlibRound& operator=(const HostedByGlibRound&) = delete;
  ~HostedByGlibRound() {
    g_source_remove(source);
    g_main_loop_unref(loop);
  }
  void receive() { g_main_loop_run(loop); }
  GMainLoop* loop = g_main_loop_new(nullptr, FALSE);
  guint source = g_unix_fd_add(
      qx::RunLoop::currentRunLoop()->fileDescriptor(), G_IO_IN,
      +[](gint, GIOCondition, gpointer) -> gboolean {
        qx::RunLoop::currentRunLoop()->runPending();
        return G_SOURCE_CONTINUE;
      },
      nullptr);
};
#endif

#ifdef QX_BENCH_QT
void makeApplication() {
  static int count = 1;
  static char name[] = "bench";
  static char* arguments[] = {name, nullptr};
  static const QCoreApplication application(count, arguments);
}

struct QtRound {
  explicit QtRound(int senders)
      : numbers(qx::make<Numbers>(senders, [] { QCoreApplication::quit(); })) {
    makeApplication();
  }
  void send(int s, long n) {
    QMetaObject::invokeMethod(
        qApp, [to = numbers, s, n] { to->number(s, n); }, Qt::QueuedConnection);
  }
  void receive() { QCoreApplication::exec(); }
  qx::Ref<Numbers> numbers;
};

struct HostedByQtRound : OwnRound {
  explicit HostedByQtRound(int senders) : OwnRound(senders, [] { QCoreApplication::quit(); }) {
    makeApplication();
    notifier = std::make_unique<QSocketNotifier>(qx::RunLoop::currentRunLoop()->fileDescriptor(),
                                                 QSocketNotifier::Read);
    QObject::connect(notifier.get(), &QSocketNotifier::activated,
                     [] { qx::RunLoop::currentRunLoop()->runPending(); });
  }
  void receive() { QCoreApplication::exec(); }
  std::unique_ptr<QSocketNotifier> notifier;
};
#endif

#define QX_BENCH_DELIVERY(round) \
  BENCHMARK(bench::deliver<round>)->Name(#round)->Arg(1)->Arg(4)->UseManualTime()

QX_BENCH_DELIVERY(OwnRound);
QX_BENCH_DELIVERY(AsioRound);
#ifdef QX_BENCH_LIBUV
QX_BENCH_DELIVERY(LibuvRound);
QX_BENCH_DELIVERY(HostedByLibuvRound);
#endif
#ifdef QX_BENCH_GLIB
QX_BENCH_DELIVERY(GlibRound);
QX_BENCH_DELIVERY(HostedByGlibRound);
#endif
#ifdef QX_BENCH_QT
QX_BENCH_DELIVERY(QtRound);
QX_BENCH_DELIVERY(HostedByQtRound);
#endif

}  // namespace
