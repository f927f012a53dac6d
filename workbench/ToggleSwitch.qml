import QtQuick 2.15
import Orvane.Installer
import Orvane.Workbench

// A switch that shows `isOn` and asks for the other state; it does not turn by
// itself.
SwitchItem {
    id: toggle

    // What else is to be said of what it switches.
    property string status
    // Whether the user has moved it. Before that it changes without animation.
    property bool isAnimated: false

    description: enabled ? status : (status ? status + "，" : "") + "不能更改"
    implicitWidth: 40
    implicitHeight: 24
    activeFocusOnTab: enabled
    Accessible.role: Accessible.CheckBox

    Keys.onPressed: event => {
        if (event.key !== Qt.Key_Space && event.key !== Qt.Key_Return && event.key !== Qt.Key_Enter)
            return
        event.accepted = true
        if (!event.isAutoRepeat) turned(!isOn)
    }
    Component.onCompleted: isAnimated = true

    ContinuousRectangle {
        visible: toggle.activeFocus
        anchors { fill: parent; margins: -4 }
        radius: height / 2
        strokeWidth: 3
        strokeColor: Qt.rgba(Palette.accent.r, Palette.accent.g, Palette.accent.b, 0.5)
    }
    Rectangle {
        anchors.fill: parent
        radius: height / 2
        opacity: toggle.enabled ? 1 : 0.4
        color: toggle.isOn ? Palette.accent : Palette.black(area.containsMouse ? 0.2 : 0.15)
        Behavior on color { enabled: toggle.isAnimated; ColorAnimation { duration: 150 } }
    }
    Rectangle {
        x: toggle.isOn ? parent.width - width - 2 : 2
        y: 2
        width: parent.height - 4
        height: width
        radius: width / 2
        color: area.pressed ? "#f2f2f2" : "white"
        border { width: 1; color: Palette.black(0.06) }
        Behavior on x {
            enabled: toggle.isAnimated
            NumberAnimation { duration: 150; easing.type: Easing.InOutQuad }
        }
    }
    MouseArea {
        id: area
        anchors.fill: parent
        hoverEnabled: true
        onClicked: toggle.turned(!toggle.isOn)
    }
}
