// A run loop inside libuv's.
//
//     example_hosting_libuv            100,000 messages from each of four threads
//     example_hosting_libuv 1000       1,000 of each

#include <uv.h>

#include "examples/hosting/load.h"

int main(int argc, char** argv) {
  uv_loop_t* loop = uv_default_loop();

  // The lines that host a run loop: watch its descriptor, and run what is pending.
  uv_poll_t poll;
  uv_poll_init(loop, &poll, qx::RunLoop::currentRunLoop()->fileDescriptor());
  uv_poll_start(&poll, UV_READABLE, +[](uv_poll_t*, int, int) { hosting::runPending(); });

  long ticks = 0;
  uv_timer_t timer;
  uv_timer_init(loop, &timer);
  timer.data = &ticks;
  uv_timer_start(&timer, +[](uv_timer_t* t) { ++*static_cast<long*>(t->data); }, 1, 1);

  const hosting::Load load(argc, argv, [loop] { uv_stop(loop); });
  uv_run(loop, UV_RUN_DEFAULT);

  uv_close(reinterpret_cast<uv_handle_t*>(&timer), nullptr);
  uv_close(reinterpret_cast<uv_handle_t*>(&poll), nullptr);
  uv_run(loop, UV_RUN_DEFAULT);  // until both are closed
  uv_loop_close(loop);
  return load.result("libuv", ticks);
}
