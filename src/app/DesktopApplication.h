#pragma once

#include <QApplication>
#include <exception>
#include <functional>

namespace hylden {

/// The application object. An exception that leaves an event handler ends here: it may not cross the toolkit.
class DesktopApplication : public QApplication {
 public:
  DesktopApplication(int& argc, char** argv) : QApplication(argc, argv) {}

  /// The program can't go on; its message has been shown.
  std::function<void()> onProgramEnd;
  /// Any other exception that nobody trapped.
  std::function<void(const std::exception&)> onException;

  bool notify(QObject* receiver, QEvent* event) override;
};

}  // namespace hylden
