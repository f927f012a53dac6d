import QtQuick 2.15
import Orvane.Installer

// A button that is its own drawing: a filled shape and a text. The parts of the
// screens give it its look.
Item {
    id: button

    property alias text: label.text
    property alias font: label.font
    property alias textColor: label.color
    property alias radius: fill.radius
    property alias color: fill.color
    property alias gradientEnd: fill.gradientEnd
    // What lies over the fill under the pointer, and while pressed.
    property color hoverVeil: Palette.black(0.04)
    property color pressVeil: Palette.black(0.10)
    readonly property bool isDown: area.isHeld || keyHeld
    property bool keyHeld: false
    readonly property real labelWidth: label.implicitWidth
    readonly property real labelHeight: label.implicitHeight

    signal clicked

    activeFocusOnTab: true
    Accessible.role: Accessible.Button
    Accessible.name: text
    Accessible.focusable: true
    Accessible.onPressAction: if (enabled) button.clicked()
    Accessible.ignored: !enabled

    Keys.onPressed: event => {
        if (event.key === Qt.Key_Space) {
            if (!event.isAutoRepeat) keyHeld = true
            event.accepted = true
        } else if (event.key === Qt.Key_Return || event.key === Qt.Key_Enter) {
            event.accepted = true
            if (!event.isAutoRepeat) button.clicked()
        }
    }
    Keys.onReleased: event => {
        if (event.key !== Qt.Key_Space || event.isAutoRepeat || !keyHeld) return
        event.accepted = true
        keyHeld = false
        button.clicked()
    }
    onActiveFocusChanged: if (!activeFocus) keyHeld = false

    // Only Tab gives a button the focus, so the ring never follows a click.
    ContinuousRectangle {
        objectName: "focusRing"
        visible: button.activeFocus
        anchors { fill: parent; margins: -4 }
        radius: fill.radius + 4
        strokeWidth: 3
        strokeColor: Palette.focusRing
    }
    ContinuousRectangle {
        id: fill
        anchors.fill: parent
    }
    ContinuousRectangle {
        visible: opacity > 0
        opacity: button.isDown || area.containsMouse ? 1 : 0
        anchors.fill: parent
        radius: fill.radius
        color: button.isDown ? button.pressVeil : button.hoverVeil
        Behavior on opacity { NumberAnimation { duration: 120 } }
    }
    Text {
        id: label
        anchors.centerIn: parent
        font.pixelSize: 13
        Accessible.ignored: true
    }
    MouseArea {
        id: area
        readonly property bool isHeld: pressed && containsMouse
        anchors.fill: parent
        hoverEnabled: true
        onClicked: button.clicked()
        // The second click of a double click presses nothing: what is under the
        // pointer by then may have come with the first.
        onDoubleClicked: {}
    }
}
