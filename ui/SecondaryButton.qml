import QtQuick 2.15
import Orvane.Installer

PlainButton {
    property real padding: 10

    implicitWidth: labelWidth + 2 * padding
    implicitHeight: labelHeight + 2 * 6
    radius: 6
    textColor: Palette.black(0.85)
}
