// A run loop inside Qt's event loop. Without a display: QT_QPA_PLATFORM=offscreen.
//
//     example_hosting_qt            100,000 messages from each of four threads
//     example_hosting_qt 1000       1,000 of each

#include <QtCore/QSocketNotifier>
#include <QtCore/QTimer>
#include <QtGui/QGuiApplication>

#include "examples/hosting/load.h"

int main(int argc, char** argv) {
  const QGuiApplication application(argc, argv);

  // The two lines that host a run loop: watch its descriptor, and run what is pending.
  QSocketNotifier notifier(qx::RunLoop::currentRunLoop()->fileDescriptor(), QSocketNotifier::Read);
  QObject::connect(&notifier, &QSocketNotifier::activated, [] { hosting::runPending(); });

  long ticks = 0;
  QTimer timer;
  QObject::connect(&timer, &QTimer::timeout, [&ticks] { ++ticks; });
  timer.start(1);

  const hosting::Load load(argc, argv, [] { QCoreApplication::quit(); });
  QGuiApplication::exec();
  return load.result("Qt", ticks);
}
