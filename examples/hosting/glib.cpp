// A run loop inside GLib's main loop, as in every GTK application.
//
//     example_hosting_glib            100,000 messages from each of four threads
//     example_hosting_glib 1000       1,000 of each

#include <glib-unix.h>

#include "examples/hosting/load.h"

int main(int argc, char** argv) {
  GMainLoop* main = g_main_loop_new(nullptr, FALSE);

  // The two lines that host a run loop: watch its descriptor, and run what is pending.
  const guint source = g_unix_fd_add(
      qx::RunLoop::currentRunLoop()->fileDescriptor(), G_IO_IN,
      +[](gint, GIOCondition, gpointer) -> gboolean {
        hosting::runPending();
        return G_SOURCE_CONTINUE;
      },
      nullptr);

  long ticks = 0;
  const guint timer = g_timeout_add(
      1,
      +[](gpointer count) -> gboolean {
        ++*static_cast<long*>(count);
        return G_SOURCE_CONTINUE;
      },
      &ticks);

  const hosting::Load load(argc, argv, [main] { g_main_loop_quit(main); });
  g_main_loop_run(main);

  g_source_remove(timer);
  g_source_remove(source);
  g_main_loop_unref(main);
  return load.result("GLib", ticks);
}
