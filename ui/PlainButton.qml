import QtQuick 2.15
import Orvane.Installer

// A button that draws itself: a filled shape and a text. Whoever uses it gives it its look.
Item {
    id: button

    property alias text: label.text
    property alias font: label.font
    property alias textColor: label.color
    property alias radius: fill.radius
    property alias color: fill.color
    property alias gradient: fill.gradient
    readonly property bool isDown: isSpaceDown || (area.pressed && area.containsMouse)
    property real padding

    implicitWidth: label.implicitWidth + 2 * padding
    implicitHeight: label.implicitHeight + 2 * 6
    signal clicked

    activeFocusOnTab: true
    Accessible.role: Accessible.Button
    Accessible.name: text
    Accessible.focusable: true
    Accessible.onPressAction: if (enabled) button.clicked()
    Accessible.ignored: !enabled

    // Space presses as the pointer does: on release, unless the focus has moved meanwhile.
    property bool isSpaceDown: false
    onActiveFocusChanged: isSpaceDown = false
    Keys.onPressed: event => {
        if (![Qt.Key_Space, Qt.Key_Return, Qt.Key_Enter].includes(event.key)) return
        event.accepted = true
        if (event.key === Qt.Key_Space) isSpaceDown = true
        else if (!event.isAutoRepeat) button.clicked()
    }
    Keys.onReleased: event => {
        if (event.key !== Qt.Key_Space || event.isAutoRepeat || !isSpaceDown) return
        isSpaceDown = false
        button.clicked()
    }

    onEnabledChanged: area.hadFirstClick = false

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
    // Darkens the fill under the pointer, and more while the button is pressed.
    ContinuousRectangle {
        visible: opacity > 0
        opacity: area.containsMouse || button.isSpaceDown ? 1 : 0
        anchors.fill: parent
        radius: fill.radius
        color: Palette.black(button.isDown ? 0.10 : 0.04)
        Behavior on opacity { NumberAnimation { duration: 120 } }
    }
    Text {
        id: label
        anchors.centerIn: parent
        font.pixelSize: 13
    }
    MouseArea {
        id: area
        // Whether this button has been clicked since it was enabled. If it has not, the
        // first click of a double click went to another button, and so must the second.
        property bool hadFirstClick: false
        anchors.fill: parent
        hoverEnabled: true
        onClicked: {
            hadFirstClick = true
            button.clicked()
        }
        onDoubleClicked: if (hadFirstClick) button.clicked()
    }
}
