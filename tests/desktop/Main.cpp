#include <gtest/gtest.h>

#include <QApplication>
#include <QTemporaryDir>
#include <cstdio>

/// The platform without a screen tells again and again what it has not; everything else is shown.
static void ShowMessage(QtMsgType, const QMessageLogContext&, const QString& text) {
  if (!text.contains(QLatin1String("This plugin does not support"))) std::fprintf(stderr, "%s\n", qPrintable(text));
}

int main(int argc, char** argv) {
  if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
  const QTemporaryDir configuration;  // Qt's own, such as what a file dialog remembers: not among the user's
  qputenv("XDG_CONFIG_HOME", configuration.path().toLocal8Bit());
  qInstallMessageHandler(ShowMessage);
  QApplication application(argc, argv);
  QApplication::setApplicationName(QStringLiteral("hylden"));
  QApplication::setQuitOnLastWindowClosed(false);
  testing::InitGoogleTest(&argc, argv);
  return RUN_ALL_TESTS();
}
