// The least that the toolkit can put on the screen: an empty window of the
// installer's size, or with an argument one that shows this text.

#include <QGuiApplication>
#include <QQmlComponent>
#include <QQuickItem>
#include <QQuickView>

int main(int argc, char** argv) {
  if (!qEnvironmentVariableIsSet("QT_QUICK_BACKEND"))
    QQuickWindow::setSceneGraphBackend(QStringLiteral("software"));
  QGuiApplication application(argc, argv);
  QQuickView window;
  QQmlComponent content(window.engine());
  if (argc > 1)
    content.setData(
        "import QtQuick\nText { font { family: 'Noto Sans CJK SC'; pixelSize: 20 } text: '" +
            QByteArray(argv[1]) + "' }",
        QUrl());
  else
    content.setData("import QtQuick\nRectangle {}", QUrl());
  window.setContent(QUrl(), &content, content.create());
  window.resize(QSize(1000, 900) / window.devicePixelRatio());
  window.show();
  return QGuiApplication::exec();
}
