import QtQuick 2.15
import QtQuick.Templates as Templates
import Orvane.Installer

Templates.Switch {
    id: toggle

    implicitWidth: 40
    implicitHeight: 24
    focusPolicy: Qt.TabFocus
    hoverEnabled: true
    opacity: enabled ? 1 : 0.4

    background: ContinuousRectangle {
        visible: toggle.visualFocus
        anchors { fill: parent; margins: -4 }
        radius: height / 2
        strokeWidth: 3
        strokeColor: Palette.focusRing
    }
    indicator: Rectangle {
        anchors.fill: parent
        radius: height / 2
        color: toggle.checked ? Palette.accent : Palette.black(toggle.hovered ? 0.2 : 0.15)

        Rectangle {
            x: 2 + toggle.visualPosition * (parent.width - parent.height)
            y: 2
            width: parent.height - 4
            height: width
            radius: width / 2
            color: toggle.down ? "#f2f2f2" : "white"
            border { width: 1; color: Palette.black(0.06) }
        }
    }
}
