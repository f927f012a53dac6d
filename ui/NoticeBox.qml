import QtQuick 2.15
import Orvane.Installer

// A message and its buttons on a tinted box of fixed size. The row is as wide as
// what it holds and may reach beyond the box.
Item {
    id: box

    property alias color: fill.color
    property alias text: message.text
    default property alias buttons: buttonRow.data

    implicitWidth: 240
    implicitHeight: 44

    ContinuousRectangle {
        id: fill
        anchors.fill: parent
        radius: 8
    }
    Row {
        objectName: "noticeRow"
        anchors.centerIn: parent
        // What reaches beyond the box should be the last button's padding, white on
        // white, and not a text.
        anchors.horizontalCenterOffset: message.isTooLong ? 5 : 0
        leftPadding: 12
        rightPadding: 12
        spacing: 12

        Text {
            id: message
            objectName: "noticeText"
            // Two lines at most, of like length, and only if one would leave the box.
            readonly property real room: box.width - parent.spacing - buttonRow.width
            readonly property bool isTooLong: implicitWidth > room
            anchors.verticalCenter: parent.verticalCenter
            width: isTooLong ? Math.ceil(implicitWidth / 2 / font.pixelSize) * font.pixelSize
                             : implicitWidth
            wrapMode: Text.WrapAtWordBoundaryOrAnywhere
            font.pixelSize: 14
            color: Palette.black(0.85)
        }
        Row {
            id: buttonRow
            anchors.verticalCenter: parent.verticalCenter
            spacing: 12
        }
    }
}
