// The least that the toolkit can put on the screen: a window of the installer's size
// that shows a word.

#include <QGuiApplication>
#include <QQmlComponent>
#include <QQuickItem>
#include <QQuickView>

int main(int argc, char** argv) {
  QQuickWindow::setSceneGraphBackend(QStringLiteral("software"));
  QGuiApplication application(argc, argv);
  QQuickView window;
  QQmlComponent content(window.engine());
  content.setData("import QtQuick\nText { font.family: 'Noto Sans CJK SC'; text: '安装' }", QUrl());
  window.setContent(QUrl(), &content, content.create());
  window.resize(QSize(1000, 900) / window.devicePixelRatio());
  window.show();
  return QGuiApplication::exec();
}
