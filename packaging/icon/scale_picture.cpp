// Scales a square picture as the platform does and writes its pixels as the platform
// has them, so that a start has nothing to decode.
//
//   scale_picture PICTURE SIDE FILE

#include <QFile>
#include <QImage>
#include <cstdlib>

int main(int argc, char** argv) {
  const QImage picture(argc == 4 ? argv[1] : "");
  const int side = argc == 4 ? std::atoi(argv[2]) : 0;
  if (picture.isNull() || side <= 0) return 64;
  const QImage scaled = picture.scaled(side, side, Qt::KeepAspectRatio, Qt::SmoothTransformation)
                            .convertToFormat(QImage::Format_RGBA8888_Premultiplied);
  QFile file(argv[3]);
  if (!file.open(QIODevice::WriteOnly)) return 1;
  return file.write(reinterpret_cast<const char*>(scaled.constBits()), scaled.sizeInBytes()) ==
                 scaled.sizeInBytes()
             ? 0
             : 1;
}
