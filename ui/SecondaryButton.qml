import QtQuick 2.15
import Orvane.Installer

PlainButton {
    padding: 10
    radius: 6
    textColor: Palette.black(0.85)
}
