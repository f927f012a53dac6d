// Scales a square picture as the platform does, so that a start need not.
//
//   scale_picture PICTURE SIDE FILE

#include <QImage>
#include <cstdlib>

int main(int argc, char** argv) {
  const QImage picture(argc == 4 ? argv[1] : "");
  const int side = argc == 4 ? std::atoi(argv[2]) : 0;
  if (picture.isNull() || side <= 0) return 64;
  const QImage scaled = picture.scaled(side, side, Qt::KeepAspectRatio, Qt::SmoothTransformation);
  return scaled.save(argv[3], "PNG") ? 0 : 1;
}
