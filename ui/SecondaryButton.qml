import QtQuick 2.15
import Orvane.Installer

PlainButton {
    implicitWidth: labelWidth + 2 * 10
    implicitHeight: labelHeight + 2 * 6
    radius: 6
    textColor: Palette.black(0.85)
}
